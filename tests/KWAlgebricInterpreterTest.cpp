#include "ChannelTestSupport.h"
#include "SequentialBytes.h"

#include <KWBase/KWAlgebricInterpreter.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using Kind = KWExpressionFault::Kind;

/// What is logged while it lives.
class LogCatcher {
  public:
    LogCatcher()
        : _before(KWSetLogHandler([this](std::string_view line) { lines.emplace_back(line); })) {}
    ~LogCatcher() { KWSetLogHandler(_before); }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    std::vector<std::string> lines;

  private:
    KWLogHandler _before;
};

std::shared_ptr<KWAlgebricInterpreter> inT(const std::string& text) {
    auto interpreter = std::make_shared<KWAlgebricInterpreter>();
    EXPECT_TRUE(interpreter->setExpressionMode(text, KWExpressionModeT)) << text;
    return interpreter;
}

std::string printedInT(const std::string& text) {
    return inT(text)->expression().value();
}

std::string printedInXY(const std::string& text) {
    KWAlgebricInterpreter interpreter;
    EXPECT_TRUE(interpreter.setExpressionMode(text, KWExpressionModeXY)) << text;
    return interpreter.expression().value();
}

template <class T>
std::shared_ptr<T> readInOrder(const KWData& bytes) {
    KWUnarchiver it(bytes);
    auto object = std::dynamic_pointer_cast<T>(it.decodeObject().object());
    EXPECT_TRUE(it.isAtEnd());
    return object;
}

KWData writtenInOrder(const KWArchiveValue& root) {
    KWArchiver archiver;
    archiver.encodeRootObject(root);
    return archiver.archiverData();
}

} // namespace

TEST(KWAlgebricInterpreter, BeginsWithAnEmptyExpressionAndNoTree) {
    const KWAlgebricInterpreter interpreter;
    EXPECT_EQ(interpreter.expression(), "");
    EXPECT_EQ(interpreter.sourceText(), std::nullopt);
    EXPECT_EQ(interpreter.mode(), 0);
    EXPECT_EQ(interpreter.tree(), nullptr);
    EXPECT_EQ(interpreter.fault().kind, Kind::none);
}

TEST(KWAlgebricInterpreter, IsAnObjectOfVersionZero) {
    EXPECT_EQ(KWClassNamed("KWAlgebricInterpreter"), &KWAlgebricInterpreter::classObject());
    EXPECT_EQ(KWAlgebricInterpreter::classObject().version(), 0);
    EXPECT_EQ(KWAlgebricInterpreter::classObject().superclass(), &KWObject::classObject());
}

TEST(KWAlgebricInterpreter, WithoutATreeTheValueIsZero) {
    const KWAlgebricInterpreter interpreter;
    EXPECT_EQ(bitsOf(interpreter.evalTExpression(3)), 0U);
    EXPECT_EQ(bitsOf(interpreter.evalXYExpression(3, 4)), 0U);
    float values[] = {7, 7};
    interpreter.evalTExpressions(std::vector<float>{1, 2}, values);
    EXPECT_EQ(values[0], 0);
    EXPECT_EQ(values[1], 0);
}

