#include "bus/BusProbe.h"

#include "platform/UnixSocket.h"
#include "threads/MainThread.h"

#include <QSocketNotifier>

#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

/// Asks for the authentication mechanisms: a client's first request, which every bus answers.
constexpr auto request = "\0AUTH\r\n"sv;

/// The socket on which the answer will arrive; empty if nothing listens at the path.
FileDescriptor sendRequest(const std::string &path)
{
    FileDescriptor socket = openUnixSocket();
    const bool isSent = connectTo(socket, path)
        && send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL) > 0;
    return isSent ? std::move(socket) : FileDescriptor();
}

} // namespace

BusProbe::BusProbe(const QString &address, QObject *parent) : QObject(parent)
{
    assertMainThread();
    const auto path = busSocket(address);
    if (!path) {
        QMetaObject::invokeMethod(this, &BusProbe::answered, Qt::QueuedConnection);
        return;
    }
    m_socket = sendRequest(*path);
    if (!m_socket) {
        QMetaObject::invokeMethod(this, &BusProbe::refused, Qt::QueuedConnection);
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &BusProbe::readAnswer);
}

BusProbe::~BusProbe() = default;

/// Whether a byte arrives is all that counts.
void BusProbe::readAnswer()
{
    m_notifier->setEnabled(false);
    char first = 0;
    if (recv(m_socket.get(), &first, sizeof first, 0) > 0)
        emit answered();
    else
        emit refused();
}

bool busHangs(const QString &address, std::chrono::milliseconds timeout)
{
    const auto path = busSocket(address);
    const FileDescriptor socket = path ? sendRequest(*path) : FileDescriptor();
    pollfd answer = {.fd = socket.get(), .events = POLLIN, .revents = 0};
    return socket && poll(&answer, 1, static_cast<int>(timeout.count())) == 0;
}

std::optional<std::string> busSocket(const QString &address)
{
    constexpr auto kind = "unix:"_L1;
    if (!address.startsWith(kind) || address.contains(u';'))
        return std::nullopt;
    for (const QString &part : address.sliced(kind.size()).split(u',')) {
        const QByteArray value = QByteArray::fromPercentEncoding(part.section(u'=', 1).toUtf8());
        if (part.startsWith("path="_L1))
            return value.toStdString();
        if (part.startsWith("abstract="_L1))
            return '\0' + value.toStdString();
    }
    return std::nullopt;
}

} // namespace corvane
