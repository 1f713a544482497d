#pragma once

#include <apps/kwedit/KWEditTransport.h>

#include <QAbstractSlider>
#include <QList>
#include <QPointer>
#include <QRectF>
#include <vector>

/// The range of a transport as a ruler, to scrub on: ticks of frames or seconds in several lengths,
/// as many as there is room for, labels that stand apart, a playhead, and marks where keys are. To
/// assistive technology it is a slider of frames.
///
/// A press and a drag go to the nearest frame, with Alt to any time between; Escape goes back to
/// where the drag began. The wheel and the arrow keys step by a frame, by ten with Shift, Page Up
/// and Page Down by a second, Home and End go to the ends of the range.
class KWTransportRuler : public QAbstractSlider {
    Q_OBJECT
    Q_PROPERTY(bool showsFrames READ showsFrames WRITE setShowsFrames)

  public:
    /// The transport must outlive it.
    explicit KWTransportRuler(KWEditTransport& transport, QWidget* parent = nullptr);

    /// Whether labels count frames; seconds at first.
    bool showsFrames() const { return _showsFrames; }
    void setShowsFrames(bool showsFrames);

    const std::vector<float>& keyTimes() const { return _keyTimes; }
    /// In seconds, in any order.
    void setKeyTimes(std::vector<float> times);

    struct Label {
        QString text;
        QRectF rect;
    };
    /// As they are drawn, from the left.
    QList<Label> labels() const;
    /// Where a time is in the ruler, also one outside of the range.
    double positionOfTime(double seconds) const;
    double timeAtPosition(double x) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

  private:
    /// How far ticks stand apart, in seconds; 0 for none.
    struct Scale {
        double major = 1;
        double middle = 0;
        double minor = 0;
    };
    Scale scale() const;
    QFont labelFont() const;
    QString labelText(double seconds, const Scale& scale) const;
    double first() const;
    double last() const;
    void transportChanged();
    void scrubTo(double x, bool isFree);
    void endScrub();
    void drawTicks(QPainter& painter, double distance, double length, double bottom) const;
    double playheadPosition() const;
    QColor playheadColor() const;
    void drawPlayhead(QPainter& painter) const;

    QPointer<KWEditTransport> _transport;
    std::vector<float> _keyTimes;
    bool _showsFrames = false;
    bool _isFollowing = false; ///< while the value follows the transport
    bool _isDragging = false;
    float _timeBefore = 0;
    int _wheel = 0;
};
