#include <KWBase/KWTime.h>
#include <KWFoundation/KWClass.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWPropertyList.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

static_assert(std::is_trivially_copyable_v<KWTime>);
static_assert(std::is_nothrow_move_constructible_v<KWTime>);
static_assert(sizeof(KWTime) == 8);
static_assert(std::is_trivially_copyable_v<KWTimeValue>);
static_assert(KWTime() == KWTime(0.0f));
static_assert(KWTime(1) < KWTime(2));

namespace {

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

/// What the call prints on standard output.
template <class Call>
std::string printedBy(const Call& call) {
    testing::internal::CaptureStdout();
    call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

void expectScaled(KWTimeValue value, std::int32_t scale, std::int64_t ticks) {
    EXPECT_EQ(value.format, KWTimeFormatScaled);
    EXPECT_EQ(value.data.scaled.timeScale, scale);
    EXPECT_EQ(value.data.scaled.timeValue, ticks);
}

void expectSeconds(KWTimeValue value, double seconds) {
    EXPECT_EQ(value.format, KWTimeFormatSeconds);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value.data.seconds),
              std::bit_cast<std::uint64_t>(seconds));
}

int compareScaled(std::int64_t ticks, std::int32_t scale, std::int64_t otherTicks,
                  std::int32_t otherScale) {
    return KWTimeValueCompare(KWTimeValueMakeScaled(scale, ticks),
                              KWTimeValueMakeScaled(otherScale, otherTicks));
}

int compareSeconds(double a, double b) {
    return KWTimeValueCompare(KWTimeValueMakeFromSeconds(a), KWTimeValueMakeFromSeconds(b));
}

} // namespace

TEST(KWTimeValue, HoldsSecondsOrTicks) {
    expectSeconds(KWTimeValueZeroSecond(), 0.0);
    expectSeconds(KWTimeValueMakeFromSeconds(-2.5), -2.5);
    expectScaled(KWTimeValueMakeScaled(600, 90), 600, 90);
    expectSeconds(KWTimeValue(), 0.0);
}

TEST(KWTimeValue, ConversionToANewScaleCutsTowardZero) {
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(600, 90), 30), 30, 4);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(600, -90), 30), 30, -4);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(-600, 90), 30), 30, -4);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(600, 90), -30), -30, -4);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(600, 90), 0), 0, 0);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(1, 7), 1), 1, 7);
}

TEST(KWTimeValue, ConversionToANewScaleWrapsAt64Bits) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(-1, least), 1), 1, least);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(1, least), -1), -1, least);
    expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(1, std::int64_t{1} << 62), 4),
                 4, 0);
    std::mt19937_64 random(1);
    for (int i = 0; i < 5000; ++i) {
        const auto ticks = static_cast<std::int64_t>(random());
        const auto scale = static_cast<std::int32_t>(random());
        const auto newScale = static_cast<std::int32_t>(random());
        if (scale == 0 || scale == -1)
            continue;
        const auto product = static_cast<std::int64_t>(
            static_cast<std::uint64_t>(ticks) * static_cast<std::uint64_t>(std::int64_t{newScale}));
        expectScaled(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(scale, ticks), newScale),
                     newScale, product / scale);
    }
}

TEST(KWTimeValue, AScaleOfZeroIsADomainError) {
    EXPECT_THROW(KWTimeValueConvertToNewScale(KWTimeValueMakeScaled(0, 1), 30), std::domain_error);
    EXPECT_THROW(compareScaled(1, 30, 1, 0), std::domain_error);
    EXPECT_EQ(compareScaled(1, 0, 1, 30), 1);
    EXPECT_EQ(compareScaled(1, 0, 1, 0), 0);
}

TEST(KWTimeValue, SecondsAreNotConvertedToAScale) {
    const std::string printed = printedBy([] {
        expectSeconds(KWTimeValueConvertToNewScale(KWTimeValueMakeFromSeconds(1.5), 30), 1.5);
    });
    EXPECT_EQ(printed, "Not implemented !");
}

TEST(KWTimeValue, SecondsCompareAsNumbers) {
    EXPECT_EQ(compareSeconds(1, 2), -1);
    EXPECT_EQ(compareSeconds(2, 1), 1);
    EXPECT_EQ(compareSeconds(1, 1), 0);
    EXPECT_EQ(compareSeconds(0.0, -0.0), 0);
}

