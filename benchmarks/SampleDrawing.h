#pragma once

#include <KWBase/KWKeyFramedChannel.h>

#include <QColor>
#include <QSize>
#include <memory>
#include <random>
#include <vector>

// The picture that the curve view and its peer draw: 20 curves over ten seconds, in 1600 x 900.

inline constexpr QSize KWSampleViewSize(1600, 900);
inline constexpr int KWSampleCurveCount = 20;
inline constexpr int KWSampleSteps = 100;
inline constexpr float KWSampleSpan = 10;
inline constexpr int KWSampleManySteps = 100'000;

/// The widths and colours in which the view draws its channel and those behind it.
inline constexpr double KWSampleWidth = 2.5;
inline constexpr double KWSampleReferenceWidth = 1.5;
inline QColor KWSampleReferenceColor() {
    return QColor::fromRgbF(0.3f, 0.1f, 0.5f, 0.5f);
}

/// So many keys over the ten seconds, values in +-1.
inline std::shared_ptr<KWKeyFramedChannel> KWSampleDrawnChannel(int keys, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(-1, 1);
    auto channel = std::make_shared<KWKeyFramedChannel>();
    for (int k = 0; k < keys; ++k)
        channel->setValueForKeyframe(unit(random), KWTime(KWSampleSpan * static_cast<float>(k) /
                                                          static_cast<float>(keys - 1)));
    return channel;
}

/// One for each curve, the first of them in front.
inline std::vector<std::shared_ptr<KWKeyFramedChannel>> KWSampleDrawnChannels() {
    std::vector<std::shared_ptr<KWKeyFramedChannel>> all;
    for (unsigned k = 0; k < KWSampleCurveCount; ++k)
        all.push_back(KWSampleDrawnChannel(11, k));
    return all;
}
