#include <KWBase/KWKeyPasteboard.h>
#include <KWFoundation/KWText.h>

#include <QCoreApplication>
#include <QMimeData>
#include <QtEndian>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <span>
#include <string_view>

namespace {

QString sentence(const char* text) {
    return QCoreApplication::translate("KWKeyCommands", text);
}

// --- Our own type: a signature, the format's version, the unit type, and the number of keys; for
// each key its time, its value, its value in the user's unit, the length of its shape's block and
// that block. Numbers are of 32 bits, little-endian, as are those in a block of the usual length.

constexpr std::string_view signature = "KWKEYS\r\n";
constexpr std::uint32_t version = 1;
constexpr std::size_t leastKeySize = 16;

void putNumber(QByteArray& bytes, std::uint32_t number) {
    std::array<char, 4> four{};
    qToLittleEndian(number, four.data());
    bytes.append(four.data(), four.size());
}

void putFloat(QByteArray& bytes, float number) {
    putNumber(bytes, std::bit_cast<std::uint32_t>(number));
}

/// The floats of a record in the order of the clipboard, or back.
void exchangeOrder(std::span<std::byte> record) {
    if constexpr (std::endian::native == std::endian::big)
        if (record.size() == sizeof(HJHermiteParam))
            for (std::size_t at = 0; at < record.size(); at += 4)
                std::reverse(record.begin() + static_cast<std::ptrdiff_t>(at),
                             record.begin() + static_cast<std::ptrdiff_t>(at + 4));
}

QByteArray bytesOf(const KWCopiedKeys& copied) {
    QByteArray bytes(signature.data(), static_cast<qsizetype>(signature.size()));
    putNumber(bytes, version);
    putNumber(bytes, static_cast<std::uint32_t>(copied.unitType.value_or(KWUnitTypeNone)));
    putNumber(bytes, static_cast<std::uint32_t>(copied.keys.size()));
    for (std::size_t i = 0; i < copied.keys.size(); ++i) {
        const KWKey& key = copied.keys[i];
        putFloat(bytes, key.time);
        putFloat(bytes, key.value);
        putFloat(bytes, copied.userValues[i]);
        putNumber(bytes, static_cast<std::uint32_t>(key.record.size()));
        KWData record = key.record;
        exchangeOrder(record);
        for (const std::byte byte : record)
            bytes.append(std::to_integer<char>(byte));
    }
    return bytes;
}

/// Bytes of which some may be missing.
class Reader {
  public:
    explicit Reader(const QByteArray& bytes)
        : _left(std::as_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size())))) {}

    std::size_t left() const { return _left.size(); }
    /// Whether something was missing.
    bool isShort() const { return _isShort; }
    std::span<const std::byte> take(std::size_t count) {
        if (count > _left.size()) {
            _isShort = true;
            return {};
        }
        const auto taken = _left.first(count);
        _left = _left.subspan(count);
        return taken;
    }
    std::uint32_t takeNumber() {
        const auto four = take(4);
        return four.empty() ? 0 : qFromLittleEndian<std::uint32_t>(four.data());
    }
    float takeFloat() { return std::bit_cast<float>(takeNumber()); }

  private:
    std::span<const std::byte> _left;
    bool _isShort = false;
};

std::optional<KWCopiedKeys> keysFromBytes(const QByteArray& bytes, QString& fault) {
    fault = sentence(QT_TRANSLATE_NOOP("KWKeyCommands", "The keys on the clipboard are damaged."));
    Reader reader(bytes);
    const auto start = reader.take(signature.size());
    if (start.empty() || std::memcmp(start.data(), signature.data(), signature.size()) != 0)
        return std::nullopt;
    if (reader.takeNumber() != version && !reader.isShort()) {
        fault = sentence(QT_TRANSLATE_NOOP(
            "KWKeyCommands", "The keys on the clipboard are from another version of the program."));
        return std::nullopt;
    }
    KWCopiedKeys copied;
    copied.unitType = static_cast<std::int32_t>(reader.takeNumber());
    const std::size_t count = reader.takeNumber();
    if (count == 0 || count > reader.left() / leastKeySize)
        return std::nullopt;
    copied.keys.reserve(count);
    copied.userValues.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        KWKey key;
        key.time = reader.takeFloat();
        key.value = reader.takeFloat();
        copied.userValues.push_back(reader.takeFloat());
        const auto record = reader.take(reader.takeNumber());
        key.record.assign(record.begin(), record.end());
        exchangeOrder(key.record);
        if (reader.isShort() || !std::isfinite(key.time))
            return std::nullopt;
        copied.keys.push_back(std::move(key));
    }
    if (reader.left() != 0)
        return std::nullopt;
    fault.clear();
    return copied;
}

