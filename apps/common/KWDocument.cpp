#include <KWFoundation/KWException.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <apps/common/KWDocument.h>
#include <apps/common/KWPropertyListCopy.h>

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace {

/// The value under a dictionary's key, or none where the node is no dictionary.
KWPropertyList::Index entry(const KWPropertyList& list, KWPropertyList::Index node,
                            std::string_view key) {
    if (node == KWPropertyList::none || list.kind(node) != KWPropertyList::Kind::dictionary)
        return KWPropertyList::none;
    return list.valueForKey(node, key);
}

/// A key that begins with "$" has one more in the archive.
std::string unescaped(std::string_view key) {
    return std::string(key.starts_with("$$") ? key.substr(1) : key);
}

void pushFieldValues(const std::vector<KWArchiveField>& fields,
                     std::vector<KWArchiveValue>& values) {
    std::vector<const KWArchiveField*> waiting;
    for (auto field = fields.rbegin(); field != fields.rend(); ++field)
        waiting.push_back(&*field);
    std::vector<KWArchiveValue> found;
    while (!waiting.empty()) {
        const KWArchiveField& field = *waiting.back();
        waiting.pop_back();
        if (field.form == KWArchiveField::Form::reference)
            found.push_back(field.value);
        for (auto item = field.items.rbegin(); item != field.items.rend(); ++item)
            waiting.push_back(&*item);
    }
    values.insert(values.end(), std::make_move_iterator(found.rbegin()),
                  std::make_move_iterator(found.rend()));
}

/// A list of the same class.
KWArchiveValue arrayLike(const KWArchiveArray& list, std::vector<KWArchiveValue> elements) {
    return list.isMutable ? KWArchiveValue::mutableArray(std::move(elements))
                          : KWArchiveValue::immutableArray(std::move(elements));
}

std::string nameOf(const KWUnknownObject& object) {
    const KWArchiveField* field = object.field("name");
    const KWArchiveString* text = field ? field->value.string() : nullptr;
    return text ? text->text : std::string();
}

KWPropertyList withInlinedTops(KWPropertyList list, const KWPropertyList& inlined) {
    using Index = KWPropertyList::Index;
    const auto extended = [&list](Index dictionary, std::span<const Index> newKeys,
                                  std::span<const Index> newValues) {
        const auto old = list.children(dictionary);
        const std::size_t count = old.size() / 2;
        std::vector<Index> keys(old.begin(), old.begin() + static_cast<std::ptrdiff_t>(count));
        std::vector<Index> values(old.begin() + static_cast<std::ptrdiff_t>(count), old.end());
        keys.insert(keys.end(), newKeys.begin(), newKeys.end());
        values.insert(values.end(), newValues.begin(), newValues.end());
        return list.addDictionary(keys, values);
    };

    const auto additions = inlined.children(inlined.root());
    std::vector<Index> keys, values;
    for (std::size_t i = 0; i < additions.size(); ++i)
        (i < additions.size() / 2 ? keys : values)
            .push_back(kwCopyPropertyListNode(inlined, additions[i], list));
    const Index top = extended(entry(list, list.root(), "$top"), keys, values);

    std::vector<Index> rootKeys, rootValues;
    const auto root = list.children(list.root());
    for (std::size_t i = 0; i < root.size() / 2; ++i) {
        rootKeys.push_back(root[i]);
        rootValues.push_back(list.stringValue(root[i]) == "$top" ? top : root[root.size() / 2 + i]);
    }
    list.setRoot(list.addDictionary(rootKeys, rootValues));
    return list;
}

} // namespace

KWDocument::KWDocument() : _undoManager(std::make_shared<KWUndoManager>()) {
    kwRegisterElementClass();
    _tops.push_back({"root", KWArchiveValue::mutableArray({})});
}

KWDocument KWDocument::open(const std::filesystem::path& path) {
    const KWFileContents contents = KWFileContents::read(path);
    return read(contents.bytes(), path.string());
}

KWDocument KWDocument::read(std::span<const std::byte> bytes, std::string file) {
    KWDocument document;
    document._file = file;
    document._tops.clear();
    if (KWUnarchiver::isArchive(bytes))
        document.readStream(bytes);
    else
        document.readTops(KWPropertyList::parse(bytes, std::move(file)));
    document.findElements();
    for (const Element& element : document._elements)
        if (auto ours = std::dynamic_pointer_cast<KWElement>(element.object))
            ours->finishExpressionTexts();
    return document;
}

