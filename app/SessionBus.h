#pragma once

#include <QString>

namespace corvane {

/// Address of the user's session bus; empty where none runs. To be given to
/// QDBusConnection::connectToBus: left to itself the bus library may start a bus of its own.
QString sessionBusAddress();

/// Names the place of the bus to the libraries that look for it by themselves, so that they find it
/// where it turns up later and have none started where none runs. Before the QApplication.
void startNoSessionBus();

} // namespace corvane
