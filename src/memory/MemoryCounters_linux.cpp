#include "memory/MemoryCounters.h"

#include "memory/MemoryFiles_linux.h"
#include "platform/MainThread.h"

namespace corvane {

MemoryCounters readMemoryCounters()
{
    assertMainThread();
    static MemoryFiles files("/");
    return files.read();
}

} // namespace corvane
