#include <apps/common/CommandLine.h>
#include <apps/common/Errors.h>
#include <gtest/gtest.h>

namespace {

struct Chosen {
    std::string file, format, text;
    std::vector<std::string> units;
    int depth = 1;
    bool isLoud = false;
    std::string ran;
};

/// A program with two commands, one of which takes an expression.
CommandLine program(Chosen& chosen) {
    CommandLine line("tool", "Does this and that", "1.2");
    Command show = line.command("show", "Shows a file");
    show.option("FILE", chosen.file, "the file").required();
    const CommandOption format = show.option("--format", chosen.format, "the form")
                                     .shownAs("csv|json")
                                     .oneOf({"csv", "json"});
    show.option("--depth", chosen.depth, "how deep").shownAs("N").between(1, 9).onlyWith(format);
    show.option("--unit", chosen.units, "the units").shownAs("NAME[,...]").separatedByCommas();
    show.setExamples("tool show a.txt\n");
    show.onRun([&chosen] { chosen.ran = "show"; });
    Command reckon = line.command("reckon", "Reckons");
    reckon.option("TEXT", chosen.text, "the expression").required();
    reckon.flag("-l,--loud", chosen.isLoud, "loudly");
    reckon.onRun([&chosen] { chosen.ran = "reckon"; });
    line.setArgumentWithMinus("TEXT");
    line.addManualSection("FILES", "None.\n");
    return line;
}

std::string complaintOf(const std::vector<std::string>& arguments) {
    Chosen chosen;
    CommandLine line = program(chosen);
    try {
        line.parse(arguments);
        return "";
    } catch (const UseError& error) {
        return error.what();
    }
}

std::string shownFor(const std::vector<std::string>& arguments) {
    Chosen chosen;
    return program(chosen).parse(arguments).value_or("nothing");
}

} // namespace

TEST(CommandLine, ChosenCommandsRunWithWhatIsGiven) {
    Chosen chosen;
    CommandLine line = program(chosen);
    EXPECT_FALSE(
        line.parse({"show", "a.txt", "--unit", "cm,deg", "--format", "csv", "--depth", "3"}));
    EXPECT_EQ(chosen.ran, "show");
    EXPECT_EQ(chosen.file, "a.txt");
    EXPECT_EQ(chosen.units, (std::vector<std::string>{"cm", "deg"}));
    EXPECT_EQ(chosen.depth, 3);
    EXPECT_EQ(line.nameInUse(), "tool show");
}

TEST(CommandLine, AnExpressionMayBeginWithAMinusSign) {
    Chosen chosen;
    EXPECT_FALSE(program(chosen).parse({"reckon", "-2*t", "-l"}));
    EXPECT_EQ(chosen.text, "-2*t");
    EXPECT_TRUE(chosen.isLoud);
}

TEST(CommandLine, WhatIsWrongIsSaid) {
    EXPECT_EQ(complaintOf({"shwo"}), "there is no command \"shwo\"; there are show, reckon");
    EXPECT_EQ(complaintOf({"show", "a", "b"}), "this argument was not expected: b");
    EXPECT_NE(complaintOf({"show"}), "");
    EXPECT_NE(complaintOf({"show", "a", "--format", "xml"}), "");
    EXPECT_NE(complaintOf({"show", "a", "--format", "csv", "--depth", "10"}), "");
    EXPECT_NE(complaintOf({"show", "a", "--depth", "2"}), "");
}

TEST(CommandLine, TheHelpBeginsWithTheExamples) {
    EXPECT_EQ(shownFor({"show", "--help"}).find("Shows a file.\n\nExamples:\n  tool show a.txt\n"),
              0u);
    EXPECT_EQ(shownFor({}), shownFor({"--help"}));
    EXPECT_EQ(shownFor({"--version"}), "tool 1.2\n");
}

TEST(CommandLine, TheManualPageHasTheCommandsAndTheSections) {
    const std::string page = shownFor({"--generate-man"});
    for (const char* part : {".TH TOOL 1", "tool \\- Does this and that", ".SS tool show",
                             ".B \\-\\-format csv|json\n", ".SH FILES\nNone.\n"})
        EXPECT_NE(page.find(part), std::string::npos) << part << "\n" << page;
    EXPECT_EQ(page.find("generate"), std::string::npos);
}

TEST(CommandLine, TheCompletionOffersWordsThatAreWrittenSmall) {
    const std::string script = shownFor({"--generate-completion", "bash"});
    EXPECT_NE(script.find("show:--format) words=\"csv json\""), std::string::npos) << script;
    EXPECT_EQ(script.find("NAME"), std::string::npos);
    EXPECT_NE(script.find("complete -F _tool tool"), std::string::npos);
}

TEST(CommandLine, AProgramWithoutCommandsCompletesItsOptions) {
    std::string file;
    bool isFast = false;
    CommandLine line("plain", "Does one thing", "1");
    line.option("FILE", file, "the file");
    line.flag("--fast", isFast, "quickly");
    EXPECT_FALSE(line.parse({"a.txt", "--fast"}));
    EXPECT_TRUE(isFast);

    CommandLine other("plain", "Does one thing", "1");
    other.option("FILE", file, "the file");
    other.flag("--fast", isFast, "quickly");
    const std::string script = other.parse({"--generate-completion", "bash"}).value_or("");
    EXPECT_NE(script.find("words=\"-h --help --version --fast\""), std::string::npos) << script;
    const std::string page = other.parse({"--generate-man"}).value_or("");
    EXPECT_NE(page.find(".B plain\n[FILE] [\\-\\-fast]\n"), std::string::npos) << page;
}
