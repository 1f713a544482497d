#include <KWFoundation/KWKeyedArchiveFormat.h>
#include <KWFoundation/KWKeyedArchiveReader.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <new>
#include <utility>

using Index = KWKeyedArchiveReader::Index;
using Kind = KWPropertyList::Kind;

namespace {

using Cluster = KWKeyedArchiveReader::Cluster;

const char* kindText(Kind kind) {
    switch (kind) {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return "a boolean";
    case Kind::integer:
        return "an integer";
    case Kind::real:
        return "a real";
    case Kind::date:
        return "a date";
    case Kind::data:
        return "data";
    case Kind::string:
        return "a string";
    case Kind::uid:
        return "a reference";
    case Kind::array:
        return "a list";
    case Kind::set:
        return "a set";
    case Kind::dictionary:
        return "a dictionary";
    }
    return "";
}

} // namespace

KWKeyedArchiveReader::KWKeyedArchiveReader(KWKeyedUnarchiver& unarchiver, KWPropertyList source,
                                           KWUnarchivingOptions wanted)
    : owner(unarchiver), list(std::move(source)), options(wanted),
      cycles(wanted.keepsUnknownObjects) {
    readFrame();
}

std::string KWKeyedArchiveReader::keyPath() const {
    std::string text;
    for (const Step& step : path) {
        if (step.key.empty())
            text += "[" + std::to_string(step.index) + "]";
        else
            text += (text.empty() ? "" : ".") + std::string(step.key);
    }
    return text;
}

void KWKeyedArchiveReader::fail(KWArchiveError::Kind kind, Index node, std::string reason) const {
    throw KWArchiveError(kind, list.file(),
                         node == none ? std::nullopt : std::optional(list.offset(node)), keyPath(),
                         std::move(reason));
}

void KWKeyedArchiveReader::damaged(Index node, std::string reason) const {
    fail(KWArchiveError::Kind::damaged, node, std::move(reason));
}

void KWKeyedArchiveReader::wrongKind(Index node, std::string_view wanted) const {
    damaged(node, "expected " + std::string(wanted) + ", found " + kindText(list.kind(node)));
}

void KWKeyedArchiveReader::spend(std::uint64_t bytes) {
    if (bytes > budget)
        fail(KWArchiveError::Kind::unsupported, none,
             "the archive refers to the same long values too often");
    budget -= bytes;
}

KWKeyedArchiveReader::Level::Level(KWKeyedArchiveReader& owningReader, Index node)
    : reader(owningReader) {
    if (reader.depth == KWArchiveMaximumDepth)
        reader.fail(KWArchiveError::Kind::unsupported, node,
                    "objects are nested more than " + std::to_string(KWArchiveMaximumDepth) +
                        " deep");
    ++reader.depth;
}

Index KWKeyedArchiveReader::find(Index dictionary, std::string_view key) {
    // The objects of a hostile archive may all be one large dictionary.
    constexpr std::uint32_t fewEntries = 16;
    if (list.count(dictionary) > fewEntries)
        spend(8 * std::uint64_t{list.count(dictionary)});
    return list.valueForKey(dictionary, key);
}

void KWKeyedArchiveReader::readFrame() {
    const Index root = list.root();
    if (list.kind(root) != Kind::dictionary)
        damaged(root, "not a keyed archive: it is " + std::string(kindText(list.kind(root))));
    const Index objectsNode = list.valueForKey(root, "$objects");
    const Index topNode = list.valueForKey(root, "$top");
    if (objectsNode == none || list.kind(objectsNode) != Kind::array)
        damaged(root, "not a keyed archive: it has no list \"$objects\"");
    if (topNode == none || list.kind(topNode) != Kind::dictionary)
        damaged(root, "not a keyed archive: it has no dictionary \"$top\"");
    const Index version = list.valueForKey(root, "$version");
    if (version != none &&
        (list.kind(version) != Kind::integer || list.intValue(version) != kwKeyedArchiveVersion))
        fail(KWArchiveError::Kind::unsupported, version,
             "the archive is not of version " + std::to_string(kwKeyedArchiveVersion));
    objects = list.children(objectsNode);
    frame = topNode;
    states.reset(static_cast<Slot*>(std::calloc(objects.size() + 1, sizeof(Slot))));
    if (!states)
        throw std::bad_alloc();
    budget =
        (std::uint64_t{1} << 26) + 256 * std::uint64_t{list.nodeCount()} + 64 * list.contentSize();
}

