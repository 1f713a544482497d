#include <KWBase/KWExpressionProgram.h>

#include <apps/common/Text.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Expressions.h>
#include <apps/kwchannel/TimeOptions.h>

namespace {

struct ExprArguments {
    std::string text;
    bool isXY = false;
    std::string y;
    bool showsTree = false;
    bool derives = false;
    TimeArguments times;
    bool isJson = false;
};

/// Values, and for each of them its fault, as ComputeTree has them.
struct Series {
    std::vector<float> values;
    std::vector<std::int16_t> faults;
};

/// An expression and what was asked of it.
struct Analysis {
    KWAlgebricInterpreter interpreter;
    std::int32_t mode = KWExpressionModeT;
    KWOwnedTree derivative; ///< null when it was not asked for
    float y = 0;
    std::vector<float> times;
    Series values;
    Series slopes; ///< of the derivative
};

Series evaluated(const KWExpressionProgram& program, const Analysis& it) {
    Series series;
    for (const float time : it.times) {
        std::int16_t fault = 0;
        series.values.push_back(program.evaluate(time, it.y, &fault));
        series.faults.push_back(fault);
    }
    return series;
}

std::unique_ptr<Analysis> analysisOf(const ExprArguments& arguments) {
    auto it = std::make_unique<Analysis>();
    if (arguments.isXY)
        it->mode = KWExpressionModeXY;
    else if (!arguments.y.empty())
        throw UseError("--y needs --xy");
    if (!arguments.y.empty())
        it->y = static_cast<float>(numberArgument("--y", arguments.y));
    if (arguments.times.areGiven())
        it->times = timesOf(arguments.times, "give a larger --step");
    else if (!arguments.y.empty())
        throw UseError("--y needs values of x: give --at, or --from, --to and --step");

    setExpression(it->interpreter, arguments.text, it->mode);
    it->values = evaluated(it->interpreter.program(), *it);
    if (arguments.derives) {
        it->derivative = derivativeOf(*it->interpreter.tree());
        if (!it->times.empty())
            it->slopes = evaluated(KWExpressionProgram(it->derivative.get()), *it);
    }
    return it;
}

std::string exprJson(const ExprArguments& arguments, const Analysis& it) {
    Json json = {{"text", arguments.text},
                 {"expression", it.interpreter.expression().value_or("")}};
    if (arguments.showsTree)
        json["tree"] = treeJson(*it.interpreter.tree(), it.mode);
    if (!it.times.empty()) {
        json[arguments.isXY ? "x" : "times"] = it.times;
        if (arguments.isXY)
            json["y"] = it.y;
        json["values"] = it.values.values;
        json["faults"] = it.values.faults;
    }
    if (it.derivative) {
        Json derivative = {{"expression", printedTree(*it.derivative, it.mode)}};
        if (arguments.showsTree)
            derivative["tree"] = treeJson(*it.derivative, it.mode);
        if (!it.times.empty()) {
            derivative["values"] = it.slopes.values;
            derivative["faults"] = it.slopes.faults;
        }
        json["derivative"] = std::move(derivative);
    }
    return jsonText(json) + "\n";
}

std::string remark(const Analysis& it, std::size_t place) {
    const std::int16_t fault = it.values.faults[place];
    std::string text = evaluationFault(fault);
    if (it.derivative && it.slopes.faults[place] != 0 && it.slopes.faults[place] != fault)
        text += (text.empty() ? "derivative: " : "; derivative: ") +
                evaluationFault(it.slopes.faults[place]);
    return text;
}

std::string valueTable(const ExprArguments& arguments, const Analysis& it) {
    using enum Table::Align;
    std::vector<Table::Align> columns(it.derivative ? 3 : 2, right);
    columns.push_back(left);
    Table table(columns);
    std::vector<std::string> heading{arguments.isXY ? "x" : "t", "value"};
    if (it.derivative)
        heading.emplace_back("derivative");
    table.addRow(std::move(heading));
    for (std::size_t k = 0; k < it.times.size(); ++k) {
        std::vector<std::string> row{floatText(it.times[k]), floatText(it.values.values[k])};
        if (it.derivative)
            row.push_back(floatText(it.slopes.values[k]));
        row.push_back(remark(it, k));
        table.addRow(std::move(row));
    }
    return table.text();
}

void runExpr(const ExprArguments& arguments) {
    const std::unique_ptr<Analysis> it = analysisOf(arguments);
    Output output("");
    if (arguments.isJson) {
        output.write(exprJson(arguments, *it));
        return output.finish();
    }
    output.write(it->interpreter.expression().value_or("") + "\n");
    if (arguments.showsTree)
        drawTree(*it->interpreter.tree(), it->mode, output);
    if (it->derivative) {
        output.write("derivative: " + printedTree(*it->derivative, it->mode) + "\n");
        if (arguments.showsTree)
            drawTree(*it->derivative, it->mode, output);
    }
    if (!it->times.empty())
        output.write(valueTable(arguments, *it));
    output.finish();
}

} // namespace

void addExprCommand(Command& program) {
    Command command =
        program.command("expr", "Shows how an expression is read, its derivative, and its values");
    const auto arguments = std::make_shared<ExprArguments>();
    command
        .option("TEXT", arguments->text,
                "the expression, in t: + - * / ^, parentheses, numbers, pi as \u03c0, and "
                "exp, ln, log, sqrt, abs, sin, cos, tan, asin, acos, atan, sinh, cosh, tanh; "
                "it is shown as channels show it, which need not read back as the same")
        .required();
    command.flag("--tree", arguments->showsTree, "draw what it is made of");
    command.flag("--derive", arguments->derives, "show its derivative as well");
    addTimeOptions(command, arguments->times);
    command.flag("--xy", arguments->isXY, "it is in x and y; the times are those of x");
    command.option("--y", arguments->y, "the y of every x, 0 when not given").shownAs("Y");
    command.flag("--json", arguments->isJson,
                 "as one JSON object, trees as lists of nodes; what is not finite is null");
    command.setExamples("kwchannel expr \"2*T + 1\"\n"
                        "kwchannel expr \"sin(t)*exp(-t/3)\" --from 0 --to 6 --step 0.5\n"
                        "kwchannel expr \"sqrt(t)\" --tree --derive --at 1,4\n"
                        "kwchannel expr \"x^2 - y\" --xy --y 0.5 --at 0,1 --json\n");
    command.onRun([arguments] { runExpr(*arguments); });
}
