#include <KWBase/KWChannelView.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWValueText.h>
#include <KWFoundation/KWText.h>

#include <apps/kwedit/window/KWFitRow.h>
#include <apps/kwedit/window/KWKeyEntryField.h>
#include <apps/kwedit/window/KWKeyEntryPanel.h>

#include <QGridLayout>
#include <QLabel>
#include <QToolButton>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>

namespace {

constexpr KWKeyShape parts[] = {KWKeyShape::tension, KWKeyShape::bias, KWKeyShape::continuity};

QString textOf(float number) {
    // Not "-0".
    return QString::fromStdString(KWStringFromFloat(number + 0.0f));
}

/// A typed text: a number with what may stand behind it, and whether it is to be added.
struct Typed {
    explicit Typed(const QString& text) {
        isOffset = text.startsWith(QStringLiteral("+=")) || text.startsWith(QStringLiteral("-="));
        number = (isOffset ? text.mid(2).trimmed() : text).toStdString();
        sign = isOffset && text.startsWith(QLatin1Char('-')) ? -1.0f : 1.0f;
    }
    bool isOffset = false;
    float sign = 1;
    std::string number;
};

std::optional<float> readNumber(const std::string& text, std::int32_t unitType, QString& fault) {
    const std::optional<float> number = KWValueFromText(text, unitType);
    if (!number)
        fault = QString::fromStdString(KWValueTextFault(text, unitType));
    return number;
}

/// Seconds, of which "s" is the unit's name, or frames.
std::optional<float> readTime(std::string text, double rate, QString& fault) {
    const std::string whole = text;
    const char unit = text.empty() ? ' ' : text.back();
    const bool isFrames = unit == 'f' || unit == 'F';
    if (isFrames || unit == 's') {
        text.pop_back();
        text.erase(text.find_last_not_of(' ') + 1);
    }
    const std::optional<double> number = KWDoubleFromString(text);
    const auto seconds = static_cast<float>(number.value_or(0) / (isFrames ? rate : 1));
    if (number && std::isfinite(seconds))
        return seconds;
    // Without a fault a number in itself is one that is too large.
    return readNumber(whole, KWUnitTypeNone, fault);
}

/// What all keys have, while they have the same.
class Common {
  public:
    void add(float number) {
        if (_isFirst)
            _number = number;
        else if (std::bit_cast<std::uint32_t>(number) != std::bit_cast<std::uint32_t>(_number) &&
                 number != _number)
            _isMixed = true;
        _isFirst = false;
    }
    template <class Text>
    void show(KWKeyEntryField& field, const Text& text) const {
        if (field.isBeingEdited())
            return;
        if (_isMixed)
            field.showMixed();
        else
            field.showText(_isFirst ? QString() : text(_number));
    }

