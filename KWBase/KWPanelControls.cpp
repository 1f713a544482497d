#include <KWBase/KWPanelControls.h>
#include <KWFoundation/KWLog.h>

#include <QAbstractSlider>
#include <QComboBox>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>

namespace {

/// Values at the two ends.
struct Ends {
    double minimum;
    double maximum;
};

std::optional<double> numberIn(const QAbstractSlider& slider, const char* property) {
    bool isNumber = false;
    const double value = slider.property(property).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

Ends endsOf(const QAbstractSlider& slider) {
    const std::optional<double> minimum = numberIn(slider, "minimumValue");
    const std::optional<double> maximum = numberIn(slider, "maximumValue");
    if (minimum && maximum)
        return {*minimum, *maximum};
    return {static_cast<double>(slider.minimum()), static_cast<double>(slider.maximum())};
}

} // namespace

float KWSliderValue(const QAbstractSlider& slider) {
    const Ends ends = endsOf(slider);
    const double steps = static_cast<double>(slider.maximum()) - slider.minimum();
    if (steps <= 0)
        return static_cast<float>(ends.minimum);
    const double place = static_cast<double>(slider.value()) - slider.minimum();
    return static_cast<float>(ends.minimum + (ends.maximum - ends.minimum) * place / steps);
}

void KWSetSliderValue(QAbstractSlider& slider, float value) {
    const Ends ends = endsOf(slider);
    const double steps = static_cast<double>(slider.maximum()) - slider.minimum();
    if (std::isnan(value) || ends.maximum == ends.minimum)
        return;
    const double place =
        (static_cast<double>(value) - ends.minimum) / (ends.maximum - ends.minimum) * steps;
    const QSignalBlocker blocker(slider);
    slider.setValue(slider.minimum() +
                    static_cast<int>(std::lround(std::clamp(place, 0.0, steps))));
}

void KWSetPopupIndex(QComboBox& popup, int index) {
    const QSignalBlocker blocker(popup);
    popup.setCurrentIndex(index);
}

void KWMakePopupSeparator(QComboBox& popup, int index) {
    if (index < 0 || index >= popup.count())
        return;
    const QSignalBlocker blocker(popup);
    popup.removeItem(index);
    popup.insertSeparator(index);
}

void KWSetContentView(std::span<QWidget* const> views, QWidget* shown) {
    const auto isOneOf = [&](const QWidget* widget) {
        return std::find(views.begin(), views.end(), widget) != views.end();
    };
    for (QWidget* const view : views) {
        QStackedWidget* const stack =
            view ? qobject_cast<QStackedWidget*>(view->parentWidget()) : nullptr;
        if (!stack) {
            if (view)
                view->setVisible(view == shown);
            continue;
        }
        if (view == shown) {
            stack->setCurrentWidget(view);
            stack->show();
        } else if (stack->currentWidget() == view && (!shown || shown->parentWidget() != stack)) {
            int page = 0;
            while (page < stack->count() && isOneOf(stack->widget(page)))
                ++page;
            if (page < stack->count())
                stack->setCurrentIndex(page);
            else
                stack->hide();
        }
    }
}

void KWRunAction(const std::function<void()>& action) noexcept {
    try {
        action();
    } catch (const std::exception& error) {
        KWLog(std::string("An action of a panel has failed: ") + error.what());
    } catch (...) {
        KWLog("An action of a panel has failed");
    }
}
