#include <KWFoundation/KWText.h>
#include <KWFoundation/KWUnarchiver.h>

#include <apps/common/Text.h>
#include <apps/kwchannel/SequentialDump.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using Field = KWArchiveField;
using Form = KWArchiveField::Form;

/// What fits on a line: of more numbers only so many are shown, and structs of more have a line for
/// each field.
constexpr std::size_t longestList = 16;

/// The first of several types, which the reader has found to be whole.
std::string_view firstType(std::string_view types) {
    std::size_t depth = 0;
    for (std::size_t k = 0; k < types.size(); ++k) {
        if (types[k] == '[' || types[k] == '{')
            ++depth;
        else if (types[k] == ']' || types[k] == '}')
            --depth;
        if (depth == 0)
            return types.substr(0, k + 1);
    }
    return types;
}

/// The type of an array's elements, "f" of "[12f]", or the types of a struct's fields.
std::string_view innerTypes(std::string_view type) {
    if (type.size() < 2)
        return {};
    const std::string_view inside = type.substr(1, type.size() - 2);
    return type[0] == '['
               ? inside.substr(std::min(inside.find_first_not_of("0123456789"), inside.size()))
               : inside.substr(inside.find('=') + 1);
}

/// The object that a value refers to; null for nil and for values of other types.
std::shared_ptr<KWUnknownObject> objectOf(const Field& field) {
    return field.form == Form::reference
               ? std::dynamic_pointer_cast<KWUnknownObject>(field.value.object())
               : nullptr;
}

std::string classText(const KWUnknownObject& object) {
    std::string text;
    for (std::size_t k = 0; k < object.classChain().size(); ++k)
        text += (k > 0 ? " : " : "") + printable(object.classChain()[k]) + " v" +
                std::to_string(object.classVersions()[k]);
    return text;
}

std::string numberText(const KWNumber& number) {
    if (number.type() == KWNumber::Type::float32)
        return floatText(number.floatValue());
    if (number.type() == KWNumber::Type::float64)
        return std::isnan(number.doubleValue()) ? "nan"
                                                : KWExactStringFromDouble(number.doubleValue());
    return number.stringValue();
}

/// Bytes that are text are shown as such: they are a string's, as a rule.
std::string bytesText(std::string_view type, const KWData& bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return type == "+" && printable(text) == text ? inQuotes(text) : dataText(bytes);
}

/// A value that refers to no object.
std::string scalarText(std::string_view type, const Field& field) {
    const KWArchiveValue& value = field.value;
    if (const KWNumber* number = value.number())
        return numberText(*number);
    if (const KWArchiveString* string = value.string())
        return inQuotes(string->text);
    if (const KWArchiveData* data = value.data())
        return bytesText(type, data->bytes);
    if (const auto named = std::dynamic_pointer_cast<KWUnknownObject>(value.object()))
        return "class " + classText(*named);
    const KWArchiveArray* const list = value.array();
    if (!list)
        return "nil";
    std::string text;
    for (std::size_t k = 0; k < std::min(list->elements.size(), longestList); ++k)
        text += (k > 0 ? ", " : "") + numberText(*list->elements[k].number());
    if (list->elements.size() > longestList)
        text += ", ... " + std::to_string(list->elements.size()) + " in all";
    return "{" + text + "}";
}

/// Whether a value refers to no object and fits on a line.
bool isFlat(const Field& field) {
    if (field.form != Form::list)
        return !objectOf(field);
    return field.items.size() <= longestList &&
           std::all_of(field.items.begin(), field.items.end(), isFlat);
}

/// "1, 2" of several values, each of its type or all of one.
std::string flatText(std::string_view types, const std::vector<Field>& items, bool isArray) {
    std::string text;
    for (const Field& item : items) {
        const std::string_view type = isArray ? types : firstType(types);
        text += text.empty() ? "" : ", ";
        text += item.form == Form::list
                    ? "{" + flatText(innerTypes(type), item.items, type[0] == '[') + "}"
                    : scalarText(type, item);
        types.remove_prefix(isArray ? 0 : type.size());
    }
    return text;
}

/// " { + "gain" }" of an object that holds no more than a line.
std::string flatContents(const KWUnknownObject& object) {
    constexpr std::size_t most = 2;
    if (object.fields().size() > most ||
        !std::all_of(object.fields().begin(), object.fields().end(), isFlat))
        return {};
    std::string text;
    for (const Field& group : object.fields())
        text += (text.empty() ? " { " : ", ") + printable(group.key) + " " +
                flatText(group.key, group.items, false);
    return text.empty() ? " {}" : text + " }";
}

} // namespace

SequentialDump::SequentialDump(std::span<const std::byte> bytes, const std::string& file,
                               Output& output, std::size_t maximumDepth)
    : _output(output), _maximumDepth(maximumDepth) {
    KWUnarchiver unarchiver(bytes, {.knowsNoClasses = true}, file);
    _isBigEndian = unarchiver.isBigEndian();
    while (!unarchiver.isAtEnd())
        _tops.push_back(unarchiver.decodeAnything());
    numberObjects();
}

