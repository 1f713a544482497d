#include <KWDesktop/KWArrayController.h>
#include <KWDesktop/KWChannelMetaTypes.h>

KWArrayController::KWArrayController(QObject* parent) : QObject(parent) {
    KWRegisterChannelMetaTypes();
}

KWArrayController::~KWArrayController() = default;

QVariantList KWArrayController::arrangedVariants() const {
    QVariantList list;
    for (const auto& object : _objects)
        list.append(QVariant::fromValue(object));
    return list;
}

void KWArrayController::setContent(Objects objects) {
    std::erase(objects, nullptr);
    _objects = std::move(objects);
    Q_EMIT arrangedObjectsChanged();
}

void KWArrayController::addObject(const std::shared_ptr<KWObject>& object) {
    if (!object)
        return;
    _objects.push_back(object);
    Q_EMIT arrangedObjectsChanged();
}

void KWArrayController::removeObject(const std::shared_ptr<KWObject>& object) {
    if (object && std::erase(_objects, object) != 0)
        Q_EMIT arrangedObjectsChanged();
}
