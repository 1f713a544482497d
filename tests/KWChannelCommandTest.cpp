#include <tests/CommandRunner.h>
#include <tests/Thoroughness.h>

#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <thread>

using nlohmann::json;

TEST_F(KWChannelCommand, AloneShowsItsHelp) {
    const std::string help = output({});
    EXPECT_EQ(help, output({"--help"}));
    EXPECT_LT(help.find("Examples:"), help.find("--version"));
}

TEST_F(KWChannelCommand, EachHelpShowsExamplesBeforeOptions) {
    for (const char* command :
         {"info", "eval", "bake", "dump", "convert", "validate", "expr", "set"}) {
        const std::string help = output({command, "--help"});
        EXPECT_CONTAINS(help, std::string("  kwchannel ") + command + " ");
        EXPECT_CONTAINS(help, std::string("Usage: kwchannel ") + command);
        EXPECT_LT(help.find("Examples:"), help.find("Usage:")) << help;
        EXPECT_LT(help.find("Usage:"), help.find("Options:")) << help;
    }
}

TEST_F(KWChannelCommand, TellsItsVersion) {
    const std::string version = output({"--version"});
    EXPECT_TRUE(version.starts_with("kwchannel ")) << version;
    EXPECT_EQ(lines(version).size(), 1U);
}

TEST_F(KWChannelCommand, ItsManualAndCompletionNameEveryCommandAndOption) {
    const std::string manual = output({"--generate-man"});
    const std::string completion = output({"--generate-completion", "bash"});
    EXPECT_TRUE(manual.starts_with(".TH KWCHANNEL 1")) << manual;
    EXPECT_LT(manual.find(".SH EXAMPLES"), manual.find(".SH OPTIONS"));
    for (const char* word :
         {"info", "eval", "bake", "dump", "convert", "validate", "expr", "set"}) {
        EXPECT_CONTAINS(manual, std::string(".SS kwchannel ") + word);
        EXPECT_CONTAINS(completion, std::string("    ") + word + ") words=");
    }
    for (const char* option : {"--json", "--at", "--step", "--rate", "--objects", "--to"})
        EXPECT_CONTAINS(completion, option);
    EXPECT_CONTAINS(manual, "\\-\\-unit NAME");
    EXPECT_CONTAINS(completion, "convert:--to) words=\"binary xml sequential\"");
    EXPECT_FALSE(contains(manual, "generate"));
    EXPECT_FALSE(contains(completion, "generate"));
}

TEST_F(KWChannelCommand, ItsCompletionRunsInBash) {
    writeFile(path("script"), output({"--generate-completion", "bash"}) +
                                  "COMP_WORDS=(kwchannel ev); COMP_CWORD=1; _kwchannel\n"
                                  "echo ${COMPREPLY[@]}\n"
                                  "COMP_WORDS=(kwchannel bake x --format ''); COMP_CWORD=4\n"
                                  "_kwchannel; echo ${COMPREPLY[@]}\n");
    const std::string command = "bash '" + path("script") + "' > '" + path("out") + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(contentsOf(path("out")), "eval\ncsv jsonl\n");
}

