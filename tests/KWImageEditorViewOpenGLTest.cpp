#include "ImageEditorTestSupport.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <QVBoxLayout>
#include <QtTest>
#include <array>
#include <cmath>
#include <random>

namespace {

/// The color at a point of the view, in points from the lower left corner.
QColor colorAt(const QImage& picture, const KWImageEditorView& view, double x, double y) {
    const double scale = picture.width() / static_cast<double>(view.width());
    return picture.pixelColor(static_cast<int>(x * scale),
                              static_cast<int>((view.height() - y) * scale - 0.01));
}

QColor checkerAt(const KWImageEditorView& view, double x, double y) {
    const int sum = static_cast<int>(x / 30) + static_cast<int>((view.height() - y) / 30);
    return sum % 2 != 0 ? QColor(200, 200, 200) : QColor(255, 255, 255);
}

void expectNear(const QColor& got, const QColor& wanted, int tolerance) {
    EXPECT_NEAR(got.red(), wanted.red(), tolerance);
    EXPECT_NEAR(got.green(), wanted.green(), tolerance);
    EXPECT_NEAR(got.blue(), wanted.blue(), tolerance);
}

/// These run where windows have OpenGL; elsewhere the program is told to leave them out.
class KWImageEditorViewOpenGL : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(KWImageEditorView::isOpenGLAvailable()); }
    KWImageEditorViewOpenGL() { view.resize(200, 100); }

    void show() {
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
        ASSERT_TRUE(waitFor([&] { return view.imageMatrices() != KWImageMatrices(); }));
    }

    std::shared_ptr<KWMovie> numberedMovie() {
        return KWMovie::movieWithFile(movies.makeNumbered("a.mp4", h264, 30));
    }

    int numberShown() {
        const QImage picture = view.picture();
        const QRectF content = view.geometry().contentRect();
        const auto digit = [&](double part) {
            const double gray = qGray(
                colorAt(picture, view, content.x() + part * content.width(), content.center().y())
                    .rgb());
            return static_cast<int>(std::lround((gray * 219 / 255 + 16 - 32) / 12));
        };
        return digit(0.25) + 16 * digit(0.75);
    }

    MovieFolder movies;
    KWImageEditorView view;
};

} // namespace

TEST_F(KWImageEditorViewOpenGL, TheCheckerboardHasSquaresOfThirtyPointsWhateverTheZoomAndSize) {
    for (const QSize size : {QSize(200, 100), QSize(331, 247), QSize(90, 500)})
        for (const double zoom : {1.0, 0.3, 7.0}) {
            view.resize(size);
            view.setZoom(zoom);
            view.setImage(zoom == 7.0 ? QImage()
                                      : filled(10, 10, Qt::transparent, QImage::Format_ARGB32));
            const QImage picture = view.picture();
            for (int x = 1; x < size.width(); x += 7)
                for (int y = 1; y < size.height(); y += 7)
                    ASSERT_EQ(colorAt(picture, view, x + 0.5, y + 0.5),
                              checkerAt(view, x + 0.5, y + 0.5))
                        << x << ' ' << y;
        }
}

TEST_F(KWImageEditorViewOpenGL, AViewWiderThanTheCheckerboardsTextureHasItToTheEdge) {
    view.resize(7900, 40);
    const QImage picture = view.picture();
    ASSERT_EQ(picture.width() % 7900, 0);
    for (const double x : {7665.0, 7695.0, 7725.0, 7885.0})
        EXPECT_EQ(colorAt(picture, view, x, 30), checkerAt(view, x, 30));
}

TEST_F(KWImageEditorViewOpenGL, AWideImageIsFittedToTheWidthAndATallOneToTheHeight) {
    view.setImage(filled(400, 50, Qt::blue));
    QImage picture = view.picture();
    for (const double x : {0.5, 100.0, 199.5}) {
        EXPECT_EQ(colorAt(picture, view, x, 38.5), QColor(Qt::blue));
        EXPECT_EQ(colorAt(picture, view, x, 61.5), QColor(Qt::blue));
        EXPECT_EQ(colorAt(picture, view, x, 36.5), checkerAt(view, x, 36.5));
        EXPECT_EQ(colorAt(picture, view, x, 63.5), checkerAt(view, x, 63.5));
    }
    view.setImage(filled(50, 400, Qt::blue));
    picture = view.picture();
    for (const double y : {0.5, 50.0, 99.5}) {
        EXPECT_EQ(colorAt(picture, view, 94.5, y), QColor(Qt::blue));
        EXPECT_EQ(colorAt(picture, view, 105.5, y), QColor(Qt::blue));
        EXPECT_EQ(colorAt(picture, view, 92.5, y), checkerAt(view, 92.5, y));
        EXPECT_EQ(colorAt(picture, view, 107.5, y), checkerAt(view, 107.5, y));
    }
}

