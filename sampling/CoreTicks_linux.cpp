#include "sampling/CoreTicks.h"

#include "platform/KernelFile.h"
#include "sampling/ProcStat.h"

namespace corvane {

struct CoreTicksReader::State {
    KernelFile stat;
    CPUTickCounters counters = {};
};

CoreTicksReader::CoreTicksReader(const std::string &root)
    : m_state(new State{.stat = KernelFile(root + "/proc/stat")})
{
}

CoreTicksReader::~CoreTicksReader() = default;

std::optional<std::vector<CoreTicks>> CoreTicksReader::read()
{
    return m_state->counters.update(m_state->stat.read().value_or(std::string_view()));
}

} // namespace corvane