TEST_F(KWChannelCommand, WrongUseIsOneLineWithAHint) {
    const std::vector<std::vector<std::string>> uses = {
        {"fly"},
        {"--fly"},
        {"info"},
        {"info", ball, "more"},
        {"info", ball, "--fly"},
        {"eval", ball},
        {"eval", ball, "--at", "soon"},
        {"eval", ball, "--at", "1,5x"},
        {"eval", ball, "--at", "1", "--from", "0"},
        {"eval", ball, "--from", "0", "--to", "1"},
        {"eval", ball, "--from", "0", "--to", "1", "--step", "0"},
        {"eval", ball, "--from", "0", "--to", "1", "--step", "nan"},
        {"eval", ball, "--from", "1", "--to", "0", "--step", "1"},
        {"eval", ball, "--from", "0", "--to", "1e9", "--step", "1e-9"},
        {"eval", ball, "--at", "1", "--unit", "parsec"},
        {"eval", ball, "--at", "1", "--unit", "cm,mm"},
        {"eval", ball, "nothing", "--at", "1"},
        {"bake", ball},
        {"bake", ball, "--from", "0", "--to", "1", "--rate", "-1"},
        {"bake", ball, "--from", "0", "--to", "inf", "--rate", "1"},
        {"bake", ball, "--from", "0", "--to", "1e300", "--rate", "1e300"},
        {"bake", ball, "--from", "0", "--to", "1", "--rate", "1", "--format", "xls"},
        {"dump", ball, "--depth", "0"},
        {"convert", ball},
        {"convert", ball, "-o", path("x"), "--to", "json"},
        {"--generate-completion", "fish"},
    };
    for (const auto& use : uses) {
        const std::string line = failure(2, use);
        EXPECT_CONTAINS(line, "--help");
        if (use[0] != "fly" && use[0][0] != '-') {
            EXPECT_CONTAINS(line, "; see kwchannel " + use[0] + " --help");
        }
    }
    EXPECT_TRUE(filesLeft().empty());
}

TEST_F(KWChannelCommand, AnUnknownCommandIsToldWithThoseThereAre) {
    EXPECT_CONTAINS(failure(2, {"ifno", ball}),
                    "there is no command \"ifno\"; there are info, eval, bake, dump, convert, "
                    "validate, plot, expr, set; see kwchannel --help");
    EXPECT_CONTAINS(failure(2, {"info", ball, "a", "b"}),
                    "these arguments were not expected: a b; see kwchannel info --help");
}

TEST_F(KWChannelCommand, MoreTimesThanCanBeCountedNameTheOption) {
    EXPECT_CONTAINS(failure(2, {"bake", ball, "--from", "0", "--to", "1", "--rate", "1e16"}),
                    "--rate 1e+16 over this range gives more than 9000000000000000 times");
    EXPECT_CONTAINS(failure(2, {"eval", ball, "--from", "0", "--to", "1e9", "--step", "1e-9"}),
                    "--step 1e-09 over this range gives more than 9000000000000000 times");
}

TEST_F(KWChannelCommand, InfoShowsTheTree) {
    const std::string info = output({"info", ball});
    EXPECT_CONTAINS(info, "bouncing-ball.kwdoc: binary archive, 2 elements, 8 channels\nBall\n");
    EXPECT_CONTAINS(info, "\n  Position/\n");
    EXPECT_TRUE(contains(info, "Hermite, ping-pong")) << info;
    EXPECT_TRUE(contains(info, "linear, cycle")) << info;
    EXPECT_CONTAINS(info, "value 0.11");
    EXPECT_CONTAINS(info, "0 .. 0.6207 s");
    EXPECT_CONTAINS(info, "5 keys");
}

TEST_F(KWChannelCommand, InfoAsJSONHoldsTheSame) {
    const json info = json::parse(output({"info", ball, "--json"}));
    EXPECT_EQ(info["format"], "binary");
    ASSERT_EQ(info["elements"].size(), 2U);
    const json element = info["elements"][0];
    EXPECT_EQ(element["name"], "Ball");
    EXPECT_EQ(element["class"], "KWElement");
    EXPECT_EQ(element["channels"][0]["kind"], "constant");
    const json y = element["groups"][0]["channels"][1];
    EXPECT_EQ(y["path"], "Ball/Position/y");
    EXPECT_EQ(y["kind"], "keyframed");
    EXPECT_EQ(y["keyCount"], 5);
    EXPECT_EQ(y["unitType"], "length");
    EXPECT_EQ(y["mode"], "Hermite");
    EXPECT_EQ(y["repeat"], "ping-pong");
    EXPECT_EQ(y["firstTime"], 0);
}

TEST_F(KWChannelCommand, InfoReadsEverySample) {
    EXPECT_CONTAINS(output({"info", show}), "2 elements, 40 channels");
    const std::string info = output({"info", museum});
    EXPECT_CONTAINS(info, "mode -1, repeat 3");
    EXPECT_CONTAINS(info, "0 keys");
    EXPECT_CONTAINS(info, "1 key ");
    EXPECT_CONTAINS(info, "two\\x0alines");
    EXPECT_CONTAINS(info, "empty group/");
    EXPECT_NO_THROW(json::parse(output({"info", museum, "--json"})));
}

