#include <KWBase/KWAngleFormatter.h>
#include <KWBase/KWLengthFormatter.h>
#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWBundle.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

// Names are recognised in the language that was in force at first, whichever test comes first.
const bool isEnglish = [] {
    KWBundle::frameworkBundle().setLanguage("en");
    return true;
}();

class KWFormatterTest : public testing::Test {
  protected:
    KWFormatterTest() { restore(); }
    ~KWFormatterTest() override { restore(); }

    void restore() {
        KWBundle::frameworkBundle().setLanguage("en");
        units.setDefaultLengthUnit(KWLengthUnitMeter);
        units.setDefaultAngleUnit(KWAngleUnitDegree);
    }
    std::string length(float value) const { return lengths.stringForObjectValue(KWNumber(value)); }
    std::string angle(float value) const { return angles.stringForObjectValue(KWNumber(value)); }

    static float read(const KWFormatter& formatter, const std::string& text) {
        KWArchiveValue value;
        std::string error = "untouched";
        EXPECT_TRUE(formatter.getObjectValueForStringErrorDescription(value, text, &error)) << text;
        EXPECT_EQ(error, "untouched");
        if (!value.number() || value.number()->type() != KWNumber::Type::float32) {
            ADD_FAILURE() << text << " does not read as a float";
            return 0;
        }
        return value.number()->floatValue();
    }
    void expectLength(const std::string& text, float meters) const {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(read(lengths, text)),
                  std::bit_cast<std::uint32_t>(meters))
            << text << " reads as " << read(lengths, text) << " instead of " << meters;
    }
    void expectAngle(const std::string& text, float radians) const {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(read(angles, text)),
                  std::bit_cast<std::uint32_t>(radians))
            << text << " reads as " << read(angles, text) << " instead of " << radians;
    }

    KWUnitController& units = KWUnitController::sharedUnitController();
    const KWLengthFormatter lengths;
    const KWAngleFormatter angles;
};

constexpr float infinity = std::numeric_limits<float>::infinity();

} // namespace

TEST_F(KWFormatterTest, EachKindHasOneSharedFormatterAndTheBaseHasNone) {
    EXPECT_EQ(KWFormatter::defaultFormatter(), nullptr);
    EXPECT_EQ(KWUnitFormatter::defaultFormatter(), nullptr);
    ASSERT_NE(KWLengthFormatter::defaultFormatter(), nullptr);
    EXPECT_EQ(KWLengthFormatter::defaultFormatter(), KWLengthFormatter::defaultFormatter());
    EXPECT_EQ(KWAngleFormatter::defaultFormatter(), KWAngleFormatter::defaultFormatter());
}

TEST_F(KWFormatterTest, ALengthIsShownInTheDefaultUnitWithItsShortName) {
    EXPECT_EQ(length(2.5f), "2.5 m");
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    EXPECT_EQ(length(2.5f), "250 cm");
    units.setDefaultLengthUnit(KWLengthUnitInch);
    EXPECT_EQ(length(0.0254f), "1 in");
}

TEST_F(KWFormatterTest, TextIsReadInTheDefaultUnit) {
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    expectLength("250", 2.5f);
}

TEST_F(KWFormatterTest, ANameBehindTheNumberPicksTheUnit) {
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    expectLength("1 in", 0.0254f);
    expectLength("1in", 0.0254f);
    expectLength("1 inch", 0.0254f);
    expectLength("2 m", 2.0f);
    expectLength("1 ft", 0.304801f);
    expectLength("1 mi", 1609.0f);
    expectLength("10 mm", 0.01f);
}

TEST_F(KWFormatterTest, AnUnknownNameCountsAsTheDefaultUnit) {
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    expectLength("250 furlong", 2.5f);
    expectLength("250 M", 2.5f);
    expectLength("250 cm2", 2.5f);
}

