#pragma once

#include <KWFoundation/KWExport.h>

#include <any>
#include <cstdint>
#include <memory>
#include <string_view>

class KWObject;

/// What an observer wants to be told besides the fact of a change; combined with `|`.
enum KWKeyValueObservingOptions : std::uint32_t {
    KWKeyValueObservingOptionNew = 1,
    KWKeyValueObservingOptionOld = 2,
};

/// The values around a change; each is there only if it was asked for.
struct KWKeyValueChange {
    std::any newValue;
    std::any oldValue;
};

/// Something that is told when a property of another object is set. An observer may go away while
/// it is registered: it is then told no more.
class KW_EXPORT KWKeyObserver {
  public:
    /// `keyPath` and `context` are those of the registration, by which an observer tells its
    /// registrations apart. `object` is null when what changed is not a KWObject.
    virtual void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath,
                                                             KWObject* object,
                                                             const KWKeyValueChange& change,
                                                             const void* context) = 0;

    /// Gone as soon as the observer is or has resigned; for registries that hold observers.
    std::weak_ptr<const void> lifetime() const { return _lifetime; }

  protected:
    KWKeyObserver();
    KWKeyObserver(const KWKeyObserver&);
    KWKeyObserver& operator=(const KWKeyObserver&) { return *this; }
    ~KWKeyObserver();

    /// Ends every registration of this observer at once, and for good. A final class whose members
    /// hold or change what it observes calls this first in its destructor, so that nothing is told
    /// to an observer that is half gone.
    void resign() { _lifetime.reset(); }

  private:
    std::shared_ptr<const void> _lifetime;
};
