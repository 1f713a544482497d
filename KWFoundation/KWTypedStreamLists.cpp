#include <KWFoundation/KWTypeEncoding.h>
#include <KWFoundation/KWTypedStream.h>
#include <KWFoundation/KWTypedStreamReader.h>

#include <algorithm>
#include <bit>
#include <cstring>

using namespace KWTypedStream;

// Lists of small things, read without an object for each. The elements of a list mostly differ in
// nothing but their value: once one has been read in full, the bytes before its value are known,
// and an element that starts with the same bytes means the same by them.

/// One element: something new, whose class is known by then, or something met before.
template <class New, class Known>
void KWTypedStreamReader::readElement(New readNew, Known readKnown) {
    expectType("@");
    const auto head = take<std::int8_t>();
    if (head == nilHead)
        damaged("a list element is nil");
    if (head != newHead)
        return readKnown(labelAfter(head));
    const auto label = static_cast<std::uint32_t>(_labels.size());
    _labels.push_back({Label::Kind::object, 0, none, 0});
    const std::uint32_t aClass = readClass();
    if (aClass == none)
        damaged("an object without a class");
    readNew(label, aClass);
    endObject();
}

/// The list under the next "@": `element` reads each. False for nil.
template <class Element>
bool KWTypedStreamReader::readList(Element& element) {
    expectType("@");
    const auto head = take<std::int8_t>();
    if (head == nilHead)
        return false;
    if (head != newHead) {
        const std::uint32_t label = labelAfter(head);
        if (_labels[label].kind == Label::Kind::list) {
            const std::vector<std::uint32_t> elements = _lists[_labels[label].index];
            spend(elements.size() * sizeof(KWArchiveValue));
            element.begin(elements.size());
            for (const std::uint32_t each : elements)
                element.known(each);
            return true;
        }
        const KWArchiveValue value = valueOfLabel(label);
        if (!value.array())
            damaged("expected an array, found " + value.kindName());
        spend(value.array()->elements.size() * sizeof(KWArchiveValue));
        element.begin(value.array()->elements.size());
        for (const KWArchiveValue& each : value.array()->elements)
            element.value(each);
        return true;
    }
    const auto label = static_cast<std::uint32_t>(_labels.size());
    _labels.push_back({Label::Kind::object, 0, none, 0});
    const std::uint32_t aClass = readClass();
    if (aClass == none)
        damaged("an object without a class");
    const Level level(*this, aClass);
    if (!KWIsArrayCluster(_classes[aClass].cluster))
        damaged("expected an array, found " + _classes[aClass].name);
    std::int32_t count = 0;
    readValues("i", {&count});
    if (count < 0 || static_cast<std::size_t>(count) > remaining())
        damaged("an array claims " + std::to_string(count) +
                " elements, more than there are bytes");
    std::vector<std::uint32_t> labels;
    labels.reserve(static_cast<std::size_t>(count));
    element.begin(static_cast<std::size_t>(count));
    std::span<const std::byte> prefix;
    for (std::int32_t k = 0; k < count; ++k) {
        _steps.back().index = static_cast<std::uint32_t>(k);
        if (!prefix.empty() && remaining() > prefix.size() &&
            std::memcmp(_bytes.data() + _place, prefix.data(), prefix.size()) == 0) {
            _place += prefix.size();
            labels.push_back(static_cast<std::uint32_t>(_labels.size()));
            _labels.push_back(element.alike());
            endObject();
            continue;
        }
        const std::size_t start = _place;
        const std::size_t stringCount = _strings.size();
        const std::size_t labelCount = _labels.size();
        element.valuePlace = 0;
        readElement(
            [&](std::uint32_t elementLabel, std::uint32_t elementClass) {
                labels.push_back(elementLabel);
                element.added(elementLabel, elementClass);
            },
            [&](std::uint32_t known) {
                labels.push_back(known);
                element.known(known);
            });
        // Only what refers back in full means the same a second time.
        if (element.valuePlace != 0 && _strings.size() == stringCount &&
            _labels.size() == labelCount + 1)
            prefix = _bytes.subspan(start, element.valuePlace - start);
    }
    endObject();
    const bool isMutable = _classes[aClass].cluster == Cluster::mutableArray;
    _labels[label] = {Label::Kind::list, isMutable, static_cast<std::uint32_t>(_lists.size()), 0};
    _lists.push_back(std::move(labels));
    return true;
}

