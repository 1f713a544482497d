#pragma once

#include <QDialog>

/// Every command of the window with its shortcut and what it does, to be searched by typing.
class KWShortcutsDialog : public QDialog {
    Q_OBJECT

  public:
    explicit KWShortcutsDialog(QWidget* parent = nullptr);
};
