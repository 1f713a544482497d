#pragma once

#include <KWBase/KWAlgebricInterpreter.h>
#include <KWBase/KWChannel.h>

/// A channel whose value is an algebraic expression of the time t, typed as text.
class KW_EXPORT KWAlgebricChannel : public KWChannel {
  public:
    /// Without an expression: 0 at every time.
    explicit KWAlgebricChannel(std::string name = "no name");
    ~KWAlgebricChannel() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// Takes a text in t. When it is taken the channel is invalidated as by setting a value, and
    /// posts one notice. A text that is refused leaves the channel without an expression, untold;
    /// ask KWAlgebricInterpreter::faultInExpression first to keep the one it has. Nil is refused
    /// and changes nothing.
    bool setExpression(const std::optional<std::string>& text);

    /// The expression as it is printed (see KWAlgebricInterpreter), nil for none.
    std::optional<std::string> expression() const;
    /// The expression as it was typed, nil for none; after an archive as it was printed.
    std::optional<std::string> sourceText() const;
    /// Why the last text was refused; no fault when it was taken or there was none. A channel
    /// without an interpreter refuses every text, and has the fault from the beginning.
    KWExpressionFault fault() const;

    /// Null only when an archive had none; the channel then takes no expression. Setting an
    /// expression through it neither invalidates the channel nor tells anybody.
    const std::shared_ptr<KWAlgebricInterpreter>& interpreter() const { return _interpreter; }

    float valueForTime(std::optional<KWTime> time) const override;
    void valuesForTimes(std::span<const float> times, std::span<float> values) const override;

    /// Name, colour index, unit type, and the expression with its mode and the text as it was
    /// typed, so that the copy has the same values; none when there is none here.
    std::shared_ptr<KWChannel> copy() const override;
    /// As copy. Invalidates and tells once, as by setting a value.
    bool takeContentsOf(const KWChannel& other) override;

    /// The channel's part, then the interpreter, with all that its own archives lose: a keyed one
    /// does not give the expression back, a sequential one what its printed text reads back as.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

  private:
    std::shared_ptr<KWAlgebricInterpreter> _interpreter;
};
