#include <KWBase/KWChannelView.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWText.h>

#include <apps/common/Errors.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>

namespace {

struct PlotArguments {
    std::string document;
    std::vector<std::string> channels;
    std::string output;
    std::string size = "960x540";
    std::string scale = "1";
    std::string from, to, min, max, at;
    std::vector<std::string> units;
    std::string background, grid;
    bool isLight = false;
    bool hasNoGrid = false;
    bool hasNoLegend = false;
    bool hasNoNames = false;
};

/// Of a picture, in points.
constexpr int largestSize = 20000;

/// A stretch of times or values.
struct Range {
    double low;
    double high;

    void include(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    /// Whether single precision, in which curves are mapped to the picture, can hold every product
    /// of a distance in it and a length in points.
    bool isHeldByFloats() const {
        constexpr double largest = std::numeric_limits<float>::max();
        return low >= -largest && high <= largest && high - low <= largest / largestSize;
    }
    /// Takes in the other, if the two together are so held; whether it did.
    bool takeIn(const Range& other) {
        const Range both{std::min(low, other.low), std::max(high, other.high)};
        if (!(other.low <= other.high && both.isHeldByFloats()))
            return false;
        *this = both;
        return true;
    }
    /// With a tenth on both sides, or of a length of 1 where it has none; at least as much as the
    /// floats around can tell apart, and nothing where floats end.
    Range widened() const {
        const double size = std::max(std::fabs(low), std::fabs(high));
        const double resolution = size * std::numeric_limits<float>::epsilon();
        const double margin = std::max(high > low ? (high - low) / 10 : 0.5, 8 * resolution);
        const Range wide{low - margin, high + margin};
        return wide.isHeldByFloats() ? wide : *this;
    }
};

constexpr Range nothing{HUGE_VAL, -HUGE_VAL};

QColor colorOf(const KWChannel& channel, bool isLight) {
    const KWColor color = channel.channelColor();
    const QColor own = QColor::fromRgbF(color.red, color.green, color.blue);
    // Yellow and cyan vanish on white, black and blue on the view's own dark blue.
    if (isLight)
        return own.lightnessF() > 0.45f ? own.darker(own.green() == 255 ? 190 : 130) : own;
    if (own == QColor(Qt::black))
        return QColor(Qt::lightGray);
    return own == QColor(Qt::blue) ? QColor(110, 140, 255) : own;
}

/// The share of light that a colour gives, from 0 to 1.
double luminance(const QColor& color) {
    const auto linear = [](float part) {
        const auto share = static_cast<double>(part);
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// From 1 to 21. Small text needs 4.5.
double contrast(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// The first of the two that can be read on the ground, or what black and white have to offer.
QColor readableOn(const QColor& ground, const QColor& onDark, const QColor& onLight) {
    constexpr double enough = 4.5;
    for (const QColor& color : {onDark, onLight, QColor(Qt::white)})
        if (contrast(color, ground) >= enough)
            return color;
    return Qt::black;
}

/// Secondary channels in colours that can be seen, without a change of the document.
class Colours final : public KWChannelViewDelegate {
  public:
    explicit Colours(bool isLight) : _isLight(isLight) {}
    ~Colours() override { resign(); }

    std::optional<QColor> colorForChannel(const std::shared_ptr<KWChannel>& channel) override {
        return colorOf(*channel, _isLight);
    }

  private:
    bool _isLight;
};

/// The same for the channel in front. The grid's numbers can be read on every ground, and none is
/// cut off by an edge of the picture.
class PlotView final : public KWChannelView {
  public:
    explicit PlotView(bool isLight) : _isLight(isLight) {}
    ~PlotView() override = default;

  protected:
    void drawPrimaryChannel(QPainter& painter) override {
        painter.setPen(QPen(colorOf(*primaryChannel(), _isLight), 2.5, Qt::SolidLine, Qt::FlatCap,
                            Qt::MiterJoin));
        drawChannel(painter, primaryChannel());
    }
    void drawGridLabel(QPainter& painter, const QPointF& corner, const QString& text) override {
        const KWPlotRect plot = plotGeometry().plot;
        const QFontMetricsF metrics(painter.font(), painter.device());
        if (corner.x() + metrics.horizontalAdvance(text) > static_cast<double>(plot.xMax) - 2 ||
            corner.y() + metrics.height() > static_cast<double>(plot.yMax) - 2)
            return;
        painter.setPen(readableOn(backgroundColor(), painter.pen().color(), QColor(80, 82, 90)));
        KWChannelView::drawGridLabel(painter, corner, text);
    }

  private:
    bool _isLight;
};

QColor colorArgument(std::string_view option, const std::string& text) {
    const QColor color(QString::fromStdString(text));
    if (!color.isValid())
        throw UseError(std::string(option) + ": " + inQuotes(text) +
                       " is no colour; a name or #rrggbb is wanted");
    return color;
}

QSize sizeArgument(const std::string& text) {
    int width = 0;
    int height = 0;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    if (first.ec == std::errc() && first.ptr != end && (*first.ptr == 'x' || *first.ptr == 'X')) {
        const auto second = std::from_chars(first.ptr + 1, end, height);
        if (second.ec == std::errc() && second.ptr == end && width >= 16 && height >= 16 &&
            width <= largestSize && height <= largestSize)
            return {width, height};
    }
    throw UseError("--size: " + inQuotes(text) +
                   " is no size; two whole numbers from 16 to 20000 are wanted, such as 960x540");
}

/// One end of what is shown.
struct End {
    End(const std::string& option, const std::string& argument, double otherwise)
        : number(argument.empty() ? otherwise : finiteArgument(option, argument)),
          text(option + " " + (argument.empty() ? KWExactStringFromDouble(number) : argument)) {}

    double number;
    std::string text;
};

/// Between them, in the single precision of the view; UseError where nothing would be left of that,
/// or no end.
Range drawable(const End& low, const End& high) {
    if (!(low.number < high.number))
        throw UseError("there is nothing between " + low.text + " and " + high.text);
    if (!Range{low.number, high.number}.isHeldByFloats())
        throw UseError(low.text + " and " + high.text +
                       " are too far apart for numbers of single precision");
    const float start = float(low.number);
    const float span = float(high.number) - start;
    if (!(start + span > start))
        throw UseError(low.text + " and " + high.text +
                       " are too close together for numbers of single precision");
    return {low.number, high.number};
}

/// From the first to the last key of all channels, with a margin; 0 to 10 without keys, and with
/// all of them at one time in there.
Range timesToShow(const PlotArguments& arguments, const std::vector<Place>& places) {
    Range keys = nothing;
    for (const Place& place : places) {
        const auto* const channel = dynamic_cast<const KWKeyFramedChannel*>(place.channel.get());
        if (!channel)
            continue;
        Range own = nothing;
        for (const KWTime key : channel->allKeyframes())
            if (std::isfinite(key.time()))
                own.include(static_cast<double>(key.time()));
        // Nothing could be seen of the others beside one that reaches over all floats.
        keys.takeIn(own);
    }
    if (keys.low == keys.high && keys.low >= 0 && keys.high <= 10)
        keys = {0, 10};
    const Range all = keys.low <= keys.high ? keys.widened() : Range{0, 10};
    return drawable({"--from", arguments.from, all.low}, {"--to", arguments.to, all.high});
}

/// The values at the times, without those that cannot be had: the curve has a gap there.
std::vector<float> valuesThatAreThere(const Place& place, const std::vector<float>& times) {
    std::vector<float> values(times.size());
    try {
        evaluate(place, times, values);
        return values;
    } catch (const DataError&) {
        values.clear();
    }
    for (const float time : times) {
        try {
            float value = 0;
            evaluate(place, {&time, 1}, {&value, 1});
            values.push_back(value);
        } catch (const DataError&) {
            continue;
        }
    }
    return values;
}

/// What the channels' values span over the times, with a margin.
Range valuesToShow(const PlotArguments& arguments, const std::vector<Place>& places, Range times,
                   int samples) {
    Range all = nothing;
    Range leftOut = nothing;
    if (arguments.min.empty() || arguments.max.empty()) {
        std::vector<float> at(static_cast<std::size_t>(samples) + 1);
        for (std::size_t k = 0; k < at.size(); ++k)
            at[k] = static_cast<float>(times.low +
                                       (times.high - times.low) * static_cast<double>(k) / samples);
        for (const Place& place : places) {
            Range own = nothing;
            for (const float value : valuesThatAreThere(place, at))
                if (std::isfinite(value))
                    own.include(static_cast<double>(value));
            if (!all.takeIn(own) && own.low <= own.high)
                leftOut = own;
        }
    }
    if (all.low <= all.high)
        all = all.widened();
    else
        all = leftOut.low <= leftOut.high ? leftOut : Range{-2, 2};
    return drawable({"--min", arguments.min, all.low}, {"--max", arguments.max, all.high});
}

/// A row of the names: a channel's, or, without one, how many more there are.
struct Name {
    QString text;
    const KWChannel* channel = nullptr;
};

constexpr int nameHeight = 18;
/// Beside a name.
constexpr int nameMargin = 46;
constexpr int namesMargin = 10;

/// As many names as leave three quarters of the picture to the curves; none where that is not even
/// room for two rows.
std::vector<Name> namesThatFit(const std::vector<Place>& places, const QFontMetrics& metrics,
                               const QSize& size) {
    const int room = size.width() - 2 * namesMargin - nameMargin;
    const auto fitting = static_cast<std::size_t>(std::max(0, size.height() / nameHeight - 1));
    if (room < 40)
        return {};
    std::vector<Name> names;
    // The widest of so many names.
    std::vector<int> widths{0};
    for (std::size_t k = 0; k < std::min(places.size(), fitting); ++k) {
        names.push_back(
            {metrics.elidedText(QString::fromStdString(places[k].path), Qt::ElideMiddle, room),
             places[k].channel.get()});
        widths.push_back(std::max(widths.back(), metrics.horizontalAdvance(names.back().text)));
    }
    for (std::size_t rows = names.size(); rows >= 2; --rows) {
        const bool isCut = rows < places.size();
        Name last = names[rows - 1];
        if (isCut)
            last = {QStringLiteral("… and %1 more").arg(places.size() - rows + 1), nullptr};
        const int width = std::max(widths[rows - 1], metrics.horizontalAdvance(last.text));
        const double area = double(width + nameMargin) * (double(rows) * nameHeight + namesMargin);
        if (width > room || 4 * area > double(size.width()) * size.height())
            continue;
        names.resize(rows);
        names.back() = std::move(last);
        return names;
    }
    return {};
}

/// Which colour is which channel, in the upper right corner.
void drawNames(QPainter& painter, const QSize& size, const std::vector<Place>& places,
               const QColor& background, bool isLight) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(12);
    painter.setFont(font);
    const QFontMetrics metrics(font, painter.device());
    const std::vector<Name> names = namesThatFit(places, metrics, size);
    if (names.empty())
        return;
    int width = 0;
    for (const Name& name : names)
        width = std::max(width, metrics.horizontalAdvance(name.text));
    const QRectF box(size.width() - namesMargin - width - nameMargin, namesMargin,
                     width + nameMargin, double(names.size()) * nameHeight + namesMargin);
    QColor shade = background;
    shade.setAlphaF(0.8f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    painter.drawRoundedRect(box, 4, 4);
    const QColor text = readableOn(background, QColor(220, 220, 220), QColor(50, 50, 50));
    double middle = box.top() + 5 + nameHeight / 2.0;
    for (const Name& name : names) {
        if (name.channel) {
            const double thickness = name.channel == places.front().channel.get() ? 2.5 : 1.5;
            painter.setPen(
                QPen(colorOf(*name.channel, isLight), thickness, Qt::SolidLine, Qt::FlatCap));
            painter.drawLine(QPointF(box.left() + 8, middle), QPointF(box.left() + 30, middle));
        }
        painter.setPen(text);
        painter.drawText(QRectF(box.left() + 38, middle - nameHeight / 2.0, width + 4, nameHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, name.text);
        middle += nameHeight;
    }
}

/// Qt draws into a picture without a screen. What it has to say about a session that it misses is
/// nobody's concern here.
std::unique_ptr<QApplication> applicationWithoutScreen() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "kwchannel";
    static char* words[] = {name, nullptr};
    return std::make_unique<QApplication>(count, words);
}

class Plot {
  public:
    Plot(const PlotArguments& arguments, const std::vector<Place>& places, double scale)
        : _places(places), _size(sizeArgument(arguments.size)), _scale(scale),
          _isLight(arguments.isLight), _hasNames(!arguments.hasNoNames && places.size() > 1),
          _colours(arguments.isLight), _view(arguments.isLight) {
        const int steps = std::max(1, static_cast<int>(std::lround(_size.width() * scale)));
        const Range times = timesToShow(arguments, places);
        const Range values = valuesToShow(arguments, places, times, steps);
        _view.setDelegate(&_colours);
        _view.resize(_size);
        _view.setStepCount(steps);
        _view.setDisplayedBounds({float(times.low), float(values.low),
                                  float(times.high) - float(times.low),
                                  float(values.high) - float(values.low)});
        _view.setShowsGrid(!arguments.hasNoGrid);
        _view.setShowsLegend(!arguments.hasNoLegend);
        // About as many lines as the eye likes, however large the picture is.
        _view.setXGridCount(std::max(1, _size.width() / 32));
        _view.setYGridCount(std::max(1, _size.height() / 32));
        // Where no time line is wanted it stands nowhere.
        _view.setCurrentTime(
            float(arguments.at.empty() ? -HUGE_VAL : finiteArgument("--time", arguments.at)));
        if (_isLight) {
            _view.setBackgroundColor(QColor(252, 252, 253));
            _view.setGridColor(QColor(205, 207, 215));
        }
        if (!arguments.background.empty())
            _view.setBackgroundColor(colorArgument("--background", arguments.background));
        if (!arguments.grid.empty())
            _view.setGridColor(colorArgument("--grid-color", arguments.grid));
        // The first of several is the one in front.
        _view.setPrimaryChannel(places.front().channel);
        for (std::size_t k = 1; k < places.size(); ++k)
            _view.addSecondaryChannel(places[k].channel);
    }

    QByteArray png() {
        QImage image(_size * _scale, QImage::Format_RGB32);
        if (image.isNull())
            throw UseError("a picture of that size does not fit into memory");
        image.setDevicePixelRatio(_scale);
        draw(image);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        if (!image.save(&buffer, "PNG"))
            throw DataError("the picture could not be made");
        return bytes;
    }

    QByteArray svg() {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(_size);
        // Points as browsers have them: the size comes out in millimetres.
        generator.setResolution(96);
        generator.setViewBox(QRect(QPoint(), _size));
        generator.setTitle(QString::fromStdString(_places.front().path));
        generator.setDescription(QString());
        draw(generator);
        return bytes;
    }

  private:
    void draw(QPaintDevice& device) {
        QPainter painter(&device);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        _view.drawInto(painter, QRectF(QPointF(), QSizeF(_size)));
        if (_hasNames)
            drawNames(painter, _size, _places, _view.backgroundColor(), _isLight);
    }

    const std::vector<Place>& _places;
    QSize _size;
    double _scale;
    bool _isLight;
    bool _hasNames;
    Colours _colours;
    PlotView _view;
};

double scaleArgument(const std::string& text) {
    const double scale = finiteArgument("--scale", text);
    if (!(scale >= 0.25 && scale <= 8))
        throw UseError("--scale: a number from 0.25 to 8 is wanted, not " + text);
    return scale;
}

void runPlot(const PlotArguments& arguments) {
    const bool isSVG = arguments.output.ends_with(".svg");
    if (!isSVG && !arguments.output.ends_with(".png"))
        throw UseError("the picture is written as PNG or SVG: " + inQuotes(arguments.output) +
                       " ends in neither .png nor .svg");
    const double scale = scaleArgument(arguments.scale);
    setUnits(arguments.units);
    const KWDocument document = openDocument(arguments.document);
    const std::vector<Place> places = channelsToEvaluate(document, arguments.channels);
    if (places.empty())
        throw DataError("there is no channel to draw");
    const auto application = applicationWithoutScreen();
    Plot plot(arguments, places, scale);
    const QByteArray bytes = isSVG ? plot.svg() : plot.png();
    Output output(arguments.output);
    output.write({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    output.finish();
}

} // namespace

void addPlotCommand(Command& program) {
    Command command = program.command("plot", "Draws channels into a picture");
    const auto arguments = std::make_shared<PlotArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command.option("CHANNEL", arguments->channels,
                   "paths such as Ball/Position/x, or what they end with; all channels when "
                   "there is none. The first is drawn in front, with its keys");
    command
        .option("-o,--output", arguments->output,
                "the picture, PNG or SVG by its ending; replaced when all is written")
        .shownAs("FILE.png|.svg")
        .required();
    command.option("--size", arguments->size, "width and height in points; 960x540 at first")
        .shownAs("WxH");
    command.option("--scale", arguments->scale, "pixels a point of a PNG; 2 for fine screens")
        .shownAs("S");
    command
        .option("--from", arguments->from,
                "the time at the left, in seconds; a little before the first key when not "
                "given, 0 without keys")
        .shownAs("A");
    command
        .option("--to", arguments->to,
                "the time at the right; a little behind the last key, 10 without keys")
        .shownAs("B");
    command
        .option("--min", arguments->min,
                "the value at the bottom; a little below the lowest one when not given")
        .shownAs("V");
    command.option("--max", arguments->max, "the value at the top").shownAs("V");
    command.option("--time", arguments->at, "draws the time line here").shownAs("T");
    command
        .option("--unit", arguments->units,
                "show lengths or angles in this unit, as for eval; meters and radians when "
                "not given")
        .shownAs("NAME[,...]")
        .separatedByCommas();
    command.flag("--light", arguments->isLight, "dark curves on a light ground, for print");
    command.option("--background", arguments->background, "the ground: a name or #rrggbb")
        .shownAs("COLOUR");
    command.option("--grid-color", arguments->grid, "the lines of the grid").shownAs("COLOUR");
    command.flag("--no-grid", arguments->hasNoGrid, "leaves out the grid and its numbers");
    command.flag("--no-legend", arguments->hasNoLegend, "leaves out the grid's numbers");
    command.flag("--no-names", arguments->hasNoNames,
                 "leaves out which of several channels is which");
    command.setExamples("kwchannel plot ball.kwdoc Position/y -o ball.png\n"
                        "kwchannel plot ball.kwdoc -o ball.svg --from 0 --to 2 --unit cm --light\n"
                        "kwchannel plot ball.kwdoc x y -o ball@2x.png --size 1600x900 --scale 2\n");
    command.onRun([arguments] { runPlot(*arguments); });
}
