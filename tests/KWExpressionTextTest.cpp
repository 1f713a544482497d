#include <KWBase/KWExpressionText.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace {

std::string normalised(std::string_view text, std::int32_t mode) {
    return KWNormalisedText(text, mode).bytes;
}

std::vector<std::uint32_t> origins(std::string_view text, std::int32_t mode) {
    return KWNormalisedText(text, mode).origins;
}

using Places = std::vector<std::uint32_t>;

} // namespace

TEST(KWExpressionText, SpacesGoAndLettersBecomeLowerCase) {
    EXPECT_EQ(cleanedAlgebricString("Sin( X ) + 2 * Y"), "sin(x)+2*y");
    EXPECT_EQ(cleanedAlgebricString("  x  "), "x");
    EXPECT_EQ(cleanedAlgebricString("ABCXYZ"), "abcxyz");
    EXPECT_EQ(cleanedAlgebricString("@[`{09"), "@[`{09");
    EXPECT_EQ(cleanedAlgebricString(""), "");
    EXPECT_EQ(cleanedAlgebricString("   "), "");
}

TEST(KWExpressionText, OtherBlanksStayWithinARun) {
    EXPECT_EQ(cleanedAlgebricString("x\t+\n1"), "x\t+\n1");
    EXPECT_EQ(cleanedAlgebricString("\tx"), "x");
    EXPECT_EQ(cleanedAlgebricString("x \t\r\n+ \v\f1"), "x+1");
    EXPECT_EQ(cleanedAlgebricString("x\n "), "x\n");
    EXPECT_EQ(cleanedAlgebricString("x \n"), "x");
    EXPECT_EQ(cleanedAlgebricString("\u00A0\u2003x \u3000\u0085+\u00A0y"), "x+\u00A0y");
}

TEST(KWExpressionText, EveryLoneTBecomesX) {
    EXPECT_EQ(cleanedXStringFromTString("2*T + 1"), "2*x+1");
    EXPECT_EQ(cleanedXStringFromTString("t"), "x");
    EXPECT_EQ(cleanedXStringFromTString("tt"), "xx");
    EXPECT_EQ(cleanedXStringFromTString("x+t"), "x+x");
    EXPECT_EQ(cleanedXStringFromTString(""), "");
    EXPECT_EQ(cleanedXStringFromTString(" \n"), "");
}

TEST(KWExpressionText, ATBeforeAParenthesisStays) {
    EXPECT_EQ(cleanedXStringFromTString("sqrt(t)"), "sqrt(x)");
    EXPECT_EQ(cleanedXStringFromTString("t(2)"), "t(2)");
    EXPECT_EQ(cleanedXStringFromTString("tt("), "xt(");
    EXPECT_EQ(cleanedXStringFromTString("sqrt (t)"), "sqrx(x)");
}

TEST(KWExpressionText, ATThatBeginsTanStays) {
    EXPECT_EQ(cleanedXStringFromTString("tan(t)+atan(t)*tanh(t)"), "tan(x)+atan(x)*tanh(x)");
    EXPECT_EQ(cleanedXStringFromTString("ta"), "xa");
    EXPECT_EQ(cleanedXStringFromTString("t an"), "xan");
}

TEST(KWExpressionText, TheShortNameOfTheHyperbolicTangentIsLost) {
    EXPECT_EQ(cleanedXStringFromTString("th(t)"), "xh(x)");
}

TEST(KWExpressionText, TheExponentialSurvivesItsOwnSpelling) {
    EXPECT_EQ(cleanedXStringFromTString("exp(t)"), "exp(x)");
    EXPECT_EQ(tStringFromXString("exp(x)"), "etp(t)");
    EXPECT_EQ(cleanedXStringFromTString("etp(t)"), "exp(x)");
}

