#include "Expect.h"

#include <KWBase/KWImageBackground.h>
#include <KWBase/KWLayoutView.h>
#include <KWBase/KWStackedView.h>

#include <QApplication>
#include <QLabel>
#include <QScrollArea>
#include <QTextEdit>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    auto* const scrollArea = new QScrollArea;
    auto* const curves = new QTextEdit;
    auto* const notes = new QTextEdit;
    auto* const position = new QLabel(QStringLiteral("0, 0"));
    auto* const colour = new QLabel(QStringLiteral("red"));

    //! [layout]
    KWLayoutView layout;
    layout.setInterpaneSpace(10);
    layout.addColumnWithWidthPercent(220, false); // 220 points
    layout.addColumnWithWidthPercent(1, true);    // what is left
    layout.addPaneHeightPercentColumn(scrollArea, 1, true, 0);
    layout.addPaneHeightPercentColumn(curves, 3, true, 1);
    layout.addPaneHeightPercentColumn(notes, 1, true, 1); // a quarter of its column
    layout.finishedAddingPanes();
    //! [layout]

    //! [stack]
    auto* const stack = new KWStackedView;
    stack->addViewLabel(position, QStringLiteral("Position"));
    stack->addViewLabel(colour, QStringLiteral("Colour"));
    stack->toggleViewAtIndex(1);
    scrollArea->setWidgetResizable(true);
    scrollArea->setWidget(stack);
    //! [stack]
    expect(stack->isCollapsedAtIndex(1), "the second view is collapsed");

    layout.resize(800, 400);
    expect(scrollArea->parent() == &layout, "the layout owns its panes");
    expect(curves->height() > 2 * notes->height(), "heights are as was asked");

    //! [background]
    QImage frame(32, 32, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::lightGray);
    const auto background =
        std::make_shared<KWImageBackground>(frame, std::array<std::int32_t, 4>{8, 24, 8, 24});
    layout.setImageBackground(background);
    //! [background]

    //! [visible]
    layout.setVisibleColumnPane(false, 1, 1); // the notes
    layout.toggleVisibleColumn(0);
    //! [visible]
    expect(!layout.isVisibleColumn(0), "a column is hidden");
}
