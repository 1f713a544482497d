#pragma once

#include <QWidgetList>
#include <vector>

class QLayout;

/// Widgets of a row that may be left out where it is narrow, those that are missed least first.
/// What is in one list comes and goes together.
using KWDispensable = std::vector<QWidgetList>;

/// Hides as many of these as the others need to have their least width within `width`, and shows
/// those that there is room for again.
void kwFitRow(QLayout& row, const KWDispensable& dispensable, int width);
