#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWText.h>

#include <apps/common/Text.h>
#include <apps/kwchannel/Dump.h>

#include <algorithm>
#include <cmath>

namespace {

using Kind = KWPropertyList::Kind;

} // namespace

Dump::Dump(const KWPropertyList& list, Output& output, std::size_t maximumDepth)
    : _list(list), _output(output), _maximumDepth(maximumDepth) {
    const Index root = list.root();
    const bool isDictionary = root != KWPropertyList::none && list.kind(root) == Kind::dictionary;
    _top = isDictionary ? list.valueForKey(root, "$top") : KWPropertyList::none;
    _objects = isDictionary ? list.valueForKey(root, "$objects") : KWPropertyList::none;
    if (_top == KWPropertyList::none || _objects == KWPropertyList::none)
        fail("a property list, but no keyed archive: it lacks $top or $objects", root);
    if (list.kind(_top) != Kind::dictionary)
        fail("$top is no dictionary", _top);
    if (list.kind(_objects) != Kind::array)
        fail("$objects is no array", _objects);
}

void Dump::writeHeading() {
    const bool isXML = _list.format() == KWPropertyList::Format::xml;
    _output.write(std::string("keyed archive, ") + (isXML ? "XML" : "binary") + ", " +
                  counted(_list.count(_objects), "object") + "\n");
    const auto children = _list.children(_list.root());
    const std::size_t count = children.size() / 2;
    for (std::size_t i = 0; i < count; ++i) {
        const Index value = children[count + i];
        if (value != _top && value != _objects)
            writeBelow({0, printable(_list.stringValue(children[i])) + " = ", value}, false);
    }
}

void Dump::writeTree() {
    writeHeading();
    _shown.clear();
    writeBelow({0, "$top = ", _top}, true);
    // What was too deep has its turn from the left edge, in the order in which it was met.
    while (!_deeper.empty()) {
        std::vector<Entry> entries = std::move(_deeper);
        _deeper.clear();
        for (Entry& entry : entries) {
            entry.depth = 0;
            entry.label.clear();
            writeBelow(std::move(entry), true);
        }
    }
    std::size_t unreached = 0;
    for (const Index node : _list.children(_objects)) {
        const bool isObject = _list.kind(node) == Kind::dictionary &&
                              _list.valueForKey(node, "$class") != KWPropertyList::none;
        unreached += isObject && !_shown.contains(node);
    }
    if (unreached > 0)
        _output.write(counted(unreached, "object") + " not reached from $top; see --objects\n");
}

void Dump::writeObjects() {
    writeHeading();
    writeBelow({0, "$top = ", _top}, false);
    const auto objects = _list.children(_objects);
    for (std::size_t i = 0; i < objects.size(); ++i) {
        // Every object is shown in full here, also one that stands at two places.
        _shown.clear();
        writeBelow({0, numbered(i) + " ", objects[i]}, false);
    }
}

void Dump::writeBelow(Entry first, bool followsReferences) {
    // A stack of our own: what a file nests must not nest calls.
    _waiting.push_back(std::move(first));
    while (!_waiting.empty()) {
        const Entry entry = std::move(_waiting.back());
        _waiting.pop_back();
        writeEntry(entry, followsReferences);
    }
}

void Dump::writeEntry(const Entry& entry, bool followsReferences) {
    if (_list.kind(entry.node) == Kind::uid && followsReferences)
        return writeReference(entry);
    if (isContainer(entry.node))
        return writeContainer(entry, {});
    writeLine(entry, scalarText(entry.node));
}

void Dump::writeReference(const Entry& entry) {
    const std::uint64_t number = _list.uidValue(entry.node);
    const Index node = object(number);
    const std::string name = numbered(number);
    if (node == KWPropertyList::none)
        return writeLine(entry, name + " OUT OF RANGE");
    if (isNull(node))
        return writeLine(entry, number == 0 ? "nil" : "nil " + name);
    if (!isContainer(node))
        return writeLine(entry, name + " " + scalarText(node));
    Entry target = entry;
    target.node = node;
    writeContainer(target, name + " ");
}