TEST_F(KWImageEditorViewOpenGL, AtZoomTwoTheMiddleHalfFillsTheView) {
    QImage image = filled(400, 200, Qt::red);
    QPainter(&image).fillRect(100, 50, 200, 100, Qt::blue);
    view.setImage(image);
    view.setZoom(2);
    const QImage picture = view.picture();
    for (const double x : {1.5, 100.5, 198.5})
        for (const double y : {1.5, 50.5, 98.5})
            EXPECT_EQ(colorAt(picture, view, x, y), QColor(Qt::blue)) << x << ' ' << y;
    view.setZoom(1.9);
    EXPECT_EQ(colorAt(view.picture(), view, 0.5, 50), QColor(Qt::red));
}

TEST_F(KWImageEditorViewOpenGL, PixelsAreWhereImagePointsSayTheyAre) {
    view.setImage(numbered(20, 10));
    for (const double zoom : {1.0, 3.0}) {
        view.setZoom(zoom);
        view.setZoomOffset({0.4, 0.45});
        const QImage picture = view.picture();
        for (int column = 0; column < 20; ++column)
            for (int row = 0; row < 10; ++row) {
                // The middle of that pixel, y upwards.
                const QPointF point = view.image2view({column + 0.5, 10 - row - 0.5});
                if (point.x() < 1 || point.x() > 199 || point.y() < 1 || point.y() > 99)
                    continue;
                expectNear(colorAt(picture, view, point.x(), point.y()), QColor(column, row, 77),
                           1);
                const QPointF back = view.view2image(point);
                EXPECT_NEAR(back.x(), column + 0.5, 1e-3);
                EXPECT_NEAR(back.y(), 10 - row - 0.5, 1e-3);
            }
    }
}

TEST_F(KWImageEditorViewOpenGL, BothConversionsAreInversesOnRandomViews) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int k = 0; k < 20; ++k) {
        view.resize(50 + static_cast<int>(300 * unit(random)),
                    50 + static_cast<int>(300 * unit(random)));
        view.setImage(filled(1 + static_cast<int>(500 * unit(random)),
                             1 + static_cast<int>(500 * unit(random)), Qt::blue));
        view.setZoom(std::exp2(6 * unit(random) - 2));
        view.setZoomOffset({unit(random), unit(random)});
        view.picture();
        EXPECT_EQ(view.imageMatrices(), view.geometry().matrices());
        const QPointF point(view.width() * unit(random), view.height() * unit(random));
        const QPointF back = view.image2view(view.view2image(point));
        EXPECT_NEAR(back.x(), point.x(), 1e-3);
        EXPECT_NEAR(back.y(), point.y(), 1e-3);
    }
}

TEST_F(KWImageEditorViewOpenGL, PickingLeavesTheMatricesAlone) {
    view.setImage(filled(40, 20, Qt::blue));
    view.picture();
    const KWImageMatrices before = view.imageMatrices();
    view.setZoom(5);
    view.renderWithPickingFlush(true, false);
    EXPECT_EQ(view.imageMatrices(), before);
    view.renderWithPickingFlush(false, true);
    EXPECT_EQ(view.imageMatrices(), view.geometry().matrices());
    EXPECT_NE(view.imageMatrices(), before);
}

TEST_F(KWImageEditorViewOpenGL, TransparentImagesLetTheCheckerboardThrough) {
    const QColor half(255, 0, 0, 128);
    for (const auto format : {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied,
                              QImage::Format_RGBA64, QImage::Format_RGBA64_Premultiplied,
                              QImage::Format_RGBA16FPx4, QImage::Format_RGBA32FPx4_Premultiplied}) {
        QImage image(200, 100, QImage::Format_ARGB32);
        image.fill(half);
        SCOPED_TRACE(format);
        view.setImage(image.convertToFormat(format));
        const QImage picture = view.picture();
        for (const double x : {15.0, 45.0}) {
            const QColor below = checkerAt(view, x, 85);
            const int rest = below.green() * 127 / 255;
            expectNear(colorAt(picture, view, x, 85),
                       QColor(128 + below.red() * 127 / 255, rest, rest), 1);
        }
    }
}

TEST_F(KWImageEditorViewOpenGL, DeepImagesAreShownInTheirColors) {
    const QColor color(201, 102, 53);
    for (const auto format :
         {QImage::Format_RGBX64, QImage::Format_RGBX16FPx4, QImage::Format_RGBX32FPx4,
          QImage::Format_RGB30, QImage::Format_RGB888, QImage::Format_RGB16,
          QImage::Format_Indexed8}) {
        view.setImage(filled(20, 10, color).convertToFormat(format));
        expectNear(colorAt(view.picture(), view, 100, 50), color,
                   format == QImage::Format_RGB16 ? 8 : 1);
    }
    QImage gray(20, 10, QImage::Format_Grayscale16);
    gray.fill(QColor(90, 90, 90));
    view.setImage(gray);
    expectNear(colorAt(view.picture(), view, 100, 50), QColor(90, 90, 90), 1);
}

