#pragma once

namespace corvane {

/// Sets up this process's access to the desktop's services, before the QApplication, whose
/// libraries connect on their own. Blocks for a few seconds at most. Main thread.
void prepareDesktopSession();

} // namespace corvane
