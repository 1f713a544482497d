#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelEditorOutlets.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWInterfaceFile.h>
#include <KWBase/KWPanelControls.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWDesktop/KWValueText.h>

#include <QTimer>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>

// How the panel is filled.

namespace {

int popupIndexOfMode(std::int32_t mode) {
    switch (mode) {
    case KWKeyFrameModeLinear:
        return 1;
    case KWKeyFrameModeStep:
        return 2;
    default:
        return 0;
    }
}

int popupIndexOfRepeat(std::int32_t repeat) {
    return repeat == KWRepeatModeCycle || repeat == KWRepeatModePingPong ? repeat : 0;
}

/// Whether the user is in the middle of typing.
bool isBeingEdited(const QLineEdit* field) {
    return field && field->hasFocus() && field->isModified();
}

void fillField(QLineEdit* field, const std::string& text, const QString& toolTip) {
    const QString filled = KWQString(text);
    if (field->text() != filled)
        field->setText(filled);
    field->setModified(false);
    field->setToolTip(toolTip);
}

void setReadout(QLabel* label, float value) {
    if (label)
        label->setText(QString::number(static_cast<double>(value) + 0.0, 'f', 3));
}

/// The shape of the first of the keys; nothing when it is no key any more, or when the channel is
/// out of order and has none for it.
std::optional<HJHermiteParam> shapeOfFirst(const KWKeyFramedChannel& channel,
                                           const std::vector<KWTime>& keys) {
    std::optional<KWData> record;
    try {
        record = channel.hermiteValueForKeyframe(keys.front());
    } catch (const std::out_of_range&) {
    }
    if (!record)
        return std::nullopt;
    HJHermiteParam shape;
    std::memcpy(&shape, record->data(), std::min(sizeof shape, record->size()));
    return shape;
}

} // namespace

// --- What is called for.

void KWChannelEditorController::updateView(QWidget* view) {
    if (!view)
        return;
    if (view == _outlets->optionsBox)
        updateOptionsBox();
    else if (view == _outlets->keyframedView)
        updateKeyframedView();
    else if (view == _outlets->constantView)
        updateConstantView();
    else if (view == _outlets->algebricView)
        updateAlgebricView();
}

void KWChannelEditorController::updateOptionsBox() {
    QWidget* content = nullptr;
    if (edited<KWKeyFramedChannel>())
        content = _outlets->keyframedView;
    else if (edited<KWConstantChannel>())
        content = _outlets->constantView;
    else if (edited<KWAlgebricChannel>())
        content = _outlets->algebricView;
    updateView(content);
    const std::array<QWidget*, 3> views = {_outlets->keyframedView, _outlets->constantView,
                                           _outlets->algebricView};
    KWSetContentView(views, content);
    _outlets->content = content;
    if (_outlets->noOptionsLabel)
        _outlets->noOptionsLabel->setText(_channelBeingEdited
                                              ? tr("This kind of channel has no options.")
                                              : tr("Choose a channel in the list."));
}

void KWChannelEditorController::updateKeyframedView() {
    const auto channel = edited<KWKeyFramedChannel>();
    if (!channel || !_outlets->keyframedView || !_outlets->channelView)
        return;
    KWSetPopupIndex(*_outlets->interpModePU, popupIndexOfMode(channel->keyFrameChannelMode()));
    KWSetPopupIndex(*_outlets->repeatPU, popupIndexOfRepeat(channel->repeatMode()));
    updateShapeControls(*channel);
}

void KWChannelEditorController::updateShapeControls(const KWKeyFramedChannel& channel) {
    const std::vector<KWTime> keys = _outlets->channelView->selectedKeys();
    const bool isHermite = channel.keyFrameChannelMode() == KWKeyFrameModeHermite;
    const bool isEnabled = isHermite && !keys.empty();
    for (QWidget* const control :
         std::initializer_list<QWidget*>{_outlets->tensionSlider, _outlets->continuitySlider,
                                         _outlets->biasSlider, _outlets->resetHermButton})
        control->setEnabled(isEnabled);
    for (QLabel* const readout : {_outlets->tensionReadout.data(),
                                  _outlets->continuityReadout.data(), _outlets->biasReadout.data()})
        if (readout) {
            readout->setEnabled(isEnabled);
            if (keys.empty())
                readout->clear();
        }
    if (keys.empty())
        return;
    const std::optional<HJHermiteParam> shape = shapeOfFirst(channel, keys);
    if (!shape)
        return;
    KWSetSliderValue(*_outlets->tensionSlider, shape->tension);
    KWSetSliderValue(*_outlets->continuitySlider, shape->continuity);
    KWSetSliderValue(*_outlets->biasSlider, shape->bias);
    setReadout(_outlets->tensionReadout, shape->tension);
    setReadout(_outlets->continuityReadout, shape->continuity);
    setReadout(_outlets->biasReadout, shape->bias);
}

