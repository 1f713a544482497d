#pragma once

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelElement.h>
#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWUndoManager.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class KWAlgebricChannel;

/// Posted by an element, with itself as object, when channels or groups of it have come, gone,
/// taken another's place or another name: outlines reload. Only an element in a std::shared_ptr
/// posts it.
inline constexpr std::string_view KWElementChannelsDidChangeNotification =
    "KWElementChannelsDidChangeNotification";

/// A named thing with channels, the unit of which our documents are lists. It owns its channels:
/// their edits register with its undo manager, and a channel is replaced through it.
///
/// Archived as class "KWElement", version 1 or 2, with its name, its channel array, and the texts
/// of the array's algebraic channels as they were typed, of which an archive of the channels alone
/// keeps less or nothing: keys "name", "channelArray" and, where there are such channels,
/// "expressionTexts", a list of one text for each of them in the order of channelEnumerator(), ""
/// for one without. Version 0 has no texts.
///
/// Attributes are written under the key "attributes", a list of keys and texts in turn, where there
/// are any. In a sequential archive they take version 2, which
/// a KWDocument asks for where an element has some; readers of version 1 pass over them.
class KWElement final : public KWChannelElement, public KWChannelOwner {
  public:
    /// With an empty channel array.
    explicit KWElement(std::string name = {});
    ~KWElement() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// A nil name, as an archive may hold, reads as "".
    std::string name() const override { return _name; }
    void setName(std::string name) { _name = std::move(name); }

    /// What else is said of the element, keys and texts in the order they were set, such as the
    /// picture that a sprite shows. Keys that a program does not know are kept. Keys are not empty
    /// and differ.
    using Attributes = std::vector<std::pair<std::string, std::string>>;
    const Attributes& attributes() const { return _attributes; }
    /// Of equal keys the first counts; empty ones are left out.
    void setAttributes(const Attributes& attributes);
    /// "" where there is none of that key.
    const std::string& attribute(std::string_view key) const;
    /// In place of the text of that key, or behind the others; "" takes the key away.
    void setAttribute(const std::string& key, const std::string& text);

    /// Null when an archive had none.
    std::shared_ptr<KWChannelArray> channelArray() const override { return _channelArray; }
    /// Becomes the owner of the new array's channels and lets go of the old one's. Null is allowed.
    void setChannelArray(const std::shared_ptr<KWChannelArray>& array);

    /// Adds the channel to the group of that name, which is made where there is none, or to no
    /// group for "", and becomes its owner. std::invalid_argument for null; std::logic_error
    /// without a channel array.
    void addChannelToGroupNamed(const std::shared_ptr<KWChannel>& channel,
                                const std::string& group = {});
    /// For whoever has changed the lists of the channel array, or the names in it, itself.
    void postChannelsDidChange();

    /// Null for no undo. Not kept alive: once it is gone there is none.
    KWUndoManager* undoManager() override { return _undoManager.lock().get(); }
    void setUndoManager(const std::shared_ptr<KWUndoManager>& manager) { _undoManager = manager; }

    /// Puts `newChannel` where `oldChannel` is in the channel array. The new one takes over owner,
    /// name, colour index and unit type; the old one is left without an owner. Putting it back is
    /// registered with the undo manager, for which the element must live in a std::shared_ptr
    /// (std::logic_error). What observers throw keeps none of that from being done; the first such
    /// exception is rethrown at the end.
    ///
    /// False, and nothing changed, without an array, when the old channel is not this element's,
    /// when either is null or they are the same, or when the new one has an owner already.
    bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                            const std::shared_ptr<KWChannel>& newChannel) override;

    void encodeWithCoder(KWCoder& coder) const override;
    /// Also gives the algebraic channels their texts again, without notices and without undo. A
    /// channel keeps what its own part of the archive gave it where its text is not one that it
    /// would take, and all do where there are not as many texts as channels.
    bool initWithCoder(KWCoder& coder) override;

    /// Gives the texts to those channels too that were still being read when the element was, and
    /// logs a line for each that cannot be given. For whoever reads archives, once all is read; the
    /// first call counts.
    void finishExpressionTexts();

  private:
    void takeArchivedTexts(const KWArchiveValue& value);
    KWArchiveValue expressionTexts(const KWChannelList& channels) const;
    void restoreExpressionTexts(bool isLogging);
    std::string restoreText(const KWAlgebricChannel& channel, const std::string& text);

    void takeArchivedAttributes(const KWArchiveValue& value);
    KWArchiveValue archivedAttributes() const;

    std::string _name;
    Attributes _attributes;
    std::shared_ptr<KWChannelArray> _channelArray;
    std::weak_ptr<KWUndoManager> _undoManager;
    /// A list of strings, until all of the archive is read; or something else that is no such list.
    KWArchiveValue _archivedTexts;
    /// The sentences for texts of a mode that were refused on the way, as reading one takes time.
    std::map<std::pair<std::int32_t, std::string>, std::string> _refusedTexts;
};

/// Makes the element, and every class that its documents are made of, known to the archives. Any
/// number of calls; classes of the same names that are known already stay.
void kwRegisterElementClass();
