#pragma once

#include <QDBusConnection>

namespace corvane {

/// Opens a private connection to a bus, which is closed with its last copy. Not connected if there
/// is no bus or the system refuses the bus library's thread.
///
/// To be called on a background job, after a BusProbe was answered: while a bus hangs this blocks
/// its caller and every other caller that opens a connection.
QDBusConnection openBus(const QString &address);

} // namespace corvane
