#include <KWFoundation/KWTypeEncoding.h>
#include <KWFoundation/KWTypedStream.h>
#include <KWFoundation/KWTypedStreamReader.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <utility>

using namespace KWTypedStream;

namespace {

/// Whether a caller may ask for values of these types, and for how many.
bool describesValues(std::string_view types, std::size_t count) {
    for (; count > 0; --count) {
        const std::string_view type = KWFirstType(types);
        if (type.empty() || (type != "@" && type != "*" && !KWLayoutOfType(type).isPlain))
            return false;
        types.remove_prefix(type.size());
    }
    return types.empty();
}

} // namespace

KWTypedStreamReader::KWTypedStreamReader(KWCoder& coder, std::span<const std::byte> bytes,
                                         KWUnarchivingOptions options, std::string file)
    : _coder(coder), _bytes(bytes), _options(options), _file(std::move(file)),
      _cycles(options.keepsUnknownObjects), _budget((std::uint64_t{1} << 26) + 64 * bytes.size()) {
    readHeader();
}

/// Types as messages show them; an archive may have made them as long as itself.
std::string KWTypedStreamReader::shownTypes(std::string_view types) {
    constexpr std::size_t longest = 40;
    return "\"" + std::string(types.substr(0, longest)) + (types.size() > longest ? "...\"" : "\"");
}

std::int64_t KWTypedStreamReader::versionForClassName(std::string_view name) const {
    const auto known = _versions.find(std::string(name));
    return known == _versions.end() ? std::int64_t{KWNotFound} : known->second;
}

// --- Errors.

std::string KWTypedStreamReader::path() const {
    constexpr std::size_t shownAtEachEnd = 8;
    std::string text;
    for (std::size_t k = 0; k < _steps.size(); ++k) {
        if (_steps.size() > 2 * shownAtEachEnd && k == shownAtEachEnd) {
            text += " ... ";
            k = _steps.size() - shownAtEachEnd;
        }
        text += (text.empty() ? "" : ".") + _classes[_steps[k].aClass].name;
        if (_steps[k].index != none)
            text += "[" + std::to_string(_steps[k].index) + "]";
    }
    return text;
}

void KWTypedStreamReader::fail(KWArchiveError::Kind kind, std::string reason) const {
    throw KWArchiveError(kind, _file, _place, path(), std::move(reason));
}

void KWTypedStreamReader::damaged(std::string reason) const {
    fail(KWArchiveError::Kind::damaged, std::move(reason));
}

/// There is room for one more object, or one more struct or array of an unknown one, inside
/// another.
void KWTypedStreamReader::requireDepth() const {
    if (_steps.size() + _innerDepth >= KWArchiveMaximumDepth)
        fail(KWArchiveError::Kind::unsupported,
             "objects are nested more than " + std::to_string(KWArchiveMaximumDepth) + " deep");
}

void KWTypedStreamReader::spend(std::uint64_t bytes) {
    if (bytes > _budget)
        fail(KWArchiveError::Kind::unsupported,
             "the archive refers to the same long values too often");
    _budget -= bytes;
}

// --- Bytes, numbers, strings.

void KWTypedStreamReader::require(std::size_t count) const {
    if (count > remaining())
        damaged("the archive ends in the middle of a value");
}

std::int8_t KWTypedStreamReader::peekHead() const {
    require(1);
    return static_cast<std::int8_t>(_bytes[_place]);
}

void KWTypedStreamReader::readHeader() {
    const auto isHere = [&](std::string_view text) {
        return remaining() >= text.size() &&
               std::memcmp(_bytes.data() + _place, text.data(), text.size()) == 0;
    };
    if (_bytes.empty())
        damaged("the file is empty");
    if (isHere("\x03\x0b"))
        fail(KWArchiveError::Kind::unsupported, "a sequential archive of an older kind");
    if (isHere("\x04\x0btypedstream"))
        _isBigEndian = true;
    else if (!isHere("\x04\x0bstreamtyped"))
        damaged("not a sequential archive: it does not start as one");
    _place = 13;
    readInteger(); // the version of the system that wrote it
}

std::int64_t KWTypedStreamReader::readInteger() {
    return integerAfter(take<std::int8_t>());
}

