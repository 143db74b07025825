#include "threads/ThreadPriority.h"

#include <sys/resource.h>
#include <unistd.h>

namespace corvane {

void lowerThreadPriority()
{
    // Linux keeps a priority for each thread: the others keep theirs.
    constexpr int niceness = 10;
    const auto thread = static_cast<id_t>(gettid());
    if (getpriority(PRIO_PROCESS, thread) < niceness)
        setpriority(PRIO_PROCESS, thread, niceness);
}

} // namespace corvane
