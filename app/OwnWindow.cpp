#include "app/OwnWindow.h"

#include <QShortcut>
#include <QWidget>

namespace corvane {

void bringForward(QWidget &window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

void closeOnUsualKey(QWidget &window)
{
    new QShortcut(Qt::CTRL | Qt::Key_W, &window, &window, &QWidget::close);
}

void closeOnEscape(QWidget &window)
{
    new QShortcut(Qt::Key_Escape, &window, &window, &QWidget::close);
}

} // namespace corvane