std::int64_t KWTypedStreamReader::integerAfter(std::int8_t head) {
    if (head >= firstNumber)
        return head;
    switch (head) {
    case shortHead:
        return take<std::int16_t>();
    case longHead:
        return take<std::int32_t>();
    case wideHead:
        return take<std::int64_t>();
    default:
        --_place;
        damaged("a number was expected");
    }
}

/// A float keeps its very bits in `exact`.
double KWTypedStreamReader::readReal(bool isSingle, float* exact) {
    const auto head = take<std::int8_t>();
    if (head != realHead) {
        const auto whole = static_cast<double>(integerAfter(head));
        if (exact)
            *exact = static_cast<float>(whole);
        return whole;
    }
    if (!isSingle)
        return take<double>();
    const auto bits = std::bit_cast<float>(take<std::uint32_t>());
    if (exact)
        *exact = bits;
    return static_cast<double>(bits);
}

/// Nil reads as empty.
std::string_view KWTypedStreamReader::readPlainString() {
    const auto head = take<std::int8_t>();
    const std::int64_t count = head == nilHead ? 0 : integerAfter(head);
    if (count < 0 || static_cast<std::uint64_t>(count) > remaining())
        damaged("a string claims " + std::to_string(count) + " bytes, more than there are");
    const auto* first = reinterpret_cast<const char*>(_bytes.data() + _place);
    _place += static_cast<std::size_t>(count);
    return {first, static_cast<std::size_t>(count)};
}

/// Null for a nil string. The answer holds until the next string is read.
const std::string_view* KWTypedStreamReader::readSharedString() {
    const auto head = take<std::int8_t>();
    if (head == nilHead)
        return nullptr;
    if (head == newHead) {
        _strings.push_back(readPlainString());
        return &_strings.back();
    }
    const std::int64_t number = integerAfter(head) - firstNumber;
    if (number < 0 || static_cast<std::uint64_t>(number) >= _strings.size())
        damaged("a reference to string " + std::to_string(number) + " of " +
                std::to_string(_strings.size()));
    return &_strings[static_cast<std::size_t>(number)];
}

std::string_view KWTypedStreamReader::readType() {
    const std::string_view* type = readSharedString();
    if (!type)
        damaged("types were expected");
    return *type;
}

void KWTypedStreamReader::expectType(std::string_view wanted) {
    const std::size_t start = _place;
    const std::string_view found = readType();
    if (found == wanted)
        return;
    _place = start;
    damaged("expected a value of type " + shownTypes(wanted) + ", found " + shownTypes(found));
}

/// The label that a number names, which must have been made.
std::uint32_t KWTypedStreamReader::labelAfter(std::int8_t head) {
    const std::int64_t number = integerAfter(head) - firstNumber;
    if (number < 0 || static_cast<std::uint64_t>(number) >= _labels.size())
        damaged("a reference to label " + std::to_string(number) + " of " +
                std::to_string(_labels.size()));
    return static_cast<std::uint32_t>(number);
}

const std::string_view* KWTypedStreamReader::readCString() {
    const auto head = take<std::int8_t>();
    if (head == nilHead)
        return nullptr;
    if (head == newHead) {
        const std::size_t label = _labels.size();
        _labels.push_back({Label::Kind::cString, 0, none, 0});
        const std::string_view* text = readSharedString();
        if (!text)
            damaged("a new string is nil");
        _labels[label].index = static_cast<std::uint32_t>(text - _strings.data());
        return text;
    }
    const Label& label = _labels[labelAfter(head)];
    if (label.kind != Label::Kind::cString || label.index == none)
        damaged("a reference to something that is no string");
    return &_strings[label.index];
}

// --- Values by type.

KWNumber KWTypedStreamReader::readNumber(char code) {
    using Type = KWNumber::Type;
    switch (code) {
    case 'c':
        return {Type::int8, take<std::int8_t>()};
    case 'C':
        return {Type::uint8, take<std::uint8_t>()};
    case 'B':
        return KWNumber(take<std::uint8_t>() != 0);
    case 's':
        return {Type::int16, static_cast<std::int16_t>(readInteger())};
    case 'S':
        return {Type::uint16, static_cast<std::uint16_t>(readInteger())};
    case 'i':
    case 'l':
        return {Type::int32, static_cast<std::int32_t>(readInteger())};
    case 'I':
    case 'L':
        return {Type::uint32, static_cast<std::uint32_t>(readInteger())};
    case 'q':
        return {Type::int64, readInteger()};
    case 'Q':
        return {Type::uint64, readInteger()};
    case 'f': {
        float exact = 0;
        readReal(true, &exact);
        return KWNumber(exact);
    }
    default:
        return KWNumber(readReal(false, nullptr));
    }
}

