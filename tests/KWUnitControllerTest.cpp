#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWBundle.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

// Names are recognised in the language that was in force at first, whichever test comes first.
const bool isEnglish = [] {
    KWBundle::frameworkBundle().setLanguage("en");
    return true;
}();

constexpr std::int32_t lengthUnits[] = {0, 1, 2, 3, 32, 33, 34};
constexpr std::int32_t angleUnits[] = {0, 1, 2};
constexpr const char* languages[] = {"en", "fr", "de", "ja"};

void expectSame(float value, float expected) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(expected))
        << value << " instead of " << expected;
}

std::string translated(std::string_view key) {
    return KWBundle::frameworkBundle().localizedStringForKeyValueTable(key, "missing", "translate");
}

class KWUnitControllerTest : public testing::Test {
  protected:
    KWUnitControllerTest() { KWBundle::frameworkBundle().setLanguage("en"); }
    ~KWUnitControllerTest() override { KWBundle::frameworkBundle().setLanguage("en"); }

    float length(float value, std::int32_t from, std::int32_t to) const {
        return units.convertLengthFromUnitToUnit(value, from, to);
    }
    float angle(float value, std::int32_t from, std::int32_t to) const {
        return units.convertAngleFromUnitToUnit(value, from, to);
    }

    KWUnitController units;
};

} // namespace

TEST_F(KWUnitControllerTest, DefaultsAreMeterAndDegree) {
    EXPECT_EQ(units.defaultLengthUnit(), KWLengthUnitMeter);
    EXPECT_EQ(units.defaultAngleUnit(), KWAngleUnitDegree);
}

TEST_F(KWUnitControllerTest, DefaultsAreNotChecked) {
    units.setDefaultLengthUnit(4);
    units.setDefaultAngleUnit(-7);
    EXPECT_EQ(units.defaultLengthUnit(), 4);
    EXPECT_EQ(units.defaultAngleUnit(), -7);
}

TEST_F(KWUnitControllerTest, TheSharedOneIsAlwaysTheSame) {
    EXPECT_EQ(&KWUnitController::sharedUnitController(), &KWUnitController::sharedUnitController());
    EXPECT_EQ(KWUnitController::sharedUnitController().isa().name(), "KWUnitController");
    EXPECT_EQ(KWUnitController::classObject().version(), 0);
    EXPECT_EQ(KWUnitController::classObject().superclass(), &KWObject::classObject());
}

TEST_F(KWUnitControllerTest, FootMileAndInchHaveTheirOwnFactors) {
    expectSame(length(1, KWLengthUnitFoot, KWLengthUnitMeter), 0.304801f);
    expectSame(length(1, KWLengthUnitMile, KWLengthUnitMeter), 1609.0f);
    expectSame(length(1, KWLengthUnitInch, KWLengthUnitCentimeter), 2.54f);
}

TEST_F(KWUnitControllerTest, MetricLengthsAreTenthsOfEachOther) {
    expectSame(length(1, KWLengthUnitMeter, KWLengthUnitDecimeter), 10);
    expectSame(length(1, KWLengthUnitMeter, KWLengthUnitCentimeter), 100);
    expectSame(length(1, KWLengthUnitMeter, KWLengthUnitMillimeter), 1000);
    expectSame(length(25, KWLengthUnitDecimeter, KWLengthUnitMeter), 2.5f);
    expectSame(length(25, KWLengthUnitCentimeter, KWLengthUnitMeter), 0.25f);
    expectSame(length(25, KWLengthUnitMillimeter, KWLengthUnitMeter), 0.025f);
    expectSame(length(3, KWLengthUnitMeter, KWLengthUnitMeter), 3);
}

