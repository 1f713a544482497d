#pragma once

#include <QFrame>
#include <QPointer>
#include <functional>
#include <vector>

class KWEditWindow;
class KWTourFrame;
class QLabel;
class QPushButton;

/// Walks a newcomer through one edit, in the window itself: a bubble beside the part that a step is
/// about, with a frame around that part. A step that asks for something goes on by itself when it
/// has been done; each can be skipped, and Escape ends the tour. Deletes itself at its end.
class KWTour : public QFrame {
    Q_OBJECT

  public:
    /// Begins at once; a child of the window.
    explicit KWTour(KWEditWindow& window);
    ~KWTour() override;

    int step() const { return _step; }
    int stepCount() const { return static_cast<int>(_steps.size()); }

  public Q_SLOTS:
    void next();
    void back();

  Q_SIGNALS:
    void stepChanged(int step);

  protected:
    /// Escape ends it wherever the focus is, unless something is being dragged.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Step {
        QPointer<QWidget> target;
        QString title;
        QString text;
        /// Connects what shows that the step is done; empty for one that is only read.
        std::function<QMetaObject::Connection()> connectDone;
    };

    void makeSteps();
    void show(int step);
    void place();

    KWEditWindow& _window;
    std::vector<Step> _steps;
    int _step = -1;
    QMetaObject::Connection _done;
    QPointer<KWTourFrame> _frame;
    QLabel* _title;
    QLabel* _text;
    QLabel* _count;
    QPushButton* _back;
    QPushButton* _next;
};
