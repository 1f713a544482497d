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
    /// The expression as it was typed, nil for none.
    std::optional<std::string> sourceText() const;
    /// Why the last text was refused.
    KWExpressionFault fault() const;

    /// Null only when an archive had none; the channel then takes no expression.
    const std::shared_ptr<KWAlgebricInterpreter>& interpreter() const { return _interpreter; }

    float valueForTime(std::optional<KWTime> time) const override;
    void valuesForTimes(std::span<const float> times, std::span<float> values) const override;

    /// Name, colour index, unit type and the text as it was typed, so that the copy has the same
    /// values.
    std::shared_ptr<KWChannel> copy() const override;
    bool takeContentsOf(const KWChannel& other) override;

    /// The channel's part, then the interpreter. A keyed archive does not give the expression back.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

  private:
    std::shared_ptr<KWAlgebricInterpreter> _interpreter;
};
