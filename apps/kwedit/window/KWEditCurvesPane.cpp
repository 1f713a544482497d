#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewNavigator.h>
#include <KWBase/KWKeyCommands.h>

#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWFitRow.h>
#include <apps/kwedit/window/KWKeyEntryPanel.h>

#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <stdexcept>

// A static library's resources are only there when something asks for them.
static void loadResources() {
    Q_INIT_RESOURCE(KWEdit);
}

KWEditCurvesPane::KWEditCurvesPane(KWEditSession& session, QWidget* parent)
    : QWidget(parent), _session(session) {
    setObjectName(QStringLiteral("curves"));
    setWindowTitle(tr("Curves"));
    loadResources();
    // The framework's panel laid out for a wide and low pane.
    _editor.setInterfaceFile(QStringLiteral(":/kwedit/KWEditCurves.ui"));
    _editor.setChannelsController(&session.elements());
    if (!_editor.loadInterface())
        throw std::runtime_error(_editor.interfaceError().toStdString());
    _view = _editor.channelView();
    _outline = _editor.channelEditorContainer()->findChild<QTreeView*>(QStringLiteral("elementOV"));
    _view->bindToObjectWithKeyPathOptions("currentTime", &session.transport(), "currentTime");
    _navigator = new KWChannelViewNavigator(*_view, this);
    _navigator->setFramesFirstChannel(true);
    _keys = new KWKeyCommands(*_view, this);
    new KWChannelUndoRecorder(*_keys, this);
    _keyEntry = new KWKeyEntryPanel(*_keys);

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_editor.channelEditorContainer(), 1);
    column->addWidget(_keyEntry);
    if (auto* const splitter = _editor.channelEditorContainer()->findChild<QSplitter*>()) {
        splitter->setSizes({200, 640});
        // What the pane gains or loses, the curve does.
        splitter->setStretchFactor(0, 0);
        splitter->setStretchFactor(1, 1);
    }
    _outline->setMinimumWidth(160);

    makeHint();
    KWEditTransport& transport = session.transport();
    connect(_navigator, &KWChannelViewNavigator::scrubbingBegan, &transport,
            &KWEditTransport::beginScrubbing);
    connect(_navigator, &KWChannelViewNavigator::timeScrubbed, &transport, &KWEditTransport::scrub);
    connect(_navigator, &KWChannelViewNavigator::scrubbingEnded, &transport,
            &KWEditTransport::endScrubbing);
    connect(&transport, &KWEditTransport::framesPerSecondChanged, this,
            &KWEditCurvesPane::followRate);
    followRate(transport.framesPerSecond());
    connect(_keys, &KWKeyCommands::failed, this, &KWEditCurvesPane::message);
    connect(&session, &KWEditSession::channelsUpdated, this, &KWEditCurvesPane::followTime);
    connect(&session, &KWEditSession::elementsChanged, this, &KWEditCurvesPane::followStructure);
    connect(_outline->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &KWEditCurvesPane::followChannel, Qt::QueuedConnection);
}

KWEditCurvesPane::~KWEditCurvesPane() = default;

void KWEditCurvesPane::followRate(double rate) {
    _navigator->setTimeStep(1 / rate);
    _keys->setTimeStep(1 / rate);
    _keyEntry->setFramesPerSecond(rate);
}

void KWEditCurvesPane::followTime() {
    _editor.timeChangedCallback();
    static_cast<KWOutlineModel*>(_outline->model())->setValuesNeedRefresh();
}

void KWEditCurvesPane::followStructure() {
    static_cast<KWOutlineModel*>(_outline->model())->setNeedsReload();
    QMetaObject::invokeMethod(this, &KWEditCurvesPane::followChannel, Qt::QueuedConnection);
}

void KWEditCurvesPane::followChannel() {
    updateHint();
    const auto now = channel();
    if (now == _shown.lock() && (now || _shown.expired()))
        return;
    _shown = now;
    Q_EMIT channelChanged(now);
}

// --- What is shown where there is nothing, or little room.

void KWEditCurvesPane::makeHint() {
    _hint = new QLabel;
    _hint->setObjectName(QStringLiteral("curvesHint"));
    _hint->setAlignment(Qt::AlignCenter);
    _hint->setWordWrap(true);
    _hint->setMinimumWidth(290);
    _hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    // The view's own background is dark in every palette.
    _hint->setStyleSheet(QStringLiteral("QLabel { color: #e4e4ea; background: rgba(0, 0, 0, 150); "
                                        "border-radius: 6px; padding: 10px 16px; }"));
    auto* const layout = new QGridLayout(_view);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->addWidget(_hint, 0, 0, Qt::AlignCenter);
    updateHint();
}

void KWEditCurvesPane::updateHint() {
    const auto& objects = _session.elements().arrangedObjects();
    const bool hasChannels = std::any_of(objects.begin(), objects.end(), [](const auto& object) {
        const auto element = std::dynamic_pointer_cast<KWChannelElement>(object);
        return element && element->channelArray() &&
               !element->channelArray()->channelEnumerator().empty();
    });
    _hint->setText(hasChannels
                       ? tr("Choose a channel in the list to see its curve.")
                       : tr("Nothing moves yet. Add a sprite in the Element menu, or drop pictures "
                            "and movies onto the stage; the curves of its channels are here."));
    _hint->setVisible(!channel());
    if (auto* const below =
            _editor.channelEditorContainer()->findChild<QLabel*>(QStringLiteral("noOptionsLabel")))
        below->setVisible(_hint->isHidden());
}

