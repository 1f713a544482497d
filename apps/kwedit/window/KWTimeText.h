#pragma once

#include <QString>
#include <optional>

// Times as people read and type them, whatever the locale of the process.

/// "3.48" with that many decimals, and from a minute on "1:03.48" or "2:00:03.48".
QString kwTimeText(double seconds, int decimals);

/// The seconds that a text means: a number, with a point or a comma, or one after minutes, or hours
/// and minutes, with colons. "s" behind it makes it seconds, "f" frames of that rate; without
/// either it is frames where `countsFrames`. Nothing for any other text.
std::optional<double> kwSecondsFromText(const QString& text, double framesPerSecond,
                                        bool countsFrames);
