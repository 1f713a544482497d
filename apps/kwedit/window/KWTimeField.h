#pragma once

#include <QLineEdit>

/// A line edit for a time, in seconds or in frames of a rate. What is typed is taken with Return,
/// or when the field is left, if it means a time; otherwise, and with Escape, the field shows its
/// time again. "s" or "f" behind a number makes it seconds or frames.
class KWTimeField : public QLineEdit {
    Q_OBJECT
    Q_PROPERTY(double seconds READ seconds WRITE setSeconds USER true)

  public:
    /// 0 seconds, 25 frames a second.
    explicit KWTimeField(QWidget* parent = nullptr);

    double seconds() const { return _seconds; }
    /// Shown at once, unless something is being typed.
    void setSeconds(double seconds);
    double framesPerSecond() const { return _rate; }
    void setFramesPerSecond(double rate);
    bool showsFrames() const { return _showsFrames; }
    void setShowsFrames(bool showsFrames);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  Q_SIGNALS:
    /// Typed by the user.
    void secondsEdited(double seconds);
    /// The arrow up or down: by as many frames.
    void stepped(int frames);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QSize sizeFor(const QString& text) const;
    void showTime();
    void commit();

    double _seconds = 0;
    double _rate = 25;
    bool _showsFrames = false;
};
