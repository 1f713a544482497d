#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWPropertyListForms.h>
#include <KWFoundation/KWPropertyListXML.h>
#include <KWFoundation/KWText.h>

#include <expat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <numeric>

// XML form. A UID is a dictionary with the single key "CF$UID". The width of a real is not kept.

namespace {

using namespace KWXML;
using Index = KWPropertyList::Index;
using Kind = KWPropertyList::Kind;

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

/// "2001-01-01T00:00:00Z" as seconds.
std::optional<double> dateFromText(std::string_view text) {
    constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:ddZ";
    if (text.size() != pattern.size())
        return std::nullopt;
    for (std::size_t k = 0; k < pattern.size(); ++k)
        if (pattern[k] == 'd' ? text[k] < '0' || text[k] > '9' : text[k] != pattern[k])
            return std::nullopt;
    const auto number = [&](std::size_t at, std::size_t digits) {
        unsigned value = 0;
        for (std::size_t k = 0; k < digits; ++k)
            value = 10 * value + static_cast<unsigned>(text[at + k] - '0');
        return value;
    };
    const unsigned month = number(5, 2);
    const unsigned day = number(8, 2);
    if (month < 1 || month > 12 || day < 1 || day > 31 || number(11, 2) > 23 ||
        number(14, 2) > 59 || number(17, 2) > 60)
        return std::nullopt;
    const std::int64_t days = daysFromCivil(number(0, 4), month, day) - epochDays;
    return static_cast<double>(days * secondsPerDay + number(11, 2) * 3600 + number(14, 2) * 60 +
                               number(17, 2));
}

std::optional<std::string> base64Decoded(std::string_view text) {
    std::string bytes;
    unsigned gathered = 0;
    unsigned bits = 0;
    bool ended = false;
    for (const char c : text) {
        if (isSpace(c))
            continue;
        if (c == '=') {
            ended = true;
            continue;
        }
        const std::size_t digit = base64Digits.find(c);
        if (ended || digit == std::string_view::npos)
            return std::nullopt;
        gathered = gathered << 6 | static_cast<unsigned>(digit);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>(gathered >> bits & 0xff);
        }
    }
    if (bits >= 6)
        return std::nullopt;
    return bytes;
}

/// What expat says, and what lies behind those errors that it meets only at the end of the file.
std::string parserError(XML_Error code) {
    std::string reason = XML_ErrorString(code);
    if (code == XML_ERROR_UNCLOSED_TOKEN || code == XML_ERROR_NO_ELEMENTS ||
        code == XML_ERROR_PARTIAL_CHAR || code == XML_ERROR_UNCLOSED_CDATA_SECTION)
        reason += "; the file may be cut short";
    return reason;
}

} // namespace

/// Gathers what the parser meets. An error is kept until the parser has returned, as exceptions
/// must not pass through it.
class KWXMLPropertyListReader {
  public:
    explicit KWXMLPropertyListReader(KWPropertyList& list)
        : _list(list), _parser(XML_ParserCreate(nullptr), &XML_ParserFree) {
        XML_SetUserData(_parser.get(), this);
        XML_SetElementHandler(_parser.get(), &onStart, &onEnd);
        XML_SetCharacterDataHandler(_parser.get(), &onText);
        XML_SetEntityDeclHandler(_parser.get(), &onEntity);
    }

    void read() {
        std::span<const std::byte> bytes = _list._source;
        constexpr std::size_t piece = 1 << 20;
        while (!_failed) {
            const std::size_t count = std::min(piece, bytes.size());
            const bool last = count == bytes.size();
            const auto status =
                XML_Parse(_parser.get(), reinterpret_cast<const char*>(bytes.data()),
                          static_cast<int>(count), last);
            if (status == XML_STATUS_ERROR && !_failed)
                fail(parserError(XML_GetErrorCode(_parser.get())));
            bytes = bytes.subspan(count);
            if (last)
                break;
        }
        if (!_failed && _root == KWPropertyList::none)
            fail("the property list holds no value");
        if (_failed)
            throw KWArchiveError(_kind, _list.file(), _offset, {}, _reason);
        _list.setRoot(_root);
    }

