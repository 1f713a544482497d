#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWChannelArray.h>
#include <KWFoundation/KWExport.h>

#include <QMetaType>
#include <QVariant>
#include <memory>

Q_DECLARE_METATYPE(std::shared_ptr<KWChannel>)
Q_DECLARE_METATYPE(std::shared_ptr<KWChannelArray>)
Q_DECLARE_METATYPE(std::shared_ptr<KWObject>)

/// Makes shared pointers to channels, to arrays of channels and to any object of the model known to
/// Qt's property system, and those to a kind of channel of this framework convertible to
/// std::shared_ptr<KWChannel>: a property may have the type of any of them. Every view and every
/// observation calls this; calling it again does nothing.
KW_EXPORT void KWRegisterChannelMetaTypes();

/// The same for a host's own kind of channel, so that a property of type std::shared_ptr<C> is seen
/// as the channel that it is. Calling it again does nothing.
template <class C>
void KWRegisterChannelMetaType() {
    if (!QMetaType::hasRegisteredConverterFunction<std::shared_ptr<C>,
                                                   std::shared_ptr<KWChannel>>())
        QMetaType::registerConverter<std::shared_ptr<C>, std::shared_ptr<KWChannel>>(
            [](const std::shared_ptr<C>& channel) {
                return std::static_pointer_cast<KWChannel>(channel);
            });
}

/// The channel that a property's value is: of type std::shared_ptr<KWChannel>, of a type that
/// converts to it, or a std::shared_ptr<KWObject> to a channel. Null for anything else.
KW_EXPORT std::shared_ptr<KWChannel> KWChannelFromVariant(const QVariant& value);
