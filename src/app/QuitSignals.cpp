#include "app/QuitSignals.h"

#include "threads/MainThread.h"

#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <atomic>
#include <chrono>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr std::array quitSignalNumbers{SIGTERM, SIGINT, SIGHUP};

/// The pipe to which the signal handler writes, one of the few calls allowed in a handler; -1:
/// none.
std::atomic<int> writingEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free);

/// Seconds that the program has for its end.
constexpr unsigned int mostSeconds = 4;

/// For a pipe, while the system has none left.
constexpr auto retryInterval = std::chrono::seconds(1);

/// Two signals within this time count as one: session managers send several.
constexpr std::int64_t repeatSeconds = 1;

/// When the end began, in seconds of the monotonic clock; 0: it has not begun.
std::atomic<std::int64_t> endBegan = 0;
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

std::int64_t monotonicSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec + 1; // Never 0.
}

/// Ends the process if it still runs at the deadline, whatever its threads wait for. Calls only
/// what a signal handler may call. A first deadline stays.
void setDeadline()
{
    std::int64_t notYet = 0;
    if (endBegan.compare_exchange_strong(notYet, monotonicSeconds()))
        alarm(mostSeconds);
}

void endProcess(int)
{
    _exit(EXIT_SUCCESS);
}

void reportSignal(int)
{
    const int before = errno;
    setDeadline();
    if (monotonicSeconds() - endBegan > repeatSeconds)
        endProcess(0);
    const char byte = 0;
    // One byte is enough, so a full pipe does not matter.
    [[maybe_unused]] const ssize_t written = write(writingEnd, &byte, sizeof byte);
    errno = before;
}

/// Signals that are ignored stay so.
void setSignalHandler(void (*handler)(int))
{
    for (const int number : quitSignalNumbers) {
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

/// Only the login item starts the program with the next session: if the session manager started it
/// too, that second start would open the dashboard.
void disableRestart(QSessionManager &manager)
{
    manager.setRestartHint(QSessionManager::RestartNever);
}

} // namespace

QuitSignals::QuitSignals(QObject *parent) : QObject(parent)
{
    assertMainThread();
    endBegan = 0;
    alarm(0);
    std::signal(SIGALRM, endProcess); // Until the process ends: it may hang after this object.
    connect(qApp, &QCoreApplication::aboutToQuit, this, setDeadline);
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, disableRestart,
            Qt::DirectConnection);
    connect(qGuiApp, &QGuiApplication::saveStateRequest, this, disableRestart,
            Qt::DirectConnection);

    handleSignals();
}

/// Until there is a pipe, a signal has its default action.
void QuitSignals::handleSignals()
{
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0) {
        QTimer::singleShot(retryInterval, this, &QuitSignals::handleSignals);
        return;
    }
    m_readingEnd = FileDescriptor(ends[0]);
    m_writingEnd = FileDescriptor(ends[1]);
    for (const int end : ends)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(m_writingEnd.get(), F_SETFL, O_NONBLOCK);
    auto *notifier = new QSocketNotifier(m_readingEnd.get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
        QCoreApplication::exit(); // quit() does nothing if a window refuses to close.
    });
    writingEnd = m_writingEnd.get();
    setSignalHandler(reportSignal);
}

QuitSignals::~QuitSignals()
{
    if (m_writingEnd)
        setSignalHandler(SIG_DFL);
    writingEnd = -1;
}

} // namespace corvane
