#include <apps/kwedit/window/KWTimeText.h>

#include <QStringList>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace {

QString fixed(double value, int decimals) {
    std::array<char, 400> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, decimals);
    return QString::fromLatin1(digits.data(), static_cast<qsizetype>(end.ptr - digits.data()));
}

std::optional<double> number(const QString& text) {
    std::string digits = text.trimmed().toStdString();
    for (char& c : digits)
        if (c == ',')
            c = '.';
    const char* first = digits.data();
    const char* const last = first + digits.size();
    if (first != last && *first == '+')
        ++first;
    double value = 0;
    const auto read = std::from_chars(first, last, value);
    if (read.ec != std::errc() || read.ptr != last || !std::isfinite(value))
        return {};
    return value;
}

} // namespace

QString kwTimeText(double seconds, int decimals) {
    // Rounded first, so that no minute has 60 seconds.
    const double unit = std::pow(10, decimals);
    const double whole = std::round(std::abs(seconds) * unit) / unit;
    const QString sign = seconds < 0 && whole != 0 ? QStringLiteral("-") : QString();
    if (!(whole >= 60))
        return sign + fixed(whole, decimals);
    const double minutes = std::floor(whole / 60);
    QString rest = fixed(whole - 60 * minutes, decimals);
    if (rest.indexOf(QLatin1Char('.')) == 1 || rest.size() == 1)
        rest.prepend(QLatin1Char('0'));
    const double hours = std::floor(minutes / 60);
    if (hours == 0)
        return sign + fixed(minutes, 0) + QLatin1Char(':') + rest;
    return sign + fixed(hours, 0) + QLatin1Char(':') +
           fixed(minutes - 60 * hours, 0).rightJustified(2, QLatin1Char('0')) + QLatin1Char(':') +
           rest;
}

std::optional<double> kwSecondsFromText(const QString& text, double framesPerSecond,
                                        bool countsFrames) {
    QString rest = text.trimmed();
    if (rest.endsWith(QLatin1Char('f'), Qt::CaseInsensitive)) {
        countsFrames = true;
        rest.chop(1);
    } else if (rest.endsWith(QLatin1Char('s'), Qt::CaseInsensitive)) {
        countsFrames = false;
        rest.chop(1);
    }
    const bool isNegative = rest.startsWith(QLatin1Char('-'));
    const QStringList parts = (isNegative ? rest.mid(1) : rest).split(QLatin1Char(':'));
    if (parts.size() > 3)
        return {};
    double seconds = 0;
    for (const QString& part : parts) {
        const auto value = number(part);
        if (!value || *value < 0)
            return {};
        seconds = seconds * 60 + *value;
    }
    if (isNegative)
        seconds = -seconds;
    return countsFrames && parts.size() == 1 ? seconds / framesPerSecond : seconds;
}
