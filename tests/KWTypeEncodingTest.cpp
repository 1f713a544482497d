#include <KWFoundation/KWTypeEncoding.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

TEST(KWTypeEncoding, FindsTheFirstOfSeveralTypes) {
    EXPECT_EQ(KWFirstType("ff"), "f");
    EXPECT_EQ(KWFirstType("[36c]i"), "[36c]");
    EXPECT_EQ(KWFirstType("{_NSPoint=ff}@"), "{_NSPoint=ff}");
    EXPECT_EQ(KWFirstType("{_HJHermiteParam=fff[6f]}"), "{_HJHermiteParam=fff[6f]}");
    EXPECT_EQ(KWFirstType("[2{p=ff}]"), "[2{p=ff}]");
    EXPECT_EQ(KWFirstType("{empty}"), "{empty}");
}

TEST(KWTypeEncoding, KnowsNoTypeInNonsense) {
    for (const char* text : {"", "?", "[f]", "[3]", "[3f", "{p=f", "{p=?}", "^f", "]", "}"})
        EXPECT_EQ(KWFirstType(text), "") << text;
    std::string deep;
    for (int k = 0; k < 100; ++k)
        deep += "[1";
    EXPECT_EQ(KWFirstType(deep + "c" + std::string(100, ']')), "");
}

TEST(KWTypeEncoding, TakesTypesApart) {
    std::size_t count = 0;
    std::string_view element;
    EXPECT_TRUE(KWArrayType("[12{p=ff}]", count, element));
    EXPECT_EQ(count, 12u);
    EXPECT_EQ(element, "{p=ff}");
    EXPECT_FALSE(KWArrayType("[99999999999c]", count, element));
    EXPECT_EQ(KWStructFields("{p=fi}"), "fi");
    EXPECT_EQ(KWStructFields("{p}"), "");
}

TEST(KWTypeEncoding, LaysTypesOutAsTheCompilerDoes) {
    struct Mixed {
        std::int8_t a;
        double b;
        std::int16_t c[3];
    };
    EXPECT_EQ(KWLayoutOfType("{m=cd[3s]}").size, sizeof(Mixed));
    EXPECT_EQ(KWLayoutOfType("{m=cd[3s]}").alignment, alignof(Mixed));
    EXPECT_EQ(KWLayoutOfType("{_HJHermiteParam=fff[6f]}").size, 36u);
    EXPECT_FALSE(KWLayoutOfType("{o=f@}").isPlain);
}

TEST(KWTypeEncoding, NumbersOfOtherWidthsAgree) {
    EXPECT_TRUE(KWTypesAgree("q", "i"));
    EXPECT_TRUE(KWTypesAgree("C", "c"));
    EXPECT_TRUE(KWTypesAgree("d", "f"));
    EXPECT_FALSE(KWTypesAgree("i", "f"));
    EXPECT_FALSE(KWTypesAgree("ii", "i"));
    EXPECT_TRUE(KWTypesAgree("@@", "@@"));
}
