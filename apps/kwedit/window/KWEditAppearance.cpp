#include <apps/kwedit/window/KWEditAppearance.h>

#include <QApplication>
#include <QCoreApplication>
#include <QStyle>

namespace {

struct Shade {
    QPalette::ColorRole role;
    QRgb light;
    QRgb dark;
};

// Neutral, so that colors of sprites and curves are seen as they are. Lines of Fusion are the
// window's color darkened; Light to Shadow are for bevels.
constexpr Shade shades[] = {
    {QPalette::Window, 0xefeff0, 0x2e2f31},
    {QPalette::WindowText, 0x1a1b1c, 0xdcdddf},
    {QPalette::Base, 0xffffff, 0x1f2022},
    {QPalette::AlternateBase, 0xf6f6f7, 0x262729},
    {QPalette::Text, 0x1a1b1c, 0xdcdddf},
    {QPalette::PlaceholderText, 0x75777a, 0x8b8d91},
    {QPalette::Button, 0xefeff0, 0x3c3d40},
    {QPalette::ButtonText, 0x1a1b1c, 0xdcdddf},
    {QPalette::BrightText, 0xffffff, 0xffffff},
    {QPalette::ToolTipBase, 0xfffbe6, 0x45474b},
    {QPalette::ToolTipText, 0x1a1b1c, 0xeeeff0},
    {QPalette::Highlight, 0x2f72d6, 0x3a76d2},
    {QPalette::HighlightedText, 0xffffff, 0xffffff},
    {QPalette::Link, 0x1f5fc4, 0x7fb0ff},
    {QPalette::LinkVisited, 0x6f42b5, 0xbd9bff},
    {QPalette::Light, 0xffffff, 0x55575b},
    {QPalette::Midlight, 0xe3e3e5, 0x45474a},
    {QPalette::Mid, 0xb8b9bb, 0x252628},
    {QPalette::Dark, 0x9d9ea1, 0x18191a},
    {QPalette::Shadow, 0x6f7174, 0x0c0c0d},
};

constexpr Shade disabledShades[] = {
    {QPalette::WindowText, 0x97999c, 0x76787c},
    {QPalette::Text, 0x97999c, 0x76787c},
    {QPalette::ButtonText, 0x97999c, 0x76787c},
    {QPalette::PlaceholderText, 0xb0b2b5, 0x5f6164},
    {QPalette::Base, 0xf4f4f5, 0x292a2c},
    {QPalette::Highlight, 0xb8b9bb, 0x54565a},
    {QPalette::HighlightedText, 0xffffff, 0xb4b6ba},
    {QPalette::ToolTipText, 0x97999c, 0x9b9da1},
};

/// As the program began.
const QString& firstStyle() {
    static const QString name = QApplication::style()->objectName();
    return name;
}

} // namespace

QString KWEditAppearance::name() const {
    return kind == Kind::system  ? QStringLiteral("system")
           : kind == Kind::light ? QStringLiteral("light")
                                 : QStringLiteral("dark");
}

QString KWEditAppearance::title() const {
    constexpr const char* titles[] = {QT_TRANSLATE_NOOP("KWEditAppearance", "As the &System"),
                                      QT_TRANSLATE_NOOP("KWEditAppearance", "&Light"),
                                      QT_TRANSLATE_NOOP("KWEditAppearance", "&Dark")};
    return QCoreApplication::translate("KWEditAppearance", titles[static_cast<std::size_t>(kind)]);
}

QPalette KWEditAppearance::palette() const {
    if (kind == Kind::system)
        return QApplication::style()->standardPalette();
    QPalette palette;
    for (const Shade& shade : shades)
        palette.setColor(shade.role, QColor(kind == Kind::dark ? shade.dark : shade.light));
    for (const Shade& shade : disabledShades)
        palette.setColor(QPalette::Disabled, shade.role,
                         QColor(kind == Kind::dark ? shade.dark : shade.light));
    return palette;
}

void KWEditAppearance::apply() const {
    const QString first = firstStyle();
    const QString style = kind == Kind::system ? first : QStringLiteral("fusion");
    if (QApplication::style()->objectName() != style)
        QApplication::setStyle(style);
    QApplication::setPalette(kind == Kind::system ? QPalette() : palette());
    if (kind != Kind::dark)
        return;
    // Fusion draws boxes to be checked by lines darker than the window: none would be seen.
    QPalette boxes = palette();
    boxes.setColor(QPalette::Window, QColor(0x8b8d91));
    boxes.setColor(QPalette::Light, boxes.color(QPalette::Base)); // the shadow of disabled texts
    for (const char* const name : {"QCheckBox", "QMenu"})
        QApplication::setPalette(boxes, name);
}

QList<KWEditAppearance> KWEditAppearance::all() {
    return {{Kind::system}, {Kind::light}, {Kind::dark}};
}

KWEditAppearance KWEditAppearance::named(const QString& name) {
    for (const KWEditAppearance& each : all())
        if (each.name() == name)
            return each;
    return {};
}
