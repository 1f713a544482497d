#include "ImageEditorTestSupport.h"
#include "Thoroughness.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QImageWriter>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QSignalSpy>
#include <QWheelEvent>
#include <QtTest>
#include <cmath>
#include <limits>
#include <random>

namespace {

class KWImageEditorViewTest : public testing::Test {
  protected:
    KWImageEditorViewTest() { view.resize(200, 100); }

    void wheel(const QPointF& position, int turned) {
        QWheelEvent event(position, view.mapToGlobal(position), {}, {0, turned}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&view, &event);
    }

    /// Up is up in the view, down in Qt's positions.
    void drag(QPointF from, const QPointF& by, Qt::MouseButton button = Qt::LeftButton) {
        const auto send = [&](QEvent::Type type, Qt::MouseButtons held) {
            QMouseEvent event(type, from, view.mapToGlobal(from), button, held, Qt::NoModifier);
            QCoreApplication::sendEvent(&view, &event);
        };
        send(QEvent::MouseButtonPress, button);
        from += by / 2;
        send(QEvent::MouseMove, button);
        from += by / 2;
        send(QEvent::MouseMove, button);
        send(QEvent::MouseButtonRelease, Qt::NoButton);
    }

    QString write(const std::string& name, std::string_view bytes) {
        writeFile(files.folder.path() / name, bytes);
        return files.path(name);
    }

    QString save(const std::string& name, const QImage& image, const char* format = nullptr) {
        EXPECT_TRUE(image.save(files.path(name), format));
        return files.path(name);
    }

    KWImageEditorView view;
    MovieFolder files;
};

} // namespace

TEST_F(KWImageEditorViewTest, ANewViewIsFittedAndEmpty) {
    EXPECT_EQ(view.zoom(), 1);
    EXPECT_EQ(view.zoomOffset(), QPointF(0.5, 0.5));
    EXPECT_TRUE(view.image().isNull());
    EXPECT_EQ(view.movie(), nullptr);
    EXPECT_EQ(view.contentSize(), QSizeF(0, 0));
    EXPECT_EQ(view.imageMatrices(), KWImageMatrices());
}

TEST_F(KWImageEditorViewTest, WithoutOpenGLItPaintsItsDirtyAreaRedOnEveryDraw) {
    ASSERT_FALSE(KWImageEditorView::isOpenGLAvailable());
    view.setImage(filled(10, 10, Qt::blue));
    for (int k = 0; k < 2; ++k)
        EXPECT_EQ(view.grab().toImage().convertToFormat(QImage::Format_RGB32),
                  filled(200, 100, Qt::red));
    // Of a part, that part and no more.
    QImage canvas = filled(200, 100, Qt::green);
    view.render(&canvas, {}, QRegion(10, 20, 30, 40), QWidget::RenderFlags());
    EXPECT_EQ(canvas.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(29, 39), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(30, 39), QColor(Qt::green));
    EXPECT_EQ(canvas.pixelColor(29, 40), QColor(Qt::green));
    EXPECT_EQ(view.picture(), filled(200, 100, Qt::red));
}

TEST_F(KWImageEditorViewTest, WithoutOpenGLAWindowWithItCanBeShown) {
    QWidget window;
    auto* const child = new KWImageEditorView(&window);
    child->setGeometry(10, 10, 50, 50);
    window.resize(100, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.grab().toImage().pixelColor(30, 30), QColor(Qt::red));
    child->renderWithPickingFlush(false, true);
    child->initializeOpenGL();
    child->flush();
    EXPECT_EQ(child->imageMatrices(), KWImageMatrices());
}

TEST_F(KWImageEditorViewTest, AMovieSetBeforeTheFirstDrawIsIgnoredButTheImageGoes) {
    const auto movie = KWMovie::movieWithFile(files.makeNumbered("a.mp4", h264, 3));
    ASSERT_TRUE(movie);
    view.setImage(filled(10, 10, Qt::blue));
    view.setMovie(movie);
    EXPECT_EQ(view.movie(), nullptr);
    EXPECT_TRUE(view.image().isNull());
    view.setImage(filled(10, 10, Qt::blue));
    view.setMovie(nullptr);
    EXPECT_FALSE(view.image().isNull());
}

