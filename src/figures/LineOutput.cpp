#include "figures/LineOutput.h"

#include "threads/MainThread.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace corvane {

namespace {

/// Bytes that a pipe takes without blocking when it is writable (pipe(7)).
constexpr qsizetype pieceLength = PIPE_BUF;

bool isWritable(int descriptor)
{
    pollfd state{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&state, 1, 0) > 0;
}

} // namespace

LineOutput::LineOutput(int descriptor, QObject *parent)
    : QObject(parent),
      m_descriptor(descriptor),
      m_writable(descriptor, QSocketNotifier::Write)
{
    assertMainThread();
    m_writable.setEnabled(false);
    connect(&m_writable, &QSocketNotifier::activated, this, &LineOutput::writeOn);
}

void LineOutput::send(const QByteArray &line)
{
    if (m_isClosed)
        return;
    (isIdle() ? m_current : m_next) = line;
    writeOn();
}

void LineOutput::writeOn()
{
    while (!m_current.isEmpty() && isWritable(m_descriptor)) {
        const auto length = static_cast<std::size_t>(std::min(m_current.size(), pieceLength));
        const ssize_t written = write(m_descriptor, m_current.constData(), length);
        if (written < 0 && (errno == EINTR || errno == EAGAIN))
            break;
        if (written < 0) {
            close(errno);
            return;
        }
        m_current.remove(0, written);
        if (m_current.isEmpty())
            m_current = std::exchange(m_next, {});
    }
    m_writable.setEnabled(!isIdle());
    if (isIdle())
        emit idle();
}

void LineOutput::close(int reason)
{
    m_isClosed = true;
    m_error = {reason, std::generic_category()};
    m_current.clear();
    m_next.clear();
    m_writable.setEnabled(false);
    emit closed();
}

} // namespace corvane