TEST_F(KWImageEditorViewOpenGL, ImagesLargerThanATextureAreShownInPieces) {
    ViewErrors errors(view);
    QImage wide(100000, 3, QImage::Format_RGB32);
    for (int x = 0; x < wide.width(); ++x)
        for (int y = 0; y < 3; ++y)
            wide.setPixel(x, y, qRgb(x % 251, x / 1000, y * 100));
    view.setImage(wide);
    view.picture();
    // Eight points of the view for each pixel, at both sides of a seam and at the end.
    view.setZoom(4000);
    for (const int column : {4075, 4080, 4085, 50000, 99990}) {
        view.setZoomOffset({column / 100000.0, 0.5});
        const QImage picture = view.picture();
        for (int x = column - 8; x <= column + 8; ++x) {
            const QPointF point = view.image2view({x + 0.5, 1.5});
            expectNear(colorAt(picture, view, point.x(), point.y()), QColor(x % 251, x / 1000, 100),
                       1);
        }
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(errors.texts.empty());
}

TEST_F(KWImageEditorViewOpenGL, ImageAndMovieExcludeEachOther) {
    show();
    const auto movie = numberedMovie();
    view.setImage(filled(10, 10, Qt::blue));
    view.setMovie(movie);
    EXPECT_TRUE(view.image().isNull());
    EXPECT_EQ(view.movie(), movie);
    EXPECT_EQ(view.contentSize(), QSizeF(64, 48));
    view.setImage({});
    EXPECT_EQ(view.movie(), movie);
    view.setImage(filled(10, 10, Qt::blue));
    EXPECT_EQ(view.movie(), nullptr);
    view.setMovie(nullptr);
    EXPECT_FALSE(view.image().isNull());
    EXPECT_EQ(colorAt(view.picture(), view, 100, 50), QColor(Qt::blue));
}

TEST_F(KWImageEditorViewOpenGL, AMovieSetBeforeTheFirstDrawIsIgnored) {
    const auto movie = numberedMovie();
    view.setMovie(movie);
    EXPECT_EQ(view.movie(), nullptr);
    show();
    EXPECT_EQ(view.movie(), nullptr);
    view.setMovie(movie);
    EXPECT_EQ(view.movie(), movie);
}

TEST_F(KWImageEditorViewOpenGL, AMovieFileChosenBeforeTheFirstDrawIsShownAfterIt) {
    EXPECT_TRUE(view.showMovieFile(movies.makeNumbered("a.mp4", h264, 3)));
    EXPECT_EQ(view.movie(), nullptr);
    show();
    EXPECT_TRUE(waitFor([&] { return view.movie() != nullptr; }));
}

TEST_F(KWImageEditorViewOpenGL, AMovieIsPutAtRestAtItsBeginning) {
    show();
    const auto movie = numberedMovie();
    movie->setCurrentTime(1);
    movie->start();
    view.setMovie(movie);
    EXPECT_EQ(movie->rate(), 0);
    EXPECT_EQ(movie->currentTime(), 0);
    // The same again is left alone.
    movie->setCurrentTime(0.5);
    view.setMovie(movie);
    EXPECT_EQ(movie->currentTime(), 0.5);
}

TEST_F(KWImageEditorViewOpenGL, FramesAreShownAsTheMovieRuns) {
    show();
    const auto movie = numberedMovie();
    view.setMovie(movie);
    ASSERT_TRUE(waitFor([&] { return movie->currentFrame() && numberShown() == 0; }));
    const int draws = 5;
    int seen = 0;
    QObject::connect(movie.get(), &KWMovie::frameChanged, [&] {
        const bool looks = seen++ < draws;
        EXPECT_EQ(looks ? numberShown() : -1, looks ? numberIn(movie->currentFrame().image) : -1);
    });
    movie->start();
    ASSERT_TRUE(waitFor([&] { return movie->rate() == 0; }));
    EXPECT_TRUE(waitFor([&] { return numberShown() == 29; }));
    EXPECT_GT(seen, 1);
}

TEST_F(KWImageEditorViewOpenGL, AnotherMovieReplacesTheFramesOfTheOneBefore) {
    show();
    const auto first = KWMovie::movieWithFile(
        movies.make("red.mkv", "-f lavfi -i color=c=red:r=25:s=64x48:d=1 -c:v ffv1 -pix_fmt bgr0"));
    const auto second = KWMovie::movieWithFile(movies.make(
        "blue.mkv", "-f lavfi -i color=c=blue:r=25:s=32x64:d=1 -c:v ffv1 -pix_fmt bgr0"));
    for (const auto& [movie, color] : {std::pair{first, QColor(Qt::red)},
                                       {second, QColor(Qt::blue)},
                                       {first, QColor(Qt::red)}}) {
        view.setMovie(movie);
        ASSERT_TRUE(waitFor([&] {
            const QColor got = colorAt(view.picture(), view, 100, 50);
            return std::abs(got.red() - color.red()) < 5 && std::abs(got.blue() - color.blue()) < 5;
        }));
    }
    view.setMovie(nullptr);
    EXPECT_EQ(colorAt(view.picture(), view, 100, 50), checkerAt(view, 100, 50));
}

TEST_F(KWImageEditorViewOpenGL, TransparentMoviesLetTheCheckerboardThrough) {
    show();
    view.setMovie(KWMovie::movieWithFile(movies.make(
        "a.mov", "-f lavfi -i color=r=25:d=0.1:s=64x48:c=0xff0000@0.5,format=rgba -c:v png")));
    const QColor below = checkerAt(view, 100, 50);
    const int rest = below.green() * 127 / 255;
    ASSERT_TRUE(waitFor([&] {
        const QColor got = colorAt(view.picture(), view, 100, 50);
        return std::abs(got.green() - rest) <= 1 && std::abs(got.red() - 128 - rest) <= 1;
    }));
}

TEST_F(KWImageEditorViewOpenGL, MovedIntoAnotherWindowItShowsTheSame) {
    QWidget first;
    QWidget second;
    for (QWidget* const window : {&first, &second}) {
        new QVBoxLayout(window);
        window->resize(220, 120);
        window->show();
    }
    auto* const pane = new KWImageEditorView;
    pane->setImage(filled(40, 20, Qt::blue));
    const auto movie = numberedMovie();
    for (int round = 0; round < 4; ++round) {
        (round % 2 == 0 ? first : second).layout()->addWidget(pane);
        pane->show();
        ASSERT_TRUE(waitFor([&] { return pane->isVisible() && pane->width() > 50; }));
        QCoreApplication::processEvents();
        const double x = pane->width() / 2.0;
        const double y = pane->height() / 2.0;
        if (round == 2)
            pane->setMovie(movie);
        const auto color = [&] { return colorAt(pane->picture(), *pane, x, y); };
        if (round < 2)
            EXPECT_TRUE(waitFor([&] { return color() == QColor(Qt::blue); })) << round;
        else
            EXPECT_TRUE(waitFor([&] { return color().lightness() < 60; })) << round;
        EXPECT_EQ(colorAt(pane->picture(), *pane, 1, 1),
                  round < 2 ? color() : checkerAt(*pane, 1, 1));
    }
}

TEST_F(KWImageEditorViewOpenGL, AWindowOnTheScreenShowsIt) {
    view.setImage(filled(40, 20, Qt::blue));
    show();
    EXPECT_EQ(view.grab().toImage().pixelColor(50, 50), QColor(Qt::blue));
    QWidget window;
    auto* const child = new KWImageEditorView(&window);
    child->setGeometry(10, 10, 100, 50);
    child->setImage(filled(40, 20, Qt::blue));
    window.resize(200, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.grab().toImage().pixelColor(60, 40), QColor(Qt::blue));
}

TEST_F(KWImageEditorViewOpenGL, ALockOfTheHostIsTakenTwiceByOneThread) {
    view.setLock(std::make_shared<std::recursive_mutex>());
    show();
    view.setMovie(numberedMovie());
    EXPECT_TRUE(waitFor([&] { return numberShown() == 0; }));
    view.update(KWNotification("moved", nullptr));
}

TEST_F(KWImageEditorViewOpenGL, ASquareIsDrawnAroundItsCenter) {
    struct Squared final : KWImageEditorView {
        void renderWithPickingFlush(bool picking, bool flushes) override {
            KWImageEditorView::renderWithPickingFlush(picking, flushes);
            glColor3f(1, 0, 0);
            // The corners are in the middle of pixels.
            KW_glDrawSquare(20 + 0.5 / scale, 10 + 0.5 / scale, 8);
        }
        double scale = 1;
    } squared;
    squared.resize(40, 20);
    squared.setImage(filled(40, 20, Qt::blue));
    squared.scale = squared.picture().width() / 40.0;
    const QImage picture = squared.picture();
    const double x = 20 + 0.5 / squared.scale;
    const double y = 10 + 0.5 / squared.scale;
    for (const auto& [side, up] : {std::pair{-4, 0}, {4, 0}, {0, -4}, {0, 4}})
        EXPECT_EQ(colorAt(picture, squared, x + side, y + up), QColor(Qt::red)) << side << up;
    EXPECT_EQ(colorAt(picture, squared, x, y), QColor(Qt::blue));
    EXPECT_EQ(colorAt(picture, squared, x - 6, y), QColor(Qt::blue));
}