TEST_F(KWImageEditorViewTest, BeforeTheFirstDrawNoPointComesOut) {
    view.setImage(filled(10, 10, Qt::blue));
    const double from[2] = {1, 2};
    double to[2] = {3, 4};
    view.view2image(from, to);
    EXPECT_TRUE(std::isnan(to[0]));
    view.image2view(from, to);
    EXPECT_TRUE(std::isnan(to[1]));
}

TEST_F(KWImageEditorViewTest, ZoomAndOffsetAreHeldToWhatCanBeDrawn) {
    QSignalSpy zooms(&view, &KWImageEditorView::zoomChanged);
    QSignalSpy offsets(&view, &KWImageEditorView::zoomOffsetChanged);
    view.setZoom(2.5);
    view.setZoom(2.5);
    EXPECT_EQ(zooms.size(), 1);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    view.setZoom(std::nan(""));
    EXPECT_EQ(view.zoom(), 2.5);
    view.setZoom(-1);
    EXPECT_EQ(view.zoom(), 1e-6);
    view.setZoom(infinity);
    EXPECT_EQ(view.zoom(), 1e6);
    view.setZoomOffset({2, -1});
    EXPECT_EQ(view.zoomOffset(), QPointF(2, -1));
    view.setZoomOffset({infinity, 0});
    view.setZoomOffset({0, std::nan("")});
    EXPECT_EQ(view.zoomOffset(), QPointF(2, -1));
    EXPECT_EQ(offsets.size(), 1);
    view.setProperty("zoom", 3.0);
    view.setProperty("zoomOffset", QPointF(0.25, 0.75));
    EXPECT_EQ(view.zoom(), 3);
    EXPECT_EQ(view.zoomOffset(), QPointF(0.25, 0.75));
    view.fit();
    EXPECT_EQ(view.zoom(), 1);
    EXPECT_EQ(view.zoomOffset(), QPointF(0.5, 0.5));
}

TEST_F(KWImageEditorViewTest, ASignalsReceiverMayDeleteTheView) {
    auto* doomed = new KWImageEditorView;
    doomed->resize(200, 100);
    doomed->setImage(filled(40, 20, Qt::blue));
    doomed->setZoomOffset({0.1, 0.1});
    QObject::connect(doomed, &KWImageEditorView::zoomChanged, [&] { delete doomed; });
    doomed->zoomAt({20, 20}, 2);
    doomed = new KWImageEditorView;
    QObject::connect(doomed, &KWImageEditorView::contentChanged, [&] { delete doomed; });
    doomed->setImage(filled(40, 20, Qt::blue));
}

// --- What users do.

TEST_F(KWImageEditorViewTest, TheWheelZoomsAtThePointer) {
    view.setImage(filled(400, 200, Qt::blue));
    const QPointF position(50, 20);
    const QPointF point(50, 80);
    const QPointF before = view.geometry().view2image(point);
    wheel(position, 120);
    EXPECT_NEAR(view.zoom(), 1.2, 1e-12);
    QPointF after = view.geometry().view2image(point);
    EXPECT_NEAR(after.x(), before.x(), 1e-9);
    EXPECT_NEAR(after.y(), before.y(), 1e-9);
    for (int k = 0; k < 200; ++k)
        wheel(position, 240);
    EXPECT_NEAR(view.zoom(), 128, 1e-9); // 64 points for a pixel
    after = view.geometry().view2image(point);
    EXPECT_NEAR(after.x(), before.x(), 1e-6);
    for (int k = 0; k < 200; ++k)
        wheel(position, -240);
    EXPECT_NEAR(view.zoom(), 0.05, 1e-12);
    EXPECT_TRUE(view.geometry().contentRect().intersects(QRectF(0, 0, 200, 100)));
}

