#include <KWBase/KWCursorImage.h>
#include <KWFoundation/KWLog.h>

#include <QGuiApplication>
#include <QPixmap>
#include <QPoint>
#include <QString>

// A static library's resources are only there when something asks for them. This has to stand
// outside of every namespace.
static void loadResources() {
    Q_INIT_RESOURCE(KWBaseCursors);
}

namespace {

struct Kind {
    const char* file;
    QPoint hotSpot; ///< in points
    Qt::CursorShape standIn;
};

Kind kindOf(KWCursorName name) {
    if (name == KWCursorName::hand)
        return {"hand", {8, 8}, Qt::OpenHandCursor};
    return {"arrow_add", {1, 1}, Qt::CrossCursor};
}

QPixmap imageOf(const Kind& kind, int scale) {
    loadResources();
    const QString suffix = scale == 2 ? QStringLiteral("@2x") : QString();
    QPixmap image(
        QStringLiteral(":/KWBase/cursors/%1%2.tiff").arg(QLatin1String(kind.file), suffix), "TIFF");
    image.setDevicePixelRatio(scale);
    return image;
}

void logOnceWithoutImages() {
    static const bool logged = [] {
        KWLog("The cursor images cannot be read: Qt's plugin for TIFF images is missing. The "
              "platform's own cursors stand in.");
        return true;
    }();
    static_cast<void>(logged);
}

} // namespace

QCursor KWCursorImage(KWCursorName name, qreal devicePixelRatio) {
    const Kind kind = kindOf(name);
    const QPixmap image = imageOf(kind, devicePixelRatio > 1 ? 2 : 1);
    if (!image.isNull())
        return QCursor(image, kind.hotSpot.x(), kind.hotSpot.y());
    logOnceWithoutImages();
    return QCursor(kind.standIn);
}

QCursor KWCursorImage(KWCursorName name) {
    return KWCursorImage(name, qGuiApp->devicePixelRatio());
}
