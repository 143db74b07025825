#pragma once

#include <QList>

class QAction;
class QObject;

namespace corvane {

/// Copies of actions for a menu of a Mac outside its menu bar: without a role, since Qt moves an
/// action with one out of any native menu, into the program's own. A copy looks as its original
/// does and triggers it. Owned by `parent`; once the original is gone, a copy does nothing. Main
/// thread.
QList<QAction *> withoutRoles(const QList<QAction *> &actions, QObject *parent);

} // namespace corvane
