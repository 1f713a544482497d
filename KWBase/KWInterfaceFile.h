#pragma once

#include <QMetaObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <span>

/// A widget that a controller looks for in an interface file, by its object name.
struct KWOutlet {
    /// For a widget of class T or one derived from it.
    template <class T>
    KWOutlet(const char* outletName, QPointer<T>& place, std::optional<int> wantedTag = {})
        : name(outletName), type(&T::staticMetaObject), tag(wantedTag),
          connect([&place](QWidget* widget) { place = static_cast<T*>(widget); }) {}

    const char* name;
    const QMetaObject* type;
    std::optional<int> tag; ///< what its property "tag" has to be
    std::function<void(QWidget*)> connect;
};

/// What an interface file gave: either a widget with all it holds, or why there is none.
struct KWLoadedInterface {
    std::unique_ptr<QWidget> root;
    QString error; ///< one sentence that begins with the file's name
};

/// Loads an interface file, a form of Qt Designer, in which curve views may stand as well. Nothing
/// is loaded from a file that is larger or nested deeper than any form a person would make.
KWLoadedInterface KWLoadInterfaceFile(const QString& path);

/// Finds every outlet in `root`, which may be one itself. The sentence that tells which one is
/// missing, of another class, or without its tag, the first in order; "" when all are well, and
/// only then are the places filled.
QString KWConnectOutlets(QWidget& root, std::span<const KWOutlet> outlets, const QString& path);

/// The text of a dynamic property "tag"; nothing when there is none or it is no number.
std::optional<int> KWTagOf(const QObject* object);
