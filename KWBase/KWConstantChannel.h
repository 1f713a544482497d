#pragma once

#include <KWBase/KWChannel.h>

/// A channel with one value at every time.
class KW_EXPORT KWConstantChannel : public KWChannel {
  public:
    explicit KWConstantChannel(std::string name = "no name");
    ~KWConstantChannel() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// Name, colour index, unit type and value of another constant channel; null for another class.
    static std::shared_ptr<KWConstantChannel> initWithChannel(const KWChannel& channel) {
        return KWChannel::initWithChannel<KWConstantChannel>(channel);
    }

    float valueForTime(std::optional<KWTime> time) const override;
    void valuesForTimes(std::span<const float> times, std::span<float> values) const override;
    /// Sets the value of every time, whatever `time` is. Invalidates, tells the owner and posts
    /// KWChannelChangedNotification as other edits do, but registers no undo, and the value is
    /// already the new one by then.
    void setValueForTime(float value, std::optional<KWTime> time) override;

    /// Takes the value alone: the copy is called "no name" and has colour index 0 and no unit.
    std::shared_ptr<KWChannel> copy() const override;

    /// The value travels as a double.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;
    bool takeContentsOf(const KWChannel& other) override;

  private:
    float _constValue = 0;
};
