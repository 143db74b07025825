// What Qt's plugin for a Mac makes of a menu.

#include "simulated_mac/QtOnMac.h"
#include "simulated_mac/recorded/Messages.h"

#import <AppKit/AppKit.h>

using namespace corvane::simulated;

/// An action with a role moves to the program's menu, out of whatever menu it is in.
NSMenu *QMenu::toNSMenu()
{
    QStringList items;
    for (const QAction *action : actions()) {
        const QAction::MenuRole role = action->menuRole();
        if (action->isSeparator())
            items.append(QStringLiteral("-"));
        else if (role == QAction::NoRole || role == QAction::TextHeuristicRole)
            items.append(action->text());
    }
    NSMenu *const menu = [[NSMenu alloc] init];
    describe(menu, items.join(QStringLiteral(", ")).toStdString());
    return menu;
}