TEST(KWAlgebricInterpreter, NilAndAModeThatIsNoneChangeNothing) {
    const auto interpreter = inT("2*t");
    EXPECT_FALSE(interpreter->setExpressionMode(std::nullopt, KWExpressionModeXY));
    EXPECT_EQ(interpreter->fault().kind, Kind::noText);
    for (const std::int32_t mode : {2, -1, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_FALSE(interpreter->setExpressionMode("x", mode));
        EXPECT_EQ(interpreter->fault().kind, Kind::badMode);
    }
    EXPECT_EQ(interpreter->expression(), "2*t");
    EXPECT_EQ(interpreter->mode(), KWExpressionModeT);
    EXPECT_EQ(interpreter->evalTExpression(4), 8);
}

TEST(KWAlgebricInterpreter, ARefusedTextClearsTheExpressionAndIsLogged) {
    const auto interpreter = inT("2*t");
    LogCatcher log;
    EXPECT_FALSE(interpreter->setExpressionMode("2*(t", KWExpressionModeXY));
    EXPECT_EQ(log.lines, std::vector<std::string>{"set err = 1"});
    EXPECT_EQ(interpreter->expression(), std::nullopt);
    EXPECT_EQ(interpreter->sourceText(), std::nullopt);
    EXPECT_EQ(interpreter->tree(), nullptr);
    EXPECT_EQ(interpreter->mode(), KWExpressionModeXY);
    EXPECT_EQ(interpreter->evalTExpression(4), 0);
    EXPECT_FALSE(interpreter->setExpressionMode("pi", KWExpressionModeT));
    EXPECT_FALSE(interpreter->setExpressionMode("2*", KWExpressionModeT));
    EXPECT_EQ(log.lines.at(1), "set err = 2");
    EXPECT_EQ(log.lines.at(2), "set err = 3");
    EXPECT_TRUE(interpreter->setExpressionMode("t", KWExpressionModeT));
    EXPECT_EQ(interpreter->fault().kind, Kind::none);
}

TEST(KWAlgebricInterpreter, TheExpressionIsThePrintedTree) {
    EXPECT_EQ(printedInT("2*T + 1"), "2*t+1");
    EXPECT_EQ(printedInT("sqrt(t)"), "sqrt(t)");
    EXPECT_EQ(printedInT("exp(t)"), "etp(t)");
    EXPECT_EQ(printedInXY("x - 1"), "-1");
    EXPECT_EQ(printedInXY("ln(x)"), "log(x)");
    EXPECT_EQ(printedInXY("log(y)"), "ln(y)");
    EXPECT_EQ(printedInT("abs(t)"), "|t|");
    EXPECT_EQ(printedInT(" 1 000 000 * t"), "1e+06*t");
}

TEST(KWAlgebricInterpreter, ASubtractionKeepsItsValueThoughNotItsText) {
    KWAlgebricInterpreter interpreter;
    ASSERT_TRUE(interpreter.setExpressionMode("x - 1", KWExpressionModeXY));
    EXPECT_EQ(interpreter.evalXYExpression(5, 0), 4);
}

TEST(KWAlgebricInterpreter, ThePrintedExponentialReadsBackAsTheSameTree) {
    const auto interpreter = inT("etp(t)");
    EXPECT_EQ(interpreter->tree()->code, KWExpressionExp);
    EXPECT_EQ(interpreter->tree()->left->code, KWExpressionFirstVariable);
    EXPECT_EQ(interpreter->expression(), "etp(t)");
}

TEST(KWAlgebricInterpreter, WhatWasTypedIsKeptBesideIt) {
    const auto interpreter = inT(" 5 - LN(T)");
    EXPECT_EQ(interpreter->sourceText(), " 5 - LN(T)");
    EXPECT_EQ(interpreter->expression(), "-log(t)");
    // Also when the text is the interpreter's own.
    EXPECT_TRUE(interpreter->setExpressionMode(interpreter->sourceText(), KWExpressionModeT));
    EXPECT_EQ(interpreter->sourceText(), " 5 - LN(T)");
}

TEST(KWAlgebricInterpreter, PiIsWrittenAsTheLetterOrTheProductSign) {
    for (const char* const text : {"\u03c0", "\u03a0", "\u220f"})
        EXPECT_EQ(bitsOf(inT(text)->evalTExpression(0)), 0x40490FDBU) << text;
    EXPECT_EQ(KWAlgebricInterpreter::faultInExpression("2*\u00b8", KWExpressionModeT).kind,
              Kind::unknown);
}

TEST(KWAlgebricInterpreter, EvaluationFaultsAreSilentZeros) {
    LogCatcher log;
    EXPECT_EQ(bitsOf(inT("1/t")->evalTExpression(0)), 0U);
    EXPECT_EQ(bitsOf(inT("7+sqrt(t)")->evalTExpression(-1)), 0U);
    EXPECT_TRUE(log.lines.empty());
}

TEST(KWAlgebricInterpreter, TheSecondVariableIsZeroInT) {
    EXPECT_EQ(inT("t+y")->evalTExpression(3), 3);
    EXPECT_EQ(inT("t+y")->evalXYExpression(3, 4), 7);
}

TEST(KWAlgebricInterpreter, ABatchAnswersWhatTheTreeAnswers) {
    std::mt19937 random(7);
    for (const char* const text :
         {"2*t+1", "sin(t)*exp(-t/3)+2*t^2", "sqrt(abs(t))*cos(3*t)+ln(t+2)/(t+5)", "t^0.5-1/t"}) {
        const auto interpreter = inT(text);
        std::vector<float> times(777);
        for (float& time : times)
            time = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        std::vector<float> values(times.size());
        interpreter->evalTExpressions(times, values);
        for (std::size_t k = 0; k < times.size(); ++k) {
            if (std::isnan(times[k]))
                continue;
            std::int16_t err = 0;
            const float wanted = ComputeTree(interpreter->tree(), times[k], 0, &err);
            EXPECT_EQ(bitsOf(interpreter->evalTExpression(times[k])), bitsOf(wanted)) << text;
            EXPECT_EQ(bitsOf(values[k]), bitsOf(wanted)) << text << " at " << times[k];
        }
    }
}

TEST(KWAlgebricInterpreter, ABatchRefusesSizesThatDiffer) {
    float values[] = {7, 7};
    EXPECT_THROW(inT("t")->evalTExpressions(std::vector<float>{0}, values), std::invalid_argument);
    EXPECT_THROW(KWAlgebricInterpreter().evalTExpressions(std::vector<float>{0}, values),
                 std::invalid_argument);
}

TEST(KWAlgebricInterpreter, TellsWhyATextIsRefusedAndWhere) {
    const auto fault = [](const std::string& text) {
        return KWAlgebricInterpreter::faultInExpression(text, KWExpressionModeT);
    };
    EXPECT_EQ(fault("2*t").kind, Kind::none);
    EXPECT_EQ(fault("2*t").sentence(), "");
    // Places are those of the text as it was typed: here behind spaces and a character of two
    // bytes.
    EXPECT_EQ(fault("2 * \u03c0 * u").kind, Kind::unknown);
    EXPECT_EQ(fault("2 * \u03c0 * u").position, 9U);
    EXPECT_EQ(fault("").kind, Kind::missing);
    EXPECT_EQ(fault("2 * (t").kind, Kind::parentheses);
    EXPECT_EQ(KWAlgebricInterpreter::faultInExpression(std::nullopt, 1).kind, Kind::noText);
    EXPECT_EQ(KWAlgebricInterpreter::faultInExpression("t", 2).kind, Kind::badMode);
    for (const Kind kind : {Kind::parentheses, Kind::unknown, Kind::missing, Kind::tooLong,
                            Kind::tooDeep, Kind::noText, Kind::badMode})
        EXPECT_FALSE((KWExpressionFault{kind, 0}.sentence().empty()));
}

TEST(KWAlgebricInterpreter, ReplacingKeepsTheExpressionWhenTheTextIsRefused) {
    const auto interpreter = inT("2*t");
    LogCatcher log;
    EXPECT_EQ(interpreter->replaceExpressionMode("2 * (t", KWExpressionModeXY).kind,
              Kind::parentheses);
    EXPECT_EQ(interpreter->replaceExpressionMode("2 * (t", KWExpressionModeXY).position, 4U);
    EXPECT_EQ(interpreter->replaceExpressionMode(std::nullopt, 0).kind, Kind::noText);
    EXPECT_EQ(interpreter->replaceExpressionMode("t", 2).kind, Kind::badMode);
    EXPECT_EQ(interpreter->fault().kind, Kind::none);
    EXPECT_EQ(interpreter->expression(), "2*t");
    EXPECT_EQ(interpreter->mode(), KWExpressionModeT);
    EXPECT_EQ(interpreter->evalTExpression(4), 8);
    EXPECT_TRUE(log.lines.empty());
    EXPECT_EQ(interpreter->replaceExpressionMode(" x+y ", KWExpressionModeXY).kind, Kind::none);
    EXPECT_EQ(interpreter->expression(), "x+y");
    EXPECT_EQ(interpreter->sourceText(), " x+y ");
    EXPECT_EQ(interpreter->mode(), KWExpressionModeXY);
    EXPECT_EQ(interpreter->evalXYExpression(1, 2), 3);
    // Also when the text is the interpreter's own.
    EXPECT_EQ(interpreter->replaceExpressionMode(interpreter->sourceText(), 0).kind, Kind::none);
    EXPECT_EQ(interpreter->sourceText(), " x+y ");
}

TEST(KWAlgebricInterpreter, TextThatIsTooLongOrTooDeepIsRefused) {
    LogCatcher log;
    KWAlgebricInterpreter interpreter;
    const std::string sum = [] {
        std::string text = "t";
        while (text.size() + 2 <= KWExpressionMaximumLength)
            text += "+t";
        return text;
    }();
    EXPECT_TRUE(interpreter.setExpressionMode(sum, KWExpressionModeT));
    EXPECT_EQ(interpreter.evalTExpression(1), static_cast<float>((sum.size() + 1) / 2));
    EXPECT_FALSE(interpreter.setExpressionMode(sum + "+t", KWExpressionModeT));
    EXPECT_EQ(interpreter.fault().kind, Kind::tooLong);
    const std::string deep = std::string(1001, '(') + "t" + std::string(1001, ')');
    EXPECT_FALSE(interpreter.setExpressionMode(deep, KWExpressionModeT));
    EXPECT_EQ(interpreter.fault().kind, Kind::tooDeep);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"set err = 2", "set err = 2"}));
    EXPECT_TRUE(interpreter.setExpressionMode(deep.substr(1, deep.size() - 2), KWExpressionModeT));
}