TEST_F(KWUnitControllerTest, MetersBecomeInchesFeetAndMiles) {
    expectSame(length(1, KWLengthUnitMeter, KWLengthUnitInch), static_cast<float>(1 / 0.0254));
    expectSame(length(1, KWLengthUnitMeter, KWLengthUnitFoot), static_cast<float>(1 / 0.304801));
    expectSame(length(1, KWLengthUnitMeter, KWLengthUnitMile), static_cast<float>(1 / 1609.0));
}

TEST_F(KWUnitControllerTest, DegreesAndGradesAreParts) {
    constexpr double pi = 3.141592653589793;
    expectSame(angle(180, KWAngleUnitDegree, KWAngleUnitRadian), static_cast<float>(pi));
    expectSame(angle(100, KWAngleUnitGrade, KWAngleUnitDegree), 90);
    expectSame(angle(200, KWAngleUnitGrade, KWAngleUnitRadian), static_cast<float>(pi));
    expectSame(angle(1, KWAngleUnitRadian, KWAngleUnitDegree), static_cast<float>(1 / pi * 180));
    expectSame(angle(1, KWAngleUnitRadian, KWAngleUnitGrade), static_cast<float>(1 / pi * 200));
    expectSame(angle(1.5f, KWAngleUnitRadian, KWAngleUnitRadian), 1.5f);
}

TEST_F(KWUnitControllerTest, ConversionsAreRoundedOnceAtTheEnd) {
    // In float steps this would be 0.099999994.
    expectSame(length(0.1f, KWLengthUnitFoot, KWLengthUnitFoot), 0.1f);
    const auto value = static_cast<double>(0.7f);
    expectSame(length(0.7f, KWLengthUnitMile, KWLengthUnitInch),
               static_cast<float>(value * 1609.0 / 0.0254));
    expectSame(angle(0.7f, KWAngleUnitGrade, KWAngleUnitDegree),
               static_cast<float>(value * 3.141592653589793 / 200.0 / 3.141592653589793 * 180.0));
}

TEST_F(KWUnitControllerTest, AnUnknownTargetGivesZero) {
    for (std::int32_t unit : {4, 31, 35, -1, std::numeric_limits<std::int32_t>::max()})
        expectSame(length(5, KWLengthUnitFoot, unit), 0);
    for (std::int32_t unit : {3, 32, -1})
        expectSame(angle(5, KWAngleUnitDegree, unit), 0);
}

TEST_F(KWUnitControllerTest, AnUnknownSourceCountsAsZero) {
    for (std::int32_t target : lengthUnits)
        expectSame(length(5, 4, target), 0);
    for (std::int32_t target : angleUnits)
        expectSame(angle(5, 3, target), 0);
}

TEST_F(KWUnitControllerTest, ShorthandsUseTheDefaultUnit) {
    units.setDefaultLengthUnit(KWLengthUnitFoot);
    units.setDefaultAngleUnit(KWAngleUnitGrade);
    const float value = 3.7f;
    expectSame(units.convertLengthToUnit(value, 34), length(value, 33, 34));
    expectSame(units.convertLengthFromUnit(value, 34), length(value, 34, 33));
    expectSame(units.convertAngleToUnit(value, 1), angle(value, 2, 1));
    expectSame(units.convertAngleFromUnit(value, 1), angle(value, 1, 2));
    expectSame(units.convertLengthToInternalUnit(value), length(value, 33, 0));
    expectSame(units.convertLengthFromInternalUnit(value), length(value, 0, 33));
    expectSame(units.convertAngleToInternalUnit(value), angle(value, 2, 0));
    expectSame(units.convertAngleFromInternalUnit(value), angle(value, 0, 2));
}

TEST_F(KWUnitControllerTest, NumbersThatAreNoneAndInfinitiesPass) {
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(length(infinity, KWLengthUnitFoot, KWLengthUnitInch), infinity);
    EXPECT_EQ(length(std::numeric_limits<float>::max(), KWLengthUnitMile, KWLengthUnitMillimeter),
              infinity);
    EXPECT_NE(angle(std::numeric_limits<float>::quiet_NaN(), 1, 0),
              angle(std::numeric_limits<float>::quiet_NaN(), 1, 0));
}

