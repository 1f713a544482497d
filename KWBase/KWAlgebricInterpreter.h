#pragma once

#include <KWBase/KWExpressionProgram.h>
#include <KWBase/KWExpressionText.h>
#include <KWBase/KWExpressionTree.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>

/// Which variables the text of an expression is in.
enum : std::int32_t {
    KWExpressionModeXY = 0, ///< x and y
    KWExpressionModeT = 1,  ///< t
};

/// An expression that a user has typed: read once, kept as a tree and made ready to be evaluated
/// fast.
///
/// The expression is the printed tree, not what was typed: without spaces, numbers with six digits,
/// and with the printer's ways (WriteTree). In mode 1 each "x" of it is a "t", also that of "exp(".
/// What was typed is kept beside it and gives exactly this expression again; archives do not hold
/// it.
///
/// Setting belongs to one thread. While nobody sets, const members may be called from several.
class KW_EXPORT KWAlgebricInterpreter : public KWObject {
  public:
    /// Mode 0, the expression "", no tree.
    KWAlgebricInterpreter();
    ~KWAlgebricInterpreter() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// Takes a text in x and y (mode 0) or t (mode 1). Nil, or another mode, changes nothing. A
    /// text that is refused leaves no expression and no tree, and a line in the log. True when the
    /// text was taken; else fault() tells why.
    bool setExpressionMode(const std::optional<std::string>& text, std::int32_t mode);

    /// As setExpressionMode, but a text that is refused changes nothing and logs nothing, fault()
    /// included. Answers why it was refused, with a position in `text`; no fault when it was taken.
    KWExpressionFault replaceExpressionMode(const std::optional<std::string>& text,
                                            std::int32_t mode);

    /// Becomes as `other` is: mode, texts, fault and a tree of its own, or none.
    void takeExpressionOf(const KWAlgebricInterpreter& other);

    /// Why a text would be refused, with a position in `text`. Sets nothing.
    static KWExpressionFault faultInExpression(const std::optional<std::string>& text,
                                               std::int32_t mode);

    /// About the bytes that an interpreter takes for a text, all told: what reads archives hands it
    /// to KWCoder::spendMemory.
    static std::uint64_t memoryForText(const std::string& text);

    /// Why the last call of setExpressionMode answered false; no fault when it answered true or
    /// there was none.
    const KWExpressionFault& fault() const { return _fault; }

    /// The printed expression; "" for a new interpreter, nil after a refused text.
    const std::optional<std::string>& expression() const {
        if (!_isPrinted.load(std::memory_order_acquire)) [[unlikely]]
            print();
        return _algebricString;
    }
    /// What was typed, for as long as it is the expression; nil when there is none. After an
    /// archive that is the text which the archive had: the printed one.
    const std::optional<std::string>& sourceText() const { return _sourceText; }
    std::int32_t mode() const { return _mode; }
    /// The tree, which the interpreter owns; null for none. A set replaces it.
    const ExprNode* tree() const { return _tree.get(); }
    /// The tree made ready to be evaluated; answers 0 when there is none. A set replaces it.
    const KWExpressionProgram& program() const { return _program; }

    /// The value at x and y, or at t. 0 without a tree, and where the expression has none, such as
    /// at a division by zero.
    float evalXYExpression(float x, float y) const;
    float evalTExpression(float t) const;
    /// values[k] = evalTExpression(times[k]), bit for bit. std::invalid_argument when the sizes
    /// differ.
    void evalTExpressions(std::span<const float> times, std::span<float> values) const;

    /// The expression, as it is printed, and the mode. A keyed archive does not give the expression
    /// back: the interpreter then has none, nil, only its mode.
    ///
    /// A sequential one gives what the printed text reads back as, which need not be what was
    /// written: "5-t" comes back as "-t", "ln(t)" as the decimal logarithm, "t^(2^t)" as "t^2^t",
    /// numbers with six digits. What cannot be read leaves no expression and a line in the log:
    /// "abs(t)", "1000000*t", which is printed "1e+06*t", and what is printed too long. Who needs
    /// the expression itself archives sourceText() and mode().
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

  private:
    void clear(std::int32_t mode);
    void take(KWOwnedTree tree, std::string source);
    void print() const;

    std::int32_t _mode = KWExpressionModeXY;
    // Of a tree that was set, the text is printed when it is first asked for.
    mutable std::optional<std::string> _algebricString = std::string();
    mutable std::atomic<bool> _isPrinted = true;
    mutable std::mutex _printing;
    std::optional<std::string> _sourceText;
    KWOwnedTree _tree;
    KWExpressionProgram _program;
    KWExpressionFault _fault;
};
