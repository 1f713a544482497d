#include <KWFoundation/KWTypeEncoding.h>
#include <KWFoundation/KWTypedStream.h>
#include <KWFoundation/KWTypedStreamWriter.h>

#include <bit>
#include <cstring>
#include <optional>
#include <stdexcept>

using namespace KWTypedStream;

namespace {

static_assert(std::endian::native == std::endian::little, "streams are written as memory is");

[[noreturn]] void unsupported(std::string reason) {
    throw KWArchiveError(KWArchiveError::Kind::unsupported, {}, std::nullopt, {},
                         std::move(reason));
}

/// What a value can be written as without its bytes, as a whole number; 0 when it is none.
std::int32_t wholeNumber(double value) {
    if (!(value < 2147483646.0) || value < -2147483646.0)
        return 0;
    const auto rounded = static_cast<float>(value);
    return rounded < 2147483648.0F ? static_cast<std::int32_t>(rounded) : 0;
}

} // namespace

KWTypedStreamWriter::KWTypedStreamWriter(KWCoder& coder) : _coder(coder), _nextLabel(firstNumber) {
    put(streamerVersion);
    writePlainString("streamtyped");
    writeInteger(systemVersion);
}

void KWTypedStreamWriter::writeRoot(const KWArchiveValue& root) {
    if (_isInRoot)
        throw std::logic_error("a root object is being archived already");
    _isInRoot = true;
    const KWData before = _bytes;
    _isFirstWalk = true;
    writeObjectValue(root);
    _isFirstWalk = false;
    _bytes = before;
    writeObjectValue(root);
    _isInRoot = false;
    _reached.clear();
}

// --- Numbers and strings.

void KWTypedStreamWriter::putBytes(const void* bytes, std::size_t count) {
    const auto* first = static_cast<const std::byte*>(bytes);
    _bytes.insert(_bytes.end(), first, first + count);
}

void KWTypedStreamWriter::writeInteger(std::int64_t value) {
    if (value >= firstNumber && value <= 127) {
        putHead(static_cast<std::int8_t>(value));
    } else if (value >= -32767 && value <= 32767) {
        const auto narrow = static_cast<std::int16_t>(value);
        putHead(shortHead);
        putBytes(&narrow, sizeof narrow);
    } else if (value >= INT32_MIN && value <= INT32_MAX) {
        const auto narrow = static_cast<std::int32_t>(value);
        putHead(longHead);
        putBytes(&narrow, sizeof narrow);
    } else {
        putHead(wideHead);
        putBytes(&value, sizeof value);
    }
}

void KWTypedStreamWriter::writeFloat(float value) {
    const std::int32_t whole = wholeNumber(static_cast<double>(value));
    if (static_cast<float>(whole) == value)
        return writeInteger(whole);
    putHead(realHead);
    putBytes(&value, sizeof value);
}

void KWTypedStreamWriter::writeDouble(double value) {
    const std::int32_t whole = wholeNumber(value);
    if (static_cast<double>(whole) == value)
        return writeInteger(whole);
    putHead(realHead);
    putBytes(&value, sizeof value);
}

void KWTypedStreamWriter::writePlainString(std::string_view text) {
    if (text.size() > INT32_MAX)
        unsupported("a string is too long for a sequential archive");
    writeInteger(static_cast<std::int64_t>(text.size()));
    putBytes(text.data(), text.size());
}

void KWTypedStreamWriter::writeSharedString(std::string_view text) {
    const auto number = firstNumber + static_cast<std::int64_t>(_strings.size());
    const auto [known, isNew] = _strings.try_emplace(std::string(text), number);
    if (!isNew)
        return writeInteger(known->second);
    putHead(newHead);
    writePlainString(text);
}

void KWTypedStreamWriter::writeCString(const std::string* text) {
    if (!text)
        return putHead(nilHead);
    const auto [known, isNew] = _cStringLabels.try_emplace(*text, _nextLabel);
    if (!isNew)
        return writeInteger(known->second);
    newLabel();
    putHead(newHead);
    writeSharedString(*text);
}

void KWTypedStreamWriter::writeNumber(char code, const void* address) {
    const auto read = [&]<class T>(T value) {
        std::memcpy(&value, address, sizeof value);
        return value;
    };
    switch (code) {
    case 'c':
    case 'C':
    case 'B':
        return put(read(std::uint8_t{}));
    case 's':
        return writeInteger(read(std::int16_t{}));
    case 'S': // unsigned numbers go by the signed rule
        return writeInteger(static_cast<std::int16_t>(read(std::uint16_t{})));
    case 'i':
    case 'l':
        return writeInteger(read(std::int32_t{}));
    case 'I':
    case 'L':
        return writeInteger(static_cast<std::int32_t>(read(std::uint32_t{})));
    case 'q':
        return writeInteger(read(std::int64_t{}));
    case 'Q':
        return writeInteger(static_cast<std::int64_t>(read(std::uint64_t{})));
    case 'f':
        return writeFloat(read(float{}));
    default:
        return writeDouble(read(double{}));
    }
}

