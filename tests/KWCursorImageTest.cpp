#include "ViewTestSupport.h"

#include <KWBase/KWCursorImage.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLibraryInfo>
#include <QPixmap>
#include <QProcess>
#include <QTemporaryDir>

namespace {

QImage imageOf(KWCursorName name, qreal devicePixelRatio) {
    return KWCursorImage(name, devicePixelRatio)
        .pixmap()
        .toImage()
        .convertToFormat(QImage::Format_ARGB32);
}

bool isSolid(QRgb pixel, int grey) {
    return qAlpha(pixel) == 255 && qRed(pixel) == grey && qGreen(pixel) == grey &&
           qBlue(pixel) == grey;
}

/// How many pixels are fully of this grey.
int countOf(const QImage& image, int grey) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += isSolid(image.pixel(x, y), grey);
    return count;
}

} // namespace

TEST(KWCursorImage, IsTwentyFourPointsWideAtOneAndTwoPixelsAPoint) {
    for (const KWCursorName name : {KWCursorName::hand, KWCursorName::arrowAdd}) {
        EXPECT_EQ(imageOf(name, 1).size(), QSize(24, 24));
        EXPECT_EQ(imageOf(name, 2).size(), QSize(48, 48));
        EXPECT_EQ(KWCursorImage(name, 2).pixmap().devicePixelRatio(), 2);
        EXPECT_EQ(imageOf(name, 1.25).size(), QSize(48, 48));
        EXPECT_EQ(KWCursorImage(name).pixmap().devicePixelRatio(),
                  KWCursorImage(name, qGuiApp->devicePixelRatio()).pixmap().devicePixelRatio());
    }
}

TEST(KWCursorImage, HasItsHotSpotInPoints) {
    for (const qreal ratio : {1., 2.}) {
        EXPECT_EQ(KWCursorImage(KWCursorName::hand, ratio).hotSpot(), QPoint(8, 8));
        EXPECT_EQ(KWCursorImage(KWCursorName::arrowAdd, ratio).hotSpot(), QPoint(1, 1));
    }
}

TEST(KWCursorImage, IsWhiteWithABlackOutlineOnNothing) {
    for (const KWCursorName name : {KWCursorName::hand, KWCursorName::arrowAdd})
        for (const int scale : {1, 2}) {
            const QImage image = imageOf(name, scale);
            EXPECT_GT(countOf(image, 255), 50 * scale * scale);
            EXPECT_GT(countOf(image, 0), 20 * scale * scale);
            EXPECT_EQ(qAlpha(image.pixel(0, image.height() - 1)), 0);
            EXPECT_EQ(qAlpha(image.pixel(image.width() - 1, 0)), 0);
        }
}

TEST(KWCursorImage, HasTheArrowsPointAndAPlus) {
    const QImage image = imageOf(KWCursorName::arrowAdd, 2);
    EXPECT_EQ(qAlpha(image.pixel(1, 1)), 0);
    EXPECT_GT(qAlpha(image.pixel(2, 3)), 128);
    EXPECT_TRUE(isSolid(image.pixel(36, 36), 255));
    EXPECT_TRUE(isSolid(image.pixel(36, 29), 255));
    EXPECT_TRUE(isSolid(image.pixel(29, 36), 255));
    EXPECT_TRUE(isSolid(image.pixel(33, 33), 0));
    EXPECT_EQ(qAlpha(image.pixel(29, 29)), 0);
}

TEST(KWCursorImage, IsWhatItsScriptDraws) {
    const char* const python = std::getenv("KWBASE_PYTHON");
    const QDir images(QString::fromLocal8Bit(std::getenv("KWBASE_TEST_DATA")) +
                      QStringLiteral("/../KWBase/Resources/cursors"));
    QTemporaryDir drawn;
    ASSERT_EQ(QProcess::execute(QString::fromLocal8Bit(python),
                                {images.filePath(QStringLiteral("draw.py")), drawn.path()}),
              0);
    const auto contents = [](const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    };
    const QStringList names = images.entryList({QStringLiteral("*.tiff")});
    EXPECT_EQ(names, QDir(drawn.path()).entryList({QStringLiteral("*.tiff")}));
    for (const QString& name : names)
        EXPECT_EQ(contents(images.filePath(name)), contents(drawn.filePath(name)))
            << name.toStdString();
}

// Run by the test after it, in a program without the plugin.
TEST(KWCursorImage, DISABLED_StandsInAndIsLoggedOnce) {
    LogLines log;
    EXPECT_EQ(KWCursorImage(KWCursorName::hand).shape(), Qt::OpenHandCursor);
    EXPECT_EQ(KWCursorImage(KWCursorName::arrowAdd).shape(), Qt::CrossCursor);
    EXPECT_EQ(KWCursorImage(KWCursorName::hand).shape(), Qt::OpenHandCursor);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{
                  "The cursor images cannot be read: Qt's plugin for TIFF images is missing. The "
                  "platform's own cursors stand in."});
}

TEST(KWCursorImage, ThePlatformsCursorsStandInWithoutThePluginForImages) {
    QTemporaryDir plugins;
    ASSERT_TRUE(
        QFile::link(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"),
                    plugins.filePath(QStringLiteral("platforms"))));
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KWBASE_TEST_PLUGINS"), plugins.path());
    for (const char* const name : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX"})
        environment.remove(QLatin1String(name));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--gtest_also_run_disabled_tests"),
                 QStringLiteral("--gtest_filter=KWCursorImage.DISABLED_StandsInAndIsLoggedOnce")});
    ASSERT_TRUE(child.waitForFinished());
    const QByteArray output = child.readAll();
    EXPECT_EQ(child.exitCode(), 0) << output.toStdString();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test.")) << output.toStdString();
}
