#include "instance/InstanceSocket.h"

#include "instance/InstanceMessage.h"
#include "platform/PeerUser.h"
#include "platform/UnixSocket.h"

#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <chrono>
#include <utility>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace corvane {

namespace {

using namespace std::chrono_literals;

/// For a guest to say its message, which it has ready when it comes.
constexpr auto patience = 2s;

/// After which to look again when no connection could be taken: no descriptors may be left, and
/// whoever waits keeps the socket readable.
constexpr auto recovery = 1s;

} // namespace

/// One connection. It deletes itself when it is done with, in whichever way.
class InstanceSocket::Guest : public QObject {
public:
    Guest(FileDescriptor socket, InstanceSocket &host);

private:
    void listen();
    void answer(const InstanceMessage &message);
    void leave();

    InstanceSocket &m_host;
    FileDescriptor m_socket;
    QSocketNotifier m_notifier;
    std::string m_bytes;
};

InstanceSocket::Guest::Guest(FileDescriptor socket, InstanceSocket &host)
    : QObject(&host),
      m_host(host),
      m_socket(std::move(socket)),
      m_notifier(m_socket.get(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] { listen(); });
    QTimer::singleShot(patience, this, [this] { leave(); });
}

void InstanceSocket::Guest::listen()
{
    std::array<char, longestInstanceMessage> piece = {};
    const ssize_t count = read(m_socket.get(), piece.data(), piece.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0) {
        leave();
        return;
    }
    m_bytes.append(piece.data(), static_cast<std::size_t>(count));
    if (const auto message = parseInstanceMessage(m_bytes))
        answer(*message);
    else if (m_bytes.size() > longestInstanceMessage)
        leave();
}

void InstanceSocket::Guest::answer(const InstanceMessage &message)
{
    leave();
    // It fits into an empty buffer; one who has gone meanwhile does not matter.
    [[maybe_unused]] const ssize_t sent =
        write(m_socket.get(), instanceAnswer.data(), instanceAnswer.size());
    emit m_host.openRequested(QByteArray::fromStdString(message.activationToken));
}

void InstanceSocket::Guest::leave()
{
    m_notifier.setEnabled(false);
    deleteLater();
}

InstanceSocket::InstanceSocket(std::string path, QObject *parent)
    : QObject(parent),
      m_path(std::move(path))
{
    FileDescriptor socket = openUnixSocket();
    if (m_path.empty() || !socket || !listenAt(socket, m_path))
        return;
    m_socket = std::move(socket);
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &InstanceSocket::welcome);
}

InstanceSocket::~InstanceSocket()
{
    if (m_socket)
        unlink(m_path.c_str());
}

void InstanceSocket::welcome()
{
    FileDescriptor socket(accept(m_socket.get(), nullptr, nullptr));
    if (!socket && errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
        m_notifier->setEnabled(false);
        QTimer::singleShot(recovery, this, [this] { m_notifier->setEnabled(true); });
    }
    if (!socket || !makeNonBlocking(socket) || !isPeerOfSameUser(socket.get()))
        return;
    m_guests.removeAll(nullptr);
    if (m_guests.size() >= mostGuests)
        delete m_guests.takeFirst().data();
    m_guests.append(new Guest(std::move(socket), *this));
}

} // namespace corvane
