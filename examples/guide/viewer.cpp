#include "Expect.h"

#include <KWBase/KWImageEditorView.h>
#include <KWDesktop/KWMovie.h>

#include <QApplication>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;

    //! [image]
    auto* const viewer = new KWImageEditorView(&window);
    QObject::connect(viewer, &KWImageEditorView::errorOccurred, &window,
                     [](const QString& message) { std::cerr << message.toStdString() << '\n'; });
    if (!KWImageEditorView::isOpenGLAvailable())
        std::cerr << "pictures cannot be shown here\n"; // the view is red then
    QImage image(320, 180, QImage::Format_RGBA8888);
    image.fill(Qt::transparent);
    viewer->setImage(image);
    viewer->showImageFile(QStringLiteral("none.png")); // errorOccurred(), and the image stays
    //! [image]
    expect(viewer->contentSize() == QSizeF(320, 180), "the image is the content");

    //! [zoom]
    viewer->fit();
    viewer->setZoom(2);
    viewer->setZoomOffset({0.25, 0.25}); // the middle of the upper left quarter
    //! [zoom]
    expect(viewer->zoom() == 2, "the zoom is set");

    //! [movie]
    QString reason;
    if (const std::shared_ptr<KWMovie> movie =
            KWMovie::movieWithFile(QStringLiteral("clip.mp4"), &reason)) {
        viewer->setMovie(movie); // shown once the view has been drawn
        movie->setRate(1);
        movie->start();
    } else {
        std::cerr << reason.toStdString() << '\n';
    }
    //! [movie]
    expect(!reason.isEmpty(), "a file that is not there has a reason");
}
