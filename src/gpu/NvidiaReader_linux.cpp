#include "gpu/NvidiaReader_linux.h"

#include "threads/ThreadStart.h"

#include "threads/Mutex.h"

#include <limits>
#include <utility>

namespace corvane {

namespace {

constexpr double secondsBetweenTries = 60;
constexpr double oldestLive = 2.5; ///< Seconds.

} // namespace

/// What passes between the two threads: the newest request one way, the newest reading the other.
class NvidiaReader::Mailbox {
public:
    enum class Request { none, read, release, end };

    struct Order {
        Request request = Request::end;
        bool withProcesses = false;
        unsigned int releases = 0; ///< How many there were before it.
    };

    /// Replaces a request that was not taken yet, but for the last one, which is final. Processes
    /// stay asked for until a reading is taken.
    void post(Request request, bool withProcesses = false)
    {
        const MutexLock lock(m_mutex);
        if (m_request != Request::end)
            m_request = request;
        m_withProcesses = m_withProcesses || withProcesses;
        if (request == Request::release) {
            ++m_releases;
            m_newest.reset();
        }
        m_changed.notifyAll();
    }

    /// Waits for a request and takes it.
    Order take()
    {
        MutexLock lock(m_mutex);
        while (m_request == Request::none)
            m_changed.wait(lock);
        return {std::exchange(m_request, Request::none), std::exchange(m_withProcesses, false),
                m_releases};
    }

    /// Drops a reading that was ordered before the last release.
    void publish(NvidiaReading reading, const Order &order)
    {
        const MutexLock lock(m_mutex);
        if (m_releases == order.releases)
            m_newest = std::move(reading);
    }

    std::optional<NvidiaReading> newest()
    {
        const MutexLock lock(m_mutex);
        return m_newest;
    }

    void setCoverage(Coverage coverage)
    {
        const MutexLock lock(m_mutex);
        m_coverage = coverage;
    }

    Coverage coverage()
    {
        const MutexLock lock(m_mutex);
        return m_coverage;
    }

    void setEnded()
    {
        const MutexLock lock(m_mutex);
        m_ended = true;
        m_changed.notifyAll();
    }

    /// False when the time was over before the thread ended.
    bool waitForEnd(std::chrono::milliseconds time)
    {
        const auto deadline = std::chrono::steady_clock::now() + time;
        MutexLock lock(m_mutex);
        while (!m_ended) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                return false;
            m_changed.waitFor(lock, left);
        }
        return true;
    }

private:
    Mutex m_mutex = {};
    Condition m_changed = {};
    Request m_request GUARDED_BY(m_mutex) = Request::none;
    bool m_withProcesses GUARDED_BY(m_mutex) = false;
    unsigned int m_releases GUARDED_BY(m_mutex) = 0;
    std::optional<NvidiaReading> m_newest GUARDED_BY(m_mutex) = {};
    Coverage m_coverage GUARDED_BY(m_mutex) = Coverage::known;
    bool m_ended GUARDED_BY(m_mutex) = false;
};

NvidiaReader::NvidiaReader(std::string library, std::function<double()> clock)
    : m_library(std::move(library)),
      m_clock(std::move(clock)),
      m_mailbox(std::make_shared<Mailbox>())
{
    startIfNeeded();
}

void NvidiaReader::startIfNeeded()
{
    if (!m_thread.joinable())
        m_thread = startThread(
            [mailbox = m_mailbox, path = m_library, now = m_clock] { work(mailbox, path, now); });
}

NvidiaReader::~NvidiaReader()
{
    constexpr std::chrono::seconds patience(1);
    if (!m_thread.joinable())
        return;
    m_mailbox->post(Mailbox::Request::end);
    if (m_mailbox->waitForEnd(patience))
        m_thread.join();
    else
        m_thread.detach();
}

void NvidiaReader::request(bool withProcesses)
{
    m_user.check();
    startIfNeeded();
    m_mailbox->post(Mailbox::Request::read, withProcesses);
}

void NvidiaReader::release()
{
    m_user.check();
    m_mailbox->post(Mailbox::Request::release);
}

std::optional<NvidiaReading> NvidiaReader::newest() const
{
    m_user.check();
    auto reading = m_mailbox->newest();
    if (reading && m_clock() - reading->seconds > oldestLive)
        reading.reset();
    return reading;
}

Coverage NvidiaReader::coverage() const
{
    m_user.check();
    return m_mailbox->coverage();
}

/// The thread: closes the library at a release, when it fails, and at the end.
void NvidiaReader::work(const std::shared_ptr<Mailbox> &mailbox, const std::string &path,
                        const std::function<double()> &clock)
{
    using Request = Mailbox::Request;
    std::unique_ptr<NvidiaLibrary> library;
    double nextTry = -std::numeric_limits<double>::infinity();
    double nextRenewal = nextTry;
    for (auto order = mailbox->take(); order.request != Request::end; order = mailbox->take()) {
        const double now = clock();
        if (order.request == Request::release) {
            library.reset();
            continue;
        }
        if (!library && now >= nextTry)
            library = std::make_unique<NvidiaLibrary>(path);
        auto devices = library ? library->read(now, order.withProcesses) : std::nullopt;
        if (library)
            mailbox->setCoverage(library->coverage());
        if (devices) {
            mailbox->publish({.seconds = now, .devices = std::move(*devices)}, order);
            // The GPUs that are left stay readable meanwhile.
            if (library->hasLostGPU() && now >= nextRenewal) {
                library.reset();
                nextRenewal = now + secondsBetweenTries;
            }
            continue;
        }
        library.reset();
        if (now >= nextTry)
            nextTry = now + secondsBetweenTries;
    }
    library.reset();
    mailbox->setEnded();
}

} // namespace corvane
