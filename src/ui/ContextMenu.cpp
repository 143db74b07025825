#include "ui/ContextMenu.h"

#include "platform/MainThread.h"
#include "ui/Theme.h"

#include <QMenu>

namespace corvane {

namespace {

/// The menu opens over dark views, whatever the colours of the desktop are.
QPalette menuPalette()
{
    QPalette palette;
    // Some styles draw a shadow in the role Light under disabled text.
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button, QPalette::Light})
        palette.setColor(role, Theme::popoverFill);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, Theme::textPrimary);
        palette.setColor(QPalette::Disabled, role, Theme::textTertiary);
    }
    palette.setColor(QPalette::Highlight, Theme::switchOn);
    palette.setColor(QPalette::HighlightedText, Theme::white(1));
    return palette;
}

} // namespace

QMenu *popUpActions(QWidget &widget, const QPoint &globalPosition)
{
    assertMainThread();
    if (widget.actions().isEmpty())
        return nullptr;
    auto *menu = new QMenu(&widget);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setPalette(menuPalette());
    menu->setFont(Theme::systemFont(12));
    menu->addActions(widget.actions());
    menu->popup(globalPosition);
    return menu;
}

} // namespace corvane
