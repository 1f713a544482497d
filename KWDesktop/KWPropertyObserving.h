#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWKeyObserving.h>

#include <QVariant>
#include <cstdint>
#include <string_view>

class QObject;

// Properties of a host's QObjects, observed as those of a KWObject are. A key path is names of
// properties with dots between them, as "document.selection.channel"; all but the last must hold
// QObjects. The objects on a path live on the thread that observes them.

/// What stands at the path. Invalid when `object` is null, a property is missing or unreadable, or
/// something other than a QObject stands in the middle.
KW_EXPORT QVariant KWValueForKeyPath(const QObject* object, std::string_view keyPath);

/// Has `observer` told each time a property on the path sends its NOTIFY signal, also when the
/// value is the same, and each time one of them that is dynamic is set. When an object in the
/// middle is replaced, it is the new one that is observed from then on.
///
/// A notice comes with a null object. What `options`, KWKeyValueObservingOptions, ask for stands in
/// the change as a QVariant, which may be invalid: the value at the path now, and the one at the
/// notice before. What an observer throws is logged and goes no further, since Qt's signals let
/// nothing through.
///
/// A property that has no NOTIFY signal, and does not call itself constant, is read as it is and
/// logged once. The same observer may be registered more than once. A registration ends with either
/// end's life; objects in the middle may come and go, and going is not a notice.
KW_EXPORT void KWAddObserverForKeyPathOptionsContext(QObject& object, KWKeyObserver& observer,
                                                     std::string_view keyPath,
                                                     std::uint32_t options, const void* context);

/// Undoes the latest such registration; nothing happens when there is none.
KW_EXPORT void KWRemoveObserverForKeyPath(QObject& object, KWKeyObserver& observer,
                                          std::string_view keyPath);
