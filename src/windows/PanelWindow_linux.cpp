#include "windows/PanelWindow.h"

#include "threads/MainThread.h"

#include <QGuiApplication>
#include <QWidget>

namespace corvane {

using namespace Qt::StringLiterals;

/// A Wayland compositor opens a pop-up only in response to an input event of one of the program's
/// own windows, and a click on the desktop's bar is none. There the panel is a plain window that
/// closes when it loses the focus.
Qt::WindowFlags panelWindowFlags()
{
    assertMainThread();
    const bool canGrab = QGuiApplication::platformName() != "wayland"_L1;
    return (canGrab ? Qt::Popup : Qt::Tool) | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
}

void showPanelWindow(QWidget &panel)
{
    assertMainThread();
    panel.show();
    panel.activateWindow();
}

} // namespace corvane
