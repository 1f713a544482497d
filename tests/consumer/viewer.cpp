#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelView.h>
#include <KWBase/KWImageEditorView.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <QApplication>
#include <QPixmap>
#include <iostream>
#include <set>

// A host with Qt: a channel gets into a view through a property, and is seen there; and the panel
// is loaded from inside the library.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const auto glow = std::make_shared<KWKeyFramedChannel>("glow");
    glow->setValueForKeyframe(-1, KWTime(0));
    glow->setValueForKeyframe(1, KWTime(10));
    glow->setChannelColorIndex(3);
    QObject document;
    document.setProperty("channel", QVariant::fromValue(glow));
    KWChannelView view;
    view.bindToObjectWithKeyPathOptions("channel", &document, "channel");
    view.setShowsGrid(true);
    view.resize(300, 200);
    const QImage image = view.grab().toImage();
    std::set<QRgb> colors;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            colors.insert(image.pixel(x, y));
    std::cout << view.primaryChannel()->name() << " in a view of " << image.width() << " x "
              << image.height() << (colors.size() > 3 ? "" : ", which is empty") << '\n';
    KWChannelEditorController editor;
    std::cout << (editor.loadInterface()
                      ? "the panel is called " +
                            editor.channelEditorPanel()->windowTitle().toStdString()
                      : editor.interfaceError().toStdString())
              << '\n';
    KWImageEditorView viewer;
    QString error;
    if (!KWImageEditorView::isOpenGLAvailable() && !KWMovie::movieWithFile("none.mp4", &error))
        std::cout << error.toStdString() << '\n';
}