Index KWKeyedArchiveReader::target(Index reference) const {
    if (list.kind(reference) != Kind::uid)
        wrongKind(reference, "a reference to an object");
    const std::uint64_t slot = list.uidValue(reference);
    if (slot >= objects.size())
        damaged(reference, "a reference to object " + std::to_string(slot) + " of " +
                               std::to_string(objects.size()));
    const Index node = objects[slot];
    const bool isNull =
        slot == 0 || list.kind(node) == Kind::null ||
        (list.kind(node) == Kind::string && list.stringValue(node) == kwKeyedArchiveNull);
    return isNull ? none : node;
}

KWKeyedArchiveReader::Decoded& KWKeyedArchiveReader::stateOf(Slot slot) {
    if (states.get()[slot] == 0) {
        decoded.emplace_back();
        states.get()[slot] = static_cast<Slot>(decoded.size());
    }
    return decoded[states.get()[slot] - 1];
}

KWArchiveValue KWKeyedArchiveReader::valueOf(Index reference) {
    const Index node = target(reference);
    if (node == none)
        return nullptr;
    if (isNumber(node))
        return number(node);
    const auto slot = static_cast<Slot>(list.uidValue(reference));
    if (states.get()[slot] != 0) {
        const Decoded& known = stateOf(slot);
        if (!known.isBusy)
            return known.value;
        if (known.value.isNil())
            damaged(reference, "a value that holds itself");
        return KWArchiveValue::backReference(known.value.object());
    }
    const Level level(*this, reference);
    Decoded& state = stateOf(slot);
    const Index outerFrame = frame;
    const std::size_t outerPath = path.size();
    try {
        state.value = read(node, state);
    } catch (...) {
        // Whoever asks again gets the same error, not an object half read.
        states.get()[slot] = 0;
        path.resize(outerPath);
        frame = outerFrame;
        throw;
    }
    state.isBusy = false;
    if (depth == 1)
        cycles.cut(state.value);
    return state.value;
}

bool KWKeyedArchiveReader::isNumber(Index node) const {
    const Kind kind = list.kind(node);
    return kind == Kind::integer || kind == Kind::real || kind == Kind::boolean;
}

KWNumber KWKeyedArchiveReader::number(Index node) const {
    switch (list.kind(node)) {
    case Kind::boolean:
        return KWNumber(list.boolValue(node));
    case Kind::integer:
        return list.isUnsigned(node) ? KWNumber(list.uidValue(node))
                                     : KWNumber(list.intValue(node));
    case Kind::real:
        return list.isSingle(node) ? KWNumber(list.singleValue(node))
                                   : KWNumber(list.realValue(node));
    default:
        wrongKind(node, "a number");
    }
}

KWArchiveValue KWKeyedArchiveReader::string(Index node, bool isMutable) {
    spend(list.count(node));
    return std::make_shared<const KWArchiveString>(
        KWArchiveString{std::string(list.stringValue(node)), isMutable});
}

KWArchiveValue KWKeyedArchiveReader::data(Index node, bool isMutable) {
    spend(list.count(node));
    const auto bytes = list.dataValue(node);
    return std::make_shared<const KWArchiveData>(
        KWArchiveData{KWData(bytes.begin(), bytes.end()), isMutable});
}

KWArchiveValue KWKeyedArchiveReader::read(Index node, Decoded& state) {
    switch (list.kind(node)) {
    case Kind::string:
        return string(node, false);
    case Kind::data:
        return data(node, false);
    case Kind::dictionary:
        return readInstance(node, state);
    case Kind::date:
        return readDate(node);
    default:
        wrongKind(node, "an object");
    }
}

