#pragma once

#include "TestFiles.h"

#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/common/KWElement.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>

inline std::filesystem::path golden(const std::string& name) {
    return std::filesystem::path(std::getenv("KWBASE_TEST_DATA")) / "golden" / name;
}

inline std::shared_ptr<KWElement> lamp() {
    auto element = std::make_shared<KWElement>("Lamp \u00fc");
    auto hue = channelWithNameInitialValueColor<KWConstantChannel>("hue", 0.1f, 3);
    hue->setUnitType(KWUnitTypeAngle);
    element->addChannelToGroupNamed(hue, "");
    auto glow = std::make_shared<KWKeyFramedChannel>("glow");
    HJHermiteParam shape;
    shape.tension = 0.5f;
    shape.bias = -1;
    shape.continuity = 0.25f;
    glow->setValueForKeyframe(1, KWTime(0));
    glow->setValueHermiteValueForKeyframe(-2.5f, KWKeyFramedChannel::hermiteDataFrom(&shape),
                                          KWTime(0.1f));
    glow->setValueForKeyframe(3e30f, KWTime(1000));
    glow->setRepeatMode(KWRepeatModePingPong);
    element->addChannelToGroupNamed(glow, "Light");
    auto dark = std::make_shared<KWKeyFramedChannel>("dark");
    dark->setKeyFrameChannelMode(KWKeyFrameModeStep);
    dark->setUnitType(KWUnitTypeLength);
    element->addChannelToGroupNamed(dark, "Light");
    element->channelArray()->addGroupWithName("Empty");
    return element;
}

inline KWArchiveValue lampDocument() {
    return KWArchiveValue::mutableArray({lamp()});
}

inline std::uint32_t bits(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

inline void expectLamp(const KWArchiveValue& root) {
    ASSERT_TRUE(root.array());
    const auto element =
        std::dynamic_pointer_cast<KWElement>(root.array()->elements.at(0).object());
    ASSERT_TRUE(element);
    EXPECT_EQ(element->name(), "Lamp \u00fc");
    const auto array = element->channelArray();
    const auto hue = array->channelAtIndexInGroup(0, KWUngroupedChannels);
    EXPECT_EQ(hue->isa().name(), "KWConstantChannel");
    EXPECT_EQ(bits(hue->valueForTime(std::nullopt)), bits(0.1f));
    EXPECT_EQ(hue->channelColorIndex(), 3);
    EXPECT_EQ(hue->unitType(), KWUnitTypeAngle);
    EXPECT_EQ(hue->owner(), element.get());
    ASSERT_EQ(array->channelGroupCount(), 2u);
    EXPECT_EQ(array->channelGroupAtIndex(1)->count(), 0u);
    const auto group = array->groupWithName("Light");
    const auto glow =
        std::dynamic_pointer_cast<KWKeyFramedChannel>(array->channelAtIndexInGroup(0, 0));
    ASSERT_TRUE(glow);
    EXPECT_EQ(glow->channelGroup(), group);
    const auto original =
        std::dynamic_pointer_cast<KWKeyFramedChannel>(lamp()->channelArray()->channels()->at(1));
    EXPECT_EQ(glow->keyFrameChannelMode(), KWKeyFrameModeHermite);
    EXPECT_EQ(glow->repeatMode(), KWRepeatModePingPong);
    EXPECT_EQ(glow->unitType(), KWUnitTypeNone);
    EXPECT_EQ(glow->allKeyframes(), original->allKeyframes());
    for (const KWTime key : original->allKeyframes()) {
        EXPECT_EQ(bits(glow->valueForKeyframe(key)), bits(original->valueForKeyframe(key)));
        EXPECT_EQ(glow->hermiteValueForKeyframe(key), original->hermiteValueForKeyframe(key));
    }
    for (float t = -3; t < 2010; t += 0.37f)
        EXPECT_EQ(bits(glow->valueForTime(t)), bits(original->valueForTime(t)));
}
