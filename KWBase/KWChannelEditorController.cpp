#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelEditorOutlets.h>
#include <KWBase/KWChannelElement.h>
#include <KWBase/KWInterfaceFile.h>
#include <KWBase/KWPanelControls.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWDesktop/KWPropertyObserving.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUndoManager.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <algorithm>

// The life of the panel: how it is loaded, connected and closed.

// A static library's resources are only there when something asks for them. This has to stand
// outside of every namespace.
static void loadResources() {
    Q_INIT_RESOURCE(KWBaseInterface);
}

namespace {

constexpr std::string_view elementsKeyPath = "arrangedObjects";
constexpr std::string_view validKeyPath = "valid";

std::vector<KWOutlet> requiredOutlets(KWChannelEditorOutlets& to) {
    return {{"channelEditorPanel", to.channelEditorPanel},
            {"channelEditorContainer", to.channelEditorContainer},
            {"elementOV", to.elementOV},
            {"channelView", to.channelView},
            {"liveCheckBox", to.liveCheckBox},
            {"gridSlider", to.gridSlider},
            {"toolsMatrix", to.toolsMatrix},
            {"channelTypePU", to.channelTypePU},
            {"optionsBox", to.optionsBox},
            {"copyButton", to.copyButton},
            {"pasteButton", to.pasteButton},
            {"keyframedView", to.keyframedView},
            {"interpModePU", to.interpModePU},
            {"repeatPU", to.repeatPU},
            {"tensionSlider", to.tensionSlider, KWShapeTagTension},
            {"continuitySlider", to.continuitySlider, KWShapeTagContinuity},
            {"biasSlider", to.biasSlider, KWShapeTagBias},
            {"resetHermButton", to.resetHermButton, KWShapeTagReset},
            {"constantView", to.constantView},
            {"constantValueTF", to.constantValueTF},
            {"algebricView", to.algebricView},
            {"expressionTF", to.expressionTF}};
}

void findOtherOutlets(QWidget& root, KWChannelEditorOutlets& to) {
    const auto find = [&](QPointer<QLabel>& place, const char* name) {
        place = root.findChild<QLabel*>(QLatin1String(name));
    };
    find(to.tensionReadout, "tensionReadout");
    find(to.continuityReadout, "continuityReadout");
    find(to.biasReadout, "biasReadout");
    find(to.noOptionsLabel, "noOptionsLabel");
}

void centre(QWidget& panel) {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QRect frame(QPoint(0, 0), panel.size().boundedTo(screen->availableSize()));
    frame.moveCenter(screen->availableGeometry().center());
    panel.setGeometry(frame);
}

} // namespace

KWChannelEditorController::KWChannelEditorController(QObject* parent)
    : KWChannelEditSource(parent), _outlets(std::make_unique<KWChannelEditorOutlets>()),
      _interfaceFile(QStringLiteral(":/KWBase/KWChannelEditorPanel.ui")) {
    KWNotificationCenter& centre = KWNotificationCenter::defaultCenter();
    // Whatever may change what the panel shows.
    for (const std::string_view name :
         {KWChannelChangedNotification, KWUndoManagerDidChangeNotification})
        _notices.push_back(
            centre.addObserver(name, nullptr, [this](const KWNotification&) { setNeedsUpdate(); }));
    _notices.push_back(centre.addObserver(KWUnitControllerDefaultUnitDidChangeNotification, nullptr,
                                          [this](const KWNotification&) { unitDidChange(); }));
}

KWChannelEditorController::~KWChannelEditorController() {
    closeEdit();
    _notices.clear();
    KWChannelViewDelegate::resign();
    KWKeyObserver::resign();
    resignAsDataSource();
    if (_outlets->toolsMatrix)
        _outlets->toolsMatrix->setEnabled(false);
    closeInterface();
}

// --- Loading.

bool KWChannelEditorController::loadInterface() {
    loadResources();
    KWLoadedInterface loaded = KWLoadInterfaceFile(_interfaceFile);
    auto outlets = std::make_unique<KWChannelEditorOutlets>();
    if (loaded.root)
        loaded.error = KWConnectOutlets(*loaded.root, requiredOutlets(*outlets), _interfaceFile);
    _interfaceError = loaded.error;
    if (!_interfaceError.isEmpty()) {
        KWLog(_interfaceError.toStdString());
        return false;
    }
    closeInterface();
    findOtherOutlets(*loaded.root, *outlets);
    outlets->constantToolTip = outlets->constantValueTF->toolTip();
    outlets->expressionToolTip = outlets->expressionTF->toolTip();
    outlets->root = loaded.root.release();
    _outlets = std::move(outlets);
    awakeFromNib();
    _outlets->elementOV->setIndentation(9);
    _outlets->root->setWindowFlag(Qt::Tool);
    centre(*_outlets->root);
    selectionChangedCallback(nullptr);
    return true;
}