/// What is hidden is in the menus, or shown twice.
void KWEditCurvesPane::fitRows() {
    const QWidget& form = *_editor.channelEditorContainer();
    const auto widgets = [&form](std::initializer_list<const char*> names) {
        QWidgetList found;
        for (const char* const name : names)
            if (auto* const widget = form.findChild<QWidget*>(QLatin1String(name)))
                found << widget;
        return found;
    };
    if (auto* const row = form.findChild<QLayout*>(QStringLiteral("toolRow")))
        kwFitRow(*row,
                 {widgets({"pasteButton"}), widgets({"copyButton"}),
                  widgets({"gridLabel", "gridSlider"}), widgets({"channelTypeLabel"}),
                  widgets({"fitButton"}), widgets({"liveCheckBox"}), widgets({"toolLine"})},
                 width());
    constexpr int leastSlider = 60;
    for (QWidget* const slider : widgets({"tensionSlider", "biasSlider", "continuitySlider"}))
        slider->setMinimumWidth(leastSlider);
    if (auto* const row = form.findChild<QLayout*>(QStringLiteral("keyframedLayout")))
        kwFitRow(*row,
                 {widgets({"tensionReadout", "biasReadout", "continuityReadout"}),
                  widgets({"interpModeLabel", "repeatLabel"})},
                 width());
    // The list of elements has the values too.
    constexpr int widthForValues = 640;
    constexpr int valueColumn = 2;
    _outline->setColumnHidden(valueColumn, width() < widthForValues);
}

void KWEditCurvesPane::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitRows();
}

void KWEditCurvesPane::prepareForNewDocument() {
    _navigator->rearm();
}

void KWEditCurvesPane::editFirstCurve() {
    for (const auto& object : _session.elements().arrangedObjects()) {
        const auto element = std::dynamic_pointer_cast<KWChannelElement>(object);
        const auto array = element ? element->channelArray() : nullptr;
        if (!array)
            continue;
        for (const auto& each : array->channelEnumerator()) {
            const auto keyed = std::dynamic_pointer_cast<KWKeyFramedChannel>(each);
            if (keyed && keyed->keyframeCount() > 1)
                return edit(each);
        }
    }
}

void KWEditCurvesPane::edit(const std::shared_ptr<KWChannel>& channel) {
    static_cast<KWOutlineModel*>(_outline->model())->selectItem(channel);
    followChannel();
}

void KWEditCurvesPane::showAllCurvesOfTheElement() {
    for (const auto& object : _session.elements().arrangedObjects()) {
        const auto element = std::dynamic_pointer_cast<KWChannelElement>(object);
        const auto array = element ? element->channelArray() : nullptr;
        if (!array)
            continue;
        const auto all = array->channelEnumerator();
        if (std::find(all.begin(), all.end(), channel()) == all.end())
            continue;
        for (const auto& each : all)
            if (each != channel())
                _view->addSecondaryChannel(each);
    }
    _view->setNeedsDisplay(true);
    static_cast<KWOutlineModel*>(_outline->model())->reloadData(); // the squares of the curves
}

void KWEditCurvesPane::hideOtherCurves() {
    _view->removeAllSecondaryChannels();
    _view->setNeedsDisplay(true);
    static_cast<KWOutlineModel*>(_outline->model())->reloadData();
}

// --- Keys.

bool KWEditCurvesPane::setKeyAtCurrentTime() {
    const auto keyed = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel());
    if (!keyed)
        return false;
    const KWTime time = _session.transport().time();
    const KWEditDocument::Step step(_session.document(), tr("Set Key"));
    keyed->setValueForKeyframe(keyed->valueForTime(time), time);
    _view->setSelectedKeys({time});
    return true;
}

void KWEditCurvesPane::enterExactly() {
    if (auto* const field = _keyEntry->findChild<QLineEdit*>())
        field->setFocus(Qt::ShortcutFocusReason);
}

std::optional<float> KWEditCurvesPane::keyBefore(float time) const {
    std::optional<float> found;
    if (const auto keyed = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel()))
        for (const KWTime& key : keyed->allKeyframes())
            if (key.time() < time && (!found || key.time() > *found))
                found = key.time();
    return found;
}

std::optional<float> KWEditCurvesPane::keyAfter(float time) const {
    std::optional<float> found;
    if (const auto keyed = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel()))
        for (const KWTime& key : keyed->allKeyframes())
            if (key.time() > time && (!found || key.time() < *found))
                found = key.time();
    return found;
}

// --- A window of its own.

void KWEditCurvesPane::setFloating(bool isFloating, QWidget* owner) {
    if (isFloating) {
        const QSize old = size();
        // A tool's window stays above the one that it belongs to.
        setParent(owner, Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                             Qt::WindowMaximizeButtonHint);
        // The commands of the window it came from work here too.
        if (owner)
            for (QAction* const action : owner->actions())
                addAction(action);
        if (_floatingGeometry.isEmpty() || !restoreGeometry(_floatingGeometry)) {
            resize(old.expandedTo({760, 420}));
            if (owner)
                move(owner->geometry().center() - rect().center());
        }
        show();
    } else {
        _floatingGeometry = saveGeometry();
        setParent(nullptr, Qt::Widget);
    }
}

void KWEditCurvesPane::closeEvent(QCloseEvent* event) {
    if (isWindow() && parentWidget()) {
        event->ignore();
        Q_EMIT closed();
        return;
    }
    QWidget::closeEvent(event);
}
