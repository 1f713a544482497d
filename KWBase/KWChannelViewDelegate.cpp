#include <KWBase/KWChannelViewDelegate.h>

KWChannelViewDelegate::KWChannelViewDelegate() : _link(std::make_shared<const Link>(Link{this})) {}

KWChannelViewDelegate::KWChannelViewDelegate(const KWChannelViewDelegate&)
    : KWChannelViewDelegate() {}

KWChannelViewDelegate::~KWChannelViewDelegate() = default;

void KWChannelViewDelegate::selectionDidChange(const KWNotification&) {}

std::optional<QColor> KWChannelViewDelegate::colorForChannel(const std::shared_ptr<KWChannel>&) {
    return std::nullopt;
}

void KWChannelViewDelegate::keyAction(const KWKeyCell&) {}
