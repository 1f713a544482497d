#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelEditorOutlets.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWInterfaceFile.h>
#include <KWBase/KWPanelControls.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWDesktop/KWValueText.h>
#include <KWFoundation/KWFirstException.h>

#include <QMessageBox>
#include <QToolTip>
#include <algorithm>
#include <cstring>
#include <utility>

// What the controls do.

namespace {

/// The control that sent an action, or the panel's own when that is of another class.
template <class T>
const T* control(const QObject* sender, const QPointer<T>& own) {
    const auto* const sent = qobject_cast<const T*>(sender);
    return sent ? sent : own.data();
}

std::shared_ptr<KWChannel> newChannelOfType(int index) {
    switch (index) {
    case 0:
        return std::make_shared<KWKeyFramedChannel>();
    case 1:
        return std::make_shared<KWAlgebricChannel>();
    case 3:
        return std::make_shared<KWConstantChannel>();
    default:
        return nullptr;
    }
}

std::int32_t modeOfPopupIndex(int index) {
    switch (index) {
    case 1:
        return KWKeyFrameModeLinear;
    case 2:
        return KWKeyFrameModeStep;
    default:
        return KWKeyFrameModeHermite;
    }
}

std::int32_t repeatOfPopupIndex(int index) {
    switch (index) {
    case 0:
        return KWRepeatModeNone;
    case 2:
        return KWRepeatModePingPong;
    default:
        return KWRepeatModeCycle;
    }
}

/// False for a tag that is none of a shape's.
bool changeShape(HJHermiteParam& shape, int tag, float value) {
    switch (tag) {
    case KWShapeTagTension:
        shape.tension = value;
        return true;
    case KWShapeTagContinuity:
        shape.continuity = value;
        return true;
    case KWShapeTagBias:
        shape.bias = value;
        return true;
    case KWShapeTagReset:
        shape.tension = shape.bias = shape.continuity = 0;
        return true;
    default:
        return false;
    }
}

void changeShapeOfKey(KWKeyFramedChannel& channel, KWTime key, int tag, float value) {
    const std::optional<KWData> record = channel.hermiteValueForKeyframe(key);
    if (!record)
        return;
    HJHermiteParam shape;
    std::memcpy(&shape, record->data(), std::min(sizeof shape, record->size()));
    if (changeShape(shape, tag, value))
        channel.modifyHermiteParamForKeyframe(&shape, key);
}

/// In a field, for a byte of its text as UTF-8.
int placeOfByte(const std::string& text, std::size_t byte) {
    return static_cast<int>(QString::fromStdString(text.substr(0, byte)).size());
}

void showFault(QLineEdit& field, const QString& sentence) {
    field.setToolTip(sentence);
    if (field.isVisible())
        QToolTip::showText(field.mapToGlobal(field.rect().bottomLeft()), sentence, &field);
}

} // namespace

// --- The curve editor.

void KWChannelEditorController::changeEditingMode(const QObject*) {
    if (!_outlets->toolsMatrix || !_outlets->channelView)
        return;
    for (const QAbstractButton* const tool :
         _outlets->toolsMatrix->findChildren<QAbstractButton*>())
        if (const std::optional<int> tag = KWTagOf(tool); tag && tool->isChecked())
            _outlets->channelView->setEditingMode(*tag);
    _outlets->channelView->resetCursorRects();
}

void KWChannelEditorController::changeLiveUpdate(const QObject* sender) {
    const QAbstractButton* const box = control(sender, _outlets->liveCheckBox);
    if (box && _outlets->channelView)
        _outlets->channelView->setLiveUpdate(box->isChecked());
}

void KWChannelEditorController::changeGridResolution(const QObject* sender) {
    const QAbstractSlider* const slider = control(sender, _outlets->gridSlider);
    if (slider && _outlets->channelView)
        _outlets->channelView->setGridResolution(KWSliderValue(*slider));
}

void KWChannelEditorController::toggleShowSecondaryChannel(const QObject*) {
    KWChannelView* const view = _outlets->channelView;
    if (!_outline || !view)
        return;
    const auto channel = std::dynamic_pointer_cast<KWChannel>(_outline->selectedItem());
    if (!channel)
        return;
    if (view->isSecondaryChannel(channel))
        view->removeSecondaryChannel(channel);
    else
        view->addSecondaryChannel(channel);
    view->setNeedsDisplay(true);
    _outline->reloadItem(channel);
}

// --- The channel as a whole.

void KWChannelEditorController::changeChannelType(const QObject* sender) {
    const QComboBox* const popup = control(sender, _outlets->channelTypePU);
    if (!popup || !_channelBeingEdited)
        return;
    const int index = popup->currentIndex();
    const int shownBefore = std::exchange(_shownType, index);
    bool isReplaced = false;
    KWFirstException raised;
    raised.during([&] {
        isReplaced = replaceChannelBeingEdited(KWChannelEdit::type, newChannelOfType(index));
    });
    if (!isReplaced && _outlets->channelTypePU) {
        _shownType = shownBefore;
        KWSetPopupIndex(*_outlets->channelTypePU, _shownType);
    }
    raised.rethrow();
}

// --- Keyframed channels.

void KWChannelEditorController::changeInterpolation(const QObject* sender) {
    const auto channel = edited<KWKeyFramedChannel>();
    const QComboBox* const popup = control(sender, _outlets->interpModePU);
    if (!channel || !popup)
        return;
    closeEdit();
    {
        const Edit edit(*this, KWChannelEdit::interpolation, channel);
        channel->setKeyFrameChannelMode(modeOfPopupIndex(popup->currentIndex()));
    }
    updateView(_outlets->keyframedView);
    redrawChannelView();
    if (_outline)
        _outline->setValuesNeedRefresh();
}

