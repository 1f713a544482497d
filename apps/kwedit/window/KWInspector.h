#pragma once

#include <QColor>
#include <QLabel>
#include <QPointer>
#include <QToolButton>
#include <QWidget>
#include <initializer_list>

class KWValueField;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QSpinBox;

/// A label that is as narrow as it has to be: its text is cut in the middle, and the tool tip has
/// all of it.
class KWElidedLabel : public QLabel {
    Q_OBJECT

  public:
    explicit KWElidedLabel(QWidget* parent = nullptr);

    /// What setText() is for other labels.
    void setFullText(const QString& text);
    const QString& fullText() const { return _fullText; }
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString _fullText;
};

/// A button that shows a color and lets it be chosen in a dialog.
class KWColorWell : public QToolButton {
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor USER true)

  public:
    explicit KWColorWell(QWidget* parent = nullptr);

    /// Invalid for none, or for several.
    const QColor& color() const { return _color; }
    void setColor(const QColor& color);
    QSize sizeHint() const override;

  Q_SIGNALS:
    /// Chosen by the user.
    void colorEdited(const QColor& color);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void choose();

    QColor _color;
};

/// A form in the column of inspectors: labels to the left of compact fields, as high as its rows
/// are, from about 240 points of width on.
class KWInspector : public QWidget {
    Q_OBJECT

  public:
    explicit KWInspector(QWidget* parent = nullptr);

  protected:
    QFormLayout& form() const { return *_form; }
    /// Puts the fields side by side. The name of the row becomes that of fields without one.
    QWidget* addRow(const QString& name, std::initializer_list<QWidget*> fields);
    /// Over the whole width.
    void addWide(QWidget* widget);
    void setRowVisible(QWidget* row, bool isVisible);

    static KWValueField* valueField(const QString& name, const QString& tip, int unitType);
    static QSpinBox* spinBox(const QString& name, const QString& tip, int least, int most);
    static QComboBox* comboBox(const QString& tip);
    static KWColorWell* colorWell(const QString& name, const QString& tip);

    bool event(QEvent* event) override;

  private:
    QFormLayout* _form;
};