TEST_F(KWFormatterTest, OnlyTheFirstRunBehindTheNumberIsLookedAt) {
    expectLength("3 cm and more", 0.03f);
    expectLength("3 and cm", 3.0f);
    expectLength("3 4", 3.0f);
}

TEST_F(KWFormatterTest, TextWithoutANumberReadsAsZero) {
    for (const char* text : {"abc", "", "   ", "-", "+", ".", "-.", "--1", "e5", ".e5", "cm 3"})
        expectLength(text, 0.0f);
}

TEST_F(KWFormatterTest, NilGivesNilAndFalse) {
    for (const KWFormatter* formatter :
         {static_cast<const KWFormatter*>(&lengths), static_cast<const KWFormatter*>(&angles)}) {
        KWArchiveValue value = KWNumber(3.0f);
        EXPECT_FALSE(
            formatter->getObjectValueForStringErrorDescription(value, std::nullopt, nullptr));
        EXPECT_TRUE(value.isNil());
    }
}

TEST_F(KWFormatterTest, WhatIsNoNumberIsShownAsNothing) {
    for (const KWArchiveValue& value :
         {KWArchiveValue(), KWArchiveValue("2.5"), KWArchiveValue(KWData()),
          KWArchiveValue(std::make_shared<KWUnitController>())}) {
        EXPECT_EQ(lengths.stringForObjectValue(value), "");
        EXPECT_EQ(angles.stringForObjectValue(value), "");
    }
}

TEST_F(KWFormatterTest, NumbersOfEveryWidthAreShown) {
    EXPECT_EQ(lengths.stringForObjectValue(KWNumber(std::int32_t{7})), "7 m");
    EXPECT_EQ(lengths.stringForObjectValue(KWNumber(0.1)), "0.1 m");
    EXPECT_EQ(lengths.stringForObjectValue(KWNumber(true)), "1 m");
}

TEST_F(KWFormatterTest, AnglesAreKeptInRadians) {
    EXPECT_EQ(angle(3.14159265f), "180 deg");
    expectAngle("180", 3.14159265f);
    expectAngle("200 grad", 3.14159265f);
    expectAngle("0.5 rad", 0.5f);
    units.setDefaultAngleUnit(KWAngleUnitGrade);
    EXPECT_EQ(angle(3.14159265f), "200 grad");
    expectAngle("180 deg", 3.14159265f);
    expectAngle("200 cm", 3.14159265f);
}

TEST_F(KWFormatterTest, SevenDigitsAreShown) {
    EXPECT_EQ(length(1.0f / 3), "0.3333333 m");
    EXPECT_EQ(length(1e10f), "1e+10 m");
    EXPECT_EQ(length(-0.0f), "-0 m");
    EXPECT_EQ(length(infinity), "inf m");
}

TEST_F(KWFormatterTest, NumbersMayHaveASignAFractionAndAnExponent) {
    expectLength("+1.5", 1.5f);
    expectLength("-1.5e2", -150.0f);
    expectLength("1E+2", 100.0f);
    expectLength("1e-2", 0.01f);
    expectLength(".5", 0.5f);
    expectLength("5.", 5.0f);
    expectLength("5.cm", 0.05f);
    expectLength("-0", -0.0f);
    expectLength("1e999", infinity);
    expectLength("-1e999", -infinity);
    expectLength("1e-999", 0.0f);
    expectLength("1e39", infinity);
}

TEST_F(KWFormatterTest, AnExponentWithoutDigitsIsNone) {
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    expectLength("250e", 2.5f);
    expectLength("250e+", 2.5f);
    expectLength("250e m", 2.5f);
}

TEST_F(KWFormatterTest, WordsForNumbersAndHexadecimalAreNoNumbers) {
    for (const char* text : {"inf", "infinity", "nan", "NaN(1)", "infant", "-inf"})
        expectLength(text, 0.0f);
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    expectLength("0x10", 0.0f);
    EXPECT_EQ(KWScanNumber("infant").run, "infant");
    EXPECT_FALSE(KWScanNumber("infant").isThere);
    EXPECT_EQ(KWScanNumber("0x10").run, "x10");
    EXPECT_EQ(KWScanNumber("-inf").run, "-inf");
}

