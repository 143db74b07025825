#include "ui/ContextMenu.h"

#include "platform/MainThread.h"
#include "ui/MenuStyle.h"
#include "ui/Theme.h"

#include <QMenu>

namespace corvane {

QMenu *popUpActions(QWidget &widget, const QPoint &globalPosition)
{
    assertMainThread();
    if (widget.actions().isEmpty())
        return nullptr;
    auto *menu = new QMenu(&widget);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAttribute(Qt::WA_TranslucentBackground); // Outside the round corners.
    auto *style = new MenuStyle;
    style->setParent(menu);
    menu->setStyle(style);
    menu->setFont(Theme::systemFont(12));
    menu->addActions(widget.actions());
    menu->popup(globalPosition);
    return menu;
}

} // namespace corvane
