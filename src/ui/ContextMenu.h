#pragma once

class QMenu;
class QPoint;
class QWidget;

namespace corvane {

/// Opens a menu of the widget's actions and returns at once; null if the widget has no actions. The
/// menu deletes itself when it closes. Main thread.
QMenu *popUpActions(QWidget &widget, const QPoint &globalPosition);

} // namespace corvane