TEST_F(KWFormatterTest, ACommaEndsTheNumber) {
    expectLength("2,5", 2.0f);
    EXPECT_EQ(KWScanNumber("2,5").run, ",5");
}

TEST_F(KWFormatterTest, WhiteSpaceOfEveryScriptIsSkipped) {
    units.setDefaultLengthUnit(KWLengthUnitMile);
    expectLength(" \t\r\n 2 \v\f m ", 2.0f);
    expectLength("\xC2\xA0"
                 "2\xE2\x80\xAF"
                 "m\xE3\x80\x80",
                 2.0f);
    EXPECT_EQ(KWScanNumber("2\xE2\x80\x89"
                           "m")
                  .run,
              "m");
    EXPECT_TRUE(KWScanNumber("2 m \xC2\xA0").isAll);
    EXPECT_FALSE(KWScanNumber("2 m x").isAll);
    // A zero-width joiner is no white space, and half a character is nothing.
    EXPECT_EQ(KWScanNumber("2\xE2\x80\x8D").run, "\xE2\x80\x8D");
    EXPECT_EQ(KWScanNumber("2\xE2\x80").run, "\xE2\x80");
}

TEST_F(KWFormatterTest, AnyBytesAreTaken) {
    std::mt19937 random(20);
    const std::string alphabet("0123456789+-.eExinfa cm\t\xC2\xA0\xE2\x80\x00\xff", 31);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto length = random() % 12; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        const KWScannedNumber scanned = KWScanNumber(text);
        if (!scanned.run.empty()) {
            ASSERT_GE(scanned.run.data(), text.data());
            ASSERT_LE(scanned.run.data() + scanned.run.size(), text.data() + text.size());
        }
        ASSERT_TRUE(scanned.isThere || scanned.number == 0.0) << text;
        read(lengths, text);
        read(angles, text);
    }
}

TEST_F(KWFormatterTest, WhatIsShownReadsBackInWhateverUnit) {
    std::mt19937 random(21);
    std::uniform_real_distribution<float> values(-1000.0f, 1000.0f);
    for (const std::int32_t unit : {0, 1, 2, 3, 32, 33, 34})
        for (int round = 0; round < 200; ++round) {
            const float value = values(random);
            units.setDefaultLengthUnit(unit);
            const std::string shown = length(value);
            // Half of the seventh digit at most, and three roundings to float.
            const float tolerance = std::abs(value) * (5e-7f + 3 * 6e-8f);
            EXPECT_NEAR(read(lengths, shown), value, tolerance) << shown;
            units.setDefaultLengthUnit(unit == 0 ? 2 : 0);
            EXPECT_NEAR(read(lengths, shown), value, tolerance) << shown;
        }
}

TEST_F(KWFormatterTest, AChangeOfTheDefaultUnitIsTold) {
    std::vector<const KWObject*> told;
    std::int32_t seen = -1;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUnitControllerDefaultUnitDidChangeNotification, nullptr,
        [&](const KWNotification& notification) {
            told.push_back(notification.object());
            seen = units.defaultLengthUnit();
        });
    units.setDefaultLengthUnit(KWLengthUnitInch);
    EXPECT_EQ(told, std::vector<const KWObject*>{&units});
    EXPECT_EQ(seen, KWLengthUnitInch);
    units.setDefaultLengthUnit(KWLengthUnitInch);
    EXPECT_EQ(told.size(), 1u);
    units.setDefaultAngleUnit(KWAngleUnitRadian);
    EXPECT_EQ(told.size(), 2u);
    units.setDefaultAngleUnit(KWAngleUnitRadian);
    EXPECT_EQ(told.size(), 2u);
}
