#pragma once

#include <QString>

#include <chrono>

namespace corvane {

/// Address of the user's session bus, for QDBusConnection::connectToBus; empty if none runs. Asked
/// for the session bus without an address, the bus library may start one.
QString sessionBusAddress();

/// Sets DBUS_SESSION_BUS_ADDRESS where it is missing, so that libraries which use the session bus
/// on their own find one that appears later and start none. Before the QApplication.
void preventBusStart();

/// Disables the session bus for libraries which use it on their own if it gives no answer within
/// the time-out, for which this blocks: their first use of a bus that hangs would block forever.
/// What they offer over the bus (accessibility, for one) is missing until the next start;
/// `sessionBusAddress` still returns the address. Before the QApplication.
void disableHangingBus(std::chrono::milliseconds timeout);

} // namespace corvane
