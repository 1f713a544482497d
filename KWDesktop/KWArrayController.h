#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <QObject>
#include <QVariant>
#include <memory>
#include <vector>

/// A list of a host's objects that others show and follow, such as the elements whose channels are
/// listed in an outline. The property "arrangedObjects" sends its NOTIFY signal each time the list
/// is set or edited; what changes inside an object is not the list's business.
class KW_EXPORT KWArrayController : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList arrangedObjects READ arrangedVariants NOTIFY arrangedObjectsChanged)

  public:
    using Objects = std::vector<std::shared_ptr<KWObject>>;

    /// With an empty list.
    explicit KWArrayController(QObject* parent = nullptr);
    ~KWArrayController() override;

    const Objects& arrangedObjects() const { return _objects; }
    /// Each as a std::shared_ptr<KWObject>.
    QVariantList arrangedVariants() const;

    /// Null elements are left out.
    void setContent(Objects objects);
    /// Nothing happens for null.
    void addObject(const std::shared_ptr<KWObject>& object);
    /// Takes out every occurrence; nothing happens, and nothing is signalled, without one.
    void removeObject(const std::shared_ptr<KWObject>& object);

  Q_SIGNALS:
    void arrangedObjectsChanged();

  private:
    Objects _objects;
};