void KWDocument::readTops(KWPropertyList list) {
    using Index = KWPropertyList::Index;
    _form = list.format() == KWPropertyList::Format::xml ? Form::xml : Form::binary;

    std::vector<std::string> references;
    std::vector<Index> inlinedKeys, inlinedValues;
    const Index top = entry(list, list.root(), "$top");
    if (top != KWPropertyList::none && list.kind(top) == KWPropertyList::Kind::dictionary) {
        const auto children = list.children(top);
        const std::size_t count = children.size() / 2;
        for (std::size_t i = 0; i < count; ++i) {
            if (list.kind(children[count + i]) == KWPropertyList::Kind::uid) {
                references.push_back(unescaped(list.stringValue(children[i])));
                continue;
            }
            inlinedKeys.push_back(kwCopyPropertyListNode(list, children[i], _inlined));
            inlinedValues.push_back(kwCopyPropertyListNode(list, children[count + i], _inlined));
        }
    }
    if (!inlinedKeys.empty())
        _inlined.setRoot(_inlined.addDictionary(inlinedKeys, inlinedValues));

    // One reader for all, so that what is shared between them stays shared.
    KWKeyedUnarchiver unarchiver(std::move(list), {.keepsUnknownObjects = true});
    for (const std::string& key : references)
        _tops.push_back({key, unarchiver.decodeObjectForKey(key)});
}

void KWDocument::findElements() {
    _elements.clear();
    for (const Top& top : _tops) {
        const KWArchiveArray* list = top.value.array();
        const std::vector<KWArchiveValue> alone{top.value};
        // Lists and channels in bare form count only here, at the root.
        for (const KWArchiveValue& value : list ? list->elements : alone) {
            const std::shared_ptr<KWObject> object = value.object();
            if (auto array = std::dynamic_pointer_cast<KWChannelArray>(object))
                _elements.push_back({"", kwClassName(*object), object, array, nullptr, nullptr});
            else if (auto group = std::dynamic_pointer_cast<KWChannelGroup>(object))
                _elements.push_back({"", kwClassName(*object), object, nullptr, group, nullptr});
            else if (auto channel = std::dynamic_pointer_cast<KWChannel>(object))
                _elements.push_back({"", kwClassName(*object), object, nullptr, nullptr, channel});
        }
    }
    KWArchiveValue everything = [this] {
        std::vector<KWArchiveValue> values;
        for (const Top& top : _tops)
            values.push_back(top.value);
        pushFieldValues(_furtherValues, values);
        return KWArchiveValue::immutableArray(std::move(values));
    }();
    collect(everything);
}

void KWDocument::collect(const KWArchiveValue& root) {
    // A stack of our own: what a file nests must not nest calls.
    std::unordered_set<const void*> visited;
    std::vector<KWArchiveValue> waiting{root};
    while (!waiting.empty()) {
        const KWArchiveValue value = std::move(waiting.back());
        waiting.pop_back();
        const void* identity = value.identity();
        if (!identity || !visited.insert(identity).second)
            continue;
        if (const KWArchiveArray* list = value.array()) {
            waiting.insert(waiting.end(), list->elements.rbegin(), list->elements.rend());
            continue;
        }
        const std::shared_ptr<KWObject> object = value.object();
        if (!object)
            continue;
        addHolder(object);
        if (const KWUnknownObject* contents = object->unknownContents())
            pushFieldValues(contents->fields(), waiting);
    }
}

void KWDocument::addHolder(const std::shared_ptr<KWObject>& object) {
    if (auto element = std::dynamic_pointer_cast<KWChannelElement>(object)) {
        if (auto ours = std::dynamic_pointer_cast<KWElement>(object))
            ours->setUndoManager(_undoManager);
        _elements.push_back({element->name(), kwClassName(*object), object, element->channelArray(),
                             nullptr, nullptr});
        return;
    }
    const KWUnknownObject* contents = object->unknownContents();
    if (!contents)
        return;

    std::vector<std::pair<std::string, std::shared_ptr<KWChannelArray>>> arrays;
    const auto addArray = [&arrays](const std::string& key, const KWArchiveValue& value) {
        if (auto array = std::dynamic_pointer_cast<KWChannelArray>(value.object()))
            arrays.emplace_back(key, std::move(array));
    };
    for (const KWArchiveField& field : contents->fields()) {
        // Without keys each field is what one call wrote: some values of some types.
        if (!contents->isSequential())
            addArray(field.key, field.value);
        for (const KWArchiveField& item : field.items)
            if (contents->isSequential())
                addArray({}, item.value);
    }
    const std::string name = nameOf(*contents);
    for (auto& [key, array] : arrays) {
        // Several arrays of one object are told apart by their keys.
        const std::string suffix =
            arrays.size() > 1 ? (name.empty() || key.empty() ? key : "." + key) : "";
        _elements.push_back(
            {name + suffix, kwClassName(*object), object, std::move(array), nullptr, nullptr});
    }
}

void KWDocument::addElement(const std::shared_ptr<KWElement>& element) {
    insertElement(element, std::numeric_limits<std::size_t>::max());
}

