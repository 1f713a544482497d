#include <KWFoundation/KWClass.h>

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace {

struct Registry {
    std::shared_mutex mutex;
    // The names belong to the classes.
    std::unordered_map<std::string_view, const KWClass*> classes;
};

/// Made by the first registration, whichever library's initialisation that is in, and never
/// destroyed.
Registry& theRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}

} // namespace

bool KWClass::isSubclassOfClass(const KWClass& other) const {
    for (const KWClass* aClass = this; aClass; aClass = aClass->superclass())
        if (aClass == &other)
            return true;
    return false;
}

void KWRegisterClass(const KWClass& aClass) {
    Registry& registry = theRegistry();
    const std::unique_lock lock(registry.mutex);
    // Not assigned in place: the key must be the new class's own name, for the old class's library
    // may be unloaded.
    registry.classes.erase(aClass.name());
    registry.classes.emplace(aClass.name(), &aClass);
}

void KWUnregisterClass(const KWClass& aClass) {
    Registry& registry = theRegistry();
    const std::unique_lock lock(registry.mutex);
    const auto found = registry.classes.find(aClass.name());
    if (found != registry.classes.end() && found->second == &aClass)
        registry.classes.erase(found);
}

const KWClass* KWClassNamed(std::string_view name) {
    Registry& registry = theRegistry();
    const std::shared_lock lock(registry.mutex);
    const auto found = registry.classes.find(name);
    return found == registry.classes.end() ? nullptr : found->second;
}
