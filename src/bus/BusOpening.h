#pragma once

#include <QDBusConnection>

namespace corvane {

/// Starts the thread that all connections of the bus library share. Without it the first connection
/// would wait for ever, and the desktop's libraries open one on the main thread. False when the
/// system refuses a thread; to be called before anything that uses a bus.
bool startBusThread();

/// Opens a private connection to a bus, which is closed with its last copy. Not connected if there
/// is no bus or the system refuses the bus library's thread.
///
/// To be called on a background job, after a BusProbe was answered: while a bus hangs this blocks
/// its caller and every other caller that opens a connection.
QDBusConnection openBus(const QString &address);

} // namespace corvane
