#include <KWBase/KWChannelOwner.h>

KWChannelOwner::KWChannelOwner() : _link(std::make_shared<const Link>(Link{this})) {}

KWChannelOwner::KWChannelOwner(const KWChannelOwner&) : KWChannelOwner() {}

KWChannelOwner::~KWChannelOwner() = default;

bool KWChannelOwner::replaceChannelWith(const std::shared_ptr<KWChannel>&,
                                        const std::shared_ptr<KWChannel>&) {
    return false;
}
