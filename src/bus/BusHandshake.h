#pragma once

#include "bus/BusAddress.h"
#include "platform/FileDescriptor.h"

#include <QByteArray>

#include <cstddef>
#include <vector>

namespace corvane {

/// A client's first messages to a bus, up to the reply to `Hello`, without blocking: the bus
/// library connects synchronously and would block its caller for as long as the bus hangs at any of
/// these steps. Used on one thread.
class BusHandshake {
public:
    enum class State {
        connecting, ///< Go on once the descriptor can be written.
        waiting,    ///< Go on once the descriptor can be read.
        answered,   ///< The bus replied, or rejects this user.
        refused,    ///< Nothing listens at the address, or the connection was closed.
        crowded,    ///< Something listens, but has accepted no connection for long.
        unknown,    ///< The address contains a place that cannot be tried.
    };

    explicit BusHandshake(const QString &address);

    State state() const { return m_state; }

    /// Valid while connecting or waiting, and until `goOn`.
    int descriptor() const { return m_socket.get(); }

    void goOn();

private:
    void connectToNext();
    void finishConnecting();
    void send(const QByteArray &bytes);
    void receive();

    std::vector<BusSocket> m_places;
    std::size_t m_next = 0; ///< Index of the place to be tried next.
    State m_state = State::refused;
    FileDescriptor m_socket;
    QByteArray m_line; ///< The answer to the authentication, as far as it has arrived.
    bool m_isAuthenticated = false;
};

} // namespace corvane
