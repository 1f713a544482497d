#pragma once

#include <KWDesktop/KWOutlineDelegate.h>
#include <KWFoundation/KWNotificationCenter.h>

/// Shows and edits values of channels in a table or an outline: in the user's unit, following when
/// that becomes another one, and with a KWValueField as the editor. A typed text that is not taken
/// leaves the cell as it was and says why in a tool tip.
///
/// Any model will do whose cells hold numbers as EditRole. Their unit type is what the model
/// answers to KWOutlineModel::UnitTypeRole, an int, or where it answers nothing that of the
/// delegate. An open editor is never filled anew.
class KW_EXPORT KWValueDelegate : public KWOutlineDelegate {
    Q_OBJECT

  public:
    /// Where the parent is an item view, it is drawn anew when the user's unit changes.
    explicit KWValueDelegate(QObject* parent = nullptr);

    int unitType() const { return _unitType; }
    void setUnitType(int unitType) { _unitType = unitType; }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

  private:
    int unitTypeOf(const QModelIndex& index) const;

    int _unitType = 32;
    KWNotificationToken _units;
};