TEST(KWExpressionText, BlanksBehindATGo) {
    EXPECT_EQ(cleanedXStringFromTString("t\n+1"), "x+1");
    EXPECT_EQ(cleanedXStringFromTString("sqrt(\t2)"), "sqrt(2)");
    EXPECT_EQ(cleanedXStringFromTString("t\n"), "x");
    EXPECT_EQ(cleanedXStringFromTString("2\n+t"), "2\n+x");
    EXPECT_EQ(cleanedXStringFromTString("\n t"), "x");
}

TEST(KWExpressionText, EveryXBecomesT) {
    EXPECT_EQ(tStringFromXString("2*x+1"), "2*t+1");
    EXPECT_EQ(tStringFromXString("x X\nx"), "t X\nt");
    EXPECT_EQ(tStringFromXString(""), "");
}

TEST(KWExpressionText, PiIsOneByteInEverySpelling) {
    EXPECT_EQ(KWExpressionBytes("2*\u03C0"), "2*\xB8");
    EXPECT_EQ(KWExpressionBytes("\u220F+1"), "\xB8+1");
    EXPECT_EQ(normalised("\u03A0", 0), "\xB8");
    EXPECT_EQ(normalised("\u03C0*T", 1), "\xB8*x");
}

TEST(KWExpressionText, EveryOtherCharacterIsOneByteThatIsRefused) {
    EXPECT_EQ(KWExpressionBytes("\u00E9\u20AC\U0001F600\u00B8"), "????");
    EXPECT_EQ(KWExpressionBytes(std::string("\0~\x7F", 3)), std::string("\0~\x7F", 3));
}

TEST(KWExpressionText, EveryByteThatIsNoUTF8IsOneByteThatIsRefused) {
    EXPECT_EQ(KWExpressionBytes("\x80\xBF\xC0\x80\xF5\xFF"), "??????");
    EXPECT_EQ(KWExpressionBytes("\xB8"), "?");
    EXPECT_EQ(KWExpressionBytes("\xCF"), "?");
    EXPECT_EQ(KWExpressionBytes("x\xE2\x88+"), "x??+");
    EXPECT_EQ(KWExpressionBytes("\xE0\x9F\xBF"), "???");
    EXPECT_EQ(KWExpressionBytes("\xF0\x8F\xBF\xBF"), "????");
    EXPECT_EQ(KWExpressionBytes("\xF4\x90\x80\x80"), "????");
    EXPECT_EQ(KWExpressionBytes("\xF4\x8F\xBF\xBF"), "?");
}

TEST(KWExpressionText, GreekAndLatinLettersBecomeLowerCase) {
    EXPECT_EQ(cleanedAlgebricString("\u0391\u03A0\u03A3\u03A9\u0386\u0389\u038C\u038F\u03AB"),
              "\u03B1\u03C0\u03C3\u03C9\u03AC\u03AE\u03CC\u03CE\u03CB");
    EXPECT_EQ(cleanedAlgebricString("\u00C0\u00C9\u00DE"), "\u00E0\u00E9\u00FE");
    EXPECT_EQ(cleanedAlgebricString("\u00D7\u00DF\u03A2\u03B1\u00F7\u0390"),
              "\u00D7\u00DF\u03A2\u03B1\u00F7\u0390");
    EXPECT_EQ(cleanedAlgebricString("\xC3"), "\xC3");
    EXPECT_EQ(cleanedAlgebricString("\xCEx"), "\xCEx");
}

TEST(KWExpressionText, OriginsTellWhereEachByteWasTyped) {
    EXPECT_EQ(origins("x+1", 0), (Places{0, 1, 2, 3}));
    EXPECT_EQ(origins(" x + 1 ", 0), (Places{1, 3, 5, 7}));
    EXPECT_EQ(origins("", 0), (Places{0}));
    EXPECT_EQ(origins("  ", 1), (Places{2}));
    EXPECT_EQ(origins("2 * \u03C0 * T", 1), (Places{0, 2, 4, 7, 9, 10}));
    EXPECT_EQ(origins("\u20ACx", 0), (Places{0, 3, 4}));
    EXPECT_EQ(origins("\u00A0tan( t)", 1), (Places{2, 3, 4, 5, 7, 8, 9}));
}

