#pragma once

#include "windows/KeyWindow.h"

#include <memory>

class QMenuBar;

namespace corvane {

class Commands;

/// A Mac's menu bar: the program's commands, which the system moves to the program's own menu, and
/// the standard commands for the window with the key focus. Those that it does not accept are grey
/// while their menu is open. There is no command for a new window: there is only one dashboard. The
/// commands outlive the bar; main thread.
std::unique_ptr<QMenuBar> makeMenuBar(const Commands &commands,
                                      const KeyWindow &keyWindow = systemKeyWindow());

} // namespace corvane
