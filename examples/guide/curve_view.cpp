#include "Expect.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWUndoStackAdapter.h>
#include <KWFoundation/KWUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QPainter>
#include <QPixmap>

//! [host]
class Player : public QObject {
    Q_OBJECT
    Q_PROPERTY(float time READ time NOTIFY timeChanged)

  public:
    float time() const { return _time; }
    void setTime(float time) {
        _time = time;
        Q_EMIT timeChanged();
    }

  Q_SIGNALS:
    void timeChanged();

  private:
    float _time = 0;
};
//! [host]

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const auto height = std::make_shared<KWKeyFramedChannel>("height");
    height->setValueForKeyframe(0, KWTime(0));
    height->setValueForKeyframe(1, KWTime(2));
    const auto other = std::make_shared<KWKeyFramedChannel>("sway");
    other->setValueForKeyframe(0.5f, KWTime(1));
    Player player;
    QWidget window;

    //! [curves]
    auto* view = new KWChannelView(&window);
    view->setPrimaryChannel(height); // the one that is edited
    view->addSecondaryChannel(other);
    view->setShowsGrid(true);
    view->setShowsLegend(true);
    view->fitChannel();
    //! [curves]

    //! [binding]
    view->bindToObjectWithKeyPathOptions("currentTime", &player, "time");
    player.setTime(1.25f); // the view's line follows
    //! [binding]
    expect(view->currentTime() == 1.25f, "the view follows the property");

    //! [gestures]
    QObject::connect(view, &KWChannelView::gestureWillBegin, view,
                     [view] { view->primaryChannel()->startManipulation(); });
    QObject::connect(view, &KWChannelView::gestureDidEnd, view,
                     [view] { view->primaryChannel()->stopManipulation(); });
    //! [gestures]

    //! [menu]
    const auto manager = std::make_shared<KWUndoManager>();
    KWUndoStackAdapter stack(manager);
    QAction* const undo = stack.createUndoAction(&window); // "Undo Move Keys"
    //! [menu]
    expect(!undo->isEnabled(), "there is nothing to undo");

    //! [picture]
    QImage picture(640, 360, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    view->drawInto(painter, QRectF(picture.rect())); // needs no window
    painter.end();
    //! [picture]
    expect(picture.pixelColor(3, 3).alpha() == 255, "the picture is drawn");
}

#include "curve_view.moc"