void KWChannelEditorController::closeInterface() {
    closeEdit();
    delete _alert;
    QWidget* const container = _outlets->channelEditorContainer;
    QWidget* const panel = _outlets->channelEditorPanel;
    const bool isElsewhere = container && (!panel || !panel->isAncestorOf(container));
    if (isElsewhere) {
        // The host has it now, but nothing here acts on it any more.
        for (QObject* const part : container->findChildren<QObject*>()) {
            part->disconnect(this);
            part->removeEventFilter(this);
        }
    }
    // The outline goes with its view.
    if (isElsewhere && _outline)
        _outline->setDataSource(nullptr);
    delete _outlets->root;
    *_outlets = {};
}

void KWChannelEditorController::awakeFromNib() {
    makeOutline();
    connectView();
    connectActions();
    connectFields();
    KWMakePopupSeparator(*_outlets->channelTypePU, 2);
    _outlets->channelTypePU->installEventFilter(this);
    _shownType = _outlets->channelTypePU->currentIndex();
    for (QAbstractButton* const tool : _outlets->toolsMatrix->findChildren<QAbstractButton*>())
        if (KWTagOf(tool) == KWChannelViewModeSelect)
            tool->setChecked(true);
    changeEditingMode();
    changeLiveUpdate();
    selectionChangedCallback(nullptr);
    observeElements();
    channelChanged();
}

void KWChannelEditorController::connectView() {
    KWChannelView* const view = _outlets->channelView;
    view->awakeFromNib();
    view->setDelegate(this);
    view->installEventFilter(this);
    fitStepCount();
    connect(view, &KWChannelView::gestureWillBegin, this, [this] {
        if (edited<KWKeyFramedChannel>())
            openEdit(KWChannelEdit::keys);
    });
    connect(view, &KWChannelView::gestureDidEnd, this, [this] {
        closeEdit();
        setNeedsUpdate();
    });
    connect(view, &KWChannelView::selectedKeysChanged, this,
            &KWChannelEditorController::setNeedsUpdate);
}

void KWChannelEditorController::connectActions() {
    using Self = KWChannelEditorController;
    const auto clicked = [this](QAbstractButton* button, void (Self::*action)(const QObject*)) {
        connect(button, &QAbstractButton::clicked, this,
                [this, button, action] { KWRunAction([&] { (this->*action)(button); }); });
    };
    const auto chosen = [this](QComboBox* popup, void (Self::*action)(const QObject*)) {
        connect(popup, &QComboBox::activated, this,
                [this, popup, action] { KWRunAction([&] { (this->*action)(popup); }); });
    };
    for (QAbstractButton* const tool : _outlets->toolsMatrix->findChildren<QAbstractButton*>())
        if (KWTagOf(tool))
            clicked(tool, &Self::changeEditingMode);
    clicked(_outlets->liveCheckBox, &Self::changeLiveUpdate);
    clicked(_outlets->copyButton, &Self::copyChannel);
    clicked(_outlets->pasteButton, &Self::pasteChannel);
    clicked(_outlets->resetHermButton, &Self::changeHermiteParam);
    chosen(_outlets->channelTypePU, &Self::changeChannelType);
    chosen(_outlets->interpModePU, &Self::changeInterpolation);
    chosen(_outlets->repeatPU, &Self::changeRepeat);
    QAbstractSlider* const grid = _outlets->gridSlider;
    connect(grid, &QAbstractSlider::valueChanged, this,
            [this, grid] { KWRunAction([&] { changeGridResolution(grid); }); });
    connectSlider(_outlets->tensionSlider);
    connectSlider(_outlets->continuitySlider);
    connectSlider(_outlets->biasSlider);
}

/// A drag is one edit, and so is each step by a key, the wheel or a click beside the handle.
void KWChannelEditorController::connectSlider(QAbstractSlider* slider) {
    connect(slider, &QAbstractSlider::sliderPressed, this, [this] {
        if (edited<KWKeyFramedChannel>())
            openEdit(KWChannelEdit::shape);
    });
    connect(slider, &QAbstractSlider::valueChanged, this,
            [this, slider] { KWRunAction([&] { changeHermiteParam(slider); }); });
    connect(slider, &QAbstractSlider::sliderReleased, this, [this] { closeEdit(); });
}

