#include <KWBase/KWChannelView.h>

#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWEditOutlinePane.h>
#include <apps/kwedit/window/KWEditStageView.h>
#include <apps/kwedit/window/KWEditWindow.h>
#include <apps/kwedit/window/KWTour.h>
#include <apps/kwedit/window/KWTransportBar.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>

/// Frames the part of the window that a step is about. The mouse goes through it.
class KWTourFrame : public QWidget {
  public:
    explicit KWTourFrame(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        setFocusPolicy(Qt::NoFocus);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor color = palette().color(QPalette::Highlight);
        painter.setPen(QPen(color, 3));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 6, 6);
    }
};

KWTour::KWTour(KWEditWindow& window) : QFrame(&window), _window(window) {
    setObjectName(QStringLiteral("tour"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setFrameShape(QFrame::StyledPanel);
    setFocusPolicy(Qt::StrongFocus);
    _frame = new KWTourFrame(&window);
    _title = new QLabel;
    QFont bold = font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.15);
    _title->setFont(bold);
    _title->setForegroundRole(QPalette::ToolTipText);
    _text = new QLabel;
    _text->setWordWrap(true);
    _text->setForegroundRole(QPalette::ToolTipText);
    _count = new QLabel;
    _count->setForegroundRole(QPalette::ToolTipText);
    _count->setEnabled(false);
    auto* const end = new QPushButton(tr("&End Tour"));
    _back = new QPushButton(tr("&Back"));
    _next = new QPushButton;
    _next->setDefault(true);
    connect(end, &QPushButton::clicked, this, &QWidget::close);
    connect(_back, &QPushButton::clicked, this, &KWTour::back);
    connect(_next, &QPushButton::clicked, this, &KWTour::next);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(_count);
    buttons->addStretch();
    for (QPushButton* const button : {end, _back, _next})
        buttons->addWidget(button);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(14, 12, 14, 12);
    column->addWidget(_title);
    column->addWidget(_text);
    column->addLayout(buttons);
    setFixedWidth(340);
    makeSteps();
    qApp->installEventFilter(this);
    show(0);
}

KWTour::~KWTour() {
    disconnect(_done);
    delete _frame;
}

void KWTour::makeSteps() {
    KWEditWindow* const window = &_window;
    KWEditSession* const session = &window->session();
    const auto when = [this](auto* sender, auto signal) {
        return [this, sender, signal] { return connect(sender, signal, this, &KWTour::next); };
    };
    _steps.push_back({&window->stage(),
                      tr("The stage"),
                      tr("This is what the document shows at the current time. Click a sprite to "
                         "select it, drag it to move it, turn the wheel to zoom."),
                      {}});
    _steps.push_back({&window->transportBar(), tr("Let it run"),
                      tr("Press Space, or the play button. Drag in the ruler to go to any time."),
                      [this, session] {
                          return connect(&session->transport(), &KWEditTransport::playingChanged,
                                         this, [this](bool isPlaying) {
                                             if (isPlaying)
                                                 next();
                                         });
                      }});
    _steps.push_back(
        {&window->outline(), tr("Choose a channel"),
         tr("A channel is a number that changes with the time, such as the height of a "
            "ball. Select one here; its value can be typed anew beside it."),
         when(&window->curves(), &KWEditCurvesPane::channelChanged)});
    _steps.push_back(
        {&window->curves().view(), tr("Change the curve"),
         tr("Drag a key up or down. The stage follows. With Escape you take a drag "
            "back; the wheel zooms here too."),
         [this, session] {
             return connect(
                 &session->document(), &KWEditDocument::structureChanged, this, [this, session] {
                     if (session->document().canUndo() && !session->isGestureActive())
                         QMetaObject::invokeMethod(this, &KWTour::next, Qt::QueuedConnection);
                 });
         }});
    _steps.push_back({window->menuWidget(), tr("Take it back"),
                      tr("Press Ctrl+Z: each gesture is one step. View > History lists them all."),
                      [this, session] {
                          return connect(&session->document(), &KWEditDocument::structureChanged,
                                         this, [this, session] {
                                             if (session->document().canRedo())
                                                 QMetaObject::invokeMethod(this, &KWTour::next,
                                                                           Qt::QueuedConnection);
                                         });
                      }});
    _steps.push_back({window->menuWidget(),
                      tr("That is one edit"),
                      tr("Help > Commands and Shortcuts lists everything else. File > Export "
                         "writes frames, a movie or values."),
                      {}});
}

void KWTour::show(int step) {
    disconnect(_done);
    _step = step;
    const Step& shown = _steps[static_cast<std::size_t>(step)];
    _title->setText(shown.title);
    _text->setText(shown.text);
    setAccessibleName(shown.title);
    setAccessibleDescription(shown.text);
    _count->setText(tr("%1 of %2").arg(step + 1).arg(stepCount()));
    _back->setEnabled(step > 0);
    const bool isLast = step + 1 == stepCount();
    _next->setText(isLast ? tr("&Done") : shown.connectDone ? tr("&Skip") : tr("&Next"));
    if (shown.connectDone)
        _done = shown.connectDone();
    place();
    QWidget::show();
    raise();
    Q_EMIT stepChanged(step);
}

void KWTour::next() {
    if (_step + 1 < stepCount())
        show(_step + 1);
    else
        close();
}

void KWTour::back() {
    if (_step > 0)
        show(_step - 1);
}

/// Beside its target where there is room, within the window anyhow.
void KWTour::place() {
    adjustSize();
    const QWidget* const target = _steps[static_cast<std::size_t>(_step)].target;
    const QRect room = _window.rect().adjusted(8, 8, -8, -8);
    if (!target || !target->isVisible()) {
        _frame->hide();
        move(room.center() - rect().center());
        return;
    }
    const QRect about(target->mapTo(&_window, QPoint()), target->size());
    _frame->setGeometry(about.adjusted(-2, -2, 2, 2));
    _frame->show();
    _frame->raise();
    QPoint corner(about.center().x() - width() / 2, about.bottom() + 10);
    if (about.right() + 10 + width() < room.right())
        corner = QPoint(about.right() + 10, about.top() + 10);
    else if (corner.y() + height() > room.bottom())
        corner.setY(about.top() - 10 - height());
    if (corner.y() < room.top())
        corner = about.center() - rect().center();
    corner.setX(std::clamp(corner.x(), room.left(), std::max(room.left(), room.right() - width())));
    corner.setY(std::clamp(corner.y(), room.top(), std::max(room.top(), room.bottom() - height())));
    move(corner);
    raise();
}

bool KWTour::eventFilter(QObject* watched, QEvent* event) {
    const bool isMoved = event->type() == QEvent::Resize || event->type() == QEvent::Move;
    const QWidget* const target = _steps[static_cast<std::size_t>(_step)].target;
    if (isMoved && (watched == &_window || watched == target))
        QMetaObject::invokeMethod(this, &KWTour::place, Qt::QueuedConnection);
    if (event->type() == QEvent::KeyPress && !_window.session().isGestureActive()) {
        const auto* const widget = qobject_cast<QWidget*>(watched);
        if (widget && widget->window() == &_window &&
            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            close();
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}
