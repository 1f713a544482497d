#include <KWBase/KWAlgebricInterpreter.h>

#include <samples/Samples.h>
#include <tests/CommandRunner.h>
#include <tests/DocumentTestSupport.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

/// What kwchannel does with expressions, and with documents that have them.
class KWChannelExpressions : public KWChannelCommand {
  protected:
    /// Runs what a text must be refused by, and answers the lines it says after the first.
    std::string excerpt(const std::vector<std::string>& arguments, const std::string& sentence) {
        const Result result = run(arguments);
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(result.out, "");
        const std::string first = "kwchannel: the expression cannot be read: " + sentence + "\n";
        EXPECT_TRUE(result.err.starts_with(first)) << result.err;
        return result.err.substr(std::min(first.size(), result.err.size()));
    }
    void writeData(const std::string& name, const KWData& data) const {
        writeFile(path(name), {reinterpret_cast<const char*>(data.data()), data.size()});
    }
    /// The text of a document's channel as info shows it; null for none.
    json textOf(const std::string& document, const std::string& address) {
        const json info = json::parse(output({"info", document, "--json"}));
        for (const json& element : info["elements"]) {
            json channels = element["channels"];
            for (const json& group : element["groups"])
                channels.insert(channels.end(), group["channels"].begin(), group["channels"].end());
            for (const json& channel : channels)
                if (channel["path"] == address)
                    return channel.contains("text") ? channel["text"] : json("no such kind");
        }
        return "no such channel";
    }
    /// A document of a bare channel, in a sequential archive.
    std::string bareChannel(const std::string& text) {
        writeData("bare.stream",
                  KWArchiver::archivedDataWithRootObject(algebricChannel("gain", text)));
        return path("bare.stream");
    }
};

TEST_F(KWChannelExpressions, ExprShowsTheNormalisedText) {
    EXPECT_EQ(output({"expr", "2*T + 1"}), "2*t+1\n");
    EXPECT_EQ(output({"expr", "exp(t)"}), "etp(t)\n");
    EXPECT_EQ(output({"expr", "ln(t)"}), "log(t)\n");
    EXPECT_EQ(output({"expr", "2 * \u03c0"}), "2*3.14159\n");
    EXPECT_EQ(output({"expr", "x - Y", "--xy"}), "-y\n");
}

TEST_F(KWChannelExpressions, ExprTakesATextThatBeginsWithAMinusSign) {
    EXPECT_EQ(output({"expr", "-t"}), "-t\n");
    EXPECT_EQ(output({"expr", "-2*t", "--at", "-1"}), "-2*t\n t  value\n-1      2\n");
    EXPECT_EQ(output({"expr", "--at=-1", "-2*t"}), output({"expr", "-2*t", "--at", "-1"}));
    EXPECT_EQ(output({"expr", "--at=2", "--", "-t"}), "-t\nt  value\n2     -2\n");
    EXPECT_EQ(excerpt({"expr", "--", "--t"}, "an operand is missing"), "  --t\n   ^\n");
    EXPECT_EQ(output({"expr", "-h"}), output({"expr", "--help"}));
}

TEST_F(KWChannelExpressions, ExprDrawsTheTree) {
    EXPECT_EQ(output({"expr", "-sin(2*t)+1.5^t", "--tree"}), "-sin(2*t)+1.5^t\n"
                                                             "add\n"
                                                             "├─ subtract\n"
                                                             "│  ├─ number 0\n"
                                                             "│  └─ sin\n"
                                                             "│     └─ multiply\n"
                                                             "│        ├─ number 2\n"
                                                             "│        └─ variable t\n"
                                                             "└─ power\n"
                                                             "   ├─ number 1.5\n"
                                                             "   └─ variable t\n");
    EXPECT_EQ(output({"expr", "y", "--xy", "--tree"}), "y\nvariable y\n");
}