TEST_F(KWChannelCommand, InfoMarksIrregularChannels) {
    const std::string info = output({"info", irregular});
    EXPECT_CONTAINS(info, "IRREGULAR: keys 2 and 3 share the time 1");
    EXPECT_CONTAINS(info, "IRREGULAR: key 3 at 1 stands behind a later one");
    EXPECT_CONTAINS(info, "IRREGULAR: the time of key 2 is not a number");
    EXPECT_CONTAINS(info, "IRREGULAR: keys, values and shapes are not equally many");
    const json document = json::parse(output({"info", irregular, "--json"}));
    const json channels = document["elements"][0]["groups"][0]["channels"];
    int count = 0;
    for (const json& channel : channels)
        count += channel.contains("irregular");
    EXPECT_EQ(count, 7);
    EXPECT_EQ(channels.size(), 9U);
}

TEST_F(KWChannelCommand, EvalOfOneTimeIsALineAChannel) {
    EXPECT_EQ(output({"eval", ball, "radius", "Ball/Position/x", "--at", "0"}),
              "Ball/radius      0.11  m\n"
              "Ball/Position/x  -1.5  m\n");
}

TEST_F(KWChannelCommand, EvalOfSeveralTimesIsALineATime) {
    EXPECT_EQ(output({"eval", ball, "rotation", "--from", "0", "--to", "1.2", "--step", "0.6"}),
              "time  Ball/Position/rotation [rad]\n"
              "   0                             0\n"
              " 0.6                    -3.1415927\n"
              " 1.2                             0\n");
}

TEST_F(KWChannelCommand, EvalTakesNegativeTimesAndLists) {
    const std::string list = output({"eval", ball, "x", "--at", "-1", "--at=2.5"});
    EXPECT_EQ(list, output({"eval", ball, "x", "--at", "-1,2.5"}));
    EXPECT_EQ(lines(list).size(), 3U);
}

TEST_F(KWChannelCommand, OptionsMayStandAnywhere) {
    const std::string wanted =
        output({"eval", ball, "x", "rotation", "--at", "0,1", "--unit", "cm,deg"});
    EXPECT_EQ(output({"eval", "--at", "0,1", "--unit", "cm,deg", ball, "x", "rotation"}), wanted);
    EXPECT_EQ(
        output({"eval", "--at=0", "--unit=cm", ball, "--at=1", "x", "--unit", "deg", "rotation"}),
        wanted);
    EXPECT_EQ(
        output({"bake", "--unit", "cm", "--from", "0", "--to", "1", ball, "--rate", "1", "x"}),
        output({"bake", ball, "x", "--from", "0", "--to", "1", "--rate", "1", "--unit=cm"}));
    const Result old = run({"convert", "--class-version", "KWChannel=1,KWChannelArray=0", ball,
                            "--lossy", "--to", "sequential", "-o", "-"});
    EXPECT_EQ(old.code, 0);
    EXPECT_EQ(run({"convert", "--class-version=KWChannel=1", ball, "--lossy", "--class-version",
                   "KWChannelArray=0", "--to", "sequential", "-o", "-"})
                  .out,
              old.out);
}

TEST_F(KWChannelCommand, EvalConvertsUnitsByShortOrLongNames) {
    const std::string centimeters = output({"eval", ball, "radius", "--at", "0", "--unit", "cm"});
    EXPECT_EQ(centimeters, "Ball/radius  11  cm\n");
    EXPECT_EQ(centimeters,
              output({"eval", ball, "radius", "--at", "0", "--unit", "centimeter,degree"}));
    EXPECT_EQ(output({"eval", ball, "rotation", "--at", "0.6", "--unit", "deg"}),
              "Ball/Position/rotation  -180  deg\n");
    EXPECT_EQ(output({"eval", ball, "squash", "--at", "0", "--unit", "mm,gr"}),
              "Ball/Shape/squash  1\n");
}

