#pragma once

#include <KWFoundation/KWClass.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWKeyObserving.h>

#include <memory>
#include <string_view>

class KWCoder;
class KWKeyObserverList;

/// The root of the model classes: it has a class that archives know, and properties that can be
/// observed. Model objects live in a std::shared_ptr; whoever holds one keeps it alive.
class KW_EXPORT KWObject : public std::enable_shared_from_this<KWObject> {
  public:
    KWObject();
    virtual ~KWObject();
    KWObject(const KWObject&) = delete;
    KWObject& operator=(const KWObject&) = delete;

    static const KWClass& classObject();

    /// The class of this very object; every class with archives of its own overrides it.
    virtual const KWClass& isa() const;

    bool isKindOfClass(const KWClass& aClass) const { return isa().isSubclassOfClass(aClass); }

    /// Writes the object's contents, the superclass's first. The root has none.
    virtual void encodeWithCoder(KWCoder& coder) const;

    /// Fills an object made by its class's factory with what encodeWithCoder wrote, the
    /// superclass's part first. Answers false when there is no object to be had: the archive then
    /// yields nil.
    virtual bool initWithCoder(KWCoder& coder);

    /// The contents as they came, for an object that stands in for one of an unregistered class;
    /// null for every other. An archiver writes these in place of the object.
    virtual const KWUnknownObject* unknownContents() const { return nullptr; }

    /// Has `observer` told, on this thread, each time the property `keyPath` is set, whether or not
    /// the value differs. `options` are KWKeyValueObservingOptions. The same observer may be
    /// registered more than once.
    void addObserverForKeyPathOptionsContext(KWKeyObserver& observer, std::string_view keyPath,
                                             std::uint32_t options, const void* context);

    /// Undoes the latest such registration; nothing happens when there is none.
    void removeObserverForKeyPath(KWKeyObserver& observer, std::string_view keyPath);

  protected:
    /// Whether anybody observes anything of this object; false makes a setter's notice free.
    bool isObserved() const { return _observers != nullptr; }

    /// Tells the observers of `key` that were registered when the call began, in order of
    /// registration. The first exception an observer throws is rethrown when all have been told.
    void didChangeValueForKey(std::string_view key, const std::any& oldValue,
                              const std::any& newValue);

  private:
    std::shared_ptr<KWKeyObserverList> _observers;
};