/// Reads a number that was written as one type into memory of another that agrees with it.
void KWTypedStreamReader::readNumber(char code, void* address) {
    const auto put = [&](auto value) { std::memcpy(address, &value, sizeof value); };
    const KWNumber number = readNumber(code);
    switch (code) {
    case 'f':
        return put(number.floatValue());
    case 'd':
        return put(number.doubleValue());
    default: {
        const std::int64_t value = number.int64Value(); // its low bytes come first in memory
        std::memcpy(address, &value, KWNumberSize(code));
    }
    }
}

void KWTypedStreamReader::readOne(std::string_view type, void* address) {
    auto* bytes = static_cast<std::byte*>(address);
    const char code = type[0];
    if (code == '[') {
        std::size_t count = 0;
        std::string_view element;
        KWArrayType(type, count, element);
        if (element == "c" || element == "C") {
            require(count);
            std::memcpy(address, _bytes.data() + _place, count);
            _place += count;
            return;
        }
        const std::size_t size = KWLayoutOfType(element).size;
        for (std::size_t k = 0; k < count; ++k)
            readOne(element, bytes + k * size);
    } else if (code == '{') {
        KWForEachStructField(type, [&](std::string_view field, const KWTypeLayout&,
                                       std::size_t offset) { readOne(field, bytes + offset); });
    } else if (code == '@') {
        *static_cast<KWArchiveValue*>(address) = takeObject(true);
    } else if (code == '*') {
        const std::string_view* text = readCString();
        auto& string = *static_cast<std::optional<std::string>*>(address);
        string = text ? std::optional<std::string>(*text) : std::nullopt;
    } else {
        readNumber(code, address);
    }
}

void KWTypedStreamReader::readValues(std::string_view types,
                                     std::initializer_list<void*> addresses) {
    const bool isNumber = types.size() == 1 && addresses.size() == 1 &&
                          (KWIsRealType(types[0]) || KWIsIntegerType(types[0]));
    if (!isNumber && !describesValues(types, addresses.size()))
        throw std::invalid_argument(shownTypes(types) + " does not describe the values asked for");
    const std::size_t start = _place;
    const std::string_view found = readType();
    if (!KWTypesAgree(found, types)) {
        _place = start;
        damaged("expected a value of type " + shownTypes(types) + ", found " + shownTypes(found));
    }
    if (found != types) {
        // One number, written in another width.
        const KWNumber number = readNumber(found[0]);
        if (KWIsRealType(types[0])) {
            const float narrow = number.floatValue();
            const double wide = number.doubleValue();
            std::memcpy(*addresses.begin(),
                        types[0] == 'f' ? static_cast<const void*>(&narrow) : &wide,
                        KWNumberSize(types[0]));
        } else {
            const std::int64_t value = number.int64Value();
            std::memcpy(*addresses.begin(), &value, KWNumberSize(types[0]));
        }
        return;
    }
    std::string_view rest = types;
    for (void* address : addresses) {
        const std::string_view type = KWFirstType(rest);
        readOne(type, address);
        rest.remove_prefix(type.size());
    }
}

void KWTypedStreamReader::readArrayValue(std::string_view type, std::size_t count, void* address) {
    const std::string array = "[" + std::to_string(count) + std::string(type) + "]";
    if (KWFirstType(array) != array || !KWLayoutOfType(type).isPlain)
        throw std::invalid_argument(shownTypes(array) + " does not describe the values asked for");
    expectType(array);
    readOne(array, address);
}

