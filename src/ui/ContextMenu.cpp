#include "ui/ContextMenu.h"

#include "ui/Theme.h"

#include <QMenu>

namespace corvane {

namespace {

/// The menu stands on dark views, whatever the desktop's own colours are.
QPalette menuPalette()
{
    QPalette palette;
    // Light is the shadow that some styles give to text that is disabled.
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
