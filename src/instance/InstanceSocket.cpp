#include "instance/InstanceSocket.h"

#include "instance/InstanceMessage.h"
#include "platform/PeerUser.h"
#include "platform/UnixSocket.h"
#include "threads/MainThread.h"

#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <utility>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace corvane {

/// A client's connection. It deletes itself once it is closed.
class InstanceSocket::Connection : public QObject {
public:
    Connection(FileDescriptor socket, InstanceSocket &owner);

private:
    void readMessage();
    void answer(const InstanceMessage &message);
    void close();

    InstanceSocket &m_owner;
    FileDescriptor m_socket;
    QSocketNotifier m_notifier;
    std::string m_bytes;
};

InstanceSocket::Connection::Connection(FileDescriptor socket, InstanceSocket &owner)
    : QObject(&owner),
      m_owner(owner),
      m_socket(std::move(socket)),
      m_notifier(m_socket.get(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] { readMessage(); });
    QTimer::singleShot(owner.m_times.message, this, [this] { close(); });
}

void InstanceSocket::Connection::readMessage()
{
    std::array<char, longestInstanceMessage> piece = {};
    const ssize_t count = read(m_socket.get(), piece.data(), piece.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0) {
        close();
        return;
    }
    m_bytes.append(piece.data(), static_cast<std::size_t>(count));
    if (const auto message = parseInstanceMessage(m_bytes))
        answer(*message);
    else if (m_bytes.size() > longestInstanceMessage)
        close();
}

void InstanceSocket::Connection::answer(const InstanceMessage &message)
{
    close();
    // The answer fits into the empty buffer; a client that is gone needs none.
    [[maybe_unused]] const ssize_t sent =
        write(m_socket.get(), instanceAnswer.data(), instanceAnswer.size());
    emit m_owner.openRequested(QByteArray::fromStdString(message.activationToken));
}

/// The descriptor is closed with this, in the next turn of the event loop.
void InstanceSocket::Connection::close()
{
    m_notifier.setEnabled(false);
    deleteLater();
}

InstanceSocket::InstanceSocket(std::string path) : InstanceSocket(std::move(path), Times{}) { }

InstanceSocket::InstanceSocket(std::string path, Times times)
    : m_path(std::move(path)),
      m_times(times)
{
    assertMainThread();
    FileDescriptor socket = openUnixSocket();
    if (m_path.empty() || !socket || !listenAt(socket, m_path))
        return;
    m_socket = std::move(socket);
    m_file = fileIdentity(m_path);
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &InstanceSocket::acceptConnection);
}

InstanceSocket::~InstanceSocket()
{
    // Another start's socket may have taken its place, with the folder.
    if (m_socket && m_file && m_file == fileIdentity(m_path))
        unlink(m_path.c_str());
}

void InstanceSocket::acceptConnection()
{
    FileDescriptor socket(accept(m_socket.get(), nullptr, nullptr));
    if (!socket && errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
        m_notifier->setEnabled(false);
        QTimer::singleShot(m_times.retry, this, [this] { m_notifier->setEnabled(true); });
    }
    if (!socket || !makeNonBlocking(socket) || !isPeerOfSameUser(socket.get()))
        return;
    m_connections.removeAll(nullptr);
    if (m_connections.size() >= maxConnections)
        delete m_connections.takeFirst().data();
    m_connections.append(new Connection(std::move(socket), *this));
}

} // namespace corvane