KWData KWTypedStreamReader::readBytesValue() {
    expectType("+");
    const std::string_view text = readPlainString();
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

KWData KWTypedStreamReader::readDataContents() {
    std::int32_t count = 0;
    readValues("i", {&count});
    if (count < 0 || static_cast<std::size_t>(count) > remaining())
        damaged("data claims " + std::to_string(count) + " bytes, more than there are");
    if (count == 0 && peekHead() == endHead)
        return {};
    expectType("[" + std::to_string(count) + "c]");
    require(static_cast<std::size_t>(count));
    const auto bytes = _bytes.subspan(_place, static_cast<std::size_t>(count));
    _place += bytes.size();
    return {bytes.begin(), bytes.end()};
}

/// What a class gets that asks for an object; `isHeld` tells whether it is one to keep alive.
KWArchiveValue KWTypedStreamReader::takeObject(bool isHeld) {
    KWArchiveValue value = readObject();
    if (isHeld)
        _cycles.hold(value);
    return value.isBackReference() ? KWArchiveValue(value.object()) : value;
}

KWArchiveValue KWTypedStreamReader::readObjectValue(bool isHeld) {
    expectType("@");
    KWArchiveValue value = takeObject(isHeld);
    if (const auto* array = value.array())
        spend(array->elements.size() * sizeof(KWArchiveValue));
    else if (const auto* string = value.string())
        spend(string->text.size());
    return value;
}

// --- Classes and objects.

/// A place in _classes; none for no class.
std::uint32_t KWTypedStreamReader::readClass() {
    std::uint32_t first = none;
    std::uint32_t previous = none;
    for (;;) {
        const auto head = take<std::int8_t>();
        std::uint32_t aClass = none;
        if (head == newHead) {
            _labels.push_back(
                {Label::Kind::aClass, 0, static_cast<std::uint32_t>(_classes.size()), 0});
            const std::string_view* name = readSharedString();
            if (!name || name->empty())
                damaged("a class without a name");
            Class made{.name = std::string(*name),
                       .version = static_cast<std::int32_t>(readInteger())};
            if (!_options.knowsNoClasses) {
                made.cluster = KWArchiveClusterNamed(made.name);
                made.known = KWClassNamed(made.name);
            }
            const auto [version, isNew] = _versions.try_emplace(made.name, made.version);
            if (!isNew && version->second != made.version)
                damaged("the class \"" + made.name + "\" has two versions, " +
                        std::to_string(version->second) + " and " + std::to_string(made.version));
            aClass = static_cast<std::uint32_t>(_classes.size());
            _classes.push_back(std::move(made));
        } else if (head != nilHead) {
            const Label& label = _labels[labelAfter(head)];
            if (label.kind != Label::Kind::aClass)
                damaged("a reference to something that is no class");
            aClass = label.index;
            if (first != none && aClass >= first)
                damaged("the class \"" + _classes[aClass].name + "\" is its own superclass");
        }
        if (previous == none)
            first = aClass;
        else
            _classes[previous].superclass = aClass;
        if (head != newHead)
            return first;
        previous = aClass;
    }
}

/// Labels an object that begins; answers its place in _objects.
std::uint32_t KWTypedStreamReader::newObject() {
    const auto place = static_cast<std::uint32_t>(_objects.size());
    _labels.push_back({Label::Kind::object, 0, place, 0});
    _objects.emplace_back();
    return place;
}

/// An object may hold more than its class reads, as a newer version does: the rest is passed over.
void KWTypedStreamReader::endObject() {
    while (peekHead() != endHead)
        readAnything();
    ++_place;
}

/// A back reference for an object that is still being read.
KWArchiveValue KWTypedStreamReader::readObject() {
    const auto head = take<std::int8_t>();
    if (head == nilHead)
        return nullptr;
    if (head != newHead)
        return valueOfLabel(labelAfter(head));
    Object& object = _objects[newObject()];
    const std::uint32_t aClass = readClass();
    if (aClass == none)
        damaged("an object without a class");
    const Level level(*this, aClass);
    object.value = readContents(aClass, object);
    object.isBusy = false;
    endObject();
    if (_steps.size() == 1)
        _cycles.cut(object.value);
    return object.value;
}

KWArchiveValue KWTypedStreamReader::valueOfLabel(std::uint32_t index) {
    Label& label = _labels[index];
    switch (label.kind) {
    case Label::Kind::object: {
        if (label.index == none)
            damaged("a value that holds itself");
        const Object& object = _objects[label.index];
        if (!object.isBusy)
            return object.value;
        if (object.value.isNil())
            damaged("a value that holds itself");
        return KWArchiveValue::backReference(object.value.object());
    }
    case Label::Kind::aClass:
    case Label::Kind::cString:
        damaged("a reference to something that is no object");
    case Label::Kind::number:
        return numberOf(label);
    default:
        break;
    }
    // An element of a list, or a list, that somebody else refers to: from now on it is an object.
    KWArchiveValue value;
    if (label.kind == Label::Kind::real) {
        value = _realClasses[label.index].box(
            std::bit_cast<float>(static_cast<std::uint32_t>(label.bits)));
    } else if (label.kind == Label::Kind::data) {
        spend(label.index);
        const auto bytes = _bytes.subspan(label.bits, label.index);
        value = KWData(bytes.begin(), bytes.end());
    } else if (label.kind == Label::Kind::record) {
        damaged("a reference to a record, where none can be");
    } else {
        value = listValue(label);
    }
    _objects.push_back({false, value});
    _labels[index] = {Label::Kind::object, 0, static_cast<std::uint32_t>(_objects.size() - 1), 0};
    return value;
}

KWArchiveValue KWTypedStreamReader::listValue(const Label& label) {
    const std::vector<std::uint32_t> elements = _lists[label.index];
    spend(elements.size() * sizeof(KWArchiveValue));
    std::vector<KWArchiveValue> values;
    values.reserve(elements.size());
    for (const std::uint32_t element : elements)
        values.push_back(valueOfLabel(element));
    return _cycles.array(std::move(values), label.code != 0);
}

KWNumber KWTypedStreamReader::numberOf(const Label& label) {
    if (label.code == 'f')
        return KWNumber(std::bit_cast<float>(static_cast<std::uint32_t>(label.bits)));
    if (label.code == 'd')
        return KWNumber(std::bit_cast<double>(label.bits));
    return {static_cast<KWNumber::Type>(label.code), static_cast<std::int64_t>(label.bits)};
}

KWArchiveValue KWTypedStreamReader::readContents(std::uint32_t aClass, Object& object) {
    const Cluster cluster = _classes[aClass].cluster;
    switch (cluster) {
    case Cluster::string:
    case Cluster::mutableString:
        return readString(cluster == Cluster::mutableString);
    case Cluster::data:
    case Cluster::mutableData:
        return std::make_shared<const KWArchiveData>(
            KWArchiveData{readDataContents(), cluster == Cluster::mutableData});
    case Cluster::array:
    case Cluster::mutableArray:
        return readArray(cluster == Cluster::mutableArray);
    case Cluster::number:
        return readNumberContents();
    case Cluster::object:
        break;
    }
    if (_classes[aClass].known)
        return readKnown(_classes[aClass], object);
    if (!_options.keepsUnknownObjects && !_options.knowsNoClasses)
        fail(KWArchiveError::Kind::unsupported,
             "the class \"" + _classes[aClass].name + "\" is not known");
    return readUnknown(aClass, object);
}

KWArchiveValue KWTypedStreamReader::readString(bool isMutable) {
    expectType("+");
    return std::make_shared<const KWArchiveString>(
        KWArchiveString{std::string(readPlainString()), isMutable});
}

KWArchiveValue KWTypedStreamReader::readArray(bool isMutable) {
    std::int32_t count = 0;
    readValues("i", {&count});
    if (count < 0 || static_cast<std::size_t>(count) > remaining())
        damaged("an array claims " + std::to_string(count) +
                " elements, more than there are bytes");
    std::vector<KWArchiveValue> elements;
    for (std::int32_t k = 0; k < count; ++k) {
        _steps.back().index = static_cast<std::uint32_t>(k);
        expectType("@");
        elements.push_back(readObject());
    }
    _steps.back().index = none;
    return _cycles.array(std::move(elements), isMutable);
}

/// A C string that names the type, then that type and a value of it.
KWNumber KWTypedStreamReader::readNumberContents(std::size_t* floatPlace) {
    expectType("*");
    const std::string_view* text = readCString();
    const char code = text && text->size() == 1 ? text->front() : '\0';
    if (!KWIsIntegerType(code) && !KWIsRealType(code))
        damaged(shownTypes(text ? *text : "") + " is no type of a number");
    expectType({&code, 1});
    if (floatPlace)
        *floatPlace = code == 'f' ? _place : 0;
    return readNumber(code);
}

KWArchiveValue KWTypedStreamReader::readKnown(const Class& aClass, Object& object) {
    if (!aClass.known->factory())
        damaged("the class \"" + aClass.name + "\" has no instances");
    const std::shared_ptr<KWObject> made = aClass.known->factory()();
    object.value = made;
    const KWArchiveCycles::Reading reading(_cycles, made);
    return made->initWithCoder(_coder) ? KWArchiveValue(made) : KWArchiveValue();
}
