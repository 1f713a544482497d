#include <KWDesktop/KWOutlineDataSource.h>

#include <QApplication>
#include <QFontDatabase>

KWOutlineDataSource::KWOutlineDataSource() : _link(std::make_shared<const Link>(Link{this})) {}

KWOutlineDataSource::KWOutlineDataSource(const KWOutlineDataSource&) : KWOutlineDataSource() {}

KWOutlineDataSource::~KWOutlineDataSource() = default;

bool KWOutlineDataSource::outlineViewShouldEditTableColumnItem(const QTreeView*, std::string_view,
                                                               const std::shared_ptr<KWObject>&) {
    return false;
}

void KWOutlineDataSource::outlineViewSetObjectValueForTableColumnByItem(
    const QTreeView*, const QVariant&, std::string_view, const std::shared_ptr<KWObject>&) {}

void KWOutlineDataSource::outlineViewWillDisplayCellForTableColumnItem(
    const QTreeView*, KWOutlineCell&, std::string_view, const std::shared_ptr<KWObject>&) {}

void KWOutlineDataSource::outlineViewSelectionDidChange(QTreeView*) {}

KWTextAttributes KWOutlineTextAttributesForIndex(std::uint32_t index) {
    const QString family = QStringLiteral("Lucida Grande");
    const bool isBold = index == KWOutlineTextGroup || index == KWOutlineTextElement;
    KWTextAttributes attributes;
    if (QFontDatabase::hasFamily(family)) {
        attributes.font = QFont(family);
        attributes.font.setBold(isBold);
    } else {
        attributes.font = QApplication::font();
    }
    attributes.font.setPixelSize(index == KWOutlineTextValue ? 11 : 12);
    if (index == KWOutlineTextValue)
        attributes.alignment = Qt::AlignRight | Qt::AlignVCenter;
    if (index == KWOutlineTextElement)
        attributes.foreground = QColor::fromRgbF(0.5f, 0, 0.5f);
    return attributes;
}