TEST_F(KWChannelCommand, EvalKnowsUnitsInTheUsersLanguageAndInEnglish) {
    environment = {"LANGUAGE=de"};
    const std::string german =
        output({"eval", ball, "radius", "--at", "0", "--unit", "Zentimeter"});
    EXPECT_EQ(german, output({"eval", ball, "radius", "--at", "0", "--unit", "centimeter"}));
}

TEST_F(KWChannelCommand, EvalAsJSONHasTimesAndValues) {
    const json result = json::parse(
        output({"eval", ball, "radius", "squash", "--at", "0,1", "--unit", "mm", "--json"}));
    EXPECT_EQ(result["times"], (json{0, 1}));
    EXPECT_EQ(result["channels"][0]["path"], "Ball/radius");
    EXPECT_EQ(result["channels"][0]["unit"], "mm");
    EXPECT_EQ(result["channels"][0]["values"], (json{110, 110}));
    EXPECT_FALSE(result["channels"][1].contains("unit"));
}

TEST_F(KWChannelCommand, JSONHasShortestFloatsAndNullForWhatIsNotFinite) {
    EXPECT_CONTAINS(output({"eval", ball, "radius", "--at", "0.1", "--json"}), "\"times\":[0.1],");
    const json values =
        json::parse(output({"eval", museum, "Values/not a number", "--at", "nan", "--json"}));
    EXPECT_TRUE(values["channels"][0]["values"][0].is_null());
    EXPECT_TRUE(values["times"][0].is_null());
    EXPECT_EQ(output({"eval", museum, "infinite", "Values/not a number", "--at=-inf"}),
              "Values/infinite      -inf\n"
              "Values/not a number   nan\n");
}

TEST_F(KWChannelCommand, AmbiguousAndAbsentChannelsComeWithCandidates) {
    EXPECT_CONTAINS(failure(2, {"eval", show, "Front truss/red", "--at", "1"}), "there is no");
    const std::string line = failure(2, {"eval", show, "Lamp 1/red", "--at", "1"});
    EXPECT_CONTAINS(line, "\"Lamp 1/red\" names 2 channels: \"Front truss/Lamp 1/red\", "
                          "\"Back truss/Lamp 1/red\"; see ");
    EXPECT_CONTAINS(failure(2, {"eval", show, "red", "--at", "1"}), "and 3 more");
    EXPECT_CONTAINS(failure(2, {"eval", ball, "rotatoin", "--at", "1"}),
                    "; did you mean \"Ball/Position/rotation\"? See ");
    EXPECT_CONTAINS(failure(2, {"eval", museum, "sam", "--at", "1"}),
                    "\"Names/group/slash/same#1\" or \"Names/group/slash/same#2\"?");
    EXPECT_CONTAINS(failure(2, {"eval", museum, "same", "--at", "1"}),
                    "\"Names/group/slash/same#1\", \"Names/group/slash/same#2\"");
}

TEST_F(KWChannelCommand, IrregularChannelsEndEvalAndBakeBeforeAnyOutput) {
    const std::string line = failure(1, {"eval", irregular, "--at", "1"});
    EXPECT_CONTAINS(line, "irregular-museum.kwdoc");
    EXPECT_CONTAINS(line, "\"Museum/Wing/equal times\" is irregular: keys 2 and 3 share");
    EXPECT_CONTAINS(line, "; name the channels you want to leave it out");
    EXPECT_FALSE(contains(failure(1, {"eval", irregular, "unsorted", "--at", "1"}), "leave"));
    failure(1, {"bake", irregular, "--from", "0", "--to", "1", "--rate", "1"});
    failure(1, {"bake", irregular, "--from", "0", "--to", "1", "--rate", "1", "-o", path("x")});
    EXPECT_TRUE(filesLeft().empty());
    EXPECT_EQ(output({"eval", irregular, "in order", "odd shapes", "--at", "1"}),
              "Museum/Wing/in order    1\n"
              "Museum/Wing/odd shapes  1\n");
}

