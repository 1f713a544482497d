#pragma once

#include <tests/DocumentTestSupport.h>
#include <tests/GoldenLamp.h>

/// What the stored archives of a wave hold, apart from the text of its channel "swell", which
/// differs: an element with algebraic channels, one of them without an expression, and one with
/// none.
inline std::shared_ptr<KWElement> wave(const std::string& swellText) {
    auto element = std::make_shared<KWElement>("Wave");
    const auto level = constantChannel("level", 0.5F);
    level->setChannelColorIndex(2);
    element->addChannelToGroupNamed(level);
    const auto height = algebricChannel("height", "2*t+1");
    height->setUnitType(KWUnitTypeLength);
    element->addChannelToGroupNamed(height);
    const auto swell = algebricChannel("swell", swellText);
    swell->setChannelColorIndex(4);
    element->addChannelToGroupNamed(swell, "Sea");
    const LoggedLines log;
    const auto calm = algebricChannel("calm", "("); // refused, so that it has none
    element->addChannelToGroupNamed(calm, "Sea");
    return element;
}

/// Its second element has no algebraic channel.
inline KWArchiveValue waveDocument(const std::string& swellText) {
    auto buoy = std::make_shared<KWElement>("Buoy");
    return KWArchiveValue::mutableArray({wave(swellText), buoy});
}

inline void expectWave(const KWArchiveValue& root, const std::string& swellText) {
    ASSERT_TRUE(root.array());
    ASSERT_EQ(root.array()->elements.size(), 2U);
    const auto element = std::dynamic_pointer_cast<KWElement>(root.array()->elements[0].object());
    const auto buoy = std::dynamic_pointer_cast<KWElement>(root.array()->elements[1].object());
    ASSERT_TRUE(element && buoy);
    EXPECT_EQ(buoy->name(), "Buoy");
    const auto channel = [&](std::uint32_t index, std::uint32_t group) {
        return std::dynamic_pointer_cast<KWAlgebricChannel>(
            element->channelArray()->channelAtIndexInGroup(index, group));
    };
    const auto height = channel(1, KWUngroupedChannels);
    const auto swell = channel(0, 0);
    const auto calm = channel(1, 0);
    ASSERT_TRUE(height && swell && calm);
    EXPECT_EQ(height->sourceText(), "2*t+1");
    EXPECT_EQ(height->unitType(), KWUnitTypeLength);
    EXPECT_EQ(height->valueForTime(KWTime(1.5F)), 4.0F);
    EXPECT_EQ(swell->sourceText(), swellText);
    EXPECT_EQ(swell->channelColorIndex(), 4);
    EXPECT_EQ(swell->owner(), element.get());
    const auto original = wave(swellText)->channelArray()->channelAtIndexInGroup(0, 0);
    for (float t = -3; t < 20; t += 0.37F)
        EXPECT_EQ(bits(swell->valueForTime(t)), bits(original->valueForTime(t)));
    EXPECT_EQ(calm->sourceText(), std::nullopt);
    EXPECT_EQ(calm->valueForTime(KWTime(1)), 0.0F);
}
