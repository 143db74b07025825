#include "tray/RolelessActions.h"

#include "threads/MainThread.h"

#include <QAction>

namespace corvane {

namespace {

void follow(QAction &copy, const QAction &original)
{
    copy.setText(original.text());
    copy.setEnabled(original.isEnabled());
    copy.setVisible(original.isVisible());
    copy.setShortcut(original.shortcut());
}

QAction *copyOf(QAction *original, QObject *parent)
{
    auto *copy = new QAction(parent);
    copy->setMenuRole(QAction::NoRole);
    copy->setSeparator(original->isSeparator());
    follow(*copy, *original);
    QObject::connect(original, &QAction::changed, copy,
                     [copy, original] { follow(*copy, *original); });
    QObject::connect(copy, &QAction::triggered, original, &QAction::trigger);
    return copy;
}

} // namespace

QList<QAction *> withoutRoles(const QList<QAction *> &actions, QObject *parent)
{
    assertMainThread();
    QList<QAction *> copies;
    for (QAction *action : actions)
        copies.append(copyOf(action, parent));
    return copies;
}

} // namespace corvane
