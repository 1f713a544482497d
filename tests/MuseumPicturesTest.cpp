#include <KWBase/KWChannelView.h>

#include <gtest/gtest.h>
#include <samples/Samples.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr int columns = 5;
constexpr QSize cellSize(200, 120);

/// The keys and as much again on both sides, so that what repeats is seen; a plain range around
/// zero where keys span none.
HJRect boundsFor(KWChannelView& view) {
    view.setDisplayedBounds({-4, -2, 12, 4});
    view.fitChannel();
    const HJRect fit = view.displayedBounds();
    const HJRect wide{fit.x - fit.width, fit.y, 3 * fit.width, fit.height};
    const bool isUsable = std::isfinite(wide.x) && std::isfinite(wide.y) && wide.width > 0 &&
                          std::isfinite(wide.width) && wide.height > 0 &&
                          std::isfinite(wide.height);
    return isUsable ? wide : HJRect{-4, -2, 12, 4};
}

std::vector<std::shared_ptr<KWChannel>> channelsOf(const std::string& element) {
    const KWDocument museum = hardCurvesMuseum();
    std::vector<std::shared_ptr<KWChannel>> found;
    for (const KWDocument::Place& place : museum.channels())
        if (museum.elements()[place.element].name == element)
            found.push_back(place.channel);
    return found;
}

/// Channels side by side, as many straight lines to a curve as it has pixels.
QImage sheetOf(const std::vector<std::shared_ptr<KWChannel>>& channels, int scale) {
    const int rows = (static_cast<int>(channels.size()) + columns - 1) / columns;
    QImage sheet(columns * cellSize.width() * scale, rows * cellSize.height() * scale,
                 QImage::Format_RGB32);
    sheet.setDevicePixelRatio(scale);
    sheet.fill(Qt::gray);
    QPainter painter(&sheet);
    for (int k = 0; k < static_cast<int>(channels.size()); ++k) {
        KWChannelView view;
        view.setPrimaryChannel(channels[static_cast<std::size_t>(k)]);
        view.setShowsGrid(true);
        view.setStepCount(cellSize.width() * scale);
        view.setDisplayedBounds(boundsFor(view));
        view.drawInto(painter, QRectF(QPointF(k % columns * cellSize.width(),
                                              k / columns * cellSize.height()),
                                      cellSize));
    }
    return sheet;
}

struct Difference {
    int largest = 0;
    double mean = 0;
};

Difference differenceOf(const QImage& one, const QImage& other) {
    Difference found;
    double sum = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) {
            const QColor a = one.pixelColor(x, y);
            const QColor b = other.pixelColor(x, y);
            for (const int d : {a.red() - b.red(), a.green() - b.green(), a.blue() - b.blue()}) {
                found.largest = std::max(found.largest, std::abs(d));
                sum += std::abs(d);
            }
        }
    found.mean = sum / (3.0 * one.width() * one.height());
    return found;
}

class MuseumPictures : public testing::TestWithParam<std::tuple<const char*, int>> {};

} // namespace

/// KWBASE_WRITE_PICTURES=1 stores what is drawn in place of comparing it; look at it before it is
/// committed.
TEST_P(MuseumPictures, AreAsStored) {
    const auto& [name, scale] = GetParam();
    const auto channels = channelsOf(name);
    ASSERT_FALSE(channels.empty());
    const QImage drawn = sheetOf(channels, scale);

    const std::string file = std::string(name) + "@" + std::to_string(scale) + "x.png";
    const auto folder = std::filesystem::path(std::getenv("KWBASE_TEST_DATA")) / "pictures";
    const QString path = QString::fromStdString((folder / file).string());
    if (std::getenv("KWBASE_WRITE_PICTURES")) {
        ASSERT_TRUE(drawn.save(path));
        GTEST_SKIP() << "stored " << path.toStdString();
    }
    const QImage stored(path);
    ASSERT_EQ(drawn.size(), stored.size()) << path.toStdString();
    // One step of the 16 by which a pixel's coverage may be rounded, and hardly anywhere.
    const Difference difference = differenceOf(drawn, stored);
    const QString shown = QString::fromStdString(testing::TempDir() + "drawn-" + file);
    if (difference.largest > 16 || difference.mean > 0.01)
        drawn.save(shown);
    EXPECT_LE(difference.largest, 16) << "drawn: " << shown.toStdString();
    EXPECT_LE(difference.mean, 0.01) << "drawn: " << shown.toStdString();
}

INSTANTIATE_TEST_SUITE_P(OfTheHardCurves, MuseumPictures,
                         testing::Combine(testing::Values("Spans", "Shapes", "Values", "Codes"),
                                          testing::Values(1, 2)),
                         [](const auto& one) {
                             return std::get<0>(one.param) + std::string("At") +
                                    std::to_string(std::get<1>(one.param)) + "x";
                         });
