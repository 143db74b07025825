#pragma once

namespace corvane {

/// Sets up how this process meets the desktop, before the QApplication, whose libraries connect on
/// their own: on Linux its access to the session bus, for which it blocks a few seconds at most; on
/// a Mac that the program does not take the focus from the one in front. False when the system
/// refuses a thread that this needs.
bool prepareDesktopSession();

} // namespace corvane