  private:
    bool _isFirst = true;
    bool _isMixed = false;
    float _number = 0;
};

HJHermiteParam shapeOf(const KWKeyFramedChannel& channel, KWTime key) {
    HJHermiteParam shape;
    const std::optional<KWData> record = channel.hermiteValueForKeyframe(key);
    if (record && !record->empty())
        std::memcpy(&shape, record->data(), std::min(sizeof shape, record->size()));
    return shape;
}

std::vector<KWTime> selectedKeys(const KWChannelView& view, const KWKeyFramedChannel& channel) {
    std::vector<KWTime> keys = view.selectedKeys();
    std::erase_if(keys, [&](KWTime key) { return !channel.isKeyframe(key); });
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

} // namespace

KWKeyEntryPanel::KWKeyEntryPanel(KWKeyCommands& commands, QWidget* parent)
    : QWidget(parent), _commands(&commands) {
    setAccessibleName(tr("Selected keys"));
    addFields();
    setOrientation(Qt::Horizontal);
    connect(&commands, &KWKeyCommands::changed, this, &KWKeyEntryPanel::fill);
    connect(&commands, &QObject::destroyed, this, &KWKeyEntryPanel::fill);
    _units = KWNotificationCenter::defaultCenter().addObserver(
        KWUnitControllerDefaultUnitDidChangeNotification, &KWUnitController::sharedUnitController(),
        [this](const KWNotification&) { fill(); });
    fill();
}

KWKeyEntryPanel::~KWKeyEntryPanel() = default;

void KWKeyEntryPanel::addFields() {
    _count = new QLabel(this);
    _frame = new QLabel(this);
    _frame->setAccessibleName(tr("Frame"));
    _time = new KWKeyEntryField(QStringLiteral("-0000.000"), this);
    _value = new KWKeyEntryField(QStringLiteral("-0000.000 mm"), this);
    addField(_time, tr("Time"), tr("In seconds, or frames as in “12f”; “+=0.5” moves each key"));
    addField(_value, tr("Value"), tr("\u201c+=0.5\u201d moves each key"));
    const QString names[] = {tr("Tension"), tr("Bias"), tr("Continuity")};
    const QString toolTips[] = {tr("1 is tight, 0 is smooth, -1 is round"),
                                tr("1 leans towards the key before, -1 towards the one after"),
                                tr("Other than 0, there is a corner at the key")};
    const auto connectField = [this](KWKeyEntryField* field, const auto& enter) {
        connect(field, &KWKeyEntryField::entered, this, [this, field, enter](const QString& text) {
            const QPointer<KWKeyEntryPanel> self(this);
            const QString fault = _commands ? enter(text) : QString();
            // Whoever is told of an edit may do anything.
            if (!self)
                return;
            if (!fault.isEmpty())
                field->refuse(fault);
            fill();
        });
    };
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        _shapes[i] = new KWKeyEntryField(QStringLiteral("-0.000"), this);
        addField(_shapes[i], names[i], toolTips[i]);
        connectField(_shapes[i], [this, part = parts[i]](const QString& text) {
            return enterShape(part, text);
        });
    }
    connectField(_time, [this](const QString& text) { return enterTime(text); });
    connectField(_value, [this](const QString& text) { return enterValue(text); });
    _reset = new QToolButton(this);
    _reset->setText(tr("Reset"));
    _reset->setToolTip(tr("Makes tension, bias and continuity 0"));
    _reset->setAccessibleName(tr("Reset shape"));
    connect(_reset, &QToolButton::clicked, this, [this] {
        if (_commands)
            _commands->resetShapes();
    });
}

void KWKeyEntryPanel::addField(KWKeyEntryField* field, const QString& name,
                               const QString& toolTip) {
    auto* const label = new QLabel(name, this);
    label->setBuddy(field);
    field->setAccessibleName(name);
    field->setToolTip(toolTip);
    _labels.push_back(label);
}

void KWKeyEntryPanel::setOrientation(Qt::Orientation orientation) {
    delete layout();
    _grid = new QGridLayout(this);
    _grid->setContentsMargins(6, 4, 6, 4);
    KWKeyEntryField* const fields[] = {_time, _value, _shapes[0], _shapes[1], _shapes[2]};
    const bool isStrip = orientation == Qt::Horizontal;
    _isStrip = isStrip;
    _count->setMinimumWidth(isStrip ? fontMetrics().horizontalAdvance(tr("No keys") + u'0') : 0);
    _frame->setMinimumWidth(
        isStrip ? fontMetrics().horizontalAdvance(QStringLiteral("0000\u20130000 f")) : 0);
    int at = 0;
    const auto place = [&](QWidget* widget, int column) {
        isStrip ? _grid->addWidget(widget, 0, at++) : _grid->addWidget(widget, at, column);
    };
    place(_count, 0);
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        // What belongs together stands closer.
        if (isStrip)
            _grid->setColumnMinimumWidth(at, 4);
        ++at;
        place(_labels[i], 0);
        place(fields[i], 1);
        if (i == 0)
            place(_frame, 2);
    }
    place(_reset, 2);
    if (isStrip)
        _grid->setColumnStretch(at, 1);
    else
        _grid->setRowStretch(at + 1, 1);
}

void KWKeyEntryPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const auto shape = [this](std::size_t index) {
        return QWidgetList{_labels[2 + index], _shapes[index]};
    };
    // In the reverse of their order, so that those that stay keep their places.
    kwFitRow(*_grid, {{_reset}, shape(2), shape(1), shape(0), {_frame}, {_count}},
             _isStrip ? width() : QWIDGETSIZE_MAX);
}

void KWKeyEntryPanel::setFramesPerSecond(double rate) {
    if (!(rate > 0) || !std::isfinite(rate))
        return;
    _rate = rate;
    fill();
}

// --- What is shown.

