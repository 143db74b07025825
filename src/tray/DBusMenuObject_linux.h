#pragma once

#include "tray/DBusMenu_linux.h"

class QMenu;

namespace corvane {

class LoopConnection;

/// A menu on the bus, at `path`, for the desktop to draw (com.canonical.dbusmenu). Owned by the
/// item that exports it; the menu outlives it. Main thread.
class DBusMenuObject {
public:
    static constexpr auto path = "/MenuBar";

    explicit DBusMenuObject(QMenu &menu);

    /// Called once. The connection ends before this object.
    void exportOver(LoopConnection &bus);

private:
    DBusMenu m_menu;
};

} // namespace corvane
