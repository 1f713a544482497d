#include "ChannelTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::shared_ptr<KWAlgebricChannel> channelWith(const std::string& text) {
    auto channel = std::make_shared<KWAlgebricChannel>("wave");
    EXPECT_TRUE(channel->setExpression(text)) << text;
    return channel;
}

std::shared_ptr<KWAlgebricChannel> copyOf(const KWAlgebricChannel& channel) {
    return std::dynamic_pointer_cast<KWAlgebricChannel>(channel.copy());
}

} // namespace

TEST(KWAlgebricChannel, IsAChannelOfVersionZero) {
    EXPECT_EQ(KWClassNamed("KWAlgebricChannel"), &KWAlgebricChannel::classObject());
    EXPECT_EQ(KWAlgebricChannel::classObject().version(), 0);
    EXPECT_EQ(KWAlgebricChannel::classObject().superclass(), &KWChannel::classObject());
    EXPECT_EQ(KWAlgebricChannel().name(), "no name");
}

TEST(KWAlgebricChannel, ANewOneHasAnInterpreterAndTheValueZero) {
    const KWAlgebricChannel channel;
    ASSERT_NE(channel.interpreter(), nullptr);
    EXPECT_EQ(channel.expression(), "");
    EXPECT_EQ(channel.sourceText(), std::nullopt);
    EXPECT_EQ(bitsOf(channel.valueForTime(KWTime(3))), 0U);
    EXPECT_TRUE(channel.dependsOnTime());
}

TEST(KWAlgebricChannel, AnAcceptedTextTellsOnce) {
    const auto channel = channelWith("t");
    CountingOwner owner;
    channel->setOwner(&owner);
    channel->updateForTime(KWTime(1));
    NoticeCounter notices(channel.get());
    EXPECT_TRUE(channel->setExpression("2*t"));
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(owner.invalidations, 1);
    EXPECT_FALSE(channel->isValid());
    EXPECT_EQ(channel->valueForTime(KWTime(4)), 8);
    EXPECT_EQ(channel->valueForTime(std::nullopt), 0);
}

TEST(KWAlgebricChannel, ARefusedTextTellsNobodyAndKeepsTheCache) {
    const KWLogHandler before = KWSetLogHandler([](std::string_view) {});
    const auto channel = channelWith("t+1");
    CountingOwner owner;
    channel->setOwner(&owner);
    channel->updateForTime(KWTime(1));
    NoticeCounter notices(channel.get());
    EXPECT_FALSE(channel->setExpression("t+"));
    EXPECT_EQ(channel->fault().kind, KWExpressionFault::Kind::missing);
    EXPECT_FALSE(channel->setExpression(std::nullopt));
    EXPECT_EQ(notices.count, 0);
    EXPECT_EQ(owner.invalidations, 0);
    EXPECT_TRUE(channel->isValid());
    EXPECT_EQ(channel->value(), 2);
    EXPECT_EQ(channel->expression(), std::nullopt);
    EXPECT_EQ(channel->valueForTime(KWTime(1)), 0);
    KWSetLogHandler(before);
}

TEST(KWAlgebricChannel, SettingAValueStoresNothing) {
    const auto channel = channelWith("2*t");
    NoticeCounter notices(channel.get());
    channel->setValueForTime(7, KWTime(1));
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(channel->expression(), "2*t");
    EXPECT_EQ(channel->valueForTime(KWTime(1)), 2);
}

TEST(KWAlgebricChannel, ABatchIsTheSameAsOneByOne) {
    const auto channel = channelWith("sin(t)*exp(-t/3)+2*t^2");
    std::vector<float> times;
    for (int k = -300; k < 300; ++k)
        times.push_back(static_cast<float>(k) * 0.37F);
    std::vector<float> values(times.size());
    channel->valuesForTimes(times, values);
    for (std::size_t k = 0; k < times.size(); ++k)
        EXPECT_EQ(bitsOf(values[k]), bitsOf(channel->valueForTime(KWTime(times[k]))));
    float two[2];
    EXPECT_THROW(channel->valuesForTimes(times, two), std::invalid_argument);
}

TEST(KWAlgebricChannel, ACopyHasTheSameValuesAndIsIndependent) {
    // The printed texts of these read back as something else, or not at all.
    for (const char* const text : {"ln(t+3)", "log(t+3)", "t-1", "abs(t)", "5-t^2", "exp(t)"}) {
        const auto channel = channelWith(text);
        channel->setUnitType(KWUnitTypeAngle);
        channel->setChannelColorIndex(3);
        const auto copy = copyOf(*channel);
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(copy->name(), "wave");
        EXPECT_EQ(copy->unitType(), KWUnitTypeAngle);
        EXPECT_EQ(copy->channelColorIndex(), 3);
        EXPECT_EQ(copy->expression(), channel->expression());
        for (const float time : {-2.5F, 0.0F, 0.1F, 4.0F})
            EXPECT_EQ(bitsOf(copy->valueForTime(KWTime(time))),
                      bitsOf(channel->valueForTime(KWTime(time))));
        EXPECT_TRUE(copy->setExpression("42"));
        EXPECT_EQ(channel->sourceText(), text);
    }
}

