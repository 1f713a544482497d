#pragma once

#include <KWBase/KWChannel.h>
#include <KWFoundation/KWUnknownObject.h>

/// Stands for a channel of a class that is not registered here, such as a host's own: it lists and
/// groups as the channel would, answers 0 at every time, and is written back as it came. What is
/// set on it, its name among other things, is not written.
class KW_EXPORT KWUnknownChannel final : public KWChannel {
  public:
    /// Name, colour index, unit type, group and owner are those that the contents hold, a new
    /// channel's where they hold none. std::invalid_argument for null.
    explicit KWUnknownChannel(std::shared_ptr<KWUnknownObject> contents);
    ~KWUnknownChannel() override;

    /// The name of the class that the channel is of.
    const std::string& className() const { return _contents->className(); }
    const KWUnknownObject* unknownContents() const override { return _contents.get(); }

    /// Looks through the contents again, for a reader that fills them after the channel was made.
    /// Reads nothing from the coder.
    bool initWithCoder(KWCoder& coder) override;

    /// Never: the contents are not this program's to change.
    bool takeContentsOf(const KWChannel& other) override;

  private:
    void readContents();

    std::shared_ptr<KWUnknownObject> _contents;
};
