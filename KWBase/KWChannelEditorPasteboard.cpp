#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelEditorOutlets.h>
#include <KWBase/KWChannelOwner.h>
#include <KWBase/KWPanelControls.h>
#include <KWDesktop/KWOutlineModel.h>

// Copying and pasting of channels, and what stands behind every replacement of one.

void KWChannelEditorController::copyChannel(const QObject*) {
    _copiedChannel = nullptr;
    if (_channelBeingEdited)
        _copiedChannel = _channelBeingEdited->copy();
    if (_outlets->pasteButton)
        _outlets->pasteButton->setEnabled(true);
}

void KWChannelEditorController::pasteChannel(const QObject*) {
    if (_channelBeingEdited && _copiedChannel)
        replaceChannelBeingEdited(KWChannelEdit::paste, _copiedChannel->copy());
}

bool KWChannelEditorController::replaceChannelBeingEdited(
    KWChannelEdit kind, const std::shared_ptr<KWChannel>& channel) {
    const std::shared_ptr<KWChannel> old = _channelBeingEdited;
    if (!old || !channel || !old->owner())
        return false;
    closeEdit();
    {
        Edit edit(*this, kind, old);
        KWChannelOwner* const owner = old->owner();
        if (!owner || !owner->replaceChannelWith(old, channel))
            return false;
        edit.setChannel(channel);
    }
    if (KWChannelView* const view = _outlets->channelView; view && view->isSecondaryChannel(old)) {
        view->removeSecondaryChannel(old);
        view->addSecondaryChannel(channel);
    }
    setChannelBeingEdited(channel);
    if (_outline)
        _outline->setNeedsReload();
    return true;
}
