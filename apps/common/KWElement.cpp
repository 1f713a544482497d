#include <KWBase/KWAlgebricChannel.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <apps/common/KWElement.h>

#include <algorithm>
#include <stdexcept>

namespace {

// Keys and texts together. Telling apart as many keys still takes no time worth mentioning.
constexpr std::size_t largestAttributeCount = 512;

/// The version of our class in an archive. Whoever writes one need not have registered the class.
std::int64_t versionIn(const KWCoder& coder) {
    const KWClass& ours = KWElement::classObject();
    const std::int64_t version = coder.versionForClassName(ours.name());
    return version == KWNotFound ? ours.version() : version;
}

bool holdsChannel(const KWChannelArray& array, const std::shared_ptr<KWChannel>& channel) {
    const KWChannelList all = array.channelEnumerator();
    return std::find(all.begin(), all.end(), channel) != all.end();
}

std::vector<std::shared_ptr<KWAlgebricChannel>> algebricChannelsOf(const KWChannelList& channels) {
    std::vector<std::shared_ptr<KWAlgebricChannel>> found;
    for (const auto& channel : channels)
        if (auto algebric = std::dynamic_pointer_cast<KWAlgebricChannel>(channel))
            found.push_back(std::move(algebric));
    return found;
}

} // namespace

KWElement::KWElement(std::string name)
    : _name(std::move(name)), _channelArray(std::make_shared<KWChannelArray>()) {}

KWElement::~KWElement() {
    resign();
}

const KWClass& KWElement::classObject() {
    static constinit KWClass theClass{"KWElement", &KWObject::classObject, 1,
                                      KWClass::make<KWElement>};
    return theClass;
}

void KWElement::setChannelArray(const std::shared_ptr<KWChannelArray>& array) {
    if (_channelArray)
        _channelArray->setChannelsOwner(nullptr);
    _channelArray = array;
    if (_channelArray)
        _channelArray->setChannelsOwner(this);
    postChannelsDidChange();
}

void KWElement::addChannelToGroupNamed(const std::shared_ptr<KWChannel>& channel,
                                       const std::string& group) {
    if (!channel)
        throw std::invalid_argument("a channel to add must not be null");
    if (!_channelArray)
        throw std::logic_error("the element has no channel array");
    if (!group.empty() && !_channelArray->groupWithName(group))
        _channelArray->addGroupWithName(group);
    _channelArray->addChannelToGroup(
        channel, group.empty() ? KWUngroupedChannels : _channelArray->indexOfGroupNamed(group));
    channel->setOwner(this);
    postChannelsDidChange();
}

void KWElement::postChannelsDidChange() {
    if (!weak_from_this().expired())
        KWNotificationCenter::defaultCenter().postNotificationNameObject(
            KWElementChannelsDidChangeNotification, this);
}

bool KWElement::replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                   const std::shared_ptr<KWChannel>& newChannel) {
    if (!_channelArray || !oldChannel || !holdsChannel(*_channelArray, oldChannel))
        return false;
    KWUndoManager* const undo = undoManager();
    if (undo && weak_from_this().expired())
        throw std::logic_error("an element with undo must live in a std::shared_ptr");

    // A channel with an owner is refused, so the new one gets its owner afterwards.
    if (!_channelArray->replaceChannelWith(oldChannel, newChannel))
        return false;
    oldChannel->setOwner(nullptr);
    newChannel->setOwner(this);
    newChannel->setName(oldChannel->name());
    newChannel->setChannelColorIndex(oldChannel->channelColorIndex());
    newChannel->setUnitType(oldChannel->unitType());

    KWFirstException raised;
    if (undo)
        undo->registerUndo(
            weak_from_this(),
            [this, oldChannel, newChannel] { replaceChannelWith(newChannel, oldChannel); }, raised);
    raised.during([&newChannel] { newChannel->invalidate(); });
    raised.during([this] { postChannelsDidChange(); });
    raised.rethrow();
    return true;
}

void KWElement::encodeWithCoder(KWCoder& coder) const {
    KWChannelElement::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding()) {
        coder.encodeObjectForKey(_name, "name");
        coder.encodeObjectForKey(_channelArray, "channelArray");
        const KWArchiveValue texts =
            _channelArray ? expressionTexts(_channelArray->channelEnumerator()) : nullptr;
        if (!texts.isNil())
            coder.encodeObjectForKey(texts, "expressionTexts");
        if (!_attributes.empty())
            coder.encodeObjectForKey(archivedAttributes(), "attributes");
        return;
    }
    coder.encodeObject(_name);
    coder.encodeObject(_channelArray);
    if (versionIn(coder) < 1)
        return;
    KWChannelList channels;
    if (_channelArray)
        channels = _channelArray->channelEnumerator();
    // An array of version 0 comes back without its groups.
    if (_channelArray && coder.versionForClassName(KWChannelArray::classObject().name()) < 1)
        channels = _channelArray->ungroupedChannels() ? *_channelArray->ungroupedChannels()
                                                      : KWChannelList();
    coder.encodeObject(expressionTexts(channels));
    if (versionIn(coder) >= 2)
        coder.encodeObject(archivedAttributes());
}