TEST_F(KWImageEditorViewTest, AWheelInTheLetterboxKeepsTheContentInSight) {
    view.setImage(filled(400, 50, Qt::blue));
    for (int k = 0; k < 30; ++k)
        wheel({100, 2}, 120);
    EXPECT_TRUE(view.geometry().contentRect().intersects(QRectF(0, 0, 200, 100)));
}

TEST_F(KWImageEditorViewTest, WithoutAContentTheWheelAndDragsDoNothing) {
    wheel({50, 20}, 120);
    drag({50, 50}, {20, 10});
    EXPECT_EQ(view.zoom(), 1);
    EXPECT_EQ(view.zoomOffset(), QPointF(0.5, 0.5));
}

TEST_F(KWImageEditorViewTest, ADragPansAndTheContentStaysInSight) {
    view.setImage(filled(400, 200, Qt::blue));
    view.setZoom(4);
    const QPointF place = view.geometry().image2view({200, 100});
    drag({100, 50}, {20, 10});
    QPointF moved = view.geometry().image2view({200, 100}) - place;
    EXPECT_NEAR(moved.x(), 20, 1e-9);
    EXPECT_NEAR(moved.y(), -10, 1e-9);
    drag({100, 50}, {-20, -10}, Qt::MiddleButton);
    moved = view.geometry().image2view({200, 100}) - place;
    EXPECT_NEAR(moved.x(), 0, 1e-9);
    drag({100, 50}, {5, 5}, Qt::RightButton);
    EXPECT_NEAR(view.zoomOffset().x(), 0.5, 1e-12);
    for (int k = 0; k < 50; ++k)
        drag({100, 50}, {100, 100});
    EXPECT_EQ(view.zoomOffset(), QPointF(0, 0));
}

TEST_F(KWImageEditorViewTest, ADoubleClickFits) {
    view.setImage(filled(400, 200, Qt::blue));
    view.setZoom(3);
    view.setZoomOffset({0.1, 0.2});
    QTest::mouseDClick(&view, Qt::LeftButton);
    EXPECT_EQ(view.zoom(), 1);
    EXPECT_EQ(view.zoomOffset(), QPointF(0.5, 0.5));
}

TEST_F(KWImageEditorViewTest, APinchOnATrackpadZoomsAtThePointer) {
    view.setImage(filled(400, 200, Qt::blue));
    const QPointF position(60, 30);
    const QPointF before = view.geometry().view2image({60, 70});
    QNativeGestureEvent pinch(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2,
                              position, position, view.mapToGlobal(position), 0.5, QPointF());
    QCoreApplication::sendEvent(&view, &pinch);
    EXPECT_DOUBLE_EQ(view.zoom(), 1.5);
    const QPointF after = view.geometry().view2image({60, 70});
    EXPECT_NEAR(after.x(), before.x(), 1e-9);
    EXPECT_NEAR(after.y(), before.y(), 1e-9);
}

// --- Files.

TEST_F(KWImageEditorViewTest, AFileIsShownForWhatItIsWhateverItsName) {
    const QString file = save("a.jpg", numbered(7, 5), "PNG");
    EXPECT_TRUE(view.showImageFile(file));
    EXPECT_EQ(view.image().convertToFormat(QImage::Format_RGB32), numbered(7, 5));
    view.setImage({});
    EXPECT_TRUE(view.showFile(file));
    EXPECT_EQ(view.contentSize(), QSizeF(7, 5));
}

TEST_F(KWImageEditorViewTest, TheOrientationInAFileIsHonoured) {
    QImage image = filled(64, 32, Qt::white);
    QPainter(&image).fillRect(0, 0, 16, 32, Qt::black);
    QImageWriter writer(files.path("a.jpg"));
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    ASSERT_TRUE(writer.write(image));
    ASSERT_TRUE(view.showImageFile(files.path("a.jpg")));
    EXPECT_EQ(view.contentSize(), QSizeF(32, 64));
    EXPECT_LT(qGray(view.image().pixel(16, 4)), 20);
    EXPECT_GT(qGray(view.image().pixel(16, 60)), 235);
}

