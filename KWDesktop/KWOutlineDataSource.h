#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <QColor>
#include <QFont>
#include <QMetaType>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <memory>
#include <string_view>

class QTreeView;

/// How a text of an outline looks.
struct KWTextAttributes {
    QFont font;
    QColor foreground = Qt::black;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;

    friend bool operator==(const KWTextAttributes&, const KWTextAttributes&) = default;
};

/// A text with its looks, as an outline's data source answers it in a QVariant.
struct KWAttributedString {
    QString string;
    KWTextAttributes attributes;

    friend bool operator==(const KWAttributedString&, const KWAttributedString&) = default;
};
Q_DECLARE_METATYPE(KWAttributedString)

/// What KWOutlineTextAttributesForIndex takes; any other index is that of a channel.
enum : std::uint32_t {
    KWOutlineTextGroup = 0,
    KWOutlineTextChannel = 1,
    KWOutlineTextValue = 2,
    KWOutlineTextElement = 0xffffffff,
};

/// The looks of the labels in outlines of channels: black Lucida Grande of 12 pixels; of 11 and to
/// the right for values; bold for groups; bold and purple for elements. Without that font, the
/// application's font in the same size takes its place.
KW_EXPORT KWTextAttributes KWOutlineTextAttributesForIndex(std::uint32_t index);

/// A cell about to be displayed, which a data source may dress.
struct KWOutlineCell {
    bool drawsBackground = false;
    QColor backgroundColor; ///< used only when the cell draws its background
    /// KWUnitType of a number shown in the cell: its text is in the user's unit, with its name.
    std::int32_t unitType = 32;
};

/// What an outline asks of the object that knows what is in it. An item is any object of the model;
/// a null item stands for the root. An outline does not keep its data source alive: once the source
/// is gone, nothing is asked any more.
///
/// Every question names the view that asks; a source answers nothing for a view that is not its
/// own. Columns are known by their identifiers.
class KW_EXPORT KWOutlineDataSource {
  public:
    /// How many children to ask for; less than 0 counts as 0.
    virtual int outlineViewNumberOfChildrenOfItem(const QTreeView* view,
                                                  const std::shared_ptr<KWObject>& item) = 0;
    /// Null, and std::out_of_range, leave the row out.
    virtual std::shared_ptr<KWObject>
    outlineViewChildOfItem(const QTreeView* view, int index,
                           const std::shared_ptr<KWObject>& item) = 0;
    virtual bool outlineViewIsItemExpandable(const QTreeView* view,
                                             const std::shared_ptr<KWObject>& item) = 0;

    /// A KWAttributedString, a number (float: shown with seven digits, in the cell's unit), a text,
    /// or anything else that a delegate of the host's draws (a QColor for a swatch); an invalid
    /// QVariant for nothing.
    virtual QVariant
    outlineViewObjectValueForTableColumnByItem(const QTreeView* view, std::string_view column,
                                               const std::shared_ptr<KWObject>& item) = 0;

    // Each of the following has a default that does nothing, or answers no.

    virtual bool outlineViewShouldEditTableColumnItem(const QTreeView* view,
                                                      std::string_view column,
                                                      const std::shared_ptr<KWObject>& item);
    /// The user has typed `value`.
    virtual void
    outlineViewSetObjectValueForTableColumnByItem(const QTreeView* view, const QVariant& value,
                                                  std::string_view column,
                                                  const std::shared_ptr<KWObject>& item);
    virtual void
    outlineViewWillDisplayCellForTableColumnItem(const QTreeView* view, KWOutlineCell& cell,
                                                 std::string_view column,
                                                 const std::shared_ptr<KWObject>& item);
    /// Another item is selected than before, or none any more; KWOutlineModel::selectedItem() tells
    /// which.
    virtual void outlineViewSelectionDidChange(QTreeView* view);

    /// Holds the source's address as long as there is a source.
    struct Link {
        KWOutlineDataSource* source;
    };
    std::weak_ptr<const Link> outlineLink() const { return _link; }

  protected:
    KWOutlineDataSource();
    /// Being a source is not copied: outlines of the other stay the other's.
    KWOutlineDataSource(const KWOutlineDataSource&);
    KWOutlineDataSource& operator=(const KWOutlineDataSource&) { return *this; }
    virtual ~KWOutlineDataSource();

    /// Leaves every outline at once. A class whose members hold outlines calls this first in its
    /// destructor.
    void resignAsDataSource() { _link.reset(); }

  private:
    std::shared_ptr<const Link> _link;
};
