#include <KWFoundation/KWKeyObserving.h>

KWKeyObserver::KWKeyObserver() : _lifetime(std::make_shared<char>()) {}

// Registrations are of one observer, not of its copies.
KWKeyObserver::KWKeyObserver(const KWKeyObserver&) : KWKeyObserver() {}

KWKeyObserver::~KWKeyObserver() = default;
