#include "bus/BusProbe.h"

#include "platform/UnixSocket.h"

#include <QSocketNotifier>

#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

/// Asks which ways there are to say who one is, as clients may begin.
constexpr auto question = "\0AUTH\r\n"sv;

/// A socket at which the answer will come; empty where nobody listens.
FileDescriptor knockAt(const std::string &place)
{
    FileDescriptor socket = openUnixSocket();
    const bool isHeard = connectTo(socket, place)
        && send(socket.get(), question.data(), question.size(), MSG_NOSIGNAL) > 0;
    return isHeard ? std::move(socket) : FileDescriptor();
}

} // namespace

BusProbe::BusProbe(const QString &address, QObject *parent) : QObject(parent)
{
    const auto place = busSocket(address);
    if (!place) {
        QMetaObject::invokeMethod(this, &BusProbe::answered, Qt::QueuedConnection);
        return;
    }
    m_socket = knockAt(*place);
    if (!m_socket) {
        QMetaObject::invokeMethod(this, &BusProbe::refused, Qt::QueuedConnection);
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &BusProbe::listen);
}

BusProbe::~BusProbe() = default;

/// Any answer will do.
void BusProbe::listen()
{
    m_notifier->setEnabled(false);
    char first = 0;
    if (recv(m_socket.get(), &first, sizeof first, 0) > 0)
        emit answered();
    else
        emit refused();
}

bool busHangs(const QString &address, std::chrono::milliseconds patience)
{
    const auto place = busSocket(address);
    const FileDescriptor socket = place ? knockAt(*place) : FileDescriptor();
    pollfd answer = {.fd = socket.get(), .events = POLLIN, .revents = 0};
    return socket && poll(&answer, 1, static_cast<int>(patience.count())) == 0;
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