void KWChannelEditorController::connectFields() {
    for (QLineEdit* const field : {_outlets->constantValueTF.data(), _outlets->expressionTF.data()})
        field->installEventFilter(this);
    connect(_outlets->constantValueTF, &QLineEdit::editingFinished, this,
            &KWChannelEditorController::commitConstantValue);
    connect(_outlets->expressionTF, &QLineEdit::editingFinished, this, [this] {
        if (_outlets->expressionTF->isModified())
            commitExpression();
    });
    // A refused text is tried again when the user asks for it.
    connect(_outlets->expressionTF, &QLineEdit::returnPressed, this, [this] {
        const std::string text = _outlets->expressionTF->text().toStdString();
        if (_outlets->expressionTF->isModified() || text != _filledExpression.value_or(""))
            commitExpression();
    });
}

// The event's type comes first: a widget in its destructor is no longer what the outlets say.
bool KWChannelEditorController::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = event->type() == QEvent::KeyPress;
    const int key = isKey ? static_cast<const QKeyEvent*>(event)->key() : 0;
    if (event->type() == QEvent::Resize && watched == _outlets->channelView)
        fitStepCount();
    // A turn of the wheel over it would replace the channel.
    if (event->type() == QEvent::Wheel && watched == _outlets->channelTypePU) {
        event->ignore();
        return true;
    }
    if (key == Qt::Key_Space && watched == _outlets->elementOV) {
        KWRunAction([this] { toggleShowSecondaryChannel(_outlets->elementOV); });
        return true;
    }
    if (key == Qt::Key_Escape &&
        (watched == _outlets->constantValueTF || watched == _outlets->expressionTF)) {
        updateConstantView();
        updateAlgebricView();
        return true;
    }
    return KWChannelEditSource::eventFilter(watched, event);
}

/// One line of the curve for each pixel.
void KWChannelEditorController::fitStepCount() {
    KWChannelView* const view = _outlets->channelView;
    view->setStepCount(std::max(100, qRound(view->width() * view->devicePixelRatioF())));
}

// --- The panel.

QWidget* KWChannelEditorController::channelEditorPanel() const {
    return _outlets->channelEditorPanel;
}

QWidget* KWChannelEditorController::channelEditorContainer() const {
    return _outlets->channelEditorContainer;
}

KWChannelView* KWChannelEditorController::channelView() const {
    return _outlets->channelView;
}

QWidget* KWChannelEditorController::optionsView() const {
    return _outlets->content;
}

void KWChannelEditorController::showChannelEditor() {
    if (!_outlets->channelEditorPanel && !loadInterface())
        return;
    QWidget* const window = _outlets->channelEditorPanel->window();
    window->show();
    window->raise();
    window->activateWindow();
}

// --- The elements.

void KWChannelEditorController::setChannelsController(KWArrayController* controller) {
    if (_channelsController)
        KWRemoveObserverForKeyPath(*_channelsController, *this, elementsKeyPath);
    _channelsController = controller;
    observeElements();
}

void KWChannelEditorController::observeElements() {
    if (!_channelsController || !_outlets->channelView)
        return;
    KWRemoveObserverForKeyPath(*_channelsController, *this, elementsKeyPath);
    KWAddObserverForKeyPathOptionsContext(*_channelsController, *this, elementsKeyPath, 0, nullptr);
    if (_outline)
        _outline->reloadData();
}

std::vector<std::shared_ptr<KWObject>> KWChannelEditorController::elements() const {
    if (!_channelsController)
        return {};
    return _channelsController->arrangedObjects();
}

void KWChannelEditorController::observeValueForKeyPathOfObjectChangeContext(
    std::string_view keyPath, KWObject* object, const KWKeyValueChange&, const void* context) {
    if (keyPath == elementsKeyPath && !object && !context) {
        KWLog("Elements changed");
        if (_outline)
            _outline->reloadData();
    } else if (keyPath == validKeyPath && object && object == _channelBeingEdited.get()) {
        setNeedsUpdate();
    }
}

void KWChannelEditorController::channelStructChangedCallback(const KWNotification& notification) {
    const auto all = elements();
    const bool isOurs =
        notification.object() && std::any_of(all.begin(), all.end(), [&](const auto& element) {
            return element.get() == notification.object();
        });
    if (isOurs && _outline)
        _outline->reloadData();
}

void KWChannelEditorController::extendSelectionWithKey(KWTime key) {
    if (std::find(_selectedKeys.begin(), _selectedKeys.end(), key) == _selectedKeys.end())
        _selectedKeys.push_back(key);
}

void KWChannelEditorController::timeChangedCallback(const KWNotification*) {
    redrawChannelView();
    if (_outline)
        _outline->setValuesNeedRefresh();
}

void KWChannelEditorController::selectionChangedCallback(const KWNotification*) {}

void KWChannelEditorController::redrawChannelView() {
    if (_outlets->channelView)
        _outlets->channelView->setNeedsDisplay(true);
}
