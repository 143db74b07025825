#pragma once

#include <QString>

namespace corvane {

/// Address of the user's session bus; empty where none runs. To be given to
/// QDBusConnection::connectToBus: left to itself the bus library may start a bus of its own.
QString sessionBusAddress();

} // namespace corvane