TEST_F(KWImageEditorViewTest, SixteenBitsStaySixteen) {
    QImage image(4, 4, QImage::Format_RGBA64);
    image.fill(QColor::fromRgba64(0x1234, 0x5678, 0x9abc, 0xffff));
    ASSERT_TRUE(view.showImageFile(save("a.png", image)));
    EXPECT_EQ(view.image().pixelColor(1, 1).rgba64(),
              QColor::fromRgba64(0x1234, 0x5678, 0x9abc).rgba64());
}

TEST_F(KWImageEditorViewTest, WhatCannotBeReadIsOneErrorAndTheViewKeepsWhatItShowed) {
    const QImage shown = numbered(7, 5);
    view.setImage(shown);
    const std::string whole =
        contentsOf(save("whole.png", filled(300, 300, Qt::green)).toStdString());
    ViewErrors errors(view);
    const std::string pipe = (files.folder.path() / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const QString& file :
         {write("empty.png", ""), write("cut.png", std::string_view(whole).substr(0, 40)),
          write("text.png", "This is no image."), files.path("none.png"), files.path("pipe"),
          files.path("")}) {
        errors.texts.clear();
        EXPECT_FALSE(view.showImageFile(file));
        EXPECT_EQ(errors.texts.size(), 1u);
        EXPECT_FALSE(view.showFile(file));
        EXPECT_EQ(errors.texts.size(), 2u);
        EXPECT_FALSE(view.showMovieFile(file));
        EXPECT_EQ(view.image(), shown);
    }
    errors.texts.clear();
    view.showImageFile(files.path("none.png"));
    EXPECT_EQ(errors.texts.at(0).find("The image \u201cnone.png\u201d cannot be shown: "), 0u);
}

TEST_F(KWImageEditorViewTest, AnImageThatClaimsAHugeSizeIsRefused) {
    for (const auto& [width, height] : {std::pair{100000, 100000}, {0, 0}, {0, 5}}) {
        const std::string file = "P6 " + std::to_string(width) + " " + std::to_string(height) +
                                 " 255\n" + std::string(300, 'x');
        EXPECT_FALSE(view.showImageFile(write("a.ppm", file))) << width;
    }
    EXPECT_TRUE(view.image().isNull());
}

TEST_F(KWImageEditorViewTest, MutatedImagesAreRefusedOrShown) {
    std::vector<std::string> originals;
    QImage image = numbered(24, 18);
    for (const char* const format : {"png", "jpg", "bmp", "gif", "ppm", "xbm", "webp", "tiff"}) {
        if (!QImageWriter::supportedImageFormats().contains(format))
            continue;
        originals.push_back(
            contentsOf(save(std::string("a.") + format, image, format).toStdString()));
    }
    ASSERT_GE(originals.size(), 4u);
    // Readers warn of what they find.
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    std::mt19937 random(4);
    int refused = 0;
    int shown = 0;
    for (std::size_t round = 0; round < 3000; round += placeStep) {
        std::string bytes = originals[round / placeStep % originals.size()];
        const auto changes = 1 + random() % 8;
        for (std::size_t k = 0; k < changes; ++k)
            bytes[random() % std::min<std::size_t>(bytes.size(), k % 2 == 0 ? bytes.size() : 80)] =
                static_cast<char>(random());
        QString error;
        const QImage read = KWImageEditorView::imageWithFile(write("mutated", bytes), &error);
        EXPECT_EQ(read.isNull(), !error.isEmpty());
        ++(read.isNull() ? refused : shown);
    }
    qInstallMessageHandler(before);
    EXPECT_GT(refused, 20);
    EXPECT_GT(shown, 20);
}

TEST_F(KWImageEditorViewTest, DropsAreRegisteredForByAwakeFromNib) {
    EXPECT_FALSE(view.acceptDrops());
    view.awakeFromNib();
    EXPECT_TRUE(view.acceptDrops());
}
