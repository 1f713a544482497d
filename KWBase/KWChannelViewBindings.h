#pragma once

#include <QObject>
#include <QPointer>
#include <string>

/// What a curve view is bound to. Nothing is bound where the container is null, which it is as well
/// once the host's object is gone.
struct KWChannelViewBindings {
    struct Binding {
        QPointer<QObject> container;
        std::string keyPath;
    };
    Binding channel;
    Binding currentTime;
};