TEST(KWAlgebricChannel, ACopyHasTheModeOfItsSource) {
    KWAlgebricChannel channel;
    ASSERT_TRUE(channel.interpreter()->setExpressionMode("th(x)+y", KWExpressionModeXY));
    const auto copy = copyOf(channel);
    EXPECT_EQ(copy->interpreter()->mode(), KWExpressionModeXY);
    EXPECT_EQ(copy->expression(), "tanh(x)+y");
    EXPECT_EQ(copy->sourceText(), "th(x)+y");
    EXPECT_EQ(bitsOf(copy->valueForTime(KWTime(1))), bitsOf(std::tanh(1.0F)));
}

TEST(KWAlgebricChannel, ACopyOfOneWithoutAnExpressionHasNoneAndLogsNothing) {
    const auto refused = channelWith("t");
    std::vector<std::string> lines;
    const KWLogHandler before =
        KWSetLogHandler([&lines](std::string_view line) { lines.emplace_back(line); });
    EXPECT_EQ(copyOf(KWAlgebricChannel())->expression(), "");
    EXPECT_FALSE(refused->setExpression("t+"));
    lines.clear();
    const auto copy = copyOf(*refused);
    EXPECT_EQ(copy->expression(), std::nullopt);
    EXPECT_EQ(copy->valueForTime(KWTime(1)), 0);
    EXPECT_TRUE(lines.empty());
    KWSetLogHandler(before);
}

TEST(KWAlgebricChannel, TakingTheContentsOfOneWithoutAnExpressionClearsItAndTells) {
    const auto channel = channelWith("2*t");
    channel->updateForTime(KWTime(1));
    NoticeCounter notices(channel.get());
    EXPECT_TRUE(channel->takeContentsOf(KWAlgebricChannel()));
    EXPECT_EQ(channel->expression(), "");
    EXPECT_EQ(channel->sourceText(), std::nullopt);
    EXPECT_EQ(channel->valueForTime(KWTime(4)), 0);
    EXPECT_FALSE(channel->isValid());
    EXPECT_EQ(notices.count, 1);
    EXPECT_TRUE(channel->takeContentsOf(*channelWith("3*t")));
    EXPECT_EQ(channel->valueForTime(KWTime(4)), 12);
}

TEST(KWAlgebricChannel, SettingThroughTheInterpreterTellsNobody) {
    const auto channel = channelWith("2*t");
    channel->updateForTime(KWTime(1));
    NoticeCounter notices(channel.get());
    EXPECT_TRUE(channel->interpreter()->setExpressionMode("3*t", KWExpressionModeT));
    EXPECT_EQ(notices.count, 0);
    EXPECT_TRUE(channel->isValid());
    EXPECT_EQ(channel->value(), 2);
}

TEST(KWAlgebricChannel, IsNotMadeFromAChannelOfAnotherClass) {
    EXPECT_EQ(KWAlgebricChannel::initWithChannel<KWAlgebricChannel>(KWConstantChannel()), nullptr);
    EXPECT_EQ(KWChannel::initWithChannel<KWConstantChannel>(KWAlgebricChannel()), nullptr);
}

TEST(KWAlgebricChannel, AKeyedArchiveHoldsTheInterpreterBesideTheChannelsPart) {
    const auto channel = channelWith("2*t");
    const auto coder = fieldsOf(*channel);
    EXPECT_EQ(coder->calls(), "name:object colorIndex:int32 channelGroup:conditional "
                              "unitType:int32 owner:conditional interpreter:object");
    for (const auto format : {KWPropertyList::Format::binary, KWPropertyList::Format::xml}) {
        const auto read = archivedAndRead(channel, format);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->name(), "wave");
        ASSERT_NE(read->interpreter(), nullptr);
        EXPECT_EQ(read->expression(), std::nullopt);
        EXPECT_EQ(read->valueForTime(KWTime(4)), 0);
        EXPECT_TRUE(read->setExpression("3*t"));
    }
}

TEST(KWAlgebricChannel, ASequentialArchiveGivesTheExpressionBack) {
    KWArchiver archiver;
    archiver.encodeRootObject(channelWith("2*t+exp(0)"));
    KWUnarchiver it(archiver.archiverData());
    const auto read = std::dynamic_pointer_cast<KWAlgebricChannel>(it.decodeObject().object());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->expression(), "2*t+etp(0)");
    EXPECT_EQ(read->valueForTime(KWTime(4)), 9);
}

TEST(KWAlgebricChannel, AnArchiveWithoutInterpreterGivesAChannelThatTakesNoExpression) {
    const auto coder = fieldsOf(*channelWith("2*t"));
    coder->remove("interpreter");
    KWAlgebricChannel channel;
    ASSERT_TRUE(channel.initWithCoder(*coder));
    EXPECT_EQ(channel.interpreter(), nullptr);
    EXPECT_EQ(channel.expression(), std::nullopt);
    EXPECT_FALSE(channel.setExpression("t"));
    EXPECT_EQ(channel.fault().kind, KWExpressionFault::Kind::noInterpreter);
    EXPECT_EQ(channel.fault().sentence(), "the channel has no interpreter");
    EXPECT_EQ(channel.valueForTime(KWTime(1)), 0);
    float values[] = {7};
    channel.valuesForTimes(std::vector<float>{1}, values);
    EXPECT_EQ(values[0], 0);
    EXPECT_NE(channel.copy(), nullptr);
}

TEST(KWAlgebricChannel, SomethingElseInTheInterpretersPlaceIsAnError) {
    const auto coder = fieldsOf(*channelWith("2*t"));
    coder->replace("interpreter", "text");
    KWAlgebricChannel channel;
    EXPECT_THROW(channel.initWithCoder(*coder), KWArchiveError);
}