KWArchiveValue KWKeyedArchiveReader::readDate(Index node) const {
    if (!options.keepsUnknownObjects)
        unknownClass(node, "NSDate");
    auto date = std::make_shared<KWUnknownObject>();
    date->setClassChain({"NSDate", "NSObject"});
    date->setFields({{.key = "NS.time",
                      .form = KWArchiveField::Form::inlined,
                      .value = KWNumber(list.realValue(node)),
                      .items = {}}});
    return date;
}

void KWKeyedArchiveReader::unknownClass(Index node, const std::string& name) const {
    fail(KWArchiveError::Kind::unsupported, node, "the class \"" + name + "\" is not known");
}

const KWKeyedArchiveReader::ClassRecord& KWKeyedArchiveReader::classOf(Index instance) {
    const Index reference = find(instance, "$class");
    if (reference == none)
        damaged(instance, "an object without a class");
    const Index node = target(reference);
    if (node == none || list.kind(node) != Kind::dictionary)
        damaged(reference, "an object's class is no class record");
    const auto [entry, isNew] = classes.try_emplace(node);
    if (isNew)
        entry->second = readClass(node);
    return entry->second;
}

KWKeyedArchiveReader::ClassRecord KWKeyedArchiveReader::readClass(Index node) {
    ClassRecord record;
    const Index name = find(node, "$classname");
    if (name == none || list.kind(name) != Kind::string)
        damaged(node, "a class record without a name");
    record.chain = names(node, "$classes");
    record.hints = names(node, "$classhints");
    // A renamed class may have no chain, or one of another name.
    if (record.chain.empty() || record.chain.front() != list.stringValue(name))
        record.chain.insert(record.chain.begin(), std::string(list.stringValue(name)));
    record.cluster = KWArchiveClusterNamed(record.chain.front());
    record.known = KWClassNamed(record.chain.front());
    for (std::size_t k = 0; !record.known && k < record.hints.size(); ++k)
        record.known = KWClassNamed(record.hints[k]);
    return record;
}

std::vector<std::string> KWKeyedArchiveReader::names(Index record, std::string_view key) {
    std::vector<std::string> texts;
    const Index node = find(record, key);
    if (node == none)
        return texts;
    if (list.kind(node) != Kind::array)
        wrongKind(node, "a list of class names");
    for (const Index name : list.children(node)) {
        if (list.kind(name) != Kind::string)
            wrongKind(name, "a class name");
        texts.emplace_back(list.stringValue(name));
    }
    return texts;
}

KWArchiveValue KWKeyedArchiveReader::readInstance(Index node, Decoded& state) {
    const ClassRecord& record = classOf(node);
    switch (record.cluster) {
    case Cluster::string:
    case Cluster::mutableString:
        return readString(node, record.cluster == Cluster::mutableString);
    case Cluster::data:
    case Cluster::mutableData:
        return readData(node, record.cluster == Cluster::mutableData);
    case Cluster::array:
    case Cluster::mutableArray:
        return readArray(node, record.cluster == Cluster::mutableArray);
    case Cluster::number:
        return readNumber(node);
    case Cluster::object:
        break;
    }
    if (record.known)
        return readKnown(node, record, state);
    if (!options.keepsUnknownObjects)
        unknownClass(node, record.chain.front());
    return readUnknown(node, record, state);
}

Index KWKeyedArchiveReader::content(Index instance, std::string_view key) {
    const Index node = find(instance, key);
    return node != none && list.kind(node) == Kind::uid ? target(node) : node;
}

KWArchiveValue KWKeyedArchiveReader::readString(Index node, bool isMutable) {
    const Index text = content(node, "NS.string");
    if (text != none && list.kind(text) == Kind::string)
        return string(text, isMutable);
    const Index bytes = content(node, "NS.bytes");
    if (bytes == none || list.kind(bytes) != Kind::data)
        damaged(node, "a string without text");
    return string(bytes, isMutable);
}

KWArchiveValue KWKeyedArchiveReader::readData(Index node, bool isMutable) {
    Index bytes = content(node, "NS.data");
    if (bytes == none)
        bytes = content(node, "NS.bytes");
    if (bytes == none || list.kind(bytes) != Kind::data)
        damaged(node, "data without bytes");
    return data(bytes, isMutable);
}