// --- Text.

std::string textOf(const KWCopiedKeys& copied) {
    std::string text;
    for (std::size_t i = 0; i < copied.keys.size(); ++i)
        text += KWExactStringFromFloat(copied.keys[i].time) + '\t' +
                KWExactStringFromFloat(copied.userValues[i]) + '\n';
    return text;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// What stands before the first line's end, which is taken off the text.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    const std::size_t ends = text.substr(end).starts_with("\r\n") ? 2 : 1;
    text.remove_prefix(std::min(end + ends, text.size()));
    return line;
}

/// The two columns of a line; nothing when there are more or less.
std::optional<std::array<std::string_view, 2>> columnsOf(std::string_view line) {
    line = trimmed(line);
    std::size_t at = line.npos;
    for (const char* const separators : {"\t", ";", ",", " \v\f"})
        if (at == line.npos)
            at = line.find_first_of(separators);
    if (at == line.npos)
        return std::nullopt;
    return std::array{trimmed(line.substr(0, at)), trimmed(line.substr(at + 1))};
}

std::optional<KWCopiedKeys> keysFromText(const std::string& text, QString& fault) {
    KWCopiedKeys copied;
    std::string_view left = text;
    int number = 0;
    bool isFirst = true;
    while (!left.empty()) {
        ++number;
        const std::string_view line = takeLine(left);
        if (trimmed(line).empty())
            continue;
        const auto columns = columnsOf(line);
        const auto time = columns ? KWDoubleFromString((*columns)[0]) : std::nullopt;
        const auto value = columns ? KWDoubleFromString((*columns)[1]) : std::nullopt;
        // Titles.
        if (std::exchange(isFirst, false) && columns && !time && !value && !left.empty())
            continue;
        if (!time || !value) {
            fault =
                sentence(QT_TRANSLATE_NOOP("KWKeyCommands",
                                           "Line %1 on the clipboard is not a time and a value."))
                    .arg(number);
            return std::nullopt;
        }
        const auto seconds = static_cast<float>(*time);
        const auto shown = static_cast<float>(*value);
        if (!std::isfinite(seconds) || !std::isfinite(shown)) {
            fault = sentence(QT_TRANSLATE_NOOP(
                                 "KWKeyCommands",
                                 "Line %1 on the clipboard has a number that is too large."))
                        .arg(number);
            return std::nullopt;
        }
        copied.keys.push_back({seconds, shown, KWKeyFramedChannel::hermiteData()});
        copied.userValues.push_back(shown);
    }
    if (copied.keys.empty()) {
        fault = sentence(QT_TRANSLATE_NOOP("KWKeyCommands", "There are no keys on the clipboard."));
        return std::nullopt;
    }
    return copied;
}

} // namespace

std::unique_ptr<QMimeData> KWMimeDataFromKeys(const KWCopiedKeys& copied) {
    auto data = std::make_unique<QMimeData>();
    data->setData(QLatin1String(KWKeysMimeType), bytesOf(copied));
    data->setText(QString::fromStdString(textOf(copied)));
    return data;
}

bool KWMayHoldKeys(const QMimeData& data) {
    return data.hasFormat(QLatin1String(KWKeysMimeType)) || data.hasText();
}

std::optional<KWCopiedKeys> KWKeysFromMimeData(const QMimeData& data, QString& fault) {
    if (data.hasFormat(QLatin1String(KWKeysMimeType)))
        return keysFromBytes(data.data(QLatin1String(KWKeysMimeType)), fault);
    return keysFromText(data.text().toStdString(), fault);
}
