#include <apps/kwedit/window/KWHistoryPanel.h>

KWHistoryPanel::KWHistoryPanel(KWEditSession& session, QWidget* parent)
    : QListWidget(parent), _session(session) {
    setObjectName(QStringLiteral("history"));
    setAccessibleName(tr("History"));
    setUniformItemSizes(true);
    setAlternatingRowColors(false);
    setFrameShape(QFrame::NoFrame);
    connect(this, &QListWidget::itemClicked, this, [this] { goToRow(currentRow()); });
    connect(this, &QListWidget::itemActivated, this, [this] { goToRow(currentRow()); });
    connect(&session, &KWEditSession::elementsChanged, this, &KWHistoryPanel::reload);
    reload();
}

void KWHistoryPanel::reload() {
    const KWUndoManager& manager = *_session.document().undoManager();
    if (manager.groupingLevel() > 0 || manager.isUndoing() || manager.isRedoing() || _isFilling)
        return; // there will be a change when that ends
    const auto undone = manager.redoActionNames();
    const auto latestFirst = manager.undoActionNames();
    const std::vector<std::string> done(latestFirst.rbegin(), latestFirst.rend());
    clear();
    addItem(_session.document().filePath().isEmpty() ? tr("New document") : tr("As opened"));
    for (const auto* const names : {&done, &undone})
        for (const std::string& name : *names)
            addItem(name.empty() ? tr("Edit") : QString::fromStdString(name));
    const int now = static_cast<int>(done.size());
    for (int row = now + 1; row < count(); ++row)
        item(row)->setForeground(palette().brush(QPalette::Disabled, QPalette::Text));
    setCurrentRow(now);
    scrollToItem(item(now));
}

void KWHistoryPanel::goToRow(int row) {
    KWUndoManager& manager = *_session.document().undoManager();
    if (row < 0 || _session.isGestureActive())
        return reload();
    _isFilling = true;
    for (auto left = manager.undoActionNames().size(); int(left) > row && manager.canUndo(); --left)
        manager.undo();
    for (auto left = manager.undoActionNames().size(); int(left) < row && manager.canRedo(); ++left)
        manager.redo();
    _isFilling = false;
    reload();
}
