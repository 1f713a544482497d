#include <apps/kwedit/window/KWFitRow.h>

#include <QLayout>
#include <QWidget>

void kwFitRow(QLayout& row, const KWDispensable& dispensable, int width) {
    const auto setVisible = [&row](const QWidgetList& widgets, bool isVisible) {
        for (QWidget* const widget : widgets)
            widget->setVisible(isVisible);
        row.invalidate();
    };
    for (const QWidgetList& widgets : dispensable)
        setVisible(widgets, true);
    for (const QWidgetList& widgets : dispensable) {
        if (row.totalMinimumSize().width() <= width)
            return;
        setVisible(widgets, false);
    }
}