TEST_F(KWChannelExpressions, ExprDrawsWhatIsDeepFurtherDown) {
    std::string text;
    for (int k = 0; k < 16'000; ++k)
        text += "t+";
    const std::string drawn = output({"expr", text + "t", "--tree"});
    const auto all = lines(drawn);
    EXPECT_EQ(std::count_if(all.begin(), all.end(),
                            [](const auto& line) { return line.ends_with("variable t"); }),
              16'001);
    EXPECT_CONTAINS(drawn, "-> further down: [1]\n");
    EXPECT_CONTAINS(drawn, "\n[1] add\n");
    EXPECT_LT(drawn.size(), 4'000'000U);
    const json tree = json::parse(output({"expr", text + "t", "--tree", "--json"}))["tree"];
    EXPECT_EQ(tree.size(), 32'001U);
}

TEST_F(KWChannelExpressions, ExprShowsTheDerivative) {
    EXPECT_EQ(output({"expr", "sin(t)", "--derive"}), "sin(t)\nderivative: 1*cos(t)\n");
    EXPECT_EQ(output({"expr", "sin(t)", "--derive", "--tree"}), "sin(t)\n"
                                                                "sin\n"
                                                                "└─ variable t\n"
                                                                "derivative: 1*cos(t)\n"
                                                                "multiply\n"
                                                                "├─ number 1\n"
                                                                "└─ cos\n"
                                                                "   └─ variable t\n");
}

TEST_F(KWChannelExpressions, ExprNamesTheFunctionThatHasNoDerivative) {
    for (const char* function : {"tan", "asin", "acos", "atan", "sinh", "cosh", "tanh"})
        for (const std::string& text :
             {std::string(function) + "(t)", "1+2*sin(" + std::string(function) + "(t))^2"})
            EXPECT_EQ(failure(1, {"expr", text, "--derive"}),
                      "kwchannel: there is no derivative: there is no rule for " +
                          std::string(function) + "\n");
    // Exponents count as constants.
    EXPECT_CONTAINS(output({"expr", "t^tan(t)", "--derive"}), "derivative: tan(t)*1*t^-1\n");
    std::string product = "t";
    for (int k = 0; k < 4000; ++k)
        product += "*t";
    EXPECT_CONTAINS(failure(1, {"expr", product, "--derive"}), "more than 4,000,000 parts");
}

TEST_F(KWChannelExpressions, ExprShowsValuesAndWhereThereAreNone) {
    EXPECT_EQ(output({"expr", "1/t", "--from", "-1", "--to", "1", "--step", "1", "--derive"}),
              "1/t\n"
              "derivative: (-1*1)/t^2\n"
              " t  value  derivative\n"
              "-1     -1          -1\n"
              " 0      0           0  division by zero, or the logarithm of zero\n"
              " 1      1          -1\n");
    EXPECT_CONTAINS(output({"expr", "sqrt(t)", "--at", "-4,4"}),
                    "\n-4      0  outside of a function's domain\n 4      2\n");
    EXPECT_CONTAINS(output({"expr", "sqrt(t)", "--at", "0,4", "--derive"}),
                    "\n0      0           0  derivative: division by zero, or the logarithm of zero"
                    "\n4      2       0.125\n");
    EXPECT_CONTAINS(output({"expr", "ln(t)", "--at", "-1,0", "--derive"}),
                    "\n-1      0          -1  outside of a function's domain"
                    "\n 0      0           0  division by zero, or the logarithm of zero\n");
    EXPECT_CONTAINS(output({"expr", "sqrt(t)+1/(t+1)", "--at", "-1", "--derive"}),
                    "  outside of a function's domain; derivative: division by zero");
    EXPECT_EQ(output({"expr", "x*y", "--xy", "--y", "0.5", "--at", "3"}),
              "x*y\nx  value\n3    1.5\n");
}

TEST_F(KWChannelExpressions, ExprAnswersWhatAChannelOfADocumentDoes) {
    const std::string text = textOf(wave, "Sea/Surface/slope");
    const std::vector<std::string> range = {"--from", "-3", "--to", "9", "--step", "0.1", "--json"};
    std::vector<std::string> expr = {"expr", text};
    std::vector<std::string> eval = {"eval", wave, "slope"};
    expr.insert(expr.end(), range.begin(), range.end());
    eval.insert(eval.end(), range.begin(), range.end());
    const json evaluated = json::parse(output(eval));
    const json values = json::parse(output(expr));
    EXPECT_EQ(values["values"], evaluated["channels"][0]["values"]);
    EXPECT_EQ(values["times"], evaluated["times"]);
}

TEST_F(KWChannelExpressions, ExprAsJSONHoldsAll) {
    const json plain = json::parse(output({"expr", "2 * T", "--json"}));
    EXPECT_EQ(plain, (json{{"text", "2 * T"}, {"expression", "2*t"}}));
    const json all =
        json::parse(output({"expr", "2*t", "--json", "--tree", "--derive", "--at", "1,nan"}));
    EXPECT_EQ(all["tree"], (json{{{"kind", "multiply"}, {"code", 3}, {"operands", {1, 2}}},
                                 {{"kind", "number"}, {"code", 0}, {"value", 2}},
                                 {{"kind", "variable"}, {"code", -1}, {"name", "t"}}}));
    EXPECT_EQ(all["values"], (json{2, nullptr}));
    EXPECT_EQ(all["faults"], (json{0, 0}));
    EXPECT_EQ(all["derivative"]["expression"], "0*t+2*1");
    EXPECT_EQ(all["derivative"]["values"][0], 2);
    EXPECT_EQ(all["derivative"]["faults"], (json{0, 0}));
    EXPECT_EQ(all["derivative"]["tree"].size(), 7U);
    const json xy = json::parse(output({"expr", "1/y", "--xy", "--at", "1", "--y=-0.0", "--json"}));
    EXPECT_EQ(xy["x"], json{1});
    EXPECT_EQ(xy["faults"], json{1});
    EXPECT_FALSE(xy.contains("times"));
    const json root = json::parse(output({"expr", "sqrt(t)", "--json", "--derive", "--at", "0,1"}));
    EXPECT_EQ(root["faults"], (json{0, 0}));
    EXPECT_EQ(root["derivative"]["faults"], (json{1, 0}));
}

TEST_F(KWChannelExpressions, ExprRefusesToShowAHugeTreeAsJSON) {
    std::string product = "t";
    for (int k = 0; k < 1000; ++k)
        product += "*t";
    EXPECT_EQ(failure(1, {"expr", product, "--derive", "--tree", "--json"}),
              "kwchannel: a tree of more than 100000 parts is not shown as JSON; leave out "
              "--tree\n");
    EXPECT_EQ(json::parse(output({"expr", product, "--tree", "--json"}))["tree"].size(), 2001U);
}

TEST_F(KWChannelExpressions, AMissingOperatorIsShownBesideItsParenthesis) {
    EXPECT_EQ(excerpt({"expr", "2(t + 1)"}, "an operator is missing beside a parenthesis"),
              "  2(t + 1)\n"
              "   ^\n");
}

TEST_F(KWChannelExpressions, ARefusedTextIsShownWithACaretUnderThePlace) {
    EXPECT_EQ(excerpt({"expr", "2*(t+"}, "the parentheses do not match"), "  2*(t+\n"
                                                                          "    ^\n");
    EXPECT_EQ(excerpt({"expr", "2*+", "--json"}, "an operand is missing"), "  2*+\n"
                                                                           "     ^\n");
    EXPECT_EQ(excerpt({"expr", ""}, "an operand is missing"), "  \n  ^\n");
}

TEST_F(KWChannelExpressions, TheCaretCountsCharactersAndSpaces) {
    EXPECT_EQ(excerpt({"expr", "\u03c0 *  \u03c0+ w"}, "a character or a name is not understood"),
              "  \u03c0 *  \u03c0+ w\n"
              "          ^\n");
    EXPECT_EQ(excerpt({"expr", "t*\u00fc+1"}, "a character or a name is not understood"),
              "  t*\u00fc+1\n"
              "    ^\n");
    // A control character, and a byte that is no UTF-8, take the room of their spelling.
    EXPECT_EQ(excerpt({"expr", "t+1\x1b"}, "a character or a name is not understood"),
              "  t+1\\x1b\n"
              "     ^\n");
    EXPECT_EQ(excerpt({"expr", "\xffw+1"}, "a character or a name is not understood").substr(0, 10),
              "  \\xffw+1\n");
}

TEST_F(KWChannelExpressions, OfALongTextOnlyThePlaceIsShown) {
    std::string text;
    for (int k = 0; k < 1000; ++k)
        text += "\u03c0+";
    const std::string shown =
        excerpt({"expr", text + "w+" + text + "t"}, "a character or a name is not understood");
    EXPECT_LT(shown.size(), 300U);
    EXPECT_CONTAINS(shown, "\u03c0+w+\u03c0");
    EXPECT_TRUE(shown.starts_with("  ...")) << shown;
    EXPECT_EQ(lines(shown)[1], std::string(2 + 3 + 50, ' ') + "^");
    EXPECT_CONTAINS(
        excerpt({"expr", std::string(40'000, 't')}, "the expression is longer than 32,767 bytes"),
        "^\n");
}

TEST_F(KWChannelExpressions, WrongUseOfExprAndSetIsOneLine) {
    const std::vector<std::vector<std::string>> uses = {
        {"expr"},
        {"expr", "t", "t"},
        {"expr", "t", "--y", "1"},
        {"expr", "x", "--xy", "--y", "1"},
        {"expr", "x", "--xy", "--at", "1", "--y", "one"},
        {"expr", "t", "--from", "1"},
        {"expr", "t", "--at", "1", "--step", "1"},
        {"expr", "t", "--from", "0", "--to", "1e9", "--step", "1"},
        {"set", wave},
        {"set", wave, "height"},
        {"set", wave, "nothing", "t", "-o", path("x")},
        {"set", "-", "height", "t"}};
    for (const auto& use : uses)
        EXPECT_CONTAINS(failure(2, use), "ee kwchannel " + use[0] + " --help");
    EXPECT_TRUE(filesLeft().empty());
}

TEST_F(KWChannelExpressions, InfoShowsExpressionsAsTyped) {
    const std::string info = output({"info", wave});
    EXPECT_CONTAINS(info, "wave.kwdoc: binary archive, 2 elements, 6 channels\nSea\n");
    EXPECT_CONTAINS(info, "expression                    length  0.8*sin(2*\u03c0*t/7) + 0.15*");
    EXPECT_EQ(textOf(wave, "Buoy/battery"), "1 - ln(1 + abs(t)/3600)");
    const json channel =
        json::parse(output({"info", wave, "--json"}))["elements"][1]["channels"][1];
    EXPECT_EQ(channel["kind"], "expression");
    EXPECT_EQ(channel["class"], "KWAlgebricChannel");
    EXPECT_EQ(channel["expression"], "-log(1+|t|/3600)");
}

TEST_F(KWChannelExpressions, ExpressionsSurviveEveryForm) {
    const std::vector<std::string> range = {"--from", "-9", "--to", "9", "--rate", "7"};
    const auto baked = [&](const std::string& document) {
        std::vector<std::string> bake = {"bake", document};
        bake.insert(bake.end(), range.begin(), range.end());
        return output(bake);
    };
    output({"convert", wave, "-o", path("wave.xml")});
    output({"convert", wave, "--to", "sequential", "-o", path("wave.stream")});
    output({"convert", path("wave.stream"), "-o", path("back.kwdoc")});
    for (const std::string& document :
         {path("wave.xml"), path("wave.stream"), path("back.kwdoc")}) {
        EXPECT_EQ(baked(document), baked(wave));
        EXPECT_EQ(textOf(document, "Buoy/tilt"), textOf(wave, "Buoy/tilt"));
        EXPECT_EQ(run({"validate", document}).err,
                  "kwchannel: " + document + ": 6 channels, no faults\n");
    }
    EXPECT_EQ(contentsOf(path("back.kwdoc")), contentsOf(wave));
    EXPECT_CONTAINS(output({"dump", wave}), "expressionTexts = [");
}

TEST_F(KWChannelExpressions, AnElementOfVersion0LosesExpressions) {
    std::vector<std::string> command = {
        "convert",         wave,          "--to", "sequential",
        "--class-version", "KWElement=0", "-o",   path("old.stream")};
    const Result refused = run(command);
    EXPECT_EQ(refused.code, 1);
    EXPECT_CONTAINS(refused.err, "would be lost: Buoy/battery: its expression \"1 - ln(");
    EXPECT_TRUE(filesLeft().empty());
    command.emplace_back("--lossy");
    EXPECT_EQ(run(command).code, 0);
    EXPECT_EQ(textOf(path("old.stream"), "Buoy/battery"), nullptr);
    const Result eval = run({"eval", path("old.stream"), "battery", "depth", "--at", "1"});
    EXPECT_EQ(eval.code, 0);
    EXPECT_CONTAINS(eval.out, "Buoy/battery   0\n");
    EXPECT_EQ(eval.err,
              "kwchannel: 1 channel without an expression, 0 at every time; see kwchannel "
              "info\n");
    EXPECT_CONTAINS(run({"validate", path("old.stream")}).out,
                    "warning: Buoy/battery: it has no expression");
    EXPECT_CONTAINS(output({"info", path("old.stream")}), "  no expression\n");
}

TEST_F(KWChannelExpressions, ABareExpressionIsLostInAKeyedArchive) {
    const std::string document = bareChannel("2*t");
    const Result refused = run({"convert", document, "--to", "xml", "-o", path("x")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_CONTAINS(refused.err, "would be lost: gain: its expression \"2*t\": a keyed archive");
    EXPECT_EQ(filesLeft(), std::vector<std::string>{"bare.stream"});
    EXPECT_EQ(output({"convert", document, "--to", "sequential", "-o", "-"}), contentsOf(document));
}

TEST_F(KWChannelExpressions, WhatCannotBeRestoredIsToldInALine) {
    std::string bytes = contentsOf(wave);
    const std::size_t place = bytes.find("0.5*exp(");
    ASSERT_NE(place, std::string::npos);
    bytes[place] = '(';
    writeFile(path("wave.kwdoc"), bytes);
    EXPECT_EQ(run({"info", path("wave.kwdoc")}).err,
              "kwchannel: the text of the expression of \"tilt\" in \"Buoy\" is not restored: the "
              "parentheses do not match\n");
}

TEST_F(KWChannelExpressions, SetGivesAnExpressionANewText) {
    writeFile(path("wave.kwdoc"), contentsOf(wave));
    EXPECT_EQ(output({"set", path("wave.kwdoc"), "Buoy/tilt", "-0.1*LN(t + 1)"}), "");
    EXPECT_EQ(textOf(path("wave.kwdoc"), "Buoy/tilt"), "-0.1*LN(t + 1)");
    EXPECT_EQ(textOf(path("wave.kwdoc"), "Buoy/battery"), textOf(wave, "Buoy/battery"));
    EXPECT_EQ(filesLeft(), std::vector<std::string>{"wave.kwdoc"});
}

TEST_F(KWChannelExpressions, SetReplacesAChannelOfAnotherKind) {
    for (const char* form : {"binary", "xml", "sequential"}) {
        const std::string document = path("ball");
        output({"convert", ball, "--to", form, "-o", document});
        const json before = json::parse(output({"info", document, "--json"}));
        output({"set", document, "Position/x", "1.5*sin(t) - 1"});
        json after = json::parse(output({"info", document, "--json"}));
        EXPECT_EQ(after["format"], form);
        json& channel = after["elements"][0]["groups"][0]["channels"][0];
        EXPECT_EQ(channel["text"], "1.5*sin(t) - 1");
        for (const char* key : {"name", "path", "unitType", "colorIndex"})
            EXPECT_EQ(channel[key], before["elements"][0]["groups"][0]["channels"][0][key]);
        channel = before["elements"][0]["groups"][0]["channels"][0];
        EXPECT_EQ(after, before) << "nothing else has changed";
        EXPECT_EQ(output({"eval", document, "x", "--at", "0", "--unit", "cm"}),
                  "Ball/Position/x  -100  cm\n");
        EXPECT_CONTAINS(run({"validate", document}).err, "8 channels, no faults");
    }
}

TEST_F(KWChannelExpressions, SetWritesElsewhereOrToStandardOutput) {
    EXPECT_EQ(output({"set", wave, "tilt", "t", "-o", path("new.kwdoc")}), "");
    EXPECT_EQ(textOf(path("new.kwdoc"), "Buoy/tilt"), "t");
    EXPECT_EQ(output({"set", wave, "tilt", "t", "-o", "-"}), contentsOf(path("new.kwdoc")));
    input = wave;
    EXPECT_EQ(output({"set", "-", "tilt", "t", "-o", "-"}), contentsOf(path("new.kwdoc")));
    EXPECT_CONTAINS(output({"info", wave}), "0.5*exp(-abs(t)/4)*cos(3*t)");
    failure(3, {"set", wave, "tilt", "t", "-o", path("no/x")});
    failure(3, {"set", path("none"), "tilt", "t"});
}

TEST_F(KWChannelExpressions, SetLeavesTheFileAsItWasWhenTheTextIsRefused) {
    writeFile(path("wave.kwdoc"), contentsOf(wave));
    EXPECT_EQ(excerpt({"set", path("wave.kwdoc"), "tilt", "2*("}, "the parentheses do not match"),
              "  2*(\n    ^\n");
    EXPECT_EQ(contentsOf(path("wave.kwdoc")), contentsOf(wave));
    EXPECT_EQ(filesLeft(), std::vector<std::string>{"wave.kwdoc"});
}

TEST_F(KWChannelExpressions, SetWritesNothingThatTheFormCannotCarryUnlessToldTo) {
    const auto array = std::make_shared<KWChannelArray>();
    array->addChannel(constantChannel("gain", 1));
    for (const bool isKeyed : {true, false}) {
        KWDocument document = KWDocument::read(KWArchiver::archivedDataWithRootObject(array));
        writeData("array",
                  document.data(isKeyed ? KWDocument::Form::binary : KWDocument::Form::sequential));
        const std::string before = contentsOf(path("array"));
        const Result refused = run({"set", path("array"), "gain", "ln(t)"});
        EXPECT_EQ(refused.code, 1);
        EXPECT_CONTAINS(refused.err, "would be lost: gain: its expression \"ln(t)\": ");
        EXPECT_CONTAINS(refused.err, "array: not written, as 1 thing would be lost; --lossy ");
        EXPECT_EQ(contains(refused.err, "kwchannel convert --to sequential"), isKeyed);
        EXPECT_EQ(contentsOf(path("array")), before);
        const Result done = run({"set", path("array"), "gain", "ln(t)", "--lossy"});
        EXPECT_EQ(done.code, 0);
        EXPECT_CONTAINS(done.err, ": lost: gain: its expression");
        EXPECT_EQ(textOf(path("array"), "gain"), isKeyed ? json(nullptr) : json("log(t)"));
    }
    // Text that reads back as it is may stand in a sequential one.
    output({"set", path("array"), "gain", "2 * t"});
    EXPECT_EQ(textOf(path("array"), "gain"), "2*t");
    EXPECT_EQ(output({"eval", path("array"), "gain", "--at", "4"}), "gain  8\n");
}

TEST_F(KWChannelExpressions, PrintAndReadTheSameInACommaDecimalLocale) {
    const std::vector<std::vector<std::string>> commands = {
        {"expr", "1.5*t", "--tree", "--derive", "--at", "0.5"},
        {"expr", "1.5*t", "--at", "0.5", "--json"},
        {"info", wave},
        {"eval", wave, "--at", "0.5"},
        {"set", wave, "tilt", "0.25*t", "-o", "-"}};
    for (const auto& command : commands) {
        environment = {"LC_ALL=C"};
        const std::string plain = output(command);
        environment = {"LC_ALL=de_DE.UTF-8", "LANGUAGE=en"};
        EXPECT_EQ(output(command), plain);
    }
}