  private:
    struct Container {
        Kind kind;
        std::uint64_t offset;
        std::vector<Index> keys;
        std::vector<Index> values;
    };

    static KWXMLPropertyListReader& self(void* data) {
        return *static_cast<KWXMLPropertyListReader*>(data);
    }
    static void onStart(void* data, const char* name, const char**) {
        self(data).guarded([&](KWXMLPropertyListReader& it) { it.start(name); });
    }
    static void onEnd(void* data, const char* name) {
        self(data).guarded([&](KWXMLPropertyListReader& it) { it.end(name); });
    }
    static void onText(void* data, const char* text, int length) {
        self(data).guarded([&](KWXMLPropertyListReader& it) {
            it.text({text, static_cast<std::size_t>(length)});
        });
    }
    static void onEntity(void* data, const char*, int, const char*, int, const char*, const char*,
                         const char*, const char*) {
        self(data).fail("a property list declares no entities");
    }

    template <class Function>
    void guarded(Function function) {
        if (_failed)
            return;
        try {
            function(*this);
        } catch (const std::exception& error) {
            fail(error.what());
        }
    }

    std::uint64_t position() const {
        return static_cast<std::uint64_t>(
            std::max<XML_Index>(0, XML_GetCurrentByteIndex(_parser.get())));
    }

    void fail(std::string reason, KWArchiveError::Kind kind = KWArchiveError::Kind::damaged) {
        if (_failed)
            return;
        _failed = true;
        _kind = kind;
        _offset = position();
        _reason = std::move(reason);
        XML_StopParser(_parser.get(), XML_FALSE);
    }

    void start(std::string_view name) {
        if (!_leaf.empty())
            return fail("<" + std::string(name) + "> inside <" + _leaf + ">");
        if (!_inPropertyList) {
            if (name != "plist")
                return fail("the outermost element is <" + std::string(name) + ">, not <plist>");
            _inPropertyList = true;
            return;
        }
        const bool wantsKey = !_stack.empty() && _stack.back().kind == Kind::dictionary &&
                              _stack.back().keys.size() == _stack.back().values.size();
        if ((name == "key") != wantsKey)
            return fail(wantsKey
                            ? "a dictionary has <" + std::string(name) + "> where a key belongs"
                            : "a <key> where a value belongs");
        if (_stack.empty() && _root != KWPropertyList::none)
            return fail("the property list holds more than one value");
        if (name == "dict" || name == "array") {
            if (_stack.size() >= KWArchiveMaximumDepth)
                return fail("lists are nested more than " + std::to_string(KWArchiveMaximumDepth) +
                                " deep",
                            KWArchiveError::Kind::unsupported);
            _stack.push_back({name == "dict" ? Kind::dictionary : Kind::array, position(), {}, {}});
            return;
        }
        constexpr std::array<std::string_view, 8> leaves{"key",  "string", "integer", "real",
                                                         "true", "false",  "date",    "data"};
        if (std::ranges::find(leaves, name) == leaves.end())
            return fail("<" + std::string(name) + "> is no element of a property list");
        _leaf = name;
        _leafOffset = position();
        _text.clear();
    }

    void end(std::string_view name) {
        if (name == "plist")
            return;
        if (!_leaf.empty()) {
            const std::string leaf = std::move(_leaf);
            _leaf.clear();
            return endLeaf(leaf);
        }
        Container container = std::move(_stack.back());
        _stack.pop_back();
        if (container.keys.size() > container.values.size())
            return fail("a dictionary ends with a key that has no value");
        if (container.kind == Kind::array)
            return place(_list.addArray(container.values), container.offset);
        if (container.keys.size() == 1 && _list.stringValue(container.keys[0]) == uidKey) {
            const Index value = container.values[0];
            if (_list.kind(value) != Kind::integer || _list.intValue(value) < 0)
                return fail("a UID is not a whole number");
            return place({.kind = Kind::uid, .integer = _list.intValue(value)}, container.offset);
        }
        place(_list.addDictionary(container.keys, container.values), container.offset);
    }