struct KWTypedStreamReader::Floats {
    KWTypedStreamReader& reader;
    std::vector<float>& list;
    /// Where the value of an element stands that others may be alike; 0 for other elements.
    std::size_t valuePlace = 0;

    void begin(std::size_t count) { list.reserve(count); }
    /// The value of an element whose beginning is known, and its label.
    Label alike() {
        float number = 0;
        reader.readReal(true, &number);
        list.push_back(number);
        return {Label::Kind::number, 'f', none, std::bit_cast<std::uint32_t>(number)};
    }
    void added(std::uint32_t label, std::uint32_t aClass) {
        if (reader._classes[aClass].cluster != Cluster::number)
            reader.damaged("expected a number, found " + reader._classes[aClass].name);
        const KWNumber number = reader.readNumberContents(&valuePlace);
        std::uint64_t bits = 0;
        if (number.type() == KWNumber::Type::float32)
            bits = std::bit_cast<std::uint32_t>(number.floatValue());
        else if (number.type() == KWNumber::Type::float64)
            bits = std::bit_cast<std::uint64_t>(number.doubleValue());
        else
            bits = static_cast<std::uint64_t>(number.int64Value());
        reader._labels[label] = {Label::Kind::number, static_cast<char>(number.type()), none, bits};
        list.push_back(number.floatValue());
    }
    void known(std::uint32_t label) { value(reader.valueOfLabel(label)); }
    void value(const KWArchiveValue& element) {
        if (!element.number())
            reader.damaged("expected a number, found " + element.kindName());
        list.push_back(element.number()->floatValue());
    }
};

struct KWTypedStreamReader::Reals {
    KWTypedStreamReader& reader;
    std::vector<float>& list;
    const KWRealClass& wanted;
    std::uint32_t place; ///< of the class in _realClasses
    std::uint32_t checked = none;
    std::size_t valuePlace = 0;

    void begin(std::size_t count) { list.reserve(count); }
    Label alike() {
        float number = 0;
        reader.readReal(true, &number);
        list.push_back(number);
        return {Label::Kind::real, 0, place, std::bit_cast<std::uint32_t>(number)};
    }
    void added(std::uint32_t label, std::uint32_t aClass) {
        if (aClass != checked) {
            const Class& found = reader._classes[aClass];
            if (!found.known || !found.known->isSubclassOfClass(wanted.aClass))
                reader.damaged("expected " + std::string(wanted.aClass.name()) + ", found " +
                               found.name);
            checked = aClass;
        }
        float number = 0;
        const std::size_t typePlace = reader._place;
        if (reader.readType() == "f") {
            valuePlace = reader._place;
            reader.readReal(true, &number);
        } else { // perhaps a number of another width
            reader._place = typePlace;
            reader.readValues("f", {&number});
        }
        reader._labels[label] = {Label::Kind::real, 0, place, std::bit_cast<std::uint32_t>(number)};
        list.push_back(number);
    }
    void known(std::uint32_t label) {
        const Label& found = reader._labels[label];
        if (found.kind == Label::Kind::real && found.index == place)
            list.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(found.bits)));
        else
            value(reader.valueOfLabel(label));
    }
    void value(const KWArchiveValue& element) {
        const auto object = element.object();
        if (!object || !object->isKindOfClass(wanted.aClass))
            reader.damaged("expected " + std::string(wanted.aClass.name()) + ", found " +
                           element.kindName());
        list.push_back(wanted.unbox(*object));
    }
};

/// Records are words of four bytes in the order of the machine that wrote them, unless the archive
/// describes them as numbers.
struct KWTypedStreamReader::Records {
    KWTypedStreamReader& reader;
    std::vector<std::byte>& list;
    std::size_t size;
    std::string type;
    std::size_t valuePlace = 0;

