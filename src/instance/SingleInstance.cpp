#include "instance/SingleInstance.h"

#include "platform/PeerUser.h"
#include "platform/UnixSocket.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

int millisecondsUntil(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max(left, 0ms).count());
}

/// Whether the whole answer arrived before the deadline or the end of the connection.
bool awaitAnswer(const FileDescriptor &socket, Clock::time_point deadline)
{
    std::string answer;
    std::array<char, instanceAnswer.size()> piece = {};
    while (answer.size() < instanceAnswer.size()) {
        pollfd readable{.fd = socket.get(), .events = POLLIN, .revents = 0};
        if (poll(&readable, 1, millisecondsUntil(deadline)) <= 0)
            return false;
        const ssize_t count = read(socket.get(), piece.data(), piece.size());
        if (count <= 0)
            return false;
        answer.append(piece.data(), static_cast<std::size_t>(count));
    }
    return answer == instanceAnswer;
}

bool requestOpen(const std::string &path, const InstanceMessage &message,
                 Clock::time_point deadline)
{
    const FileDescriptor socket = openUnixSocket();
    const std::string bytes = instanceMessageBytes(message);
    return socket && connectTo(socket, path) && isPeerOfSameUser(socket.get())
        && write(socket.get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())
        && awaitAnswer(socket, deadline);
}

} // namespace

SingleInstance::SingleInstance(const std::optional<InstanceMessage> &message,
                               std::chrono::milliseconds timeout, const std::string &folder)
    : m_lock(folder)
{
    if (folder.empty())
        return;
    m_socketPath = instanceSocket(folder);
    const Clock::time_point deadline = Clock::now() + timeout;
    for (auto holder = m_lock.take(); holder != FolderLock::Holder::self; holder = m_lock.take()) {
        const bool isSecond = message ? requestOpen(m_socketPath, *message, deadline)
                                      : holder == FolderLock::Holder::other;
        if (isSecond) {
            m_standing = Standing::second;
            return;
        }
        if (holder == FolderLock::Holder::nobody)
            return;
        if (Clock::now() >= deadline) {
            m_standing = Standing::unanswered;
            return;
        }
        // The other is starting and does not listen yet, or is ending and still holds the lock.
        std::this_thread::sleep_for(20ms);
    }
}

InstanceMessage messageOfThisStart()
{
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return {.activationToken =
                (token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token).toStdString()};
}

} // namespace corvane
