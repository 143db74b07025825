#include "memory/MemoryCounters.h"

#include "memory/MemoryFiles_linux.h"

namespace corvane {

MemoryCounters readMemoryCounters()
{
    static MemoryFiles files("/");
    return files.read();
}

} // namespace corvane