TEST(KWTimeValue, SecondsThatAreNoNumberCompareAsEqual) {
    EXPECT_EQ(compareSeconds(std::numeric_limits<double>::quiet_NaN(), 1), 0);
    EXPECT_EQ(compareSeconds(1, std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(KWTimeValue, TicksOfOneScaleCompareAsNumbers) {
    EXPECT_EQ(compareScaled(1, 30, 2, 30), -1);
    EXPECT_EQ(compareScaled(-1, 30, -2, 30), 1);
    EXPECT_EQ(compareScaled(2, 30, 2, 30), 0);
    EXPECT_EQ(compareScaled(std::numeric_limits<std::int64_t>::min(), 30,
                            std::numeric_limits<std::int64_t>::max(), 30),
              -1);
}

TEST(KWTimeValue, ComparingConvertsTheSecondToTheFirstOnesScale) {
    EXPECT_EQ(compareScaled(1, 2, 1, 3), 1);
}

TEST(KWTimeValue, ComparingScalesIsNotSymmetric) {
    EXPECT_EQ(compareScaled(1, 2, 1, 3), 1);
    EXPECT_EQ(compareScaled(1, 3, 1, 2), 0);
}

TEST(KWTimeValue, ComparingTicksWithSecondsPrintsOnce) {
    EXPECT_EQ(printedBy([] {
                  (void)KWTimeValueCompare(KWTimeValueMakeScaled(30, 1),
                                           KWTimeValueMakeFromSeconds(1));
              }),
              "Not implemented !");
    EXPECT_EQ(printedBy([] {
                  (void)KWTimeValueCompare(KWTimeValueMakeFromSeconds(1),
                                           KWTimeValueMakeScaled(30, 1));
              }),
              "");
}

TEST(KWTimeValue, PlaceholdersPrintAndAnswerTheirArgument) {
    const KWTimeValue value = KWTimeValueMakeScaled(30, 7);
    EXPECT_EQ(printedBy([&] {
                  expectScaled(KWTimeValueSubtract(value, KWTimeValueMakeScaled(30, 2)), 30, 7);
              }),
              "Not implemented !");
    EXPECT_EQ(printedBy([] {
                  expectSeconds(KWTimeValueConvertToScaled(KWTimeValueMakeFromSeconds(3)), 3);
              }),
              "Not implemented !");
}

TEST(KWTimeValue, TheOtherPlaceholdersAreInert) {
    const KWTimeValue value = KWTimeValueMakeScaled(30, 7);
    EXPECT_EQ(printedBy([&] {
                  expectSeconds(KWTimeValueConvertToSeconds(value), 0);
                  expectSeconds(KWTimeValueZeroScaled(), 0);
                  expectSeconds(KWTimeValueAdd(value, value), 0);
                  expectSeconds(KWTimeValueScale(value, 2), 0);
              }),
              "");
}

TEST(KWTimeValue, TheTypeEncodingIsFixed) {
    EXPECT_STREQ(KWTimeValueTypeEncoding, R"({_KWTimeValue="format"C"data"(?="seconds"d"scaled")"
                                          R"({?="timeScale"l"timeValue"q})})");
}

TEST(KWTime, IsZeroUnlessSaidOtherwise) {
    EXPECT_EQ(KWTime().time(), 0.0f);
    EXPECT_EQ(KWTime::timeWithReal(2.5f).time(), 2.5f);
    KWTime time(1);
    time.setTime(-3);
    EXPECT_EQ(time.time(), -3.0f);
}

TEST(KWTime, EqualityIsThatOfFloats) {
    EXPECT_TRUE(KWTime(1.5f).isEqual(1.5f));
    EXPECT_FALSE(KWTime(1.5f).isEqual(1.25f));
    EXPECT_FALSE(KWTime(noNumber).isEqual(noNumber));
    EXPECT_NE(KWTime(noNumber), KWTime(noNumber));
}

TEST(KWTime, ZeroAndMinusZeroAreEqualButHashApart) {
    EXPECT_TRUE(KWTime(0.0f).isEqual(-0.0f));
    EXPECT_EQ(KWTime(0.0f).hash(), 0u);
    EXPECT_EQ(KWTime(-0.0f).hash(), 0x80000000u);
    EXPECT_EQ(KWTime(1.0f).hash(), 0x3F800000u);
}

TEST(KWTime, TheLibrarysHashAgreesWithEquality) {
    EXPECT_EQ(std::hash<KWTime>()(0.0f), std::hash<KWTime>()(-0.0f));
    const std::unordered_set<KWTime> times{KWTime(0.0f), KWTime(-0.0f), KWTime(1.0f)};
    EXPECT_EQ(times.size(), 2u);
}

TEST(KWTime, ComparesAsBeforeAtOrAfter) {
    EXPECT_EQ(KWTime(1).compare(2), -1);
    EXPECT_EQ(KWTime(2).compare(1), 1);
    EXPECT_EQ(KWTime(2).compare(2), 0);
    EXPECT_EQ(KWTime(0.0f).compare(-0.0f), 0);
}

TEST(KWTime, ComparingWithNoNumberGivesOne) {
    EXPECT_EQ(KWTime(noNumber).compare(1), 1);
    EXPECT_EQ(KWTime(1).compare(noNumber), 1);
    EXPECT_EQ(KWTime(noNumber).compare(noNumber), 1);
    EXPECT_EQ(KWTime(noNumber) <=> KWTime(1), std::partial_ordering::unordered);
}

TEST(KWTime, IsDescribedWithSixDecimalsAndALineFeed) {
    EXPECT_EQ(KWTime(1.5f).description(), "1.500000\n");
    EXPECT_EQ(KWTime(-0.0f).description(), "-0.000000\n");
    EXPECT_EQ(KWTime(0.1f).description(), "0.100000\n");
    EXPECT_EQ(KWTime(16777216.0f).description(), "16777216.000000\n");
}

TEST(KWTime, ItsClassIsKnownToArchives) {
    const KWClass& aClass = KWValueClass<KWTime>::classObject();
    EXPECT_EQ(KWClassNamed("KWTime"), &aClass);
    EXPECT_EQ(aClass.name(), "KWTime");
    EXPECT_EQ(aClass.version(), 0);
    EXPECT_EQ(aClass.superclass(), &KWObject::classObject());
    const auto object = aClass.factory()();
    const auto* boxed = dynamic_cast<const KWBoxedValue<KWTime>*>(object.get());
    ASSERT_NE(boxed, nullptr);
    EXPECT_EQ(boxed->value, KWTime(0));
    EXPECT_EQ(&KWValueClass<KWTime>::realClass().aClass, &aClass);
    EXPECT_EQ(KWValueClass<KWTime>::realClass().key, "time");
}

TEST(KWTime, ArchivedWithAKeyedCoderAndReadBackKeepsItsFloatValueExactly) {
    constexpr float most = std::numeric_limits<float>::max();
    constexpr float infinite = std::numeric_limits<float>::infinity();
    std::vector<float> times = {0.0f, -0.0f, 1.0f / 3, 1e-45f,    -1e-45f,
                                most, -most, infinite, -infinite, 16777217.0f};
    std::mt19937 random(3);
    while (times.size() < 1000)
        if (const auto time = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            !std::isnan(time))
            times.push_back(time);
    for (const float time : times) {
        for (const auto format : {KWPropertyList::Format::binary, KWPropertyList::Format::xml}) {
            const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(
                std::make_shared<KWBoxedValue<KWTime>>(KWTime(time)), format);
            const auto read = std::dynamic_pointer_cast<KWBoxedValue<KWTime>>(
                KWKeyedUnarchiver::unarchiveObjectWithData(bytes));
            ASSERT_NE(read, nullptr);
            ASSERT_EQ(std::bit_cast<std::uint32_t>(read->value.time()),
                      std::bit_cast<std::uint32_t>(time))
                << time;
        }
    }
}

TEST(KWTime, IsArchivedAsARealOfEightBytes) {
    const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(
        std::make_shared<KWBoxedValue<KWTime>>(KWTime(0.1f)));
    const KWPropertyList list = KWPropertyList::parse(bytes);
    const auto objects = list.children(list.valueForKey(list.root(), "$objects"));
    const auto time = list.valueForKey(objects[1], "time");
    EXPECT_EQ(list.kind(time), KWPropertyList::Kind::real);
    EXPECT_FALSE(list.isSingle(time));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(list.realValue(time)),
              std::bit_cast<std::uint64_t>(static_cast<double>(0.1f)));
}
