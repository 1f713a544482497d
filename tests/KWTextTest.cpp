#include <KWFoundation/KWText.h>

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// Compares numbers by bits, so that the sign of zero counts.
void expectReads(std::string_view text, double value) {
    const auto number = KWDoubleFromString(text);
    ASSERT_TRUE(number) << text;
    EXPECT_EQ(bitsOf(*number), bitsOf(value)) << text << " read as " << *number;
}

std::string bytes(std::initializer_list<int> list) {
    std::string text;
    for (int byte : list)
        text.push_back(static_cast<char>(byte));
    return text;
}

std::string bigEndian(std::u16string_view units) {
    std::string text;
    for (char16_t unit : units) {
        text.push_back(static_cast<char>(unit >> 8));
        text.push_back(static_cast<char>(unit & 0xFF));
    }
    return text;
}

} // namespace

TEST(KWText, AFloatHasSevenSignificantDigits) {
    EXPECT_EQ(KWStringFromFloat(0.0f), "0");
    EXPECT_EQ(KWStringFromFloat(-0.0f), "-0");
    EXPECT_EQ(KWStringFromFloat(0.1f), "0.1");
    EXPECT_EQ(KWStringFromFloat(1.0f / 3), "0.3333333");
    EXPECT_EQ(KWStringFromFloat(16777216.0f), "1.677722e+07");
    EXPECT_EQ(KWStringFromFloat(1e10f), "1e+10");
    EXPECT_EQ(KWStringFromFloat(1e-5f), "1e-05");
    EXPECT_EQ(KWStringFromFloat(std::numeric_limits<float>::infinity()), "inf");
    EXPECT_EQ(KWStringFromFloat(-std::numeric_limits<float>::infinity()), "-inf");
    EXPECT_EQ(KWStringFromFloat(std::numeric_limits<float>::quiet_NaN()), "nan");
}

TEST(KWText, AFloatReadsAsThePrintingFunctionsOfCWriteIt) {
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        char expected[64];
        std::snprintf(expected, sizeof expected, "%.7g", static_cast<double>(value));
        ASSERT_EQ(KWStringFromFloat(value), expected);
    }
}

TEST(KWText, TheExactTextOfAFloatGivesItBackBitForBit) {
    std::mt19937 random(2);
    for (int i = 0; i < 20000; ++i) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isnan(value))
            continue;
        const auto number = KWDoubleFromString(KWExactStringFromFloat(value));
        ASSERT_TRUE(number);
        ASSERT_EQ(std::bit_cast<std::uint32_t>(static_cast<float>(*number)),
                  std::bit_cast<std::uint32_t>(value));
    }
    EXPECT_EQ(KWExactStringFromFloat(0.1f), "0.1");
    EXPECT_EQ(KWExactStringFromFloat(16777217.0f), "16777216");
}

TEST(KWText, TheExactTextOfADoubleGivesItBackBitForBit) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
        if (!std::isnan(value))
            expectReads(KWExactStringFromDouble(value), value);
    }
    EXPECT_EQ(KWExactStringFromDouble(0.1), "0.1");
    EXPECT_EQ(KWExactStringFromDouble(-0.0), "-0");
}

TEST(KWText, AFixedTextHasSixDecimals) {
    EXPECT_EQ(KWFixedStringFromDouble(1.5), "1.500000");
    EXPECT_EQ(KWFixedStringFromDouble(-0.0), "-0.000000");
    EXPECT_EQ(KWFixedStringFromDouble(0.0000005), "0.000000");
    EXPECT_EQ(KWFixedStringFromDouble(infinity), "inf");
    const std::string longest = KWFixedStringFromDouble(std::numeric_limits<double>::lowest());
    EXPECT_EQ(longest.size(), 1u + 309u + 7u);
    EXPECT_TRUE(longest.starts_with("-17976931348623157"));
}

TEST(KWText, NumbersAreReadWithOrWithoutASign) {
    expectReads("2.5", 2.5);
    expectReads("+2.5", 2.5);
    expectReads("-2.5", -2.5);
    expectReads("-0", -0.0);
    expectReads("+0", 0.0);
    expectReads("5.", 5);
    expectReads(".5", 0.5);
    expectReads("1e3", 1000);
    expectReads("1E+3", 1000);
    expectReads("1e-3", 0.001);
    expectReads("INF", infinity);
    expectReads("-Infinity", -infinity);
    expectReads("+inf", infinity);
    EXPECT_TRUE(std::isnan(KWDoubleFromString("NaN").value()));
    EXPECT_TRUE(std::isnan(KWDoubleFromString("-nan").value()));
    EXPECT_TRUE(std::signbit(KWDoubleFromString("-nan").value()));
}

