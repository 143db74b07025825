#pragma once

#include <QMargins>

class QWidget;

namespace corvane {

/// Adds a ring that shows while the widget has the focus, for a widget whose content reaches to its
/// edges: the ring lies in the widget's parent, which owns it, so a window gets none. `outset` goes
/// from the edges of the widget to the outer edge of the ring, in points. Main thread.
void addFocusRing(QWidget &widget, const QMargins &outset, double radius);

} // namespace corvane
