#pragma once

#include <QList>
#include <QPalette>
#include <QString>
#include <optional>

/// Whether the windows are light or dark.
struct KWEditAppearance {
    enum class Kind { system, light, dark };

    Kind kind = Kind::system;

    bool operator==(const KWEditAppearance&) const = default;

    /// "system", "light" or "dark", as the settings and the command line have it.
    QString name() const;
    /// With the mark of its access key.
    QString title() const;
    /// The colors; those of the running style for the system's.
    QPalette palette() const;
    /// Gives the whole application these colors, from now on: the style is Fusion for light and
    /// dark, since other styles have colors of their own, and the one the program began with for
    /// the system's.
    void apply() const;

    static QList<KWEditAppearance> all();
    /// The system's for a name that is none.
    static KWEditAppearance named(const QString& name);
};
