#include <KWFoundation/KWCallList.h>
#include <KWFoundation/KWObject.h>

#include <string>

namespace {

struct Observation : KWCallEntry {
    Observation(KWKeyObserver& theObserver, std::string_view theKeyPath, std::uint32_t theOptions,
                const void* theContext)
        : observer(&theObserver), lifetime(theObserver.lifetime()), keyPath(theKeyPath),
          options(theOptions), context(theContext) {}

    bool isDead() const { return !isConnected || lifetime.expired(); }
    void release() {}

    KWKeyObserver* observer;
    std::weak_ptr<const void> lifetime;
    std::string keyPath;
    std::uint32_t options;
    const void* context;
};

} // namespace

class KWKeyObserverList : public KWCallList<Observation> {};

KWObject::KWObject() = default;

KWObject::~KWObject() {
    // An observer may be destroying the object from within a notice: the rest of them are not
    // handed a dead object.
    if (_observers)
        _observers->close();
}

const KWClass& KWObject::classObject() {
    static constinit KWClass theClass{"NSObject", nullptr, 0, KWClass::make<KWObject>};
    return theClass;
}

const KWClass& KWObject::isa() const {
    return classObject();
}

void KWObject::encodeWithCoder(KWCoder&) const {}

bool KWObject::initWithCoder(KWCoder&) {
    return true;
}

void KWObject::addObserverForKeyPathOptionsContext(KWKeyObserver& observer,
                                                   std::string_view keyPath, std::uint32_t options,
                                                   const void* context) {
    auto observation = std::make_shared<Observation>(observer, keyPath, options, context);
    if (!_observers)
        _observers = std::make_shared<KWKeyObserverList>();
    _observers->append(std::move(observation));
}

void KWObject::removeObserverForKeyPath(KWKeyObserver& observer, std::string_view keyPath) {
    if (!_observers)
        return;
    Observation* observation = _observers->latest([&](const Observation& candidate) {
        return candidate.observer == &observer && candidate.keyPath == keyPath;
    });
    if (!observation)
        return;
    _observers->remove(*observation);
    if (_observers->isEmpty())
        _observers.reset();
}

void KWObject::didChangeValueForKey(std::string_view key, const std::any& oldValue,
                                    const std::any& newValue) {
    const std::shared_ptr<KWKeyObserverList> observers = _observers;
    if (!observers)
        return;
    const auto tell = [&](const Observation& observation) {
        if (observation.keyPath != key)
            return;
        KWKeyValueChange change;
        if (observation.options & KWKeyValueObservingOptionNew)
            change.newValue = newValue;
        if (observation.options & KWKeyValueObservingOptionOld)
            change.oldValue = oldValue;
        observation.observer->observeValueForKeyPathOfObjectChangeContext(key, this, change,
                                                                          observation.context);
    };
    const auto exception = KWCallEntries<Observation>(observers, nullptr, tell);
    // A closed list tells that this object is gone.
    if (!observers->isClosed() && observers->isEmpty() && _observers == observers)
        _observers.reset();
    if (exception)
        std::rethrow_exception(exception);
}
