#pragma once

#include <KWBase/KWLayoutArithmetic.h>
#include <KWFoundation/KWExport.h>

#include <QPointer>
#include <QVariant>
#include <QWidget>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The keys of a column.

/// A float: the width in points, or the weight when the width is relative.
inline constexpr std::string_view KWColumnWidthKey = "KWColumnWidthKey";
/// A bool: the width is a weight.
inline constexpr std::string_view KWColumnWidthIsPercentKey = "KWColumnWidthIsPercentKey";
/// A bool.
inline constexpr std::string_view KWColumnVisibleKey = "KWColumnVisibleKey";
/// A std::shared_ptr<KWLayoutPaneList>: the panes from top to bottom. The list is live.
inline constexpr std::string_view KWColumnPanesKey = "KWColumnPanesKey";
/// A float: the left edge, as computed.
inline constexpr std::string_view KWColumnActualOffsetKey = "KWColumnActualOffsetKey";
/// A float: the width, as computed.
inline constexpr std::string_view KWColumnActualWidthKey = "KWColumnActualWidthKey";

// The keys of a pane.

/// A QWidget*; absent in a pane without a view.
inline constexpr std::string_view KWPaneViewKey = "KWPaneViewKey";
/// A float: the height in points, or the weight when the height is relative.
inline constexpr std::string_view KWPaneHeightKey = "KWPaneHeightKey";
/// A bool: the height is a weight.
inline constexpr std::string_view KWPaneHeightIsPercentKey = "KWPaneHeightIsPercentKey";
/// A bool.
inline constexpr std::string_view KWPaneVisibleKey = "KWPaneVisibleKey";
/// A float: from the view's upper edge down to the pane's, as computed.
inline constexpr std::string_view KWPaneActualOffsetKey = "KWPaneActualOffsetKey";
/// A float: the height, as computed.
inline constexpr std::string_view KWPaneActualHeightKey = "KWPaneActualHeightKey";

/// What a layout view keeps for each of its columns and panes: values by key, which a host may read
/// and write. What it writes takes effect when the layout view next lays itself out. A number or
/// flag that is absent counts as 0 or false, so without its flag a column or pane is hidden. Keys
/// of the host's own are kept and not looked at.
class KW_EXPORT KWLayoutRecord {
  public:
    virtual ~KWLayoutRecord();
    KWLayoutRecord(const KWLayoutRecord&) = delete;
    KWLayoutRecord& operator=(const KWLayoutRecord&) = delete;

    /// Not valid when the key is absent.
    QVariant objectForKey(std::string_view key) const;
    /// Under the keys above numbers and flags are kept as float and bool. Throws
    /// std::invalid_argument, and changes nothing, when the object cannot become what belongs
    /// there or is not valid.
    void setObjectForKey(const QVariant& object, std::string_view key);
    /// Nothing happens when the key is absent.
    void removeObjectForKey(std::string_view key);
    /// Those that are there, in ascending order.
    std::vector<std::string> allKeys() const;

    /// The numbers and flags together.
    KWLayoutShare share() const;
    /// Stores what was computed.
    void setActual(float offset, float size);
    bool isVisible() const { return _isVisible.value_or(false); }
    void setVisible(bool isVisible) { _isVisible = isVisible; }

  protected:
    struct Keys {
        std::string_view size, isPercent, isVisible, actualOffset, actualSize, contents;
    };
    /// The keys have to outlive the record.
    KWLayoutRecord(const Keys& keys, float size, bool isPercent);

    /// What a column or pane holds; not valid for nothing.
    virtual QVariant contents() const = 0;
    /// False when the object is of another kind. One that is not valid is nothing.
    virtual bool takeContents(const QVariant& object) = 0;

  private:
    std::optional<float>* numberForKey(std::string_view key);
    std::optional<bool>* flagForKey(std::string_view key);

    const Keys& _keys;
    std::optional<float> _size;
    std::optional<bool> _isPercent;
    std::optional<bool> _isVisible = true;
    std::optional<float> _actualOffset;
    std::optional<float> _actualSize;
    std::map<std::string, QVariant, std::less<>> _others;
};

/// A pane: a view, or empty space, and its height.
class KW_EXPORT KWLayoutPane : public KWLayoutRecord {
  public:
    KWLayoutPane(QWidget* view, float height, bool heightIsPercent);

    /// Null for none, and once it has been deleted.
    QWidget* view() const { return _view; }
    void setView(QWidget* view) { _view = view; }

  protected:
    QVariant contents() const override;
    bool takeContents(const QVariant& object) override;

  private:
    static const Keys& keys();

    QPointer<QWidget> _view;
};

using KWLayoutPaneList = std::vector<std::shared_ptr<KWLayoutPane>>;

/// A column: its panes and its width.
class KW_EXPORT KWLayoutColumn : public KWLayoutRecord {
  public:
    KWLayoutColumn(float width, bool widthIsPercent);

    /// The live list, top to bottom; null when the key has been removed. A null pane is not there.
    const std::shared_ptr<KWLayoutPaneList>& panes() const { return _panes; }
    void setPanes(std::shared_ptr<KWLayoutPaneList> panes) { _panes = std::move(panes); }

  protected:
    QVariant contents() const override;
    bool takeContents(const QVariant& object) override;

  private:
    static const Keys& keys();

    std::shared_ptr<KWLayoutPaneList> _panes = std::make_shared<KWLayoutPaneList>();
};

using KWLayoutColumnList = std::vector<std::shared_ptr<KWLayoutColumn>>;
