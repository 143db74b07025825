#include "windows/PanelWindow.h"

#include "threads/MainThread.h"
#include "windows/PanelStyle_mac.h"

#include <QWidget>

namespace corvane {

/// Not a pop-up: on a Mac Qt gives those no key focus, and closes one on a click elsewhere only the
/// first time that it is open.
Qt::WindowFlags panelWindowFlags()
{
    assertMainThread();
    return Qt::Tool | Qt::FramelessWindowHint;
}

void showPanelWindow(QWidget &panel)
{
    assertMainThread();
    panel.setAttribute(Qt::WA_MacAlwaysShowToolWindow); // The program is not the active one.
    panel.winId();                                      // Creates the native window.
    const NativeWindow native = systemWindowPlatform().hostingWindow(panel);
    if (native)
        stylePanel(native);
    panel.show();
    if (native)
        focusPanel(native);
}

} // namespace corvane
