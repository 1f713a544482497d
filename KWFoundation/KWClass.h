#pragma once

#include <KWFoundation/KWExport.h>

#include <cstdint>
#include <memory>
#include <string_view>

class KWObject;
class KWUnknownObject;

/// What an archive needs to know of a class: its run-time name, its superclass, its version and how
/// to make an empty instance. One object a class, alive as long as the program; its address is the
/// class's identity.
///
///     const KWClass& Lamp::classObject() {
///         static constinit KWClass theClass{"Lamp", &KWObject::classObject, 0,
///                                           KWClass::make<Lamp>};
///         return theClass;
///     }
class KWClass {
  public:
    /// A function rather than an address, so that no order of initialisation matters.
    using ClassFunction = const KWClass& (*)();
    using Factory = std::shared_ptr<KWObject> (*)();
    /// Makes an object that answers as one of this class and keeps the contents of an instance of
    /// an unregistered subclass.
    using StandInFactory = std::shared_ptr<KWObject> (*)(std::shared_ptr<KWUnknownObject>);

    /// The superclass is null for the root alone, the factory for a class without instances, the
    /// stand-in factory where unregistered subclasses are kept as plain KWUnknownObjects.
    constexpr KWClass(const char* className, ClassFunction superclassFunction,
                      std::int32_t classVersion, Factory instanceFactory,
                      StandInFactory standInFactory = nullptr)
        : _name(className), _superclass(superclassFunction), _version(classVersion),
          _factory(instanceFactory), _standIn(standInFactory) {}
    KWClass(const KWClass&) = delete;
    KWClass& operator=(const KWClass&) = delete;

    std::string_view name() const { return _name; }
    /// Null for the root.
    const KWClass* superclass() const { return _superclass ? &_superclass() : nullptr; }
    std::int32_t version() const { return _version; }
    Factory factory() const { return _factory; }
    StandInFactory standIn() const { return _standIn; }

    /// Whether this is `other` or one of its subclasses.
    KW_EXPORT bool isSubclassOfClass(const KWClass& other) const;

    template <class T>
    static std::shared_ptr<KWObject> make() {
        return std::make_shared<T>();
    }

  private:
    const char* _name;
    ClassFunction _superclass;
    std::int32_t _version;
    Factory _factory;
    StandInFactory _standIn;
};

/// Makes a class known to the archives under its name. A second class of the same name takes the
/// first one's place. Any thread.
KW_EXPORT void KWRegisterClass(const KWClass& aClass);

/// Takes a class back; nothing happens when it is not registered. Any thread.
KW_EXPORT void KWUnregisterClass(const KWClass& aClass);

/// The registered class of that name, or null. Any thread.
KW_EXPORT const KWClass* KWClassNamed(std::string_view name);
