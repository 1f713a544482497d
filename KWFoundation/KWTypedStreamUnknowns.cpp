#include <KWFoundation/KWTypeEncoding.h>
#include <KWFoundation/KWTypedStream.h>
#include <KWFoundation/KWTypedStreamReader.h>

#include <utility>

using namespace KWTypedStream;

// Objects of unknown classes, and whatever else is read without anybody asking for it: by the types
// in the archive.

void KWTypedStreamReader::readFields(std::vector<KWArchiveField>& items, std::string_view types) {
    while (!types.empty()) {
        const std::string_view type = KWFirstType(types);
        if (type.empty())
            damaged(shownTypes(types) + " describes no value that is known");
        spend(sizeof(KWArchiveField) + type.size()); // types are looked through each time
        items.push_back(readField(type));
        types.remove_prefix(type.size());
    }
}

KWArchiveField KWTypedStreamReader::readAnything() {
    KWArchiveField field;
    field.form = KWArchiveField::Form::list;
    field.key = readType();
    readFields(field.items, field.key);
    return field;
}

KWArchiveField KWTypedStreamReader::readField(std::string_view type) {
    if (type[0] != '{' && type[0] != '[')
        return readSimpleField(type);
    const InnerLevel level(*this);
    return type[0] == '{' ? readStructField(type) : readArrayField(type);
}

KWArchiveField KWTypedStreamReader::readStructField(std::string_view type) {
    KWArchiveField field;
    field.form = KWArchiveField::Form::list;
    readFields(field.items, KWStructFields(type));
    return field;
}

KWArchiveField KWTypedStreamReader::readSimpleField(std::string_view type) {
    KWArchiveField field;
    field.form = KWArchiveField::Form::inlined;
    const auto text = [&](const std::string_view* string) {
        if (string) {
            spend(string->size());
            field.value = KWArchiveValue(*string);
        }
    };
    switch (type[0]) {
    case '@':
        field.form = KWArchiveField::Form::reference;
        field.value = readObject();
        return field;
    case '*':
        text(readCString());
        return field;
    case ':':
    case '%':
        text(readSharedString());
        return field;
    case '+': {
        const std::string_view string = readPlainString();
        const auto bytes = std::as_bytes(std::span(string));
        field.value = KWData(bytes.begin(), bytes.end());
        return field;
    }
    case '#': {
        const std::uint32_t aClass = readClass();
        if (aClass != none) {
            auto named = std::make_shared<KWUnknownObject>();
            fillUnknown(*named, aClass);
            field.value = named;
        }
        return field;
    }
    default:
        field.value = readNumber(type[0]);
        return field;
    }
}

KWArchiveField KWTypedStreamReader::readArrayField(std::string_view type) {
    KWArchiveField field;
    field.form = KWArchiveField::Form::inlined;
    std::size_t count = 0;
    std::string_view element;
    if (!KWArrayType(type, count, element) || count > remaining())
        damaged(shownTypes(type) + " claims more values than there are bytes");
    if (element == "c" || element == "C") {
        const auto bytes = _bytes.subspan(_place, count);
        _place += count;
        field.value = KWData(bytes.begin(), bytes.end());
    } else if (element.size() == 1 && (KWIsIntegerType(element[0]) || KWIsRealType(element[0]))) {
        std::vector<KWArchiveValue> numbers;
        for (std::size_t k = 0; k < count; ++k)
            numbers.emplace_back(readNumber(element[0]));
        field.value = KWArchiveValue::immutableArray(std::move(numbers));
    } else {
        field.form = KWArchiveField::Form::list;
        for (std::size_t k = 0; k < count; ++k) {
            spend(sizeof(KWArchiveField));
            field.items.push_back(readField(element));
        }
    }
    return field;
}

void KWTypedStreamReader::fillUnknown(KWUnknownObject& object, std::uint32_t aClass) {
    std::vector<std::string> names;
    std::vector<std::int32_t> versions;
    for (; aClass != none; aClass = _classes[aClass].superclass) {
        if (names.size() >= KWArchiveMaximumDepth)
            fail(KWArchiveError::Kind::unsupported, "a class has more than " +
                                                        std::to_string(KWArchiveMaximumDepth) +
                                                        " superclasses");
        spend(sizeof(std::string) + _classes[aClass].name.size());
        names.push_back(_classes[aClass].name);
        versions.push_back(_classes[aClass].version);
    }
    object.setClassChain(std::move(names));
    object.setClassVersions(std::move(versions));
}

KWArchiveValue KWTypedStreamReader::readUnknown(std::uint32_t aClass, Object& object) {
    const auto contents = std::make_shared<KWUnknownObject>();
    fillUnknown(*contents, aClass);
    std::shared_ptr<KWObject> made = contents;
    for (std::uint32_t each = aClass; each != none && made == contents;
         each = _classes[each].superclass)
        if (const KWClass* known = _classes[each].known; known && known->standIn())
            made = known->standIn()(contents);
    object.value = made;
    _cycles.addUnknown(made, contents);
    std::vector<KWArchiveField> fields;
    while (peekHead() != endHead)
        fields.push_back(readAnything());
    contents->setFields(std::move(fields));
    if (made == contents)
        return made;
    const KWArchiveCycles::Reading reading(_cycles, made);
    return made->initWithCoder(_coder) ? KWArchiveValue(made) : KWArchiveValue();
}