KWArchiveValue KWKeyedArchiveReader::readNumber(Index node) {
    for (const char* key : {"NS.number", "NS.dblval", "NS.intval", "NS.boolval"})
        if (const Index value = content(node, key); value != none)
            return number(value);
    damaged(node, "a number without a value");
}

std::vector<Index> KWKeyedArchiveReader::numberedElements(Index node) {
    constexpr std::string_view prefix = "NS.object.";
    const std::uint32_t count = list.count(node);
    const auto entries = list.children(node);
    std::vector<Index> elements(count, none);
    for (std::uint32_t k = 0; k < count; ++k) {
        const std::string_view key = list.stringValue(entries[k]);
        if (!key.starts_with(prefix))
            continue;
        std::uint32_t number = 0;
        const auto end =
            std::from_chars(key.data() + prefix.size(), key.data() + key.size(), number);
        if (end.ec == std::errc() && end.ptr == key.data() + key.size() && number < count)
            elements[number] = entries[count + k];
    }
    elements.erase(std::ranges::find(elements, none), elements.end());
    return elements;
}

KWArchiveValue KWKeyedArchiveReader::readArray(Index node, bool isMutable) {
    std::vector<KWArchiveValue> elements;
    forEachElement(node, [&](std::span<const Index> references) {
        spend(references.size() * sizeof(KWArchiveValue));
        elements.reserve(references.size());
        for (const Index reference : references) {
            path.push_back({{}, static_cast<std::uint32_t>(elements.size())});
            elements.push_back(valueOf(reference));
            path.pop_back();
        }
    });
    return cycles.array(std::move(elements), isMutable);
}

KWArchiveValue KWKeyedArchiveReader::readKnown(Index node, const ClassRecord& record,
                                               Decoded& state) {
    if (!record.known->factory())
        damaged(node, "the class \"" + record.chain.front() + "\" has no instances");
    const std::shared_ptr<KWObject> object = record.known->factory()();
    state.value = object;
    return initialise(object, node) ? state.value : KWArchiveValue();
}

bool KWKeyedArchiveReader::initialise(const std::shared_ptr<KWObject>& object, Index node) {
    const KWArchiveCycles::Reading reading(cycles, object);
    const Index outer = std::exchange(frame, node);
    const bool isThere = object->initWithCoder(owner);
    frame = outer;
    return isThere;
}

KWArchiveValue KWKeyedArchiveReader::readUnknown(Index node, const ClassRecord& record,
                                                 Decoded& state) {
    const auto contents = std::make_shared<KWUnknownObject>();
    spend((record.chain.size() + record.hints.size()) * sizeof(std::string));
    contents->setClassChain(record.chain);
    contents->setClassHints(record.hints);
    std::shared_ptr<KWObject> object = contents;
    for (const std::string& name : record.chain)
        if (const KWClass* known = KWClassNamed(name); known && known->standIn()) {
            object = known->standIn()(contents);
            break;
        }
    state.value = object;
    cycles.addUnknown(object, contents);

    std::vector<KWArchiveField> fields;
    const std::uint32_t count = list.count(node);
    const auto entries = list.children(node);
    spend(count * sizeof(KWArchiveField));
    fields.reserve(count);
    for (std::uint32_t k = 0; k < count; ++k) {
        const std::string_view key = list.stringValue(entries[k]);
        if (key == "$class")
            continue;
        path.push_back({key, 0});
        fields.push_back(field(std::string(key), entries[count + k]));
        path.pop_back();
    }
    contents->setFields(std::move(fields));
    if (object != contents && !initialise(object, node))
        return nullptr;
    return state.value;
}

