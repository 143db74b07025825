#pragma once

class QMenu;
class QPoint;
class QWidget;

namespace corvane {

/// Opens the menu of a widget's actions there, without waiting for it; null where there are none.
/// It deletes itself when it closes.
QMenu *popUpActions(QWidget &widget, const QPoint &globalPosition);

} // namespace corvane
