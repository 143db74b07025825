#include "bus/BusHandshake.h"

#include "platform/UnixSocket.h"

#include <QtEndian>

#include <array>
#include <memory>
#include <utility>

#include <cerrno>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr qsizetype longestLine = 1024;

/// Authenticates as this user, as clients on the same machine do.
QByteArray authentication()
{
    const QByteArray user = QByteArray::number(getuid()).toHex();
    return QByteArray(1, '\0') + "AUTH EXTERNAL " + user + "\r\n";
}

void padTo8(QByteArray &bytes)
{
    bytes.append((8 - bytes.size() % 8) % 8, '\0');
}

void appendNumber(QByteArray &bytes, qsizetype number)
{
    std::array<char, 4> raw = {};
    qToLittleEndian(static_cast<quint32>(number), raw.data());
    bytes.append(raw.data(), raw.size());
}

/// One header field of a message: its code, and a text of type `s` or `o`.
void appendField(QByteArray &bytes, char code, char type, const QByteArray &text)
{
    padTo8(bytes);
    bytes += code;
    bytes += QByteArray("\1") + type + '\0';
    appendNumber(bytes, text.size());
    bytes += text + '\0';
}

/// The end of the authentication and the call of org.freedesktop.DBus.Hello. The numbers of the
/// header fields and the first bytes are those of D-Bus's message protocol.
QByteArray beginAndHello()
{
    QByteArray fields;
    appendField(fields, 1, 'o', "/org/freedesktop/DBus");
    appendField(fields, 2, 's', "org.freedesktop.DBus");
    appendField(fields, 3, 's', "Hello");
    appendField(fields, 6, 's', "org.freedesktop.DBus");
    QByteArray message("l\1\0\1", 4); // Little-endian, a call, no flags, version 1.
    appendNumber(message, 0);         // Length of the body.
    appendNumber(message, 1);         // Serial number.
    appendNumber(message, fields.size());
    message += fields;
    padTo8(message);
    return "BEGIN\r\n" + message;
}

/// Begins to connect; empty if that failed at once. `errno` then says why.
FileDescriptor openTCPSocket(const BusSocket &place)
{
    addrinfo hints = {};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    errno = EINVAL;
    if (getaddrinfo(place.host.c_str(), place.port.c_str(), &hints, &found) != 0)
        return {};
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(found, freeaddrinfo);
    FileDescriptor socket(::socket(found->ai_family, SOCK_STREAM, 0));
    if (!makeNonBlocking(socket))
        return {};
    if (connect(socket.get(), found->ai_addr, found->ai_addrlen) != 0 && errno != EINPROGRESS)
        return {};
    return socket;
}

FileDescriptor openSocket(const BusSocket &place)
{
    if (place.path.empty())
        return openTCPSocket(place);
    FileDescriptor socket = openUnixSocket();
    return connectTo(socket, place.path) ? std::move(socket) : FileDescriptor();
}

} // namespace

BusHandshake::BusHandshake(const QString &address) : m_places(busSockets(address))
{
    for (const BusSocket &place : m_places) {
        if (place == BusSocket()) {
            m_state = State::unknown;
            return;
        }
    }
    connectToNext();
}

void BusHandshake::goOn()
{
    if (m_state == State::connecting)
        finishConnecting();
    else if (m_state == State::waiting)
        receive();
}

void BusHandshake::connectToNext()
{
    m_state = State::refused;
    while (m_next < m_places.size()) {
        m_socket = openSocket(m_places[m_next++]);
        if (m_socket) {
            m_state = State::connecting;
            return;
        }
        // A client that blocks would wait here.
        if (errno == EAGAIN) {
            m_state = State::crowded;
            return;
        }
    }
}

void BusHandshake::finishConnecting()
{
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(m_socket.get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0)
        connectToNext();
    else
        send(authentication());
}

/// The first bytes on a connection always fit into its buffer.
void BusHandshake::send(const QByteArray &bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    const ssize_t sent = ::send(m_socket.get(), bytes.constData(), size, MSG_NOSIGNAL);
    m_state = sent == bytes.size() ? State::waiting : State::refused;
}

void BusHandshake::receive()
{
    std::array<char, 256> bytes = {};
    const ssize_t count = recv(m_socket.get(), bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0) {
        m_state = State::refused;
        return;
    }
    if (m_isAuthenticated) {
        m_state = State::answered; // Whatever the reply is.
        return;
    }
    m_line.append(bytes.data(), count);
    if (m_line.size() > longestLine) {
        m_state = State::refused;
    } else if (m_line.endsWith('\n')) {
        m_isAuthenticated = m_line.startsWith("OK ");
        if (m_isAuthenticated)
            send(beginAndHello());
        else
            m_state = State::answered;
    }
}

} // namespace corvane