KWArchiveField KWKeyedArchiveReader::field(std::string key, Index node) {
    KWArchiveField made{
        .key = std::move(key), .form = KWArchiveField::Form::inlined, .value = {}, .items = {}};
    switch (list.kind(node)) {
    case Kind::uid:
        made.form = KWArchiveField::Form::reference;
        made.value = valueOf(node);
        return made;
    case Kind::string:
        made.value = string(node, false);
        return made;
    case Kind::data:
        made.value = data(node, false);
        return made;
    case Kind::array:
    case Kind::dictionary:
        break;
    case Kind::null:
        return made;
    case Kind::boolean:
    case Kind::integer:
    case Kind::real:
        made.value = number(node);
        return made;
    case Kind::date:
    case Kind::set:
        fail(KWArchiveError::Kind::unsupported, node,
             std::string(kindText(list.kind(node))) + " inside an object of an unknown class");
    }
    const Level level(*this, node);
    const bool isDictionary = list.kind(node) == Kind::dictionary;
    made.form = isDictionary ? KWArchiveField::Form::dictionary : KWArchiveField::Form::list;
    const std::uint32_t count = list.count(node);
    const auto entries = list.children(node);
    spend(std::uint64_t{count} * sizeof(KWArchiveField));
    for (std::uint32_t k = 0; k < count; ++k) {
        path.push_back({{}, k});
        made.items.push_back(
            field(isDictionary ? std::string(list.stringValue(entries[k])) : std::string(),
                  entries[isDictionary ? count + k : k]));
        path.pop_back();
    }
    return made;
}

KWArchiveValue KWKeyedArchiveReader::objectForKey(std::string_view key, bool isHeld) {
    return at(key, [&]() -> KWArchiveValue {
        const Index node = entry(key);
        if (node == none)
            return nullptr;
        if (isNumber(node))
            return number(node);
        KWArchiveValue value = valueOf(node);
        if (const auto* array = value.array())
            spend(array->elements.size() * sizeof(KWArchiveValue));
        else if (const auto* string = value.string())
            spend(string->text.size());
        if (isHeld)
            cycles.hold(value);
        return value.isBackReference() ? KWArchiveValue(value.object()) : value;
    });
}

Index KWKeyedArchiveReader::entry(std::string_view key) {
    return key.starts_with('$') ? find(frame, "$" + std::string(key)) : find(frame, key);
}

Index KWKeyedArchiveReader::numberEntry(std::string_view key) {
    Index node = entry(key);
    if (node != none && list.kind(node) == Kind::uid)
        node = target(node);
    return node;
}

std::int64_t KWKeyedArchiveReader::integer(std::string_view key, std::int64_t lowest,
                                           std::int64_t highest) {
    return at(key, [&]() -> std::int64_t {
        const Index node = numberEntry(key);
        if (node == none)
            return 0;
        const KWNumber value = number(node);
        const bool fits = value.isReal()
                              ? std::trunc(value.doubleValue()) >= static_cast<double>(lowest) &&
                                    std::trunc(value.doubleValue()) < -static_cast<double>(lowest)
                              : value.type() != KWNumber::Type::uint64 &&
                                    value.int64Value() >= lowest && value.int64Value() <= highest;
        if (!fits)
            damaged(node, value.stringValue() + " is out of range");
        return value.int64Value();
    });
}

Index KWKeyedArchiveReader::element(Index reference, std::size_t index) {
    path.back().index = static_cast<std::uint32_t>(index);
    const Index node = target(reference);
    if (node == none)
        damaged(reference, "a list element is nil");
    return node;
}

float KWKeyedArchiveReader::floatElement(Index node) {
    if (list.kind(node) == Kind::dictionary && classOf(node).cluster == Cluster::number)
        return readNumber(node).number()->floatValue();
    return number(node).floatValue();
}

float KWKeyedArchiveReader::realElement(Index node, const KWRealClass& aClass) {
    if (list.kind(node) != Kind::dictionary)
        wrongKind(node, aClass.aClass.name());
    const ClassRecord& record = classOf(node);
    if (!record.known || !record.known->isSubclassOfClass(aClass.aClass))
        damaged(node, "expected " + std::string(aClass.aClass.name()) + ", found " +
                          record.chain.front());
    Index value = find(node, aClass.key);
    if (value != none && list.kind(value) == Kind::uid)
        value = target(value);
    return value == none ? 0 : number(value).floatValue();
}