const KWArchiveArray* KWDocument::elementList() const {
    const KWArchiveArray* list = nullptr;
    for (const Top& top : _tops)
        if (top.key == "root" && top.value.array())
            list = top.value.array();
    return list;
}

void KWDocument::setElementList(std::vector<KWArchiveValue> list) {
    for (Top& top : _tops)
        if (top.key == "root" && top.value.array())
            top.value = arrayLike(*top.value.array(), std::move(list));
    findElements();
}

void KWDocument::insertElement(const std::shared_ptr<KWElement>& element, std::size_t index) {
    if (!element)
        throw std::invalid_argument("an element to add must not be null");
    if (!elementList())
        throw std::logic_error("the document's root is not a list");
    std::vector<KWArchiveValue> list = elementList()->elements;
    list.emplace(list.begin() + static_cast<std::ptrdiff_t>(std::min(index, list.size())), element);
    setElementList(std::move(list));
}

std::size_t KWDocument::removeElement(const std::shared_ptr<KWElement>& element) {
    if (!elementList() || !element)
        return KWNotFound;
    std::vector<KWArchiveValue> list = elementList()->elements;
    const auto found =
        std::find_if(list.begin(), list.end(),
                     [&element](const KWArchiveValue& value) { return value.object() == element; });
    if (found == list.end())
        return KWNotFound;
    const auto index = static_cast<std::size_t>(found - list.begin());
    list.erase(found);
    setElementList(std::move(list));
    return index;
}

bool KWDocument::replaceChannel(const Place& place, const std::shared_ptr<KWChannel>& channel) {
    if (!channel || channel == place.channel || channel->owner())
        return false;
    const Element element = _elements.at(place.element); // a copy, as the list is made anew
    if (auto ours = std::dynamic_pointer_cast<KWElement>(element.object))
        if (ours->replaceChannelWith(place.channel, channel))
            return true;
    if (!(place.group       ? place.group->replaceChannelWith(place.channel, channel)
          : element.channel ? replaceRoot(place.channel, channel)
                            : !!element.channelArray &&
                                  element.channelArray->replaceChannelWith(place.channel, channel)))
        return false;
    channel->setName(place.channel->name());
    channel->setChannelColorIndex(place.channel->channelColorIndex());
    channel->setUnitType(place.channel->unitType());
    channel->setOwnerOf(*place.channel);
    place.channel->setOwner(nullptr);
    return true;
}

bool KWDocument::replaceRoot(const std::shared_ptr<KWChannel>& oldChannel,
                             const std::shared_ptr<KWChannel>& newChannel) {
    bool isFound = false;
    const auto replace = [&](KWArchiveValue& value) {
        if (isFound || value.object() != oldChannel)
            return;
        value = newChannel;
        isFound = true;
    };
    for (Top& top : _tops) {
        replace(top.value);
        const KWArchiveArray* const list = top.value.array();
        if (isFound || !list)
            continue;
        std::vector<KWArchiveValue> elements = list->elements;
        std::for_each(elements.begin(), elements.end(), replace);
        if (isFound)
            top.value = arrayLike(*list, std::move(elements));
    }
    findElements();
    return isFound;
}

std::vector<std::string> KWDocument::inlinedKeys() const {
    std::vector<std::string> keys;
    if (_inlined.root() == KWPropertyList::none)
        return keys;
    const auto children = _inlined.children(_inlined.root());
    for (const KWPropertyList::Index key : children.first(children.size() / 2))
        keys.push_back(unescaped(_inlined.stringValue(key)));
    return keys;
}

KWData KWDocument::data(Form form, const KWClassVersions& versions) const {
    try {
        switch (form) {
        case Form::binary:
            return keyedData(KWPropertyList::Format::binary);
        case Form::xml:
            return keyedData(KWPropertyList::Format::xml);
        case Form::sequential:
            break;
        }
        return sequentialData(versions);
    } catch (const KWException& error) {
        cannotBeWritten(error.what());
    } catch (const KWArchiveError& error) {
        // The archivers do not know which document they write.
        if (!error.file().empty())
            throw;
        throw KWArchiveError(error.kind(), _file, error.offset(), error.keyPath(), error.reason());
    }
}

KWData KWDocument::keyedData(KWPropertyList::Format format) const {
    KWKeyedArchiver archiver;
    for (const Top& top : _tops)
        archiver.encodeObjectForKey(top.value, top.key);
    KWPropertyList list = archiver.finishPropertyList();
    if (_inlined.root() != KWPropertyList::none)
        list = withInlinedTops(std::move(list), _inlined);
    return list.data(format);
}

void KWDocument::cannotBeWritten(const std::string& reason) const {
    throw KWArchiveError(KWArchiveError::Kind::unsupported, _file, std::nullopt, {}, reason);
}

void KWDocument::save(const std::filesystem::path& path, Form form) const {
    KWWriteFileAtomically(path, data(form));
}