void KWKeyEntryPanel::fill() {
    const KWChannelView* const view = _commands ? _commands->view() : nullptr;
    const auto* const channel =
        view ? dynamic_cast<const KWKeyFramedChannel*>(view->primaryChannel().get()) : nullptr;
    std::vector<KWTime> keys;
    // Another channel's keys may be at the same times.
    if (channel)
        keys = selectedKeys(*view, *channel);
    if (keys != _keys || channel != _channel)
        for (KWKeyEntryField* const field : {_time, _value, _shapes[0], _shapes[1], _shapes[2]})
            field->setModified(false);
    _keys = keys;
    _channel = channel;
    const auto count = static_cast<int>(keys.size());
    _count->setText(count == 0   ? tr("No keys")
                    : count == 1 ? tr("1 key")
                                 : tr("%n keys", nullptr, count));
    setEnabled(count != 0);
    _frame->setText(frameText(keys));
    fillFields(channel, keys);
}

void KWKeyEntryPanel::fillFields(const KWKeyFramedChannel* channel,
                                 const std::vector<KWTime>& keys) {
    Common times;
    Common values;
    Common shapes[3];
    for (const KWTime key : keys) {
        const HJHermiteParam shape = shapeOf(*channel, key);
        times.add(key.time());
        values.add(channel->valueForKeyframe(key));
        shapes[0].add(shape.tension);
        shapes[1].add(shape.bias);
        shapes[2].add(shape.continuity);
    }
    times.show(*_time, textOf);
    values.show(*_value, [&](float value) {
        return QString::fromStdString(KWTextFromValue(value, channel->unitType()));
    });
    for (std::size_t i = 0; i < std::size(shapes); ++i)
        shapes[i].show(*_shapes[i], textOf);
}

QString KWKeyEntryPanel::frameText(const std::vector<KWTime>& keys) const {
    if (keys.empty())
        return {};
    const auto frame = [this](KWTime key) {
        const double at = static_cast<double>(key.time()) * _rate;
        const double tenths = std::round(at * 10) / 10 + 0.0;
        return QString::fromStdString(KWStringFromFloat(static_cast<float>(tenths)));
    };
    if (keys.size() == 1)
        return tr("%1 f", "a frame").arg(frame(keys.front()));
    return tr("%1\u2013%2 f", "frames").arg(frame(keys.front()), frame(keys.back()));
}

// --- What is typed. Each answers why it was refused, or nothing.

namespace {

/// Runs a command, which may be the end of the commands.
template <class Command>
QString run(const QPointer<KWKeyCommands>& commands, const Command& command) {
    const QPointer<KWKeyCommands> alive(commands);
    command(*alive);
    return alive ? alive->fault() : QString();
}

} // namespace

QString KWKeyEntryPanel::enterTime(const QString& text) {
    const Typed typed(text);
    QString fault;
    const std::optional<float> read = readTime(typed.number, _rate, fault);
    const std::vector<KWTime> keys = _commands->keys();
    if (!read || keys.empty())
        return fault;
    const float time = typed.sign * *read;
    return run(_commands, [&](KWKeyCommands& commands) {
        if (!typed.isOffset && keys.size() == 1)
            commands.setTime(time);
        else
            commands.offsetTimes(typed.isOffset ? time : time - keys.front().time());
    });
}

QString KWKeyEntryPanel::enterValue(const QString& text) {
    const Typed typed(text);
    const KWChannelView* const view = _commands->view();
    const auto channel = view ? view->primaryChannel() : nullptr;
    if (!channel)
        return {};
    QString fault;
    const std::optional<float> read = readNumber(typed.number, channel->unitType(), fault);
    if (!read || !_commands->canSetValues())
        return fault;
    const float value = typed.sign * *read;
    return run(_commands, [&](KWKeyCommands& commands) {
        if (typed.isOffset)
            commands.offsetValues(channel->convertValueToUserUnit(value));
        else
            commands.setStoredValues(value);
    });
}

QString KWKeyEntryPanel::enterShape(KWKeyShape part, const QString& text) {
    QString fault;
    const std::optional<float> number = readNumber(text.toStdString(), KWUnitTypeNone, fault);
    if (!number || !_commands->canSetValues())
        return fault;
    return run(_commands, [&](KWKeyCommands& commands) { commands.setShapes(part, *number); });
}