TEST_F(KWUnitControllerTest, UnitsHaveEnglishNames) {
    EXPECT_EQ(units.longLengthUnitRepresentation(KWLengthUnitCentimeter), "centimeter");
    EXPECT_EQ(units.shortLengthUnitRepresentation(KWLengthUnitCentimeter), "cm");
    EXPECT_EQ(units.longLengthUnitRepresentation(KWLengthUnitInch), "inch");
    EXPECT_EQ(units.shortLengthUnitRepresentation(KWLengthUnitInch), "in");
    EXPECT_EQ(units.longAngleUnitRepresentation(KWAngleUnitDegree), "degree");
    EXPECT_EQ(units.shortAngleUnitRepresentation(KWAngleUnitDegree), "deg");
}

TEST_F(KWUnitControllerTest, UnitsHaveNamesInEachLanguage) {
    const struct {
        const char* language;
        const char* meter;
        const char* degree;
    } names[] = {{"en", "meter", "degree"},
                 {"fr", "mètre", "degré"},
                 {"de", "Meter", "Grad"},
                 {"ja", "メートル", "度"}};
    for (const auto& name : names) {
        KWBundle::frameworkBundle().setLanguage(name.language);
        EXPECT_EQ(units.longLengthUnitRepresentation(KWLengthUnitMeter), name.meter);
        EXPECT_EQ(units.longAngleUnitRepresentation(KWAngleUnitDegree), name.degree);
    }
}

TEST_F(KWUnitControllerTest, EveryKeyIsTranslatedIntoEachLanguage) {
    std::vector<std::string> keys{"m", "deg"};
    for (const char* unit : {"meter", "decimeter", "centimeter", "millimeter", "inch", "inche",
                             "foot", "mile", "radian", "degree", "grade"}) {
        keys.push_back(std::string(unit) + "-unit");
        keys.push_back(std::string(unit) + "-long-unit");
    }
    for (const std::string& key : keys)
        EXPECT_NE(translated(key), "missing") << key;
    // In a process of its own the English texts, which stand in for others, are made to show.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(
        {
            KWBundle& bundle = KWBundle::frameworkBundle();
            for (const std::string& key : keys)
                bundle.addTable("en", "translate", "\"" + key + "\" = \"missing\";");
            for (const char* language : {"fr", "de", "ja"}) {
                bundle.setLanguage(language);
                for (const std::string& key : keys)
                    if (translated(key) == "missing")
                        std::exit(1);
            }
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KWUnitControllerTest, NamesOfOneKindDifferInEachLanguage) {
    for (const char* language : languages) {
        KWBundle::frameworkBundle().setLanguage(language);
        std::multiset<std::string> names;
        for (std::int32_t unit : lengthUnits)
            names.insert({units.shortLengthUnitRepresentation(unit),
                          units.longLengthUnitRepresentation(unit)});
        std::multiset<std::string> angleNames;
        for (std::int32_t unit : angleUnits)
            angleNames.insert({units.shortAngleUnitRepresentation(unit),
                               units.longAngleUnitRepresentation(unit)});
        EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), 14u) << language;
        EXPECT_EQ(std::set<std::string>(angleNames.begin(), angleNames.end()).size(), 6u)
            << language;
    }
}

TEST_F(KWUnitControllerTest, UnknownUnitsAreNamedByTheirFallbackKeys) {
    for (const char* language : languages) {
        KWBundle::frameworkBundle().setLanguage(language);
        EXPECT_EQ(units.longLengthUnitRepresentation(4), translated("m"));
        EXPECT_EQ(units.shortLengthUnitRepresentation(-1), translated("m"));
        EXPECT_EQ(units.longAngleUnitRepresentation(3), translated("deg"));
        EXPECT_EQ(units.shortAngleUnitRepresentation(32), translated("deg"));
    }
}

