#pragma once

#include <QLineEdit>

/// A line edit for what several things may have in common: it shows a text, or stays empty with a
/// word in its place where they differ.
///
/// What is typed counts with Return, or when the field is left; an empty text and one that is shown
/// already do not. Escape shows again what was there.
class KWKeyEntryField : public QLineEdit {
    Q_OBJECT

  public:
    /// Wide enough for a text like that, and not too wide to be narrowed by a third.
    KWKeyEntryField(const QString& widest, QWidget* parent = nullptr);

    /// In place of what is being typed, too.
    void showText(const QString& text);
    void showMixed();
    /// Whether the user is in the middle of typing.
    bool isBeingEdited() const { return hasFocus() && isModified(); }

    /// Shows again what was there, and the sentence in a tool tip.
    void refuse(const QString& sentence);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  Q_SIGNALS:
    void entered(const QString& text);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void showAgain();
    void commit();

    QString _widest;
    QString _shown;
};