TEST(KWAlgebricInterpreter, AKeyedArchiveKeepsTheModeAlone) {
    const auto written = inT("2*t");
    const auto coder = fieldsOf(*written);
    EXPECT_EQ(coder->calls(), "algebricString:object mode:int32");
    EXPECT_EQ(coder->valueForKey("algebricString").string()->text, "2*t");
    const auto read = archivedAndRead(written);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->mode(), KWExpressionModeT);
    EXPECT_EQ(read->expression(), std::nullopt);
    EXPECT_EQ(read->sourceText(), std::nullopt);
    EXPECT_EQ(read->evalTExpression(4), 0);
}

TEST(KWAlgebricInterpreter, ASequentialArchiveGivesTheExpressionBack) {
    const auto read = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("exp(t)+1")));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->expression(), "etp(t)+1");
    EXPECT_EQ(read->mode(), KWExpressionModeT);
    EXPECT_EQ(read->evalTExpression(0), 2);
}

TEST(KWAlgebricInterpreter, ASequentialArchiveHoldsThePrintedTextWithItsOddities) {
    // The bars cannot be read, the left side of a subtraction is not there, and ln is log.
    LogCatcher log;
    const auto bars = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("abs(t)")));
    EXPECT_EQ(bars->expression(), std::nullopt);
    EXPECT_EQ(log.lines, std::vector<std::string>{"set err = 2"});
    const auto less = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("t-1")));
    EXPECT_EQ(less->evalTExpression(5), -1);
    EXPECT_EQ(less->sourceText(), "-1");
    const auto ln = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("ln(t)")));
    EXPECT_EQ(bitsOf(ln->evalTExpression(10)), bitsOf(1.0F));
    EXPECT_EQ(ln->expression(), "ln(t)");
    EXPECT_EQ(ln->sourceText(), "log(t)"); // what was printed counts as typed
    const auto negated = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("5-t")));
    EXPECT_EQ(negated->sourceText(), "-t");
    EXPECT_EQ(negated->evalTExpression(3), -3);
    const auto power = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("t^(2^t)")));
    EXPECT_EQ(power->sourceText(), "t^2^t");
    EXPECT_EQ(power->evalTExpression(3), 729); // (3^2)^3, not 3^8
    const auto digits = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("1.23456789*t")));
    EXPECT_EQ(digits->sourceText(), "1.23457*t");

    // Exponents cannot be read, nor what is printed longer than texts may be.
    log.lines.clear();
    const auto million = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT("1000000*t")));
    EXPECT_EQ(million->expression(), std::nullopt);
    std::string text = "sht";
    while (text.size() + 4 <= KWExpressionMaximumLength)
        text += "+sht";
    const auto longer = readInOrder<KWAlgebricInterpreter>(writtenInOrder(inT(text)));
    EXPECT_EQ(longer->expression(), std::nullopt);
    EXPECT_EQ(longer->fault().kind, Kind::tooLong);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"set err = 2", "set err = 2"}));
}

