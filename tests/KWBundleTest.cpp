#include <KWFoundation/KWBundle.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWLog.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

class KWBundleTest : public testing::Test {
  protected:
    KWBundleTest() { bundle.setLanguage("en"); }
    ~KWBundleTest() override { bundle.setLanguage("en"); }

    std::string text(std::string_view key, std::string_view value = {},
                     std::string_view table = "test") const {
        return bundle.localizedStringForKeyValueTable(key, value, table);
    }

    std::string reasonOf(std::string_view strings) {
        try {
            bundle.addTable("en", "malformed", strings);
        } catch (const KWException& exception) {
            EXPECT_EQ(exception.name(), "Malformed strings table");
            return exception.reason();
        }
        return "taken";
    }

    KWBundle& bundle = KWBundle::frameworkBundle();
};

/// Ends the process with 0 if that is the language that the environment names.
[[noreturn]] void exitAsLanguageIs(const char* language, const char* all, const char* messages,
                                   const char* lang, std::string_view expected) {
    setenv("LANGUAGE", language, 1);
    setenv("LC_ALL", all, 1);
    setenv("LC_MESSAGES", messages, 1);
    setenv("LANG", lang, 1);
    KWBundle::frameworkBundle().setLanguage("");
    std::exit(KWBundle::frameworkBundle().language() == expected ? 0 : 1);
}

} // namespace

TEST_F(KWBundleTest, AnUnknownKeyGivesTheValueOrItself) {
    EXPECT_EQ(text("nothing", "the value"), "the value");
    EXPECT_EQ(text("nothing"), "nothing");
    EXPECT_EQ(text("nothing", "the value", "no such table"), "the value");
    EXPECT_EQ(text(""), "");
}

TEST_F(KWBundleTest, ATextIsThatOfTheLanguageInForce) {
    bundle.addTable("en", "test", "\"key\" = \"length\";");
    bundle.addTable("de", "test", "\"key\" = \"Länge\";");
    EXPECT_EQ(text("key", "value"), "length");
    bundle.setLanguage("de");
    EXPECT_EQ(bundle.language(), "de");
    EXPECT_EQ(text("key", "value"), "Länge");
}

TEST_F(KWBundleTest, EnglishStandsInForWhatALanguageLacks) {
    bundle.addTable("en", "test", "\"stand-in\" = \"only here\";");
    bundle.addTable("de", "test", "\"other\" = \"anderes\";");
    bundle.setLanguage("de");
    EXPECT_EQ(text("stand-in"), "only here");
    bundle.setLanguage("tlh");
    EXPECT_EQ(text("stand-in"), "only here");
}

TEST_F(KWBundleTest, OnlyTheLanguageOfALocaleNameCounts) {
    for (const char* name : {"de_AT.UTF-8", "de-CH", "DE", "de@euro", "de.UTF-8"}) {
        bundle.setLanguage(name);
        EXPECT_EQ(bundle.language(), "de") << name;
    }
    bundle.setLanguage("POSIX");
    EXPECT_EQ(bundle.language(), "en");
}

TEST_F(KWBundleTest, AddingATableAgainAddsToIt) {
    bundle.addTable("en", "twice", "\"a\" = \"1\"; \"b\" = \"2\";");
    bundle.addTable("en", "twice", "\"b\" = \"3\"; \"c\" = \"4\";");
    EXPECT_EQ(text("a", "", "twice"), "1");
    EXPECT_EQ(text("b", "", "twice"), "3");
    EXPECT_EQ(text("c", "", "twice"), "4");
}

TEST_F(KWBundleTest, StringsFilesMayHaveCommentsEscapesAndBlanks) {
    bundle.addTable("en", "syntax",
                    "\xEF\xBB\xBF/* \"no\" = \"key\"; **/\r\n"
                    "\"quote\"=\"\\\"\";\"backslash\" = \"\\\\\" ;\n"
                    "\t\"tab\\t\" /* between */ = \"a\\tb\\nc\";\r\n"
                    "\"lines\" = \"a\nb\";\"empty\" = \"\";/**/");
    EXPECT_EQ(text("quote", "", "syntax"), "\"");
    EXPECT_EQ(text("backslash", "", "syntax"), "\\");
    EXPECT_EQ(text("tab\t", "", "syntax"), "a\tb\nc");
    EXPECT_EQ(text("lines", "", "syntax"), "a\nb");
    EXPECT_EQ(text("empty", "value", "syntax"), "");
    EXPECT_EQ(text("no", "absent", "syntax"), "absent");
    EXPECT_EQ(reasonOf(""), "taken");
}

