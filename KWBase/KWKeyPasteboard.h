#pragma once

#include <KWBase/KWKeyChange.h>

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QMimeData;

// Keys on their way through the clipboard.

/// The type of our own, in which keys keep every bit.
inline constexpr const char* KWKeysMimeType = "application/x-kwbase-keys";

/// Keys that are copied or read.
struct KWCopiedKeys {
    /// With values as stored. In order of time when copied; as they come when read. The times are
    /// finite.
    std::vector<KWKey> keys;
    /// The same values in the unit that the user had chosen.
    std::vector<float> userValues;
    /// Of the channel that they are from. Nothing where they are from a text, whose values are in
    /// the user's unit.
    std::optional<std::int32_t> unitType;
};

/// With the type of our own, and as text: a line for each key, with its time in seconds and its
/// value in the user's unit, tab-separated. The decimal sign is a point, and the numbers read back
/// as the same floats.
std::unique_ptr<QMimeData> KWMimeDataFromKeys(const KWCopiedKeys& copied);

/// Whether there may be keys in it; they are not looked into.
bool KWMayHoldKeys(const QMimeData& data);

/// At least one key; nothing, and one sentence in `fault`, where there is none or where something
/// is wrong with them. Of texts those are understood that have a time and a value in each line,
/// with a tab, a semicolon, a comma or blanks between them, and in the first line maybe titles.
std::optional<KWCopiedKeys> KWKeysFromMimeData(const QMimeData& data, QString& fault);