void SequentialDump::numberObjects() {
    // A stack of our own: what a file nests must not nest calls.
    std::vector<const Field*> waiting;
    const auto push = [&waiting](const std::vector<Field>& fields) {
        for (auto field = fields.rbegin(); field != fields.rend(); ++field)
            waiting.push_back(&*field);
    };
    push(_tops);
    while (!waiting.empty()) {
        const Field& field = *waiting.back();
        waiting.pop_back();
        push(field.items);
        const auto object = objectOf(field);
        if (!object || !_numbers.try_emplace(object.get(), _objects.size() + 1).second)
            continue;
        _objects.push_back(object.get());
        push(object->fields());
    }
}

void SequentialDump::writeHeading() {
    _output.write(std::string("sequential archive, ") +
                  (_isBigEndian ? "big-endian, " : "little-endian, ") +
                  counted(_objects.size(), "object") + "\n");
}

void SequentialDump::writeTree() {
    writeHeading();
    _isShown.assign(_objects.size(), false);
    writeGroups(_tops, true);
    // What was too deep has its turn from the left edge, in the order in which it was met.
    while (!_deeper.empty()) {
        const std::vector<Entry> entries = std::exchange(_deeper, {});
        for (const Entry& entry : entries) {
            _waiting.push_back({0, {}, entry.type, entry.field});
            writeGroups({}, true);
        }
    }
}

void SequentialDump::writeObjects() {
    writeHeading();
    writeGroups(_tops, false);
    for (const KWUnknownObject* object : _objects) {
        const std::string contents = flatContents(*object);
        _output.write(reference(*object) + " " + classText(*object) + contents + "\n");
        if (contents.empty())
            pushGroups(object->fields(), 1);
        writeGroups({}, false);
    }
}

/// Writes these, and before them whatever is waiting.
void SequentialDump::writeGroups(const std::vector<Field>& groups, bool followsReferences) {
    pushGroups(groups, 0);
    while (!_waiting.empty()) {
        const Entry entry = std::move(_waiting.back());
        _waiting.pop_back();
        writeEntry(entry, followsReferences);
    }
}

void SequentialDump::writeEntry(const Entry& entry, bool followsReferences) {
    const Field& field = *entry.field;
    if (objectOf(field))
        return writeObject(entry, followsReferences);
    if (field.form != Form::list)
        return writeLine(entry, scalarText(entry.type, field));
    const bool isGroup = firstType(entry.type) != entry.type;
    const bool isArray = !isGroup && entry.type.starts_with('[');
    const std::string_view types = isGroup ? entry.type : innerTypes(entry.type);
    if (isFlat(field)) {
        const std::string text = flatText(types, field.items, isArray);
        return writeLine(entry, isGroup ? text : "{" + text + "}");
    }
    writeLine(entry, counted(field.items.size(), "value"));
    pushValues(types, field, entry.depth + 1);
}

void SequentialDump::writeObject(const Entry& entry, bool followsReferences) {
    const auto object = objectOf(*entry.field);
    const std::size_t place = _numbers.at(object.get()) - 1;
    const std::string name = reference(*object) + " " + printable(object->className());
    if (!followsReferences || _isShown[place])
        return writeLine(entry, "-> " + name);
    const std::string contents = flatContents(*object);
    if (contents.empty() && entry.depth >= _maximumDepth) {
        writeLine(entry, "-> further down: " + name);
        _deeper.push_back(entry);
        return;
    }
    _isShown[place] = true;
    writeLine(entry, reference(*object) + " " + classText(*object) + contents);
    if (contents.empty())
        pushGroups(object->fields(), entry.depth + 1);
}

/// What each call wrote: a single value stands on the line of its type.
void SequentialDump::pushGroups(const std::vector<Field>& groups, std::size_t depth) {
    for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
        const Field& shown = group->items.size() == 1 ? group->items.front() : *group;
        _waiting.push_back({depth, printable(group->key) + " = ", group->key, &shown});
    }
}

void SequentialDump::pushValues(std::string_view types, const Field& group, std::size_t depth) {
    const bool isArray = firstType(types) == types && group.items.size() > 1;
    const std::size_t first = _waiting.size();
    for (const Field& item : group.items) {
        const std::string_view type = isArray ? types : firstType(types);
        _waiting.push_back({depth, printable(type) + " = ", type, &item});
        types.remove_prefix(isArray ? 0 : type.size());
    }
    std::reverse(_waiting.begin() + static_cast<std::ptrdiff_t>(first), _waiting.end());
}

void SequentialDump::writeLine(const Entry& entry, const std::string& text) {
    _output.write(std::string(2 * entry.depth, ' ') + entry.label + text + "\n");
}

std::string SequentialDump::reference(const KWUnknownObject& object) const {
    return numbered(_numbers.at(&object));
}
