#include <KWBase/KWChannelView.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiveError.h>

#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Errors.h>
#include <apps/kwchannel/Output.h>
#include <apps/kwchannel/Text.h>

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>
#include <algorithm>
#include <charconv>
#include <cmath>
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

/// A stretch of times or values.
struct Range {
    double low;
    double high;

    void include(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    /// With a tenth on both sides, or of a length of 1 where it has none.
    Range widened() const {
        const double margin = high > low ? (high - low) / 10 : 0.5;
        return {low - margin, high + margin};
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

/// The same for the channel in front.
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
    constexpr int largest = 20000;
    if (first.ec == std::errc() && first.ptr != end && (*first.ptr == 'x' || *first.ptr == 'X')) {
        const auto second = std::from_chars(first.ptr + 1, end, height);
        if (second.ec == std::errc() && second.ptr == end && width >= 16 && height >= 16 &&
            width <= largest && height <= largest)
            return {width, height};
    }
    throw UseError("--size: " + inQuotes(text) +
                   " is no size; two whole numbers from 16 to 20000 are wanted, such as 960x540");
}

/// The number of an option, or the value to take when it is not given.
double numberOr(std::string_view option, const std::string& text, double otherwise) {
    return text.empty() ? otherwise : finiteArgument(option, text);
}

/// From the first to the last key of all channels, with a margin; 0 to 10 without keys.
Range timesToShow(const PlotArguments& arguments, const std::vector<Place>& places) {
    Range keys = nothing;
    for (const Place& place : places) {
        const auto* const channel = dynamic_cast<const KWKeyFramedChannel*>(place.channel.get());
        if (!channel || channel->keyframeCount() == 0)
            continue;
        const HJRect bounds = channel->boundingRect();
        if (!std::isfinite(bounds.x) || !std::isfinite(bounds.width))
            continue;
        keys.include(static_cast<double>(bounds.x));
        keys.include(static_cast<double>(bounds.x) + static_cast<double>(bounds.width));
    }
    const Range all = keys.low <= keys.high ? keys.widened() : Range{0, 10};
    const Range wanted{numberOr("--from", arguments.from, all.low),
                       numberOr("--to", arguments.to, all.high)};
    if (!(wanted.low < wanted.high))
        throw UseError("there is nothing between --from " + floatText(float(wanted.low)) +
                       " and --to " + floatText(float(wanted.high)));
    return wanted;
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
    if (arguments.min.empty() || arguments.max.empty()) {
        std::vector<float> at(static_cast<std::size_t>(samples) + 1);
        for (std::size_t k = 0; k < at.size(); ++k)
            at[k] = static_cast<float>(times.low +
                                       (times.high - times.low) * static_cast<double>(k) / samples);
        for (const Place& place : places)
            for (const float value : valuesThatAreThere(place, at))
                if (std::isfinite(value))
                    all.include(static_cast<double>(value));
    }
    all = all.low <= all.high ? all.widened() : Range{-2, 2};
    const Range wanted{numberOr("--min", arguments.min, all.low),
                       numberOr("--max", arguments.max, all.high)};
    if (!(wanted.low < wanted.high))
        throw UseError("there is nothing between --min " + floatText(float(wanted.low)) +
                       " and --max " + floatText(float(wanted.high)));
    return wanted;
}

/// Which colour is which channel, in the upper right corner.
void drawNames(QPainter& painter, const QSize& size, const std::vector<Place>& places,
               const QColor& background, bool isLight) {
    constexpr int line = 18;
    constexpr int margin = 10;
    QFont font = QGuiApplication::font();
    font.setPixelSize(12);
    painter.setFont(font);
    const QFontMetrics metrics(font, painter.device());
    const int room = size.width() - 2 * margin - 46;
    if (room < 40)
        return;
    std::vector<QString> names;
    int width = 0;
    const auto fitting = static_cast<std::size_t>(std::max(1, size.height() / line - 1));
    for (std::size_t k = 0; k < std::min(places.size(), fitting); ++k) {
        const bool isCut = k + 1 == fitting && places.size() > fitting;
        names.push_back(
            metrics.elidedText(isCut ? QStringLiteral("… and %1 more").arg(places.size() - k)
                                     : QString::fromStdString(places[k].path),
                               Qt::ElideMiddle, room));
        width = std::max(width, metrics.horizontalAdvance(names.back()));
    }
    const QRectF box(size.width() - margin - width - 46, margin, width + 46,
                     static_cast<double>(names.size()) * line + 10);
    QColor shade = background;
    shade.setAlphaF(0.8f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    painter.drawRoundedRect(box, 4, 4);
    for (std::size_t k = 0; k < names.size(); ++k) {
        const double middle = box.top() + 5 + line * (static_cast<double>(k) + 0.5);
        if (k < places.size() && !names[k].startsWith(QChar(0x2026))) {
            painter.setPen(QPen(colorOf(*places[k].channel, isLight), k == 0 ? 2.5 : 1.5,
                                Qt::SolidLine, Qt::FlatCap));
            painter.drawLine(QPointF(box.left() + 8, middle), QPointF(box.left() + 30, middle));
        }
        painter.setPen(isLight ? QColor(50, 50, 50) : QColor(220, 220, 220));
        painter.drawText(QRectF(box.left() + 38, middle - line / 2.0, width + 4, line),
                         Qt::AlignLeft | Qt::AlignVCenter, names[k]);
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
                                  float(times.high - times.low), float(values.high - values.low)});
        _view.setShowsGrid(!arguments.hasNoGrid);
        _view.setShowsLegend(!arguments.hasNoLegend);
        // About as many lines as the eye likes, however large the picture is.
        _view.setXGridCount(std::max(1, _size.width() / 32));
        _view.setYGridCount(std::max(1, _size.height() / 32));
        // Where no time line is wanted it stands far to the left.
        _view.setCurrentTime(float(numberOr("--time", arguments.at, 2 * times.low - times.high)));
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

void addPlotCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand("plot", "Draws channels into a picture");
    const auto arguments = std::make_shared<PlotArguments>();
    command->add_option("DOC", arguments->document, "the document; - is standard input")
        ->required();
    command->add_option("CHANNEL", arguments->channels,
                        "paths such as Ball/Position/x, or what they end with; all channels when "
                        "there is none. The first is drawn in front, with its keys");
    command
        ->add_option("-o,--output", arguments->output,
                     "the picture, PNG or SVG by its ending; replaced when all is written")
        ->type_name("FILE.png|.svg")
        ->required();
    command->add_option("--size", arguments->size, "width and height in points; 960x540 at first")
        ->type_name("WxH");
    command->add_option("--scale", arguments->scale, "pixels a point of a PNG; 2 for fine screens")
        ->type_name("S");
    command
        ->add_option("--from", arguments->from,
                     "the time at the left, in seconds; a little before the first key when not "
                     "given, 0 without keys")
        ->type_name("A");
    command
        ->add_option("--to", arguments->to,
                     "the time at the right; a little behind the last key, 10 without keys")
        ->type_name("B");
    command
        ->add_option("--min", arguments->min,
                     "the value at the bottom; a little below the lowest one when not given")
        ->type_name("V");
    command->add_option("--max", arguments->max, "the value at the top")->type_name("V");
    command->add_option("--time", arguments->at, "draws the time line here")->type_name("T");
    command
        ->add_option("--unit", arguments->units,
                     "show lengths or angles in this unit, as for eval; meters and radians when "
                     "not given")
        ->type_name("NAME[,...]")
        ->allow_extra_args(false)
        ->delimiter(',');
    command->add_flag("--light", arguments->isLight, "dark curves on a light ground, for print");
    command->add_option("--background", arguments->background, "the ground: a name or #rrggbb")
        ->type_name("COLOUR");
    command->add_option("--grid-color", arguments->grid, "the lines of the grid")
        ->type_name("COLOUR");
    command->add_flag("--no-grid", arguments->hasNoGrid, "leaves out the grid and its numbers");
    command->add_flag("--no-legend", arguments->hasNoLegend, "leaves out the grid's numbers");
    command->add_flag("--no-names", arguments->hasNoNames,
                      "leaves out which of several channels is which");
    command->footer("kwchannel plot ball.kwdoc Position/y -o ball.png\n"
                    "kwchannel plot ball.kwdoc -o ball.svg --from 0 --to 2 --unit cm --light\n"
                    "kwchannel plot ball.kwdoc x y -o ball@2x.png --size 1600x900 --scale 2\n");
    command->callback([arguments] { runPlot(*arguments); });
}