    void begin(std::size_t count) {
        list.reserve(std::min(count * size, reader.remaining() + size));
    }
    Label alike() { return takeBytes(size); }
    Label takeBytes(std::size_t count) {
        reader.require(count);
        const std::size_t at = reader._place;
        put(reader._bytes.subspan(at, count));
        reader._place += count;
        return {Label::Kind::data, 0, static_cast<std::uint32_t>(count), at};
    }
    void added(std::uint32_t label, std::uint32_t aClass) {
        const Class& found = reader._classes[aClass];
        if (found.cluster != Cluster::data && found.cluster != Cluster::mutableData)
            return addStruct(label, found);
        std::int32_t count = 0;
        reader.readValues("i", {&count});
        if (count < 0 || static_cast<std::size_t>(count) > reader.remaining())
            reader.damaged("data claims " + std::to_string(count) + " bytes, more than there are");
        const bool isUsual = static_cast<std::size_t>(count) == size;
        if (count > 0 || reader.peekHead() != endHead)
            reader.expectType(isUsual ? type : "[" + std::to_string(count) + "c]");
        valuePlace = isUsual && size > 0 ? reader._place : 0;
        reader._labels[label] = takeBytes(static_cast<std::size_t>(count));
    }
    void addStruct(std::uint32_t label, const Class& found) {
        constexpr std::size_t largest = 4096;
        if (found.name != "NSValue")
            reader.damaged("expected data, found " + found.name);
        reader.expectType("*");
        const std::string_view* text = reader.readCString();
        const std::string described(text ? *text : "");
        if (KWFirstType(described) != described || described.empty() ||
            !KWLayoutOfType(described).isPlain || KWLayoutOfType(described).size > largest)
            reader.damaged(shownTypes(described) + " is no type of a record");
        reader.expectType(described);
        KWData value(KWLayoutOfType(described).size);
        reader.readOne(described, value.data());
        reader._labels[label] = {Label::Kind::record, 0,
                                 static_cast<std::uint32_t>(reader._records.size()), 0};
        put(value, false);
        reader._records.push_back(std::move(value));
    }
    void known(std::uint32_t label) {
        const Label& found = reader._labels[label];
        if (found.kind == Label::Kind::data)
            put(reader._bytes.subspan(found.bits, found.index));
        else if (found.kind == Label::Kind::record)
            put(reader._records[found.index], false);
        else
            value(reader.valueOfLabel(label));
    }
    void value(const KWArchiveValue& element) {
        if (!element.data())
            reader.damaged("expected data, found " + element.kindName());
        put(element.data()->bytes);
    }
    void put(std::span<const std::byte> bytes, bool isRaw = true) {
        const std::size_t start = list.size();
        const std::size_t count = std::min(bytes.size(), size);
        reader.spend(size);
        list.insert(list.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
        list.resize(start + size);
        if (isRaw && reader._isBigEndian)
            for (std::size_t k = start; k + 4 <= list.size(); k += 4)
                std::reverse(list.begin() + static_cast<std::ptrdiff_t>(k),
                             list.begin() + static_cast<std::ptrdiff_t>(k + 4));
    }
};

bool KWTypedStreamReader::readFloats(std::vector<float>& list) {
    list.clear();
    Floats floats{*this, list};
    return readList(floats);
}

bool KWTypedStreamReader::readRealObjects(std::vector<float>& list, const KWRealClass& aClass) {
    list.clear();
    std::uint32_t place = 0;
    while (place < _realClasses.size() && &_realClasses[place].aClass != &aClass.aClass)
        ++place;
    if (place == _realClasses.size())
        _realClasses.push_back(aClass);
    Reals reals{*this, list, aClass, place};
    return readList(reals);
}

bool KWTypedStreamReader::readRecords(std::vector<std::byte>& list, std::size_t recordSize) {
    list.clear();
    Records records{*this, list, recordSize, "[" + std::to_string(recordSize) + "c]"};
    return readList(records);
}
