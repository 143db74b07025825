#include "app/AboutPanel.h"

#include "windows/WindowTools.h"

#include <QPointer>

namespace corvane {

void showAboutPanel()
{
    static QPointer<AboutPanel> panel; // Null once it is closed.
    if (!isOpen(panel)) {
        panel = new AboutPanel;
        deleteOnClose(*panel);
    }
    bringForward(*panel);
}

} // namespace corvane