TEST_F(KWChannelCommand, ATimeThatCannotBeEvaluatedEndsEvalAndBakeBeforeAnyOutput) {
    const std::string line = failure(1, {"eval", museum, "mode 1, repeat 3", "--at", "0,-2"});
    EXPECT_CONTAINS(line, "\"Codes/Mode 1/mode 1, repeat 3\" cannot be evaluated at -2");
    failure(1, {"bake", museum, "mode 1, repeat 3", "--from", "-2", "--to", "9", "--rate", "1"});
    output({"eval", museum, "--at", "0.5"});
}

TEST_F(KWChannelCommand, BakeWritesCSV) {
    EXPECT_EQ(output({"bake", ball, "rotation", "radius", "--from", "0", "--to", "1.2", "--rate",
                      "2.5", "--unit", "mm,deg"}),
              "time,Ball/Position/rotation,Ball/radius\n"
              "0,0,110\n"
              "0.4,-120,110\n"
              "0.8,-240,110\n"
              "1.2,0,110\n");
}

TEST_F(KWChannelCommand, BakeQuotesCSVFields) {
    const std::string heading = output({"bake", museum, "--from", "0", "--to", "0", "--rate", "1"});
    EXPECT_CONTAINS(heading, ",\"Names/group/slash/\"\"quotes\"\"\",");
    EXPECT_CONTAINS(heading, ",\"Names/group/slash/a, comma\",");
    EXPECT_CONTAINS(heading, ",\"Names/group/slash/two\nlines\",");
    EXPECT_CONTAINS(heading, ",Names/group/slash/a/slash,");
}

TEST_F(KWChannelCommand, BakeWritesJSONLines) {
    const std::string text =
        output({"bake", museum, "--from", "0", "--to", "1", "--rate", "4", "--format", "jsonl"});
    ASSERT_EQ(lines(text).size(), 5U);
    const json row = json::parse(lines(text)[1]);
    EXPECT_EQ(row["time"], 0.25);
    EXPECT_EQ(row["values"]["Spans/one key"], 5);
    EXPECT_TRUE(row["values"]["Values/infinite"].is_null());
    EXPECT_EQ(row["values"]["Names/group/slash/\"quotes\""], 1);
}

TEST_F(KWChannelCommand, BakeTakesItsFormatFromTheFilesNameUnlessTold) {
    const std::vector<std::string> bake = {
        "bake", ball, "radius", "--from", "0", "--to", "1", "--rate", "1", "-o", path("x.jsonl")};
    output(bake);
    EXPECT_TRUE(contentsOf(path("x.jsonl")).starts_with("{\"time\":0,"));
    std::vector<std::string> told = bake;
    told.insert(told.end(), {"--format", "csv"});
    output(told);
    EXPECT_TRUE(contentsOf(path("x.jsonl")).starts_with("time,"));
}

TEST_F(KWChannelCommand, BakeAnswersWhatEvalAnswers) {
    const auto baked = lines(output({"bake", show, "--from", "-3", "--to", "21", "--rate", "3"}));
    const json evaluated = json::parse(output(
        {"eval", show, "--from", "-3", "--to", "21", "--step", "0.333333333333333333", "--json"}));
    ASSERT_EQ(baked.size(), 74U);
    ASSERT_EQ(evaluated["times"].size(), 73U);
    for (std::size_t k = 0; k < 73; ++k) {
        // Fields of numbers alone, without quotes.
        std::string fields = baked[k + 1] + ",";
        for (std::size_t c = 0; c <= 40; ++c) {
            const std::size_t comma = fields.find(',');
            const json& wanted =
                c == 0 ? evaluated["times"][k] : evaluated["channels"][c - 1]["values"][k];
            EXPECT_EQ(json::parse(fields.substr(0, comma)), wanted);
            fields.erase(0, comma + 1);
        }
    }
}

TEST_F(KWChannelCommand, BakeComputesTimesInDouble) {
    const auto rows =
        lines(output({"bake", ball, "radius", "--from", "0.1", "--to", "1000", "--rate", "30"}));
    ASSERT_EQ(rows.size(), 2U + 29997U);
    const std::string last = rows.back().substr(0, rows.back().find(','));
    EXPECT_EQ(std::stof(last), static_cast<float>(0.1 + 29997 / 30.0));
}