void KWChannelEditorController::updateConstantView() {
    const auto channel = edited<KWConstantChannel>();
    if (!channel || !_outlets->constantValueTF)
        return;
    fillField(_outlets->constantValueTF,
              KWTextFromValue(channel->valueForTime(std::nullopt), channel->unitType()),
              _outlets->constantToolTip);
}

void KWChannelEditorController::updateAlgebricView() {
    const auto channel = edited<KWAlgebricChannel>();
    if (!channel || !_outlets->expressionTF)
        return;
    _filledExpression = channel->expression().value_or(std::string());
    fillField(_outlets->expressionTF, *_filledExpression, _outlets->expressionToolTip);
}

// --- Another channel.

void KWChannelEditorController::setChannelBeingEdited(std::shared_ptr<KWChannel> channel) {
    closeEdit();
    if (_channelBeingEdited && _channelBeingEdited != channel)
        _channelBeingEdited->removeObserverForKeyPath(*this, "valid");
    const bool isAnother = channel != _channelBeingEdited;
    _channelBeingEdited = std::move(channel);
    if (_channelBeingEdited && isAnother)
        _channelBeingEdited->addObserverForKeyPathOptionsContext(*this, "valid", 0, this);
    if (_outlets->channelView)
        channelChanged();
}

void KWChannelEditorController::channelChanged() {
    const std::shared_ptr<KWChannel> channel = _channelBeingEdited;
    _unitScale = channel ? channel->convertValueToUserUnit(1) : 1;
    updateView(_outlets->optionsBox);
    _outlets->channelView->setPrimaryChannel(channel);
    // Those who were told of it may have chosen another one, for which this has been done.
    if (channel != _channelBeingEdited)
        return;
    if (channel)
        _outlets->toolsMatrix->setEnabled(true);
    _outlets->copyButton->setEnabled(channel != nullptr);
    _outlets->pasteButton->setEnabled(channel && _copiedChannel);
    _outlets->channelTypePU->setEnabled(channel != nullptr);
    const bool isKeyFramed = edited<KWKeyFramedChannel>() != nullptr;
    enableTool(KWChannelViewModeSelect, isKeyFramed);
    enableTool(KWChannelViewModeAddKey, isKeyFramed);
    if (isKeyFramed)
        _shownType = 0;
    else if (edited<KWConstantChannel>())
        _shownType = 3;
    KWSetPopupIndex(*_outlets->channelTypePU, _shownType);
}

void KWChannelEditorController::enableTool(int tag, bool isEnabled) {
    for (QAbstractButton* const tool : _outlets->toolsMatrix->findChildren<QAbstractButton*>())
        if (KWTagOf(tool) == tag)
            tool->setEnabled(isEnabled);
}

// --- What others do.

std::optional<QColor>
KWChannelEditorController::colorForChannel(const std::shared_ptr<KWChannel>& channel) {
    const KWColor color = channel->channelColor();
    return QColor::fromRgbF(color.red, color.green, color.blue, color.alpha);
}

void KWChannelEditorController::selectionDidChange(const KWNotification& notification) {
    if (_outlets->channelView && notification.object() == _outlets->channelView.data())
        updateView(_outlets->keyframedView);
}

void KWChannelEditorController::setNeedsUpdate() {
    if (std::exchange(_needsUpdate, true))
        return;
    QTimer::singleShot(0, this, [this] { KWRunAction([this] { updateIfNeeded(); }); });
}

void KWChannelEditorController::updateIfNeeded() {
    if (!std::exchange(_needsUpdate, false) || !_outlets->channelView)
        return;
    redrawChannelView();
    updateKeyframedView();
    if (!isBeingEdited(_outlets->constantValueTF))
        updateConstantView();
    // A text that was refused stays for the user to mend, as long as the channel is as it was.
    const auto algebric = edited<KWAlgebricChannel>();
    if (algebric && algebric->expression().value_or(std::string()) != _filledExpression &&
        !isBeingEdited(_outlets->expressionTF))
        updateAlgebricView();
}

/// Keeps what is displayed where it is, though its numbers are others now.
void KWChannelEditorController::unitDidChange() {
    setNeedsUpdate();
    if (!_channelBeingEdited || !_outlets->channelView)
        return;
    const float scale = _channelBeingEdited->convertValueToUserUnit(1);
    const float factor = scale / std::exchange(_unitScale, scale);
    if (!std::isfinite(factor) || factor <= 0)
        return;
    HJRect bounds = _outlets->channelView->displayedBounds();
    bounds.y *= factor;
    bounds.height *= factor;
    _outlets->channelView->setDisplayedBounds(bounds);
}
