#pragma once

#include <KWFoundation/KWPropertyList.h>
#include <KWFoundation/KWUnknownObject.h>

#include <apps/common/KWElement.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// No channel, or more than one, answers to an address.
class KWAddressError : public std::runtime_error {
  public:
    /// Why the candidates are named.
    enum class Reason : std::uint8_t {
        notFound, ///< they are the nearest ones
        ambiguous ///< each answers to the address
    };

    KWAddressError(Reason reason, const std::string& text, std::vector<std::string> candidates)
        : std::runtime_error(text), _reason(reason), _candidates(std::move(candidates)) {}

    Reason reason() const { return _reason; }

    /// The paths that were meant, or the nearest ones, best first; may be empty.
    const std::vector<std::string>& candidates() const { return _candidates; }

  private:
    Reason _reason;
    std::vector<std::string> _candidates;
};

/// Versions to write classes as, by their names, for programs that know no newer ones.
using KWClassVersions = std::map<std::string, std::int32_t, std::less<>>;

/// A document of channels: an archive whose root is a list of elements, or any other archive that
/// has channels somewhere. Objects of classes that are not known here are kept and written back as
/// they came, and so is everything else the archive holds.
///
/// The root of a sequential archive is its first value, which must be an object. Further values
/// behind it are kept.
///
/// The elements are the KWElements and the objects of unknown classes that hold a KWChannelArray
/// directly; an array, group or channel that is the root, or stands in a list that is the root, is
/// an element of its own.
class KWDocument {
  public:
    /// How a document lies in a file: as a keyed archive, in one of the two forms of property
    /// lists, or as a sequential archive.
    enum class Form : std::uint8_t { binary, xml, sequential };

    /// Exactly one of the array, the group and the channel is there, or none of them in a KWElement
    /// that came without an array.
    struct Element {
        std::string name;      ///< "" for one without
        std::string className; ///< such as "KWElement"
        std::shared_ptr<KWObject> object;
        std::shared_ptr<KWChannelArray> channelArray;
        std::shared_ptr<KWChannelGroup> group;
        std::shared_ptr<KWChannel> channel;
    };

    /// A channel and where it stands.
    struct Place {
        /// "Element/Group/Channel", without the parts that have no name. Where several channels
        /// would have the same path each has "#1", "#2", ... behind it.
        std::string path;
        std::size_t element;                   ///< index among the elements
        std::shared_ptr<KWChannelGroup> group; ///< null for a channel in no group
        std::shared_ptr<KWChannel> channel;
    };

    /// A new document: an empty list of elements.
    KWDocument();

    /// Reads a file. Raises KWArchiveError.
    static KWDocument open(const std::filesystem::path& path);
    /// Reads bytes, which are not needed any more afterwards; `file` is for messages.
    static KWDocument read(std::span<const std::byte> bytes, std::string file = {});

    /// The form that was read; binary for a new document.
    Form form() const { return _form; }
    /// The file that was read, as it was given; "" for none.
    const std::string& file() const { return _file; }

    /// In the order of the archive.
    const std::vector<Element>& elements() const { return _elements; }

    /// Appends to the list of elements. std::invalid_argument for null; std::logic_error in a
    /// document whose root is not a list.
    void addElement(const std::shared_ptr<KWElement>& element);

    /// Whether the root is a list, which elements can be added to.
    bool takesElements() const { return elementList() != nullptr; }
    /// Puts the element before the one at `index` of the list of elements, or at its end when there
    /// are not as many. As addElement() otherwise.
    void insertElement(const std::shared_ptr<KWElement>& element, std::size_t index);
    /// Takes the element out of the list, and answers where it stood there; KWNotFound, and nothing
    /// changed, when it is not in it.
    std::size_t removeElement(const std::shared_ptr<KWElement>& element);

    /// The manager of every KWElement of this document.
    const std::shared_ptr<KWUndoManager>& undoManager() const { return _undoManager; }