TEST_F(KWChannelCommand, BakeIncludesAnEndThatFallsOnAStep) {
    // 0.3 * 10 lies a little below 3 in no way that shows; 2.3 - 0.3 does.
    EXPECT_EQ(
        lines(output({"bake", ball, "radius", "--from", "0.3", "--to", "2.3", "--rate", "10"}))
            .size(),
        22U);
}

TEST_F(KWChannelCommand, BakeIntoAFileWritesTheSame) {
    const std::vector<std::string> range = {"--from", "0", "--to", "9", "--rate", "50"};
    std::vector<std::string> arguments = {"bake", show};
    arguments.insert(arguments.end(), range.begin(), range.end());
    const std::string text = output(arguments);
    arguments.insert(arguments.end(), {"-o", path("show.csv")});
    EXPECT_EQ(output(arguments), "");
    EXPECT_EQ(contentsOf(path("show.csv")), text);
    EXPECT_EQ(filesLeft(), std::vector<std::string>{"show.csv"});
}

TEST_F(KWChannelCommand, BakeKeepsPermissionsAndFollowsLinks) {
    writeFile(path("real.csv"), "old");
    std::filesystem::permissions(path("real.csv"), std::filesystem::perms(0640));
    std::filesystem::create_symlink("real.csv", path("link.csv"));
    output({"bake", ball, "--from", "0", "--to", "1", "--rate", "1", "-o", path("link.csv")});
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.csv")));
    EXPECT_TRUE(contentsOf(path("real.csv")).starts_with("time,"));
    EXPECT_EQ(std::filesystem::status(path("real.csv")).permissions(),
              std::filesystem::perms(0640));
}

TEST_F(KWChannelCommand, InterruptedBakeLeavesNoPartialFile) {
    for (const int signal : {SIGINT, SIGTERM}) {
        writeFile(path("old.csv"), "old");
        const pid_t pid = start(
            {"bake", show, "--from", "0", "--to", "5000", "--rate", "1000", "-o", path("old.csv")});
        // Once there are bytes in the temporary file it is in the middle of it.
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        bool hasBegun = false;
        while (!hasBegun && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            for (const std::string& name : filesLeft())
                hasBegun =
                    hasBegun || (name != "old.csv" && std::filesystem::file_size(path(name)) > 0);
        }
        EXPECT_TRUE(hasBegun);
        kill(pid, signal);
        const Result result = finish(pid);
        EXPECT_EQ(result.code, 130);
        EXPECT_EQ(result.err, "kwchannel: interrupted; " + path("old.csv") + " is unchanged\n");
        EXPECT_EQ(filesLeft(), std::vector<std::string>{"old.csv"});
        EXPECT_EQ(contentsOf(path("old.csv")), "old");
    }
}

TEST_F(KWChannelCommand, ABrokenPipeEndsQuietly) {
    const Result result =
        run({"bake", show, "--from", "0", "--to", "1e9", "--rate", "1000"}, Stdout::brokenPipe);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, "");
}

TEST_F(KWChannelCommand, WhatCannotBeWrittenIsExitCodeThree) {
    const std::vector<std::vector<std::string>> commands = {
        {"--help"},
        {"info", ball},
        {"eval", ball, "--at", "1"},
        {"bake", ball, "--from", "0", "--to", "1", "--rate", "1"},
        {"dump", ball},
        {"convert", ball, "-o", "-"},
        {"validate", irregular}};
    for (const auto& command : commands) {
        EXPECT_CONTAINS(failure(3, command, Stdout::full), "standard output");
        EXPECT_CONTAINS(failure(3, command, Stdout::closed), "standard output");
    }
    failure(3, {"bake", ball, "--from", "0", "--to", "1", "--rate", "1", "-o", "/dev/full"});
    failure(3, {"bake", ball, "--from", "0", "--to", "1", "--rate", "1", "-o", path("no/x.csv")});
    failure(3, {"convert", ball, "-o", path("no/x.kwdoc")});
    failure(3, {"convert", ball, "-o", folder.string()});
}

