#pragma once

#include <apps/kwedit/KWEditTransport.h>

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <vector>

class KWTimeField;
class KWTransportRuler;
class KWValueField;
class QLabel;
class QToolButton;

/// The controls of a transport in one row: buttons to play and step, the exact time, a ruler to
/// scrub on, the rate, and while it plays the rate that is reached and how many frames were left
/// out. Where it is narrow, the last ones go first.
class KWTransportBar : public QWidget {
    Q_OBJECT
    Q_PROPERTY(bool showsFrames READ showsFrames WRITE setShowsFrames NOTIFY showsFramesChanged)

  public:
    /// The transport must outlive it.
    explicit KWTransportBar(KWEditTransport& transport, QWidget* parent = nullptr);

    /// Whether times are frames; seconds at first.
    bool showsFrames() const;
    /// Where the keys of the channel that is being edited are, in seconds.
    void setKeyTimes(std::vector<float> times);
    KWTransportRuler& ruler() const { return *_ruler; }

    QSize minimumSizeHint() const override;

  public Q_SLOTS:
    void setShowsFrames(bool showsFrames);

  Q_SIGNALS:
    void showsFramesChanged(bool showsFrames);
    /// Typed by the user; the transport has it already.
    void framesPerSecondEdited(double rate);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    QToolButton* addButton(const QString& name);
    void makeButtons();
    void follow();
    void showMeasured();

    QPointer<KWEditTransport> _transport;
    QToolButton* _play = nullptr;
    QToolButton* _loop = nullptr;
    QToolButton* _unit = nullptr;
    KWTimeField* _time = nullptr;
    KWTransportRuler* _ruler = nullptr;
    QWidget* _rateBox = nullptr;
    KWValueField* _rate = nullptr;
    QLabel* _measured = nullptr;
    QTimer _timer; ///< while it plays
};