void KWTypedStreamWriter::writeNumber(char code, const KWNumber& number) {
    if (code == 'f')
        return writeFloat(number.floatValue());
    if (code == 'd')
        return writeDouble(number.doubleValue());
    const std::int64_t value = number.int64Value(); // its low bytes come first in memory
    writeNumber(code, &value);
}

/// Writes the value of one type at an address; answers what lies behind it in memory.
const void* KWTypedStreamWriter::writeOne(std::string_view type, const void* address) {
    const auto* bytes = static_cast<const std::byte*>(address);
    const char code = type[0];
    if (code == '[') {
        std::size_t count = 0;
        std::string_view element;
        KWArrayType(type, count, element);
        if (element == "c" || element == "C") {
            putBytes(bytes, count);
            return bytes + count;
        }
        for (std::size_t k = 0; k < count; ++k)
            address = writeOne(element, address);
        return address;
    }
    if (code == '{') {
        KWForEachStructField(type, [&](std::string_view field, const KWTypeLayout&,
                                       std::size_t offset) { writeOne(field, bytes + offset); });
        return bytes + KWLayoutOfType(type).size;
    }
    if (code == '@') {
        const auto* value = static_cast<const KWArchiveValue*>(address);
        writeObject(*value);
        return value + 1;
    }
    if (code == '*') {
        const auto* text = static_cast<const std::optional<std::string>*>(address);
        writeCString(*text ? &**text : nullptr);
        return text + 1;
    }
    writeNumber(code, address);
    return bytes + KWNumberSize(code);
}

// --- Values with their types.

void KWTypedStreamWriter::writeValues(std::string_view types,
                                      std::initializer_list<const void*> addresses) {
    if (!_isFirstWalk)
        writeSharedString(types);
    std::string_view rest = types;
    for (const void* address : addresses) {
        const std::string_view type = KWFirstType(rest);
        const bool isValue =
            !type.empty() && (type == "@" || type == "*" || KWLayoutOfType(type).isPlain);
        if (!isValue)
            throw std::invalid_argument("\"" + std::string(types) +
                                        "\" does not describe values that can be archived");
        if (!_isFirstWalk)
            writeOne(type, address);
        else if (type == "@")
            writeObject(*static_cast<const KWArchiveValue*>(address));
        rest.remove_prefix(type.size());
    }
    if (!rest.empty())
        throw std::invalid_argument("\"" + std::string(types) +
                                    "\" describes more values than given");
}

void KWTypedStreamWriter::writeArrayValue(std::string_view type, std::size_t count,
                                          const void* address) {
    const std::string array = "[" + std::to_string(count) + std::string(type) + "]";
    if (KWFirstType(array) != array || !KWLayoutOfType(type).isPlain)
        throw std::invalid_argument("\"" + array +
                                    "\" does not describe values that can be archived");
    if (_isFirstWalk)
        return;
    writeSharedString(array);
    writeOne(array, address);
}