void KWChannelEditorController::changeRepeat(const QObject* sender) {
    const auto channel = edited<KWKeyFramedChannel>();
    const QComboBox* const popup = control(sender, _outlets->repeatPU);
    if (!channel || !popup)
        return;
    closeEdit();
    {
        const Edit edit(*this, KWChannelEdit::repeat, channel);
        channel->setRepeatMode(repeatOfPopupIndex(popup->currentIndex()));
    }
    updateView(_outlets->keyframedView);
    redrawChannelView();
    if (_outline)
        _outline->setValuesNeedRefresh();
}

void KWChannelEditorController::changeHermiteParam(const QObject* sender) {
    const std::optional<int> tag = KWTagOf(sender);
    if (!tag || !edited<KWKeyFramedChannel>() || !_outlets->channelView)
        return;
    const auto* const slider = qobject_cast<const QAbstractSlider*>(sender);
    KWFirstException raised;
    raised.during([&] { changeShapesOfSelectedKeys(*tag, slider ? KWSliderValue(*slider) : 0); });
    updateView(_outlets->keyframedView);
    redrawChannelView();
    raised.rethrow();
}

void KWChannelEditorController::changeShapesOfSelectedKeys(int tag, float value) {
    const auto channel = edited<KWKeyFramedChannel>();
    const std::vector<KWTime> keys = _outlets->channelView->selectedKeys();
    if (HJHermiteParam none; keys.empty() || !changeShape(none, tag, value))
        return;
    std::optional<Edit> edit;
    if (!_openEdit || _openEdit->kind != KWChannelEdit::shape) {
        closeEdit();
        edit.emplace(*this, KWChannelEdit::shape, channel);
    }
    KWFirstException raised;
    for (const KWTime key : keys)
        raised.during([&] { changeShapeOfKey(*channel, key, tag, value); });
    raised.rethrow();
}

// --- Constant channels.

void KWChannelEditorController::commitConstantValue() {
    if (!_outlets->constantValueTF->isModified())
        return;
    _outlets->constantValueTF->setModified(false);
    KWRunAction([this] { changeConstantValue(_outlets->constantValueTF); });
}

void KWChannelEditorController::changeConstantValue(const QObject*) {
    const std::shared_ptr<KWChannel> channel = _channelBeingEdited;
    QLineEdit* const field = _outlets->constantValueTF;
    if (!channel || !field)
        return;
    const std::string text = field->text().toStdString();
    const std::optional<float> value = KWValueFromText(text, channel->unitType());
    if (!value) {
        updateConstantView();
        return showFault(*field, KWQString(KWValueTextFault(text, channel->unitType())));
    }
    closeEdit();
    KWFirstException raised;
    raised.during([&] {
        const Edit edit(*this, KWChannelEdit::value, channel);
        channel->setValueForTime(*value, std::nullopt);
    });
    updateConstantView();
    redrawChannelView();
    raised.rethrow();
}

// --- Algebraic channels.

void KWChannelEditorController::commitExpression() {
    _outlets->expressionTF->setModified(false);
    KWRunAction([this] { changeAlgebricExpression(_outlets->expressionTF); });
}

void KWChannelEditorController::changeAlgebricExpression(const QObject*) {
    const auto channel = edited<KWAlgebricChannel>();
    QLineEdit* const field = _outlets->expressionTF;
    if (!channel || !field)
        return;
    const std::string text = field->text().toStdString();
    // Asked first: a channel that refuses a text keeps none at all.
    const KWExpressionFault fault =
        KWAlgebricInterpreter::faultInExpression(text, KWExpressionModeT);
    bool isTaken = false;
    KWFirstException raised;
    if (fault.kind == KWExpressionFault::Kind::none && channel->interpreter()) {
        closeEdit();
        raised.during([&] {
            const Edit edit(*this, KWChannelEdit::expression, channel);
            isTaken = true; // also when one of those who are told of it throws
            isTaken = channel->setExpression(text);
        });
    }
    if (isTaken) {
        updateAlgebricView();
    } else {
        field->setToolTip(KWQString(fault.sentence()));
        if (fault.kind != KWExpressionFault::Kind::none)
            field->setCursorPosition(placeOfByte(text, fault.position));
        runBadExpressionAlert();
    }
    redrawChannelView();
    raised.rethrow();
}

void KWChannelEditorController::runBadExpressionAlert() {
    delete _alert;
    QWidget* const window =
        _outlets->channelEditorContainer ? _outlets->channelEditorContainer->window() : nullptr;
    _alert = new QMessageBox(QMessageBox::Warning, QStringLiteral("Bad Expression"),
                             QStringLiteral("Algebric expression is not correctly formatted."),
                             QMessageBox::Ok, window);
    _alert->setAttribute(Qt::WA_DeleteOnClose);
    _alert->open();
}

// --- Edits that go on for a while.

void KWChannelEditorController::openEdit(KWChannelEdit kind) {
    closeEdit();
    if (!_channelBeingEdited)
        return;
    _openEdit = {kind, _channelBeingEdited};
    Q_EMIT willEdit(kind, _channelBeingEdited);
}

void KWChannelEditorController::closeEdit() {
    if (!_openEdit)
        return;
    const OpenEdit edit = *_openEdit;
    _openEdit.reset();
    Q_EMIT didEdit(edit.kind, edit.channel);
}
