#pragma once

class QMenu;
class QPoint;
class QString;
class QWidget;

namespace corvane {

/// Opens a menu of the widget's actions and returns at once; null if the widget has no actions. The
/// menu deletes itself when it closes. Main thread.
QMenu *popUpActions(QWidget &widget, const QPoint &globalPosition);

/// Opens a menu whose "Copy" puts the text on the clipboard, above the actions of the widget's
/// window. It deletes itself too.
QMenu *popUpCopy(QWidget &widget, const QString &text, const QPoint &globalPosition);

} // namespace corvane
