#include "windows/KeyWindow.h"

#include "threads/MainThread.h"

#include <QApplication>
#include <QWidget>

namespace corvane {

namespace {

void toggle(QWidget &window, Qt::WindowState state)
{
    window.setWindowState(window.windowState() ^ state);
}

void raiseAll()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            window->raise();
    }
}

bool isResizable(const QWidget &window)
{
    return window.minimumSize() != window.maximumSize();
}

bool accepts(WindowCommand command)
{
    const QWidget *window = QApplication::activeWindow();
    switch (command) {
    case WindowCommand::bringAllToFront:
        return true;
    case WindowCommand::close:
    case WindowCommand::minimize:
        return window != nullptr;
    case WindowCommand::zoom:
    case WindowCommand::fullScreen:
        return window && isResizable(*window);
    case WindowCommand::copy:
    case WindowCommand::selectAll:
        break;
    }
    return false;
}

void perform(WindowCommand command)
{
    QWidget *window = QApplication::activeWindow();
    if (!accepts(command))
        return;
    switch (command) {
    case WindowCommand::close:
        window->close();
        break;
    case WindowCommand::minimize:
        window->showMinimized();
        break;
    case WindowCommand::zoom:
        toggle(*window, Qt::WindowMaximized);
        break;
    case WindowCommand::fullScreen:
        toggle(*window, Qt::WindowFullScreen);
        break;
    case WindowCommand::bringAllToFront:
        raiseAll();
        break;
    case WindowCommand::copy:
    case WindowCommand::selectAll:
        break; // No window here has a text of its own.
    }
}

} // namespace

/// Of Linux desktops none shows a Mac's menus; this serves the tests and the simulated Mac.
KeyWindow systemKeyWindow()
{
    assertMainThread();
    return {
        .perform = perform,
        .accepts = accepts,
        .isFullScreen =
            [] {
                const QWidget *window = QApplication::activeWindow();
                return window && window->isFullScreen();
            },
        .registerMenus = [](QMenu &, QMenu &) {},
    };
}

} // namespace corvane
