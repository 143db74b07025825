#include "platform/Heap.h"

namespace corvane {

/// Its zones are shared already.
void shareOneHeap() { }

/// The system takes back what it needs when memory gets short.
void returnFreeMemory() { }

} // namespace corvane