TEST(KWExpressionText, AFaultsPlaceLeadsBackToWhatWasTyped) {
    const std::string typed = "2 * \u03C0 + foo";
    const KWNormalisedText text(typed, 0);
    const KWOwnedTree tree(NewNode());
    const KWExpressionFault fault = KWParseExpression(tree.get(), text.bytes);
    EXPECT_EQ(fault.kind, KWExpressionFault::Kind::unknown);
    EXPECT_EQ(text.origins[fault.position], typed.find("foo"));
}

TEST(KWExpressionText, ANormalisedTextIsTheCleanedOneInBytes) {
    std::mt19937 random(1);
    static const char* const pieces[] = {"t",    "T", "x", "tan",    "t(",     " ",      "\n",
                                         "\t",   "(", ")", "\u03C0", "\u03A0", "\u00A0", "\xCE",
                                         "\xE2", "+", "2", "E",      "\u20AC", "\u3000"};
    for (int i = 0; i < 20000; ++i) {
        std::string typed;
        for (std::size_t count = random() % 14; count > 0; --count)
            typed += pieces[random() % std::size(pieces)];
        for (std::int32_t mode : {0, 1}) {
            const KWNormalisedText text(typed, mode);
            const std::string cleaned =
                mode == 1 ? cleanedXStringFromTString(typed) : cleanedAlgebricString(typed);
            ASSERT_EQ(text.bytes, KWExpressionBytes(cleaned)) << typed;
            ASSERT_EQ(cleaned.find(' '), std::string::npos) << typed;
            ASSERT_EQ(text.origins.size(), text.bytes.size() + 1) << typed;
            ASSERT_EQ(text.origins.back(), typed.size()) << typed;
            ASSERT_TRUE(std::is_sorted(text.origins.begin(), text.origins.end())) << typed;
            for (std::size_t k = 0; k < text.bytes.size(); ++k) {
                const char byte = text.bytes[k];
                const bool isReplaced = byte == '?' || byte == '\xB8' || byte == 'x';
                ASSERT_TRUE(isReplaced || std::tolower(typed[text.origins[k]]) == byte) << typed;
            }
        }
    }
}

TEST(KWExpressionText, ALongTextIsCleanedInOneGo) {
    std::string typed;
    for (int i = 0; i < 1'000'000; ++i)
        typed += " T +\n";
    EXPECT_EQ(cleanedXStringFromTString(typed).size(), 3'000'000u);
}

TEST(KWExpressionText, PlainTextIsMadeReadyInOneGoWithTheSameBytes) {
    std::mt19937 random(3);
    constexpr std::string_view pieces[] = {"t",  "t(",  "tan", "ta", "sqrt(", " ", "  ", "x",
                                           "at", "2.5", "+",   ")",  "~",     "?", "tt", "t a"};
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto k = random() % 12; k > 0; --k)
            text += pieces[random() % std::size(pieces)];
        for (const std::int32_t mode : {0, 1}) {
            const auto plain = KWPlainExpressionBytes(text, mode);
            ASSERT_TRUE(plain) << text;
            ASSERT_EQ(*plain, KWNormalisedText(text, mode).bytes) << text;
        }
    }
}

TEST(KWExpressionText, OtherTextIsNotPlain) {
    for (const std::string_view text : {"T", "\t2", "2\n", "\u03C0", "a\x7f", "\xff"})
        EXPECT_FALSE(KWPlainExpressionBytes(text, 1)) << text;
    EXPECT_FALSE(KWPlainExpressionBytes(std::string_view("1\0", 2), 1));
    EXPECT_EQ(KWPlainExpressionBytes("", 1), "");
}
