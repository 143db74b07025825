#include "cpu/CoreTicks.h"

#include "cpu/ProcStat.h"
#include "platform/BootClock.h"
#include "platform/KernelFile.h"

#include <map>

namespace corvane {

namespace {

using Ticks = std::optional<std::vector<CoreTicks>>;

/// The file of one machine. The load of the chip and that of its cores both come from it, one right
/// after the other, and it is the dearest file of a tick: the second gets what the first has read.
struct TickFile {
    KernelFile stat;
    CPUTickCounters counters = {};
    Ticks ticks = {};
    double readAt = 0;
    unsigned int readings = 0;

    void read(double now)
    {
        ticks = counters.update(stat.read().value_or(std::string_view()));
        readAt = now;
        ++readings;
    }
};

std::shared_ptr<TickFile> tickFile(const std::string &root)
{
    static std::map<std::string, std::weak_ptr<TickFile>> files;
    std::weak_ptr<TickFile> &known = files[root];
    if (auto file = known.lock())
        return file;
    const std::shared_ptr<TickFile> file(new TickFile{.stat = KernelFile(root + "/proc/stat")});
    known = file;
    return file;
}

} // namespace

struct CoreTicksReader::State {
    std::shared_ptr<TickFile> file;
    unsigned int seen = 0; ///< The reading that was handed out last.
};

CoreTicksReader::CoreTicksReader(const std::string &root) : m_state(new State{tickFile(root)}) { }

CoreTicksReader::~CoreTicksReader() = default;

std::optional<std::vector<CoreTicks>> CoreTicksReader::read()
{
    constexpr double sameTick = 0.05; // Seconds.
    TickFile &file = *m_state->file;
    const double now = secondsSinceBoot();
    const bool hasNews = m_state->seen != file.readings && now - file.readAt < sameTick;
    if (!hasNews)
        file.read(now);
    m_state->seen = file.readings;
    return file.ticks;
}

} // namespace corvane
