#include "gpu/NvidiaReader.h"

#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <utility>

namespace corvane {

namespace {

enum class Wish { nothing, reading, release, end };

constexpr double secondsBetweenTries = 60;
constexpr double oldestLive = 2.5;

} // namespace

/// What passes between the two threads.
struct NvidiaReader::Desk {
    const std::string library;
    const std::function<double()> clock;

    std::mutex mutex = {};
    std::condition_variable changed = {};
    Wish wish = Wish::nothing; ///< Guarded by `mutex`, as are the next three.
    unsigned int releases = 0; ///< A reading begun before the last one is dropped.
    std::optional<NvidiaReading> newest = {};
    bool ended = false;

    struct Order {
        Wish wish = Wish::end;
        unsigned int releases = 0;
    };

    /// Waits for a wish and takes it.
    Order takeOrder()
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return wish != Wish::nothing; });
        return {std::exchange(wish, Wish::nothing), releases};
    }

    /// The end is final: no later wish takes its place.
    void ask(Wish next)
    {
        const std::lock_guard lock(mutex);
        if (wish != Wish::end)
            wish = next;
        if (next == Wish::release) {
            ++releases;
            newest.reset();
        }
        changed.notify_all();
    }

    void publish(NvidiaReading reading, unsigned int begunAt)
    {
        const std::lock_guard lock(mutex);
        if (releases == begunAt)
            newest = std::move(reading);
    }
};

NvidiaReader::NvidiaReader(std::string library, std::function<double()> clock)
    : m_clock(clock),
      m_desk(new Desk{.library = std::move(library), .clock = std::move(clock)}),
      m_thread([desk = m_desk] { work(desk); })
{
}

NvidiaReader::~NvidiaReader()
{
    constexpr std::chrono::seconds patience(1);
    m_desk->ask(Wish::end);
    std::unique_lock lock(m_desk->mutex);
    const bool ended = m_desk->changed.wait_for(lock, patience, [this] { return m_desk->ended; });
    lock.unlock();
    if (ended)
        m_thread.join();
    else
        m_thread.detach();
}

void NvidiaReader::request()
{
    m_desk->ask(Wish::reading);
}

void NvidiaReader::release()
{
    m_desk->ask(Wish::release);
}

std::optional<NvidiaReading> NvidiaReader::newest() const
{
    const double now = m_clock();
    const std::lock_guard lock(m_desk->mutex);
    if (!m_desk->newest || now - m_desk->newest->seconds > oldestLive)
        return std::nullopt;
    return m_desk->newest;
}

/// The thread: closes the library when it is told to, when it fails, and at the end.
void NvidiaReader::work(const std::shared_ptr<Desk> &desk)
{
    std::unique_ptr<NvidiaLibrary> library;
    double nextTry = -std::numeric_limits<double>::infinity();
    for (auto order = desk->takeOrder(); order.wish != Wish::end; order = desk->takeOrder()) {
        const double now = desk->clock();
        if (order.wish == Wish::release) {
            library.reset();
            continue;
        }
        if (!library && now >= nextTry)
            library = NvidiaLibrary::open(desk->library);
        auto devices = library ? library->read() : std::nullopt;
        if (devices) {
            desk->publish({.seconds = now, .devices = std::move(*devices)}, order.releases);
            continue;
        }
        library.reset();
        if (now >= nextTry)
            nextTry = now + secondsBetweenTries;
    }
    library.reset();
    const std::lock_guard lock(desk->mutex);
    desk->ended = true;
    desk->changed.notify_all();
}

} // namespace corvane