TEST_F(KWBundleTest, AMalformedTableIsRefusedWithItsLine) {
    EXPECT_EQ(reasonOf("\"a\" = \"b\";\n\"a\" = b;"), "line 2: a text in quotation marks expected");
    EXPECT_EQ(reasonOf("\"a\" \"b\";"), "line 1: '=' expected");
    EXPECT_EQ(reasonOf("\n\n\"a\" = \"b\""), "line 3: ';' expected");
    EXPECT_EQ(reasonOf("\n\"a\" = \"b;\n\n"), "line 2: a text that does not end");
    EXPECT_EQ(reasonOf("\"a\" = \"\\"), "line 1: an unknown escape");
    EXPECT_EQ(reasonOf("\"a\" = \"\\x\";"), "line 1: an unknown escape");
    EXPECT_EQ(reasonOf("\n/* \"a\" = \"b\";"), "line 2: a comment that does not end");
    EXPECT_EQ(reasonOf("/*/"), "line 1: a comment that does not end");
    EXPECT_EQ(reasonOf("\"a\" = "), "line 1: a text in quotation marks expected");
}

TEST_F(KWBundleTest, NothingOfAMalformedTableIsAdded) {
    EXPECT_NE(reasonOf("\"first\" = \"b\";\n\"second"), "taken");
    EXPECT_EQ(text("first", "absent", "malformed"), "absent");
}

TEST_F(KWBundleTest, LoadersRunOnceBeforeTheNextLookUp) {
    static int calls = 0;
    bundle.addTableLoader([](KWBundle& aBundle) {
        ++calls;
        aBundle.addTable("en", "loaded", "\"a\" = \"1\";");
    });
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(text("a", "", "loaded"), "1");
    EXPECT_EQ(text("a", "", "loaded"), "1");
    EXPECT_EQ(calls, 1);
}

TEST_F(KWBundleTest, ALoaderThatFailsIsLogged) {
    std::string logged;
    auto before = KWSetLogHandler([&logged](std::string_view line) { logged = line; });
    bundle.addTableLoader([](KWBundle& aBundle) { aBundle.addTable("en", "bad", "\"a"); });
    EXPECT_EQ(text("a", "absent", "bad"), "absent");
    KWSetLogHandler(std::move(before));
    EXPECT_NE(logged.find("Malformed strings table: line 1"), std::string::npos) << logged;
}

TEST_F(KWBundleTest, TextsAreLookedUpWhileTablesAreAdded) {
    bundle.addTable("en", "busy", "\"a\" = \"1\";");
    static std::atomic<int> loads;
    loads = 0;
    bundle.addTableLoader([](KWBundle& aBundle) {
        ++loads;
        aBundle.addTable("en", "busy", "\"loaded\" = \"2\";");
    });
    std::atomic<int> misses = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i)
                misses += text("loaded", "", "busy") != "2" || text("a", "", "busy") != "1";
        });
    for (int i = 0; i < 200; ++i) {
        bundle.addTable("en", "busy", "\"a\" = \"1\"; \"" + std::to_string(i) + "\" = \"\";");
        bundle.setLanguage(i % 2 ? "de" : "fr");
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(misses, 0);
    EXPECT_EQ(loads, 1);
}

// Each in a process of its own, for the environment is looked at once.
class KWBundleDeathTest : public testing::Test {
  protected:
    KWBundleDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }

    static void expect(std::string_view language, const char* list, const char* all,
                       const char* messages, const char* lang) {
        EXPECT_EXIT(exitAsLanguageIs(list, all, messages, lang, language),
                    testing::ExitedWithCode(0), "");
    }
};

TEST_F(KWBundleDeathTest, TheFirstVariableThatNamesALanguageCounts) {
    expect("de", "de", "fr_FR", "ja_JP", "it_IT");
    expect("fr", "", "fr_FR", "ja_JP", "it_IT");
    expect("ja", "", "", "ja_JP.UTF-8", "it_IT");
    expect("it", "", "", "", "it_IT@euro");
}

TEST_F(KWBundleDeathTest, EnglishIsTheLanguageOfNoneAndOfThePlainLocales) {
    expect("en", "", "", "", "");
    expect("en", "", "C.UTF-8", "", "de_DE");
    expect("en", "", "POSIX", "", "de_DE");
}

TEST_F(KWBundleDeathTest, OfSeveralLanguagesTheFirstCounts) {
    expect("fr", "fr:de", "", "", "");
    expect("de", ":de_CH:fr", "", "", "");
    expect("ja", "::", "", "", "ja");
}