void Dump::writeContainer(const Entry& entry, const std::string& number) {
    const std::string what = number + classText(entry.node);
    if (_list.count(entry.node) == 0)
        return writeLine(entry, what);
    // In the file a list in an object has no number to be known by, and is seldom met twice.
    if (_shown.contains(entry.node))
        return writeLine(entry, (number.empty() ? "as above: " : "-> ") + what);
    if (entry.depth >= _maximumDepth) {
        writeLine(entry, (number.empty() ? "further down: " : "-> further down: ") + what);
        Entry later = entry;
        _deeper.push_back(std::move(later));
        return;
    }
    _shown.insert(entry.node);
    writeLine(entry, what);
    pushChildren(entry);
}

void Dump::pushChildren(const Entry& entry) {
    const auto children = _list.children(entry.node);
    if (_list.kind(entry.node) != Kind::dictionary) {
        for (std::size_t i = children.size(); i > 0; --i)
            _waiting.push_back({entry.depth + 1, std::to_string(i - 1) + ": ", children[i - 1]});
        return;
    }
    const std::size_t count = children.size() / 2;
    for (std::size_t i = count; i > 0; --i) {
        const std::string_view key = _list.stringValue(children[i - 1]);
        if (key != "$class" || _list.kind(children[count + i - 1]) != Kind::uid)
            _waiting.push_back({entry.depth + 1, printable(key) + " = ", children[count + i - 1]});
    }
}

void Dump::writeLine(const Entry& entry, const std::string& text) {
    _output.write(std::string(2 * entry.depth, ' ') + entry.label + text + "\n");
}

Dump::Index Dump::object(std::uint64_t number) const {
    const auto objects = _list.children(_objects);
    return number < objects.size() ? objects[static_cast<std::size_t>(number)]
                                   : KWPropertyList::none;
}

bool Dump::isNull(Index node) const {
    return _list.kind(node) == Kind::string && _list.stringValue(node) == "$null";
}

bool Dump::isContainer(Index node) const {
    const Kind kind = _list.kind(node);
    return kind == Kind::array || kind == Kind::set || kind == Kind::dictionary;
}

std::string Dump::scalarText(Index node) const {
    switch (_list.kind(node)) {
    case Kind::boolean:
        return _list.boolValue(node) ? "true" : "false";
    case Kind::integer: {
        const std::int64_t value = _list.intValue(node);
        return _list.isUnsigned(node) ? std::to_string(static_cast<std::uint64_t>(value))
                                      : std::to_string(value);
    }
    case Kind::real: {
        const double value = _list.realValue(node);
        if (_list.isSingle(node))
            return "float " + floatText(static_cast<float>(value));
        return "double " + (std::isnan(value) ? "nan" : KWExactStringFromDouble(value));
    }
    case Kind::date:
        return "date " + KWExactStringFromDouble(_list.realValue(node)) + " s since 2001-01-01 UTC";
    case Kind::data:
        return dataText(_list.dataValue(node));
    case Kind::string:
        return inQuotes(_list.stringValue(node));
    case Kind::uid:
        return "-> " + numbered(_list.uidValue(node));
    default:
        return "null";
    }
}

std::string Dump::classText(Index node) const {
    if (_list.kind(node) != Kind::dictionary)
        return (_list.kind(node) == Kind::set ? "set of " : "list of ") +
               std::to_string(_list.count(node));
    const Index reference = _list.valueForKey(node, "$class");
    if (reference == KWPropertyList::none || _list.kind(reference) != Kind::uid)
        return "dictionary of " + std::to_string(_list.count(node));
    const Index record = object(_list.uidValue(reference));
    if (record == KWPropertyList::none || _list.kind(record) != Kind::dictionary)
        return "(no class record)";
    return className(record);
}

std::string Dump::className(Index record) const {
    const auto text = [this](Index node) {
        return node != KWPropertyList::none && _list.kind(node) == Kind::string
                   ? printable(_list.stringValue(node))
                   : std::string("?");
    };
    const std::string name = text(_list.valueForKey(record, "$classname"));
    std::string chain = name;
    const Index classes = _list.valueForKey(record, "$classes");
    if (classes == KWPropertyList::none || _list.kind(classes) != Kind::array)
        return chain;
    const auto names = _list.children(classes);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string next = text(names[i]);
        if (i > 0 || next != name)
            chain += " : " + next;
    }
    return chain;
}

void Dump::fail(const std::string& reason, Index node) const {
    const auto offset = node == KWPropertyList::none
                            ? std::nullopt
                            : std::optional<std::uint64_t>(_list.offset(node));
    throw KWArchiveError(KWArchiveError::Kind::unsupported, _list.file(), offset, {}, reason);
}
