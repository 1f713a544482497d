#pragma once

#include <KWFoundation/KWExport.h>

#include <QString>
#include <QVariant>
#include <functional>
#include <span>
#include <string>

class QAbstractSlider;
class QComboBox;
class QWidget;

// What the controls of a panel are asked and told. Setting a control here sends no signal, so that
// its action does not run.

/// The position as a number: the positions run evenly over the slider's dynamic properties
/// "minimumValue" and "maximumValue". A slider without them stands for its position.
KW_EXPORT float KWSliderValue(const QAbstractSlider& slider);
/// Puts the slider at the position nearest to the value; at an end beyond it, and nowhere else than
/// it is for a value that is no number.
KW_EXPORT void KWSetSliderValue(QAbstractSlider& slider, float value);

/// -1 for none.
KW_EXPORT void KWSetPopupIndex(QComboBox& popup, int index);
/// The item becomes a line that cannot be chosen. Nothing happens when there is no such item.
KW_EXPORT void KWMakePopupSeparator(QComboBox& popup, int index);

/// The view that a box shows, of those that it may show. One that is a page of a QStackedWidget is
/// turned to; one that stands elsewhere is shown. With null all are out of sight: a stack then
/// turns to a page that is none of them, or is hidden where it has no such page.
KW_EXPORT void KWSetContentView(std::span<QWidget* const> views, QWidget* shown);

/// Runs what a user has asked for; what is thrown is logged, since Qt lets nothing through.
KW_EXPORT void KWRunAction(const std::function<void()>& action) noexcept;

inline QString KWQString(const std::string& text) {
    return QString::fromStdString(text);
}
