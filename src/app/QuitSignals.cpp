#include "app/QuitSignals.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <array>
#include <atomic>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// What the signal handler writes to: hardly anything else may be done in one. -1: nothing.
std::atomic<int> writingEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void noteSignal(int)
{
    const int before = errno;
    const char note = 0;
    // A full pipe has notes enough.
    [[maybe_unused]] const ssize_t written = write(writingEnd, &note, sizeof note);
    errno = before;
}

/// Leaves alone what is ignored.
void handleEndingSignals(void (*handler)(int))
{
    for (const int number : endingSignals) {
        struct sigaction present = {};
        sigaction(number, nullptr, &present);
        if (present.sa_handler == SIG_IGN)
            continue;
        struct sigaction wanted = {};
        wanted.sa_handler = handler;
        wanted.sa_flags = SA_RESTART;
        sigaction(number, &wanted, nullptr);
    }
}

/// Whether the program comes back with the next session is the login item's matter alone: started
/// by both, it would open its dashboard.
void forgoRestart(QSessionManager &manager)
{
    manager.setRestartHint(QSessionManager::RestartNever);
}

} // namespace

QuitSignals::QuitSignals(QObject *parent) : QObject(parent)
{
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, forgoRestart, Qt::DirectConnection);
    connect(qGuiApp, &QGuiApplication::saveStateRequest, this, forgoRestart, Qt::DirectConnection);

    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        return;
    m_readingEnd = FileDescriptor(ends[0]);
    m_writingEnd = FileDescriptor(ends[1]);
    for (const int end : ends)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(m_writingEnd.get(), F_SETFL, O_NONBLOCK);
    auto *notifier = new QSocketNotifier(m_readingEnd.get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
        QCoreApplication::exit(); // Even if a window would rather stay.
    });
    writingEnd = m_writingEnd.get();
    handleEndingSignals(noteSignal);
}

QuitSignals::~QuitSignals()
{
    if (m_writingEnd)
        handleEndingSignals(SIG_DFL);
    writingEnd = -1;
}

void ignoreBrokenPipes()
{
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace corvane
