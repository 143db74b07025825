#pragma once

#include "windows/KeyWindow.h"

namespace corvane {

// The standard commands, as a Mac's windows and the parts in them take them. Main thread.

void sendStandardCommand(WindowCommand command);
bool acceptsStandardCommand(WindowCommand command);
bool keyWindowIsFullScreen();

/// Registers two menus of the system's own type.
void registerSystemMenus(void *windows, void *help);

} // namespace corvane