    /// Every channel of every element, in order. Channels of an array or group that occurs more
    /// than once are listed at its first place only.
    std::vector<Place> channels() const;

    /// The channel that an address names: its path, or failing that the one whose path ends with
    /// the address, be that one part or several. Throws KWAddressError.
    static const Place& placeAt(const std::vector<Place>& places, std::string_view address);

    /// Puts `channel` where the one of a place is, through its element where that is a KWElement.
    /// It takes over name, colour index, unit type, group and owner.
    ///
    /// False, and nothing changed, for null, for the same channel, for one that has an owner, and
    /// for a place that is no longer as it was.
    bool replaceChannel(const Place& place, const std::shared_ptr<KWChannel>& channel);

    /// A value at the top of the archive, and its key; the one of a sequential archive has the key
    /// "root".
    struct Top {
        std::string key;
        KWArchiveValue value;
    };
    /// What the archive holds by reference, in order: mostly a root alone.
    const std::vector<Top>& tops() const { return _tops; }
    /// The keys of what a keyed archive holds at its top in itself, such as numbers.
    std::vector<std::string> inlinedKeys() const;
    /// What a sequential archive holds behind its root: types in the keys, values in the items.
    const std::vector<KWArchiveField>& furtherValues() const { return _furtherValues; }

    /// The whole document as an archive, in the form it was read in when none is given. What a form
    /// cannot carry is not in it; kwConversionLosses() tells what that is. `versions` are for a
    /// sequential archive.
    ///
    /// Raises KWArchiveError (unsupported) when something cannot be archived at all: a channel with
    /// more keys than values, an object of an unknown class from an archive of the other kind, or
    /// further values of other types than objects, numbers, strings and bytes.
    KWData data(Form form, const KWClassVersions& versions = {}) const;
    KWData data() const { return data(_form); }

    /// Writes data() into a file, whole or not at all. Raises KWArchiveError.
    void save(const std::filesystem::path& path, Form form) const;
    void save(const std::filesystem::path& path) const { save(path, _form); }

    /// The versions that a sequential archive of this document has classes written as; the newest
    /// for those that are not named. They are the ones asked for, and the ones that objects of
    /// unknown classes have their known superclasses' parts in, since a class has one version in an
    /// archive.
    /// KWArchiveError (unsupported) when these contradict each other.
    KWClassVersions writtenVersions(const KWClassVersions& wanted = {}) const;

  private:
    void readTops(KWPropertyList list);
    void readStream(std::span<const std::byte> bytes);
    KWData keyedData(KWPropertyList::Format format) const;
    KWData sequentialData(const KWClassVersions& versions) const;
    [[noreturn]] void cannotBeWritten(const std::string& reason) const;
    void findElements();
    void collect(const KWArchiveValue& root);
    void addHolder(const std::shared_ptr<KWObject>& object);
    const KWArchiveArray* elementList() const;
    void setElementList(std::vector<KWArchiveValue> list);
    /// At the top, or in a list there.
    bool replaceRoot(const std::shared_ptr<KWChannel>& oldChannel,
                     const std::shared_ptr<KWChannel>& newChannel);

    /// What stands under the top keys by reference, in order.
    std::vector<Top> _tops;
    /// What stands at the top itself, as one dictionary; no root when there is none.
    KWPropertyList _inlined;
    std::vector<KWArchiveField> _furtherValues;
    std::vector<Element> _elements;
    std::shared_ptr<KWUndoManager> _undoManager;
    Form _form = Form::binary;
    std::string _file;
};

/// Why a channel is irregular, in a few words such as "keys 3 and 4 share the time 2"; empty for a
/// channel in order. Keys are counted from 1.
std::string kwIrregularity(const KWChannel& channel);

/// Whether the channel is of a class that is not known here, so that its values cannot be computed.
bool kwIsOfUnknownKind(const KWChannel& channel);

/// The name of the channel's class, as archives spell it.
std::string kwClassName(const KWObject& object);
