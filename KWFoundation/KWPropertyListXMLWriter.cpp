#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWPropertyListForms.h>
#include <KWFoundation/KWPropertyListXML.h>
#include <KWFoundation/KWText.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace {

using namespace KWXML;
using Index = KWPropertyList::Index;
using Kind = KWPropertyList::Kind;

class XMLWriter {
  public:
    XMLWriter(const KWPropertyList& list, KWByteSink& sink)
        : _list(list), _sink(sink),
          _budget(1024 * std::uint64_t{list.nodeCount()} + 16 * list.contentSize() + 65536) {}

    void write() {
        _sink.put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                  "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                  "<plist version=\"1.0\">\n");
        writeNode(_list.root());
        while (!_open.empty())
            writeNext();
        _sink.put("</plist>\n");
    }

  private:
    /// A container that is being written, and the entries still to come.
    struct Open {
        Index node;
        std::uint32_t next = 0;
        std::vector<std::uint32_t> order; ///< of a dictionary: its entries by key
    };

    [[noreturn]] void fail(Index node, std::string reason) const {
        throw KWArchiveError(KWArchiveError::Kind::unsupported, _list.file(),
                             _list.file().empty() ? std::nullopt
                                                  : std::optional(_list.offset(node)),
                             {}, std::move(reason));
    }

    void spend(Index node, std::uint64_t bytes) {
        if (bytes > _budget)
            fail(node, "lists share their parts too often for the XML form");
        _budget -= bytes;
    }

    void indent(std::size_t depth) {
        static const std::string tabs(KWArchiveMaximumDepth + 2, '\t');
        _sink.put(std::string_view(tabs).substr(0, depth));
    }

    void writeNext() {
        Open& open = _open.back();
        const std::uint32_t count = _list.count(open.node);
        const bool isDictionary = _list.kind(open.node) == Kind::dictionary;
        if (open.next == count) {
            const Index node = open.node;
            _open.pop_back();
            indent(_open.size());
            _sink.put(_list.kind(node) == Kind::dictionary ? "</dict>\n" : "</array>\n");
            return;
        }
        const std::uint32_t entry = isDictionary ? open.order[open.next] : open.next;
        ++open.next;
        const auto children = _list.children(open.node);
        if (isDictionary) {
            indent(_open.size());
            _sink.put("<key>");
            writeText(children[entry]);
            _sink.put("</key>\n");
        }
        writeNode(children[isDictionary ? count + entry : entry]);
    }

    void writeNode(Index node) {
        // What a binary list shares is written out each time it is met.
        spend(node, 16 + _open.size());
        indent(_open.size());
        switch (_list.kind(node)) {
        case Kind::null:
            fail(node, "the XML form has no null");
        case Kind::set:
            fail(node, "the XML form has no sets");
        case Kind::boolean:
            return _sink.put(_list.boolValue(node) ? "<true/>\n" : "<false/>\n");
        case Kind::integer:
            return writeElement("integer", integerText(node));
        case Kind::real:
            return writeElement("real", realText(_list.realValue(node)));
        case Kind::date:
            return writeElement("date", dateText(node));
        case Kind::uid:
            return writeUID(node);
        case Kind::string:
            _sink.put("<string>");
            writeText(node);
            return _sink.put("</string>\n");
        case Kind::data:
            return writeData(node);
        case Kind::array:
        case Kind::dictionary:
            return openContainer(node);
        }
    }

    void openContainer(Index node) {
        const bool isDictionary = _list.kind(node) == Kind::dictionary;
        if (_list.count(node) == 0)
            return _sink.put(isDictionary ? "<dict/>\n" : "<array/>\n");
        if (_open.size() >= KWArchiveMaximumDepth)
            fail(node, "lists are nested more than " + std::to_string(KWArchiveMaximumDepth) +
                           " deep, or hold themselves");
        _sink.put(isDictionary ? "<dict>\n" : "<array>\n");
        Open open{.node = node, .order = {}};
        if (isDictionary) {
            open.order.resize(_list.count(node));
            std::iota(open.order.begin(), open.order.end(), 0u);
            const auto keys = _list.children(node);
            std::ranges::stable_sort(open.order, {}, [&](std::uint32_t entry) {
                return _list.stringValue(keys[entry]);
            });
        }
        _open.push_back(std::move(open));
    }

    void writeElement(std::string_view name, std::string_view text) {
        _sink.put("<");
        _sink.put(name);
        _sink.put(">");
        _sink.put(text);
        _sink.put("</");
        _sink.put(name);
        _sink.put(">\n");
    }

    void writeUID(Index node) {
        const std::size_t depth = _open.size();
        _sink.put("<dict>\n");
        indent(depth + 1);
        writeElement("key", uidKey);
        indent(depth + 1);
        writeElement("integer", std::to_string(_list.uidValue(node)));
        indent(depth);
        _sink.put("</dict>\n");
    }

    std::string integerText(Index node) const {
        return _list.isUnsigned(node) ? std::to_string(_list.uidValue(node))
                                      : std::to_string(_list.intValue(node));
    }

    static std::string realText(double value) {
        if (std::isinf(value))
            return value > 0 ? "+infinity" : "-infinity";
        return std::isnan(value) ? "nan" : KWExactStringFromDouble(value);
    }

    std::string dateText(Index node) const {
        const double value = _list.realValue(node);
        const std::int64_t first = (daysFromCivil(0, 1, 1) - epochDays) * secondsPerDay;
        const std::int64_t end = (daysFromCivil(10000, 1, 1) - epochDays) * secondsPerDay;
        if (!(value >= static_cast<double>(first) && value < static_cast<double>(end)) ||
            value != std::floor(value))
            fail(node,
                 "the XML form has no date of parts of a second, or outside the years 0 to 9999");
        const auto seconds = static_cast<std::int64_t>(value);
        const std::int64_t day = (seconds - first) / secondsPerDay;
        const auto inDay = static_cast<unsigned>((seconds - first) % secondsPerDay);
        const Civil civil = civilFromDays(day + daysFromCivil(0, 1, 1));
        std::string text = "0000-00-00T00:00:00Z";
        const auto put = [&](std::size_t at, std::size_t digits, std::uint64_t number) {
            for (std::size_t k = digits; k-- > 0; number /= 10)
                text[at + k] = static_cast<char>('0' + number % 10);
        };
        put(0, 4, static_cast<std::uint64_t>(civil.year));
        put(5, 2, civil.month);
        put(8, 2, civil.day);
        put(11, 2, inDay / 3600);
        put(14, 2, inDay / 60 % 60);
        put(17, 2, inDay % 60);
        return text;
    }

    void writeText(Index node) {
        spend(node, _list.count(node));
        if (_list.isASCII(node))
            writeText(node, _list.stringValue(node));
        else
            writeText(node, wellFormed(_list.stringValue(node)));
    }

    /// The text with U+FFFD for what is no UTF-8, as the binary form has it.
    static std::string wellFormed(std::string_view text) {
        std::string bytes;
        for (const char16_t unit : KWUTF16FromUTF8(text)) {
            bytes += static_cast<char>(unit >> 8);
            bytes += static_cast<char>(unit & 0xff);
        }
        return KWUTF8FromUTF16(bytes);
    }

    void writeText(Index node, std::string_view text) {
        std::size_t plain = 0;
        for (std::size_t k = 0; k < text.size(); ++k) {
            std::string_view escape;
            switch (text[k]) {
            case '&':
                escape = "&amp;";
                break;
            case '<':
                escape = "&lt;";
                break;
            case '>':
                escape = "&gt;";
                break;
            case '\r':
                escape = "&#13;";
                break;
            default:
                checkCharacter(node, text.substr(k));
                continue;
            }
            _sink.put(text.substr(plain, k - plain));
            _sink.put(escape);
            plain = k + 1;
        }
        _sink.put(text.substr(plain));
    }

    /// XML has no control characters, no lone surrogates, and not U+FFFE or U+FFFF.
    void checkCharacter(Index node, std::string_view rest) const {
        const auto byte = static_cast<unsigned char>(rest[0]);
        const bool control = byte < 0x20 && byte != '\t' && byte != '\n';
        const bool surrogate =
            byte == 0xed && rest.size() > 1 && static_cast<unsigned char>(rest[1]) >= 0xa0;
        const bool noncharacter =
            rest.starts_with("\xef\xbf\xbe") || rest.starts_with("\xef\xbf\xbf");
        if (control || surrogate || noncharacter)
            fail(node, "a string holds a character that the XML form cannot carry");
    }

    void writeData(Index node) {
        constexpr std::size_t lineBytes = 57;
        const std::size_t depth = _open.size();
        auto bytes = _list.dataValue(node);
        spend(node, bytes.size());
        _sink.put("<data>\n");
        while (!bytes.empty()) {
            indent(depth);
            const auto line = bytes.first(std::min(lineBytes, bytes.size()));
            _sink.put(base64(line));
            _sink.put("\n");
            bytes = bytes.subspan(line.size());
        }
        indent(depth);
        _sink.put("</data>\n");
    }

    static std::string base64(std::span<const std::byte> bytes) {
        std::string text;
        for (std::size_t k = 0; k < bytes.size(); k += 3) {
            std::uint32_t group = 0;
            const std::size_t count = std::min<std::size_t>(3, bytes.size() - k);
            for (std::size_t m = 0; m < 3; ++m)
                group = group << 8 | (m < count ? std::to_integer<std::uint32_t>(bytes[k + m]) : 0);
            for (std::size_t m = 0; m < 4; ++m)
                text += m <= count ? base64Digits[group >> (6 * (3 - m)) & 63] : '=';
        }
        return text;
    }

    const KWPropertyList& _list;
    KWByteSink& _sink;
    std::uint64_t _budget;
    std::vector<Open> _open;
};

} // namespace

void KWWriteXMLPropertyList(const KWPropertyList& list, KWByteSink& sink) {
    XMLWriter(list, sink).write();
}
