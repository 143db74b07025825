#pragma once

namespace corvane {

// What this process needs before it opens a file or starts a thread that stays. Main thread; once
// each, in this order.

/// Opens /dev/null for each of the descriptors 0 to 2 that is closed: otherwise a file or socket
/// would get that number, and what libraries print would be written into it.
void openStandardDescriptors();

/// Makes HOME absolute, by the system's list of users if need be, and drops relative paths from the
/// XDG variables, as the XDG base directory standard requires. Libraries would take them below the
/// folder in which the program happens to be started. The list may be on a server: HOME is "/" when
/// that does not answer within two seconds.
void dropRelativeFolders();

/// Makes a write fail instead of ending the process: to a closed pipe or socket, or beyond the
/// largest file that the process may write.
void ignoreWriteSignals();

/// Raises the number of descriptors that may be open to the most that the system allows this
/// process. A library that opens many, for a graphics driver or fonts, then leaves some over. False
/// where even that is too few to start with: a library would abort the process.
bool raiseDescriptorLimit();

/// False where the stack may not become as large as libraries need it: the process would crash.
bool hasStack();

} // namespace corvane
