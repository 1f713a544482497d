#pragma once

#include <apps/kwedit/window/KWEditSession.h>

#include <QListWidget>

/// The steps of a document from the first to the last, those that are undone in grey below the line
/// where it stands now. Choosing one undoes or redoes until it is the latest that is done; nothing
/// happens while something is being dragged.
class KWHistoryPanel : public QListWidget {
    Q_OBJECT

  public:
    /// The session must outlive this.
    explicit KWHistoryPanel(KWEditSession& session, QWidget* parent = nullptr);

    /// Row 0 is the document without any step.
    void goToRow(int row);

  private:
    void reload();

    KWEditSession& _session;
    bool _isFilling = false;
};