void KWTypedStreamWriter::writeBytesValue(std::span<const std::byte> bytes) {
    if (_isFirstWalk)
        return;
    writeSharedString("+");
    writePlainString({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void KWTypedStreamWriter::writeDataContents(std::span<const std::byte> bytes) {
    const auto count = static_cast<std::int32_t>(bytes.size());
    if (bytes.size() > INT32_MAX)
        unsupported("data is too long for a sequential archive");
    writeValues("i", {&count});
    writeArrayValue("c", bytes.size(), bytes.data());
}

void KWTypedStreamWriter::writeObjectValue(const KWArchiveValue& value) {
    if (!_isFirstWalk)
        writeSharedString("@");
    writeObject(value);
}

void KWTypedStreamWriter::writeConditionalValue(const std::shared_ptr<KWObject>& object) {
    if (_isFirstWalk)
        return;
    const bool isReached = object && _reached.contains(object.get());
    writeObjectValue(isReached ? KWArchiveValue(object) : KWArchiveValue());
}

// --- Objects.

/// There is room for one more object inside another.
void KWTypedStreamWriter::requireDepth() const {
    if (_depth >= KWArchiveMaximumDepth)
        unsupported("objects are nested more than " + std::to_string(KWArchiveMaximumDepth) +
                    " deep");
}

KWTypedStreamWriter::Chain KWTypedStreamWriter::chainOf(const KWClass& aClass) const {
    Chain chain;
    for (const KWClass* each = &aClass; each; each = each->superclass()) {
        const auto older = _versions.find(std::string(each->name()));
        chain.emplace_back(each->name(),
                           older == _versions.end() ? each->version() : older->second);
    }
    return chain;
}

void KWTypedStreamWriter::writeClass(const Chain& chain, std::size_t from) {
    for (std::size_t k = from; k < chain.size(); ++k) {
        const auto& [name, version] = chain[k];
        const auto [known, isNew] = _classes.try_emplace(name, WrittenClass{_nextLabel, version});
        if (known->second.version != version)
            unsupported("the archive would have the class \"" + name + "\" in two versions, " +
                        std::to_string(known->second.version) + " and " + std::to_string(version));
        if (!isNew)
            return writeInteger(known->second.label);
        newLabel();
        putHead(newHead);
        writeSharedString(name);
        writeInteger(version);
    }
    putHead(nilHead);
}

void KWTypedStreamWriter::beginObject(const Chain& chain) {
    putHead(newHead);
    newLabel();
    writeClass(chain);
}

void KWTypedStreamWriter::endObject() {
    putHead(endHead);
}

void KWTypedStreamWriter::writeObject(const KWArchiveValue& value) {
    if (value.isNil()) {
        if (!_isFirstWalk)
            putHead(nilHead);
        return;
    }
    const void* identity = value.identity();
    if (_isFirstWalk) {
        // Numbers hold no conditional objects.
        if (!identity || !_reached.insert(identity).second)
            return;
    } else if (!identity) {
        return writeNumberObject(*value.number());
    } else {
        const auto [known, isNew] = _objectLabels.try_emplace(identity, _nextLabel);
        if (!isNew)
            return writeInteger(known->second);
    }
    // Also what was made only to be written: its address must not come again.
    _alive.push_back(value);
    requireDepth();
    ++_depth;
    writeContents(value);
    --_depth;
}

void KWTypedStreamWriter::writeContents(const KWArchiveValue& value) {
    static const Chain string{{"NSString", 1}, {"NSObject", 0}};
    static const Chain mutableString{{"NSMutableString", 1}, {"NSString", 1}, {"NSObject", 0}};
    static const Chain data{{"NSData", 0}, {"NSObject", 0}};
    static const Chain mutableData{{"NSMutableData", 0}, {"NSData", 0}, {"NSObject", 0}};
    static const Chain array{{"NSArray", 0}, {"NSObject", 0}};
    static const Chain mutableArray{{"NSMutableArray", 0}, {"NSArray", 0}, {"NSObject", 0}};

    const auto object = value.object();
    const KWUnknownObject* unknown = object ? object->unknownContents() : nullptr;
    if (!_isFirstWalk) {
        if (const auto* held = value.string())
            beginObject(held->isMutable ? mutableString : string);
        else if (const auto* bytes = value.data())
            beginObject(bytes->isMutable ? mutableData : data);
        else if (const auto* list = value.array())
            beginObject(list->isMutable ? mutableArray : array);
        else if (!unknown)
            beginObject(chainOf(object->isa()));
    }
    if (const auto* held = value.string()) {
        writeBytesValue(std::as_bytes(std::span(held->text)));
    } else if (const auto* bytes = value.data()) {
        writeDataContents(bytes->bytes);
    } else if (const auto* list = value.array()) {
        const auto count = static_cast<std::int32_t>(list->elements.size());
        writeValues("i", {&count});
        for (const KWArchiveValue& element : list->elements)
            writeObjectValue(element);
    } else if (unknown) {
        return writeUnknown(*unknown);
    } else {
        object->encodeWithCoder(_coder);
    }
    if (!_isFirstWalk)
        endObject();
}

void KWTypedStreamWriter::writeNumberObject(const KWNumber& number) {
    static const Chain chain{{"NSNumber", 0}, {"NSValue", 0}, {"NSObject", 0}};
    beginObject(chain);
    // A sequential archive does not tell booleans from small integers.
    const char code =
        number.type() == KWNumber::Type::boolean ? 'c' : static_cast<char>(number.type());
    const std::string type(1, code);
    writeSharedString("*");
    writeCString(&type);
    writeSharedString(type);
    writeNumber(code, number);
    endObject();
}

// --- Objects of unknown classes, as they were read.

void KWTypedStreamWriter::writeUnknown(const KWUnknownObject& object) {
    const auto& names = object.classChain();
    if (!object.isSequential())
        unsupported("an object of the unknown class \"" + object.className() +
                    "\" has keys, which a sequential archive does not");
    if (!_isFirstWalk) {
        Chain chain;
        for (std::size_t k = 0; k < names.size(); ++k)
            chain.emplace_back(names[k], object.classVersions()[k]);
        beginObject(chain);
    }
    for (const KWArchiveField& group : object.fields()) {
        if (!_isFirstWalk)
            writeSharedString(group.key);
        std::string_view rest = group.key;
        for (const KWArchiveField& field : group.items) {
            const std::string_view type = KWFirstType(rest);
            writeField(type, field);
            rest.remove_prefix(type.size());
        }
    }
    if (!_isFirstWalk)
        endObject();
}

void KWTypedStreamWriter::writeField(std::string_view type, const KWArchiveField& field) {
    if (field.form == KWArchiveField::Form::list) {
        std::size_t count = 0;
        std::string_view element;
        std::string_view rest = type[0] == '{' ? KWStructFields(type) : std::string_view();
        if (type[0] == '[')
            KWArrayType(type, count, element);
        for (const KWArchiveField& item : field.items) {
            const std::string_view itemType = type[0] == '[' ? element : KWFirstType(rest);
            writeField(itemType, item);
            rest.remove_prefix(type[0] == '[' ? 0 : itemType.size());
        }
        return;
    }
    if (type == "@")
        return writeObject(field.value);
    if (_isFirstWalk)
        return;
    const KWArchiveString* text = field.value.string();
    if (type == "#") {
        const auto named = std::dynamic_pointer_cast<KWUnknownObject>(field.value.object());
        Chain chain;
        for (std::size_t k = 0; named && k < named->classChain().size(); ++k)
            chain.emplace_back(named->classChain()[k], named->classVersions()[k]);
        return writeClass(chain);
    }
    if (type == "*")
        return writeCString(text ? &text->text : nullptr);
    if (type == ":" || type == "%")
        return text ? writeSharedString(text->text) : putHead(nilHead);
    if (const KWArchiveData* data = field.value.data()) {
        if (type == "+")
            return writePlainString(
                {reinterpret_cast<const char*>(data->bytes.data()), data->bytes.size()});
        return putBytes(data->bytes.data(), data->bytes.size());
    }
    if (const KWArchiveArray* numbers = field.value.array()) {
        std::size_t count = 0;
        std::string_view element;
        KWArrayType(type, count, element);
        for (const KWArchiveValue& number : numbers->elements)
            writeNumber(element[0], *number.number());
        return;
    }
    writeNumber(type[0], *field.value.number());
}

// --- Lists without an object for each element; the bytes are those of the general way.

namespace {

/// What the elements of a list have in common: the bytes before the value of each.
constexpr std::size_t elementsBeforePrefix = 2;

} // namespace

/// Writes a mutable array. `begin` writes what stands before an element's value: the first time it
/// names what it needs, from the second time on it refers to that, with the same bytes each time.
template <class Begin, class Value>
void KWTypedStreamWriter::writeList(std::size_t count, Begin begin, Value value) {
    static const Chain mutableArray{{"NSMutableArray", 0}, {"NSArray", 0}, {"NSObject", 0}};
    requireDepth();
    if (_isFirstWalk)
        return;
    const auto number = static_cast<std::int32_t>(count);
    writeSharedString("@");
    beginObject(mutableArray);
    writeValues("i", {&number});
    KWData prefix;
    for (std::size_t k = 0; k < count; ++k) {
        if (k < elementsBeforePrefix) {
            const std::size_t start = _bytes.size();
            writeSharedString("@");
            begin();
            prefix.assign(_bytes.begin() + static_cast<std::ptrdiff_t>(start), _bytes.end());
        } else {
            putBytes(prefix.data(), prefix.size());
            newLabel();
        }
        value(k);
        endObject();
    }
    endObject();
}

void KWTypedStreamWriter::writeFloats(std::span<const float> list) {
    static const Chain chain{{"NSNumber", 0}, {"NSValue", 0}, {"NSObject", 0}};
    static const std::string type = "f";
    writeList(
        list.size(),
        [&] {
            beginObject(chain);
            writeSharedString("*");
            writeCString(&type);
            writeSharedString(type);
        },
        [&](std::size_t k) { writeFloat(list[k]); });
}

void KWTypedStreamWriter::writeRealObjects(std::span<const float> list, const KWRealClass& aClass) {
    const Chain chain = chainOf(aClass.aClass);
    writeList(
        list.size(),
        [&] {
            beginObject(chain);
            writeSharedString("f");
        },
        [&](std::size_t k) { writeFloat(list[k]); });
}

void KWTypedStreamWriter::writeRecords(std::span<const std::byte> list, std::size_t recordSize) {
    static const Chain chain{{"NSData", 0}, {"NSObject", 0}};
    const auto count = static_cast<std::int32_t>(recordSize);
    const std::string type = "[" + std::to_string(recordSize) + "c]";
    writeList(
        list.size() / recordSize,
        [&] {
            beginObject(chain);
            writeValues("i", {&count});
            writeSharedString(type);
        },
        [&](std::size_t k) { putBytes(list.data() + k * recordSize, recordSize); });
}