TEST(KWText, NothingButAWholeNumberIsANumber) {
    for (const char* text :
         {"",       "+",      "-",       ".",     "e5",    "+-2",     "-+2", "--2",
          "++2",    "2,5",    "2.5 ",    " 2.5",  "2.5m",  "1e",      "1e+", "0x10",
          "nan(1)", "inf(1)", "infinit", "1.2.3", "2.5\n", "\xC2\xBD"})
        EXPECT_FALSE(KWDoubleFromString(text)) << text;
    EXPECT_FALSE(KWDoubleFromString(std::string_view("1\0", 2)));
}

TEST(KWText, NumbersTooLargeReadAsInfinity) {
    expectReads("1e309", infinity);
    expectReads("-1e309", -infinity);
    expectReads("1e99999999999999999999999999", infinity);
    expectReads("1" + std::string(400, '0'), infinity);
    expectReads("0." + std::string(10, '0') + "1e400", infinity);
    expectReads("123" + std::string(400, '0') + "e-50", infinity);
}

TEST(KWText, NumbersTooSmallReadAsZero) {
    expectReads("1e-400", 0);
    expectReads("-1e-400", -0.0);
    expectReads("1e-99999999999999999999999999", 0);
    expectReads("0." + std::string(400, '0') + "1", 0);
    expectReads("-1" + std::string(10, '0') + "e-400", -0.0);
    expectReads("0e999999999999", 0);
}

TEST(KWText, TheSmallestAndLargestDoublesAreRead) {
    expectReads("4.9406564584124654e-324", std::numeric_limits<double>::denorm_min());
    expectReads("1e-320", 1e-320);
    expectReads("1.7976931348623157e308", std::numeric_limits<double>::max());
    expectReads("1" + std::string(400, '0') + "e-400", 1);
    expectReads("0." + std::string(400, '0') + "1e401", 1);
}

TEST(KWText, ACommaDecimalLocaleChangesNothing) {
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "The locale de_DE.UTF-8 is not there.";
    char proof[16];
    std::snprintf(proof, sizeof proof, "%.1f", 2.5);
    EXPECT_STREQ(proof, "2,5");
    EXPECT_EQ(KWStringFromFloat(2.5f), "2.5");
    EXPECT_EQ(KWExactStringFromFloat(2.5f), "2.5");
    EXPECT_EQ(KWExactStringFromDouble(2.5), "2.5");
    EXPECT_EQ(KWFixedStringFromDouble(2.5), "2.500000");
    expectReads("2.5", 2.5);
    EXPECT_FALSE(KWDoubleFromString("2,5"));
    std::setlocale(LC_ALL, "C");
}

TEST(KWText, UTF16BecomesUTF8) {
    EXPECT_EQ(KWUTF8FromUTF16(""), "");
    EXPECT_EQ(KWUTF8FromUTF16(bigEndian(u"a\u00E9\u30E1\U0001F600")), "a\u00E9\u30E1\U0001F600");
    EXPECT_EQ(KWUTF8FromUTF16(std::string_view("\0a", 2)), "a");
    EXPECT_EQ(KWUTF8FromUTF16(bigEndian(std::u16string_view(u"\0", 1))), std::string_view("\0", 1));
}

TEST(KWText, HalfACodeUnitIsReplaced) {
    EXPECT_EQ(KWUTF8FromUTF16(std::string_view("\0a\0", 3)), "a\uFFFD");
}

TEST(KWText, ALoneSurrogateComesBack) {
    const std::u16string high{0xD83D};
    EXPECT_EQ(KWUTF8FromUTF16(bigEndian(high)), bytes({0xED, 0xA0, 0xBD}));
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xED, 0xA0, 0xBD})), high);
    const std::u16string reversed{0xDE00, 0xD83D, u'x'};
    EXPECT_EQ(KWUTF16FromUTF8(KWUTF8FromUTF16(bigEndian(reversed))), reversed);
}

TEST(KWText, AnyUTF16ComesBack) {
    std::mt19937 random(4);
    for (int i = 0; i < 2000; ++i) {
        std::u16string units;
        for (std::size_t n = random() % 12; n > 0; --n)
            units.push_back(static_cast<char16_t>(random() % 2 ? random() % 0x10000
                                                               : 0xD800 + random() % 0x800));
        ASSERT_EQ(KWUTF16FromUTF8(KWUTF8FromUTF16(bigEndian(units))), units);
    }
}

TEST(KWText, EachByteThatIsNoUTF8IsReplaced) {
    const std::u16string one = u"\uFFFD";
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0x80})), one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xFF, 'a'})), one + u"a");
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xE2, 0x82})), one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xE2, 'a', 'b'})), one + u"ab");
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xC0, 0x80})), one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xC1, 0xBF})), one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xE0, 0x9F, 0xBF})), one + one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xF0, 0x8F, 0xBF, 0xBF})), one + one + one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xF4, 0x90, 0x80, 0x80})), one + one + one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xF8, 0x88, 0x80, 0x80, 0x80})), one + one + one + one + one);
    EXPECT_EQ(KWUTF16FromUTF8(bytes({0xF4, 0x8F, 0xBF, 0xBF})), u"\U0010FFFF");
}