TEST_F(KWUnitControllerTest, UnitsAreRecognisedByShortAndLongName) {
    for (std::int32_t unit : lengthUnits) {
        EXPECT_EQ(units.lengthUnitFromString(units.shortLengthUnitRepresentation(unit)), unit);
        EXPECT_EQ(units.lengthUnitFromString(units.longLengthUnitRepresentation(unit)), unit);
    }
    for (std::int32_t unit : angleUnits) {
        EXPECT_EQ(units.angleUnitFromString(units.shortAngleUnitRepresentation(unit)), unit);
        EXPECT_EQ(units.angleUnitFromString(units.longAngleUnitRepresentation(unit)), unit);
    }
}

TEST_F(KWUnitControllerTest, NamesAreRecognisedExactly) {
    units.setDefaultLengthUnit(KWLengthUnitMile);
    for (const char* name : {"CM", "cm ", " cm", "centimeters", "", "centi", "deg"})
        EXPECT_EQ(units.lengthUnitFromString(name), KWLengthUnitMile) << name;
}

TEST_F(KWUnitControllerTest, AnUnknownNameIsTheDefaultUnit) {
    EXPECT_EQ(units.lengthUnitFromString("furlong"), KWLengthUnitMeter);
    EXPECT_EQ(units.angleUnitFromString("furlong"), KWAngleUnitDegree);
    units.setDefaultLengthUnit(99);
    units.setDefaultAngleUnit(KWAngleUnitGrade);
    EXPECT_EQ(units.lengthUnitFromString("furlong"), 99);
    EXPECT_EQ(units.angleUnitFromString("furlong"), KWAngleUnitGrade);
}

TEST_F(KWUnitControllerTest, NamesAreRecognisedInTheLanguageOfTheFirstTime) {
    EXPECT_EQ(units.lengthUnitFromString("mile"), KWLengthUnitMile);
    KWBundle::frameworkBundle().setLanguage("de");
    EXPECT_EQ(units.lengthUnitFromString("mile"), KWLengthUnitMile);
    EXPECT_EQ(units.lengthUnitFromString("Meile"), KWLengthUnitMeter);
    EXPECT_EQ(units.longLengthUnitRepresentation(KWLengthUnitMile), "Meile");
}

TEST_F(KWUnitControllerTest, AnInchIsShownAndRecognisedByNamesOfItsOwn) {
    // Names are recognised by the tables of the first time, so this goes before in a new process.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(
        {
            KWBundle& bundle = KWBundle::frameworkBundle();
            (void)translated("m");
            bundle.addTable("en", "translate",
                            "\"inch-unit\" = \"read\"; \"inch-long-unit\" = \"long read\";"
                            "\"inche-unit\" = \"shown\"; \"inche-long-unit\" = \"long shown\";");
            const bool isRight =
                units.shortLengthUnitRepresentation(KWLengthUnitInch) == "shown" &&
                units.longLengthUnitRepresentation(KWLengthUnitInch) == "long shown" &&
                units.lengthUnitFromString("read") == KWLengthUnitInch &&
                units.lengthUnitFromString("long read") == KWLengthUnitInch &&
                units.lengthUnitFromString("shown") == KWLengthUnitMeter &&
                units.lengthUnitFromString("long shown") == KWLengthUnitMeter;
            std::exit(isRight ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(KWUnitControllerTest, TheBundleKnowsTheNamesBeforeAnyControllerIsAsked) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(std::exit(translated("mile-long-unit") == "mile" ? 0 : 1),
                testing::ExitedWithCode(0), "");
}

TEST_F(KWUnitControllerTest, NamesMayBeAskedForOnSeveralThreads) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 100; ++i) {
                EXPECT_EQ(units.lengthUnitFromString("ft"), KWLengthUnitFoot);
                EXPECT_EQ(units.shortLengthUnitRepresentation(KWLengthUnitFoot), "ft");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}
