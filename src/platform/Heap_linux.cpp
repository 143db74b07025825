#include "platform/Heap.h"

#include <malloc.h>

namespace corvane {

void shareOneHeap()
{
    mallopt(M_ARENA_MAX, 1);
}

void returnFreeMemory()
{
    malloc_trim(0);
}

} // namespace corvane
