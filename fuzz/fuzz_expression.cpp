#include <KWBase/KWAlgebricInterpreter.h>
#include <KWFoundation/KWLog.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

// Text, of either mode, as a user might type it: whatever is taken must print, copy, derive and
// evaluate, the same in all three ways.

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

bool isSame(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    static const KWLogHandler before = KWSetLogHandler([](std::string_view) {});
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::int32_t mode = data[0] & 1;

    KWAlgebricInterpreter interpreter;
    const bool isTaken = interpreter.setExpressionMode(text, mode);
    const KWExpressionFault fault = KWAlgebricInterpreter::faultInExpression(text, mode);
    require(isTaken == (fault.kind == KWExpressionFault::Kind::none));
    require(isTaken == interpreter.expression().has_value());
    require(fault.position <= text.size());
    require(isTaken == fault.sentence().empty());
    if (!isTaken)
        return 0;

    // As many as take blocks, and a rest.
    const std::array<float, 17> times{
        0,    -1, 2.5F,   1e30F, -1e-40F, HUGE_VALF, -HUGE_VALF, NAN,          -NAN,
        0.1F, 3,  -7.25F, 100,   -0.0F,   1e-5F,     119,        2147483648.0F};
    std::array<float, 17> values{};
    interpreter.evalTExpressions(times, values);
    ExprNode* const copy = CopyNode(interpreter.tree());
    for (std::size_t k = 0; k < times.size(); ++k) {
        std::int16_t err = 0;
        require(isSame(values[k], ComputeTree(copy, times[k], 0, &err)));
        require(isSame(values[k], interpreter.evalTExpression(times[k])));
    }
    ExprNode* const derivative = Deriv_arbre(copy);
    std::int16_t err = 0;
    ComputeTree(derivative, 1, 2, &err);
    KWDeleteNode(derivative);
    KWDeleteNode(copy);
    // What is printed may be refused, but must be read to its end.
    KWAlgebricInterpreter again;
    again.setExpressionMode(interpreter.expression(), mode);
    return 0;
}
