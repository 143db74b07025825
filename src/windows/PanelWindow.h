#pragma once

#include <Qt>

class QWidget;

namespace corvane {

// The window of the panel that drops down from the label. Main thread.

/// The flags that it is created with.
Qt::WindowFlags panelWindowFlags();

/// Shows it in front of everything else, with the key focus. The program itself does not become the
/// active one where the desktop tells the two apart. The window is told by WindowDeactivate when it
/// loses the focus.
void showPanelWindow(QWidget &panel);

} // namespace corvane