    void endLeaf(std::string_view leaf) {
        const std::string_view text = trimmed(_text);
        if (leaf == "key") {
            _stack.back().keys.push_back(_list.addString(_text));
            _list._offsets.resize(_list.nodeCount(), _leafOffset);
        } else if (leaf == "string") {
            place(bytesNode(Kind::string, _text), _leafOffset);
        } else if (leaf == "data") {
            const auto bytes = base64Decoded(_text);
            if (!bytes)
                return fail("data is not base64");
            place(bytesNode(Kind::data, *bytes), _leafOffset);
        } else if (leaf == "true" || leaf == "false") {
            if (!text.empty())
                return fail("<" + std::string(leaf) + "> has contents");
            place({.kind = Kind::boolean, .integer = leaf == "true"}, _leafOffset);
        } else if (leaf == "integer") {
            endInteger(text);
        } else if (leaf == "real") {
            const auto value = KWDoubleFromString(text);
            if (!value)
                return fail("\"" + std::string(text.substr(0, 40)) + "\" is no real number");
            place({.kind = Kind::real, .real = *value}, _leafOffset);
        } else {
            const auto value = dateFromText(text);
            if (!value)
                return fail("\"" + std::string(text.substr(0, 40)) + "\" is no date");
            place({.kind = Kind::date, .real = *value}, _leafOffset);
        }
    }

    void endInteger(std::string_view text) {
        const bool negative = text.starts_with('-');
        std::string_view digits = text;
        if (negative || text.starts_with('+'))
            digits.remove_prefix(1);
        const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
        if (hexadecimal)
            digits.remove_prefix(2);
        std::uint64_t value = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                            hexadecimal ? 16 : 10);
        constexpr std::uint64_t limit = std::uint64_t{1} << 63;
        if (digits.empty() || result.ec != std::errc() ||
            result.ptr != digits.data() + digits.size() || (negative && value > limit))
            return fail("\"" + std::string(text.substr(0, 40)) +
                        "\" is no whole number of at most 64 bits");
        place({.kind = Kind::integer,
               .flag = !negative && value >= limit,
               .integer = static_cast<std::int64_t>(negative ? 0 - value : value)},
              _leafOffset);
    }

    void text(std::string_view text) {
        if (!_leaf.empty())
            _text += text;
        else if (!std::ranges::all_of(text, isSpace))
            fail("text between the elements of a property list");
    }

    KWPropertyList::Node bytesNode(Kind kind, std::string_view bytes) {
        const bool wide = std::ranges::any_of(bytes, [](char c) { return (c & 0x80) != 0; });
        return {.kind = kind,
                .flag = 1,
                .wide = kind == Kind::string && wide,
                .count = static_cast<std::uint32_t>(bytes.size()),
                .integer = _list.store(std::as_bytes(std::span(bytes)))};
    }

    /// Every value gets a node of its own, so that each has its own place in the file.
    void place(const KWPropertyList::Node& node, std::uint64_t offset) {
        place(_list.append(node), offset);
    }

    void place(Index node, std::uint64_t offset) {
        _list._offsets.resize(_list.nodeCount(), offset);
        if (_stack.empty())
            _root = node;
        else
            _stack.back().values.push_back(node);
    }

    KWPropertyList& _list;
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> _parser;
    std::vector<Container> _stack;
    bool _inPropertyList = false;
    /// The element without elements in it that is open, if one is.
    std::string _leaf;
    std::uint64_t _leafOffset = 0;
    std::string _text;
    Index _root = KWPropertyList::none;

    bool _failed = false;
    KWArchiveError::Kind _kind = KWArchiveError::Kind::damaged;
    std::uint64_t _offset = 0;
    std::string _reason;
};

void KWReadXMLPropertyList(KWPropertyList& list) {
    KWXMLPropertyListReader(list).read();
}
