#include "memory/MemoryCounters.h"

#include "memory/MemoryFiles_linux.h"

namespace corvane {

MemoryCounters readMemoryCounters()
{
    constexpr std::chrono::milliseconds patienceAtStart(100);
    static MemoryFiles files("/", secondsSinceBoot, {.first = patienceAtStart});
    return files.read();
}

} // namespace corvane
