#pragma once

#include <KWFoundation/KWPropertyList.h>

#include <apps/common/KWElement.h>

#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// No channel, or more than one, answers to an address.
class KWAddressError : public std::runtime_error {
  public:
    KWAddressError(const std::string& text, std::vector<std::string> candidates)
        : std::runtime_error(text), _candidates(std::move(candidates)) {}

    /// The paths that were meant, or the nearest ones, best first; may be empty.
    const std::vector<std::string>& candidates() const { return _candidates; }

  private:
    std::vector<std::string> _candidates;
};

/// A document of channels: a keyed archive whose root is a list of elements, or any other keyed
/// archive that has channels somewhere. Objects of classes that are not known here are kept and
/// written back as they came, and so is everything else the archive holds.
///
/// The elements are the KWElements and the objects of unknown classes that hold a KWChannelArray
/// directly; an array, group or channel that is the root, or stands in a list that is the root, is
/// an element of its own.
class KWDocument {
  public:
    using Format = KWPropertyList::Format;

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
    Format format() const { return _format; }
    /// The file that was read, as it was given; "" for none.
    const std::string& file() const { return _file; }

    /// In the order of the archive.
    const std::vector<Element>& elements() const { return _elements; }

    /// Appends to the list of elements. std::invalid_argument for null; std::logic_error in a
    /// document whose root is not a list.
    void addElement(const std::shared_ptr<KWElement>& element);

    /// The manager of every KWElement of this document.
    const std::shared_ptr<KWUndoManager>& undoManager() const { return _undoManager; }

    /// Every channel of every element, in order. Channels of an array or group that occurs more
    /// than once are listed at its first place only.
    std::vector<Place> channels() const;

    /// The channel that an address names: its path, or failing that the one whose path ends with
    /// the address, be that one part or several. Throws KWAddressError.
    static const Place& placeAt(const std::vector<Place>& places, std::string_view address);

    /// The whole document as an archive. Raises KWArchiveError (unsupported) when something in it
    /// cannot be archived, such as a channel with more keys than values.
    KWData data(Format format) const;

    /// Writes data() into a file, whole or not at all. Raises KWArchiveError.
    void save(const std::filesystem::path& path, Format format) const;

  private:
    struct Top {
        std::string key;
        KWArchiveValue value;
    };

    void readTops(KWPropertyList list);
    void findElements();
    void collect(const KWArchiveValue& root);
    void addHolder(const std::shared_ptr<KWObject>& object);

    /// What stands under the top keys by reference, in order.
    std::vector<Top> _tops;
    /// What stands at the top itself, as one dictionary; no root when there is none.
    KWPropertyList _inlined;
    std::vector<Element> _elements;
    std::shared_ptr<KWUndoManager> _undoManager;
    Format _format = Format::binary;
    std::string _file;
};

/// Why a channel is irregular, in a few words such as "keys 3 and 4 share the time 2"; empty for a
/// channel in order. Keys are counted from 1.
std::string kwIrregularity(const KWChannel& channel);

/// Whether the channel is of a class that is not known here, so that its values cannot be computed.
bool kwIsOfUnknownKind(const KWChannel& channel);

/// The name of the channel's class, as archives spell it.
std::string kwClassName(const KWObject& object);