bool KWElement::initWithCoder(KWCoder& coder) {
    if (!KWChannelElement::initWithCoder(coder))
        return false;
    if (coder.allowsKeyedCoding()) {
        _name = coder.decodeStringForKey("name").value_or(std::string());
        _channelArray = coder.decodeObjectOfClassForKey<KWChannelArray>("channelArray");
        takeArchivedTexts(coder.decodeObjectForKey("expressionTexts"));
        takeArchivedAttributes(coder.decodeObjectForKey("attributes"));
    } else {
        _name = coder.decodeString("name").value_or(std::string());
        _channelArray = coder.decodeObjectOfClass<KWChannelArray>("channelArray");
        if (versionIn(coder) >= 1)
            takeArchivedTexts(coder.decodeObject());
        if (versionIn(coder) >= 2)
            takeArchivedAttributes(coder.decodeObject());
    }
    if (_channelArray)
        _channelArray->setChannelsOwner(this);
    if (const KWArchiveArray* const texts = _archivedTexts.array())
        for (const KWArchiveValue& text : texts->elements)
            coder.spendMemory(KWAlgebricInterpreter::memoryForText(text.string()->text));
    restoreExpressionTexts(false);
    return true;
}

void KWElement::setAttributes(const Attributes& attributes) {
    Attributes taken;
    for (const auto& each : attributes)
        if (!each.first.empty() && std::none_of(taken.begin(), taken.end(), [&](const auto& other) {
                return other.first == each.first;
            }))
            taken.push_back(each);
    _attributes = std::move(taken);
}

const std::string& KWElement::attribute(std::string_view key) const {
    static const std::string nothing;
    for (const auto& [name, text] : _attributes)
        if (name == key)
            return text;
    return nothing;
}

void KWElement::setAttribute(const std::string& key, const std::string& text) {
    const auto found = std::find_if(_attributes.begin(), _attributes.end(),
                                    [&key](const auto& each) { return each.first == key; });
    if (text.empty() && found != _attributes.end())
        _attributes.erase(found);
    else if (found != _attributes.end())
        found->second = text;
    else if (!text.empty() && !key.empty())
        _attributes.emplace_back(key, text);
}

KWArchiveValue KWElement::archivedAttributes() const {
    std::vector<KWArchiveValue> list;
    for (const auto& [key, text] : _attributes) {
        list.emplace_back(key);
        list.emplace_back(text);
    }
    return KWArchiveValue::mutableArray(std::move(list));
}

/// A list of anything else than keys and texts in turn counts as none.
void KWElement::takeArchivedAttributes(const KWArchiveValue& value) {
    const KWArchiveArray* const list = value.array();
    if (!list || list->elements.size() % 2 != 0 || list->elements.size() > largestAttributeCount)
        return;
    Attributes attributes;
    for (std::size_t k = 0; k < list->elements.size(); k += 2) {
        const KWArchiveString* const key = list->elements[k].string();
        const KWArchiveString* const text = list->elements[k + 1].string();
        if (!key || !text)
            return;
        attributes.emplace_back(key->text, text->text);
    }
    setAttributes(attributes);
}

KWArchiveValue KWElement::expressionTexts(const KWChannelList& channels) const {
    std::vector<KWArchiveValue> texts;
    for (const auto& channel : algebricChannelsOf(channels))
        texts.emplace_back(channel->sourceText().value_or(std::string()));
    return texts.empty() ? nullptr : KWArchiveValue::mutableArray(std::move(texts));
}

void KWElement::takeArchivedTexts(const KWArchiveValue& value) {
    const KWArchiveArray* const list = value.array();
    const bool isGood = list && std::all_of(list->elements.begin(), list->elements.end(),
                                            [](const auto& each) { return each.string(); });
    // An archive may have anything there, this element included, which must not keep itself alive.
    if (isGood || value.isNil())
        _archivedTexts = value;
    else
        _archivedTexts = KWNumber(false);
}

void KWElement::finishExpressionTexts() {
    restoreExpressionTexts(true);
    _archivedTexts = nullptr;
    _refusedTexts.clear();
}

/// Past the channel, which would tell of a change. Answers why not; "" when the channel has the
/// text now.
std::string KWElement::restoreText(const KWAlgebricChannel& channel, const std::string& text) {
    if (text.empty() || channel.sourceText() == text)
        return {};
    const std::shared_ptr<KWAlgebricInterpreter>& interpreter = channel.interpreter();
    if (!interpreter)
        return channel.fault().sentence();
    const std::int32_t mode = interpreter->mode();
    const auto refused = _refusedTexts.find({mode, text});
    if (refused != _refusedTexts.end())
        return refused->second;
    std::string sentence = interpreter->replaceExpressionMode(text, mode).sentence();
    if (!sentence.empty())
        _refusedTexts.emplace(std::pair(mode, text), sentence);
    return sentence;
}

void KWElement::restoreExpressionTexts(bool isLogging) {
    if (_archivedTexts.isNil())
        return;
    const auto log = [isLogging](const std::string& line) {
        if (isLogging)
            KWLog(line);
    };
    const auto channels =
        algebricChannelsOf(_channelArray ? _channelArray->channelEnumerator() : KWChannelList());
    const KWArchiveArray* const texts = _archivedTexts.array();
    if (!texts || texts->elements.size() != channels.size())
        return log("the texts of the expressions in \"" + _name +
                   "\" are not those of its channels and are not restored");
    for (std::size_t k = 0; k < channels.size(); ++k) {
        const std::string fault = restoreText(*channels[k], texts->elements[k].string()->text);
        if (!fault.empty())
            log("the text of the expression of \"" + channels[k]->name() + "\" in \"" + _name +
                "\" is not restored: " + fault);
    }
}

void kwRegisterElementClass() {
    if (!KWClassNamed(KWElement::classObject().name()))
        KWRegisterClass(KWElement::classObject());
}