TEST_F(KWChannelCommand, WhatCannotBeReadIsExitCodeThree) {
    for (const std::string& file : {path("none.kwdoc"), folder.string()}) {
        const std::vector<std::vector<std::string>> commands = {
            {"info", file},
            {"eval", file, "--at", "1"},
            {"bake", file, "--from", "0", "--to", "1", "--rate", "1"},
            {"dump", file},
            {"convert", file, "-o", path("out")},
            {"validate", file}};
        for (const auto& command : commands)
            EXPECT_CONTAINS(failure(3, command), file);
    }
}

TEST_F(KWChannelCommand, ReadsADocumentFromStandardInput) {
    input = ball;
    EXPECT_CONTAINS(output({"info", "-"}), "2 elements, 8 channels");
    EXPECT_EQ(output({"eval", "-", "radius", "--at", "0"}), "Ball/radius  0.11  m\n");
}

TEST_F(KWChannelCommand, CutFilesAreOneErrorThatNamesThem) {
    const std::string whole = contentsOf(ball);
    const std::string file = path("cut.kwdoc");
    for (std::size_t size = 0; size < whole.size(); size += placeStep * (1 + whole.size() / 40)) {
        writeFile(file, whole.substr(0, size));
        EXPECT_CONTAINS(failure(1, {"info", file}), file);
        EXPECT_CONTAINS(failure(1, {"dump", file}), file);
        EXPECT_CONTAINS(failure(1, {"convert", file, "-o", path("out")}), file);
    }
    EXPECT_EQ(filesLeft(), std::vector<std::string>{"cut.kwdoc"});
}

TEST_F(KWChannelCommand, FlippedBitsAreAnErrorOrAnotherDocument) {
    const std::string whole = contentsOf(ball);
    const std::string file = path("flipped.kwdoc");
    int damaged = 0;
    for (std::size_t i = 0; i < whole.size(); i += placeStep * (1 + whole.size() / 120)) {
        std::string bytes = whole;
        bytes[i] = static_cast<char>(bytes[i] ^ (1 << (i % 8)));
        writeFile(file, bytes);
        for (const char* command : {"info", "dump"}) {
            const Result result = run({command, file});
            if (result.code == 0)
                continue;
            ++damaged;
            EXPECT_EQ(result.code, 1) << "byte " << i;
            EXPECT_EQ(lines(result.err).size(), 1U) << result.err;
            EXPECT_CONTAINS(result.err, file);
        }
    }
    EXPECT_GT(damaged, 0);
}

TEST_F(KWChannelCommand, CutXMLIsAnErrorToo) {
    const std::string file = path("ball.xml");
    output({"convert", ball, "-o", file});
    const std::string whole = contentsOf(file);
    for (std::size_t size = 0; size + 20 < whole.size(); size += 1 + whole.size() / 20) {
        writeFile(file, whole.substr(0, size));
        EXPECT_CONTAINS(failure(1, {"info", file}), file);
    }
}

TEST_F(KWChannelCommand, PrintsAndReadsTheSameInACommaDecimalLocale) {
    const std::vector<std::vector<std::string>> commands = {
        {"info", museum},
        {"info", museum, "--json"},
        {"eval", museum, "--at", "0.5,1.25"},
        {"eval", ball, "--at", "0.5", "--json", "--unit", "cm"},
        {"bake", ball, "--from", "0.5", "--to", "1.5", "--rate", "12.5"},
        {"bake", ball, "--from", "0", "--to", "1", "--rate", "9", "--format", "jsonl"},
        {"dump", ball},
        {"convert", ball, "-o", "-", "--to", "xml"}};
    for (const auto& command : commands) {
        environment = {"LC_ALL=C"};
        const std::string plain = output(command);
        environment = {"LC_ALL=de_DE.UTF-8", "LANGUAGE=en"};
        EXPECT_EQ(output(command), plain);
    }
}
