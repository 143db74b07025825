#pragma once

#include <QString>

#include <chrono>

namespace corvane {

/// Address of the user's session bus; empty where none runs. To be given to
/// QDBusConnection::connectToBus: left to itself the bus library may start a bus of its own.
QString sessionBusAddress();

/// Names the place of the bus to the libraries that look for it by themselves, so that they find it
/// where it turns up later and have none started where none runs. Before the QApplication.
void startNoSessionBus();

/// Keeps the libraries that connect by themselves, at their first use and for ever if need be, from
/// a bus that does not answer for so long, which is waited for. Their share of it (accessibility,
/// for one) is lost until the next start; ours is not. Before the QApplication.
void hideHangingBus(std::chrono::milliseconds patience);

} // namespace corvane