TEST(KWAlgebricInterpreter, AnUnknownModeInAnArchiveKeepsTheTextWithoutATree) {
    const auto made = readInOrder<KWAlgebricInterpreter>(
        sequentialStream("84 01 \"@\" 84 84 84 15 \"KWAlgebricInterpreter\" 00 84 84 08 "
                         "\"NSObject\" 00 85"
                         "92 84 84 84 08 \"NSString\" 01 94 84 01 \"+\" 01 \"t\" 86"
                         "84 01 \"i\" 07 86",
                         false));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->mode(), 7);
    EXPECT_EQ(made->expression(), "t");
    EXPECT_EQ(made->tree(), nullptr);
}

TEST(KWAlgebricInterpreter, PrintsAndReadsNumbersTheSameInEveryLocale) {
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "The locale de_DE.UTF-8 is not there.";
    const auto interpreter = inT("2.5*t");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(interpreter->expression(), "2.5*t");
    EXPECT_EQ(interpreter->evalTExpression(2), 5);
}

TEST(KWAlgebricInterpreter, ManyThreadsMayBeTheFirstToAskForTheExpression) {
    for (int round = 0; round < 200; ++round) {
        KWAlgebricInterpreter interpreter;
        ASSERT_TRUE(interpreter.setExpressionMode("sin(t)*exp(-t/3)+2*t^2", KWExpressionModeT));
        std::vector<std::string> seen(4);
        std::vector<std::thread> threads;
        for (std::string& text : seen)
            threads.emplace_back([&] { text = interpreter.expression().value_or("none"); });
        for (std::thread& thread : threads)
            thread.join();
        for (const std::string& text : seen)
            ASSERT_EQ(text, "sin(t)*etp(-t/3)+2*t^2");
    }
}

TEST(KWAlgebricInterpreter, ACopyOfWhatWasNeverAskedForHasTheSameExpression) {
    KWAlgebricInterpreter first;
    ASSERT_TRUE(first.setExpressionMode("2 * T + 1", KWExpressionModeT));
    KWAlgebricInterpreter second;
    second.takeExpressionOf(first);
    EXPECT_EQ(second.expression(), "2*t+1");
    EXPECT_EQ(first.expression(), "2*t+1");
    KWAlgebricInterpreter third;
    third.takeExpressionOf(second);
    EXPECT_EQ(third.expression(), "2*t+1");
    EXPECT_FALSE(first.setExpressionMode("2*", KWExpressionModeT));
    EXPECT_EQ(first.expression(), std::nullopt);
}
