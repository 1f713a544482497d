#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWChannelMetaTypes.h>

void KWRegisterChannelMetaTypes() {
    static const bool registered = [] {
        qRegisterMetaType<std::shared_ptr<KWChannel>>();
        qRegisterMetaType<std::shared_ptr<KWChannelArray>>();
        qRegisterMetaType<std::shared_ptr<KWObject>>();
        KWRegisterChannelMetaType<KWAlgebricChannel>();
        KWRegisterChannelMetaType<KWConstantChannel>();
        KWRegisterChannelMetaType<KWKeyFramedChannel>();
        return true;
    }();
    static_cast<void>(registered);
}

std::shared_ptr<KWChannel> KWChannelFromVariant(const QVariant& value) {
    KWRegisterChannelMetaTypes();
    if (value.metaType() == QMetaType::fromType<std::shared_ptr<KWObject>>())
        return std::dynamic_pointer_cast<KWChannel>(value.value<std::shared_ptr<KWObject>>());
    return value.value<std::shared_ptr<KWChannel>>();
}
