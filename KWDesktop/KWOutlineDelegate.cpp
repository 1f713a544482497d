#include <KWDesktop/KWOutlineDelegate.h>

#include <QAbstractItemView>
#include <QBrush>
#include <QHelpEvent>
#include <QPalette>
#include <QToolTip>
#include <algorithm>

namespace {

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightnessF() < 0.5f;
}

QColor withLightness(const QColor& color, float lightness) {
    const QColor hsl = color.toHsl();
    return QColor::fromHslF(std::max(hsl.hslHueF(), 0.0f), hsl.hslSaturationF(), lightness,
                            color.alphaF());
}

} // namespace

KWOutlineDelegate::KWOutlineDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QColor KWOutlineDelegate::textColorForPalette(const QColor& color, const QPalette& palette) {
    if (color.lightnessF() == 0.0f)
        return palette.color(QPalette::Text);
    // Dark enough text on a dark ground is as far from it as it was from a white one.
    return isDark(palette) ? withLightness(color, std::max(color.lightnessF(), 0.75f)) : color;
}

QColor KWOutlineDelegate::backgroundColorForPalette(const QColor& color, const QPalette& palette) {
    if (!isDark(palette))
        return color;
    const float base = palette.color(QPalette::Base).lightnessF();
    return withLightness(color, std::min(1.0f, base + 1.0f - color.lightnessF()));
}

void KWOutlineDelegate::initStyleOption(QStyleOptionViewItem* option,
                                        const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const QPalette palette = option->palette;
    if (const QVariant text = index.data(Qt::ForegroundRole); text.canConvert<QBrush>()) {
        // The model's own colour stands in the palette by now.
        QPalette own = option->widget ? option->widget->palette() : palette;
        own.setCurrentColorGroup(palette.currentColorGroup());
        option->palette.setColor(QPalette::Text,
                                 textColorForPalette(text.value<QBrush>().color(), own));
    }
    if (option->backgroundBrush.style() == Qt::SolidPattern)
        option->backgroundBrush.setColor(
            backgroundColorForPalette(option->backgroundBrush.color(), palette));
}

QSize KWOutlineDelegate::sizeHint(const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
    return QStyledItemDelegate::sizeHint(option, index) + _spacing;
}

bool KWOutlineDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                  const QStyleOptionViewItem& option, const QModelIndex& index) {
    const bool isCut = event && view && event->type() == QEvent::ToolTip && index.isValid() &&
                       !index.data(Qt::ToolTipRole).isValid() &&
                       sizeHint(option, index).width() > view->visualRect(index).width();
    if (!isCut)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::showText(event->globalPos(), displayText(index.data(), option.locale), view);
    return true;
}
