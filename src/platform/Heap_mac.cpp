#include "platform/Heap.h"

namespace corvane {

/// All threads share the zones already.
void shareOneHeap() { }

/// The system takes back what it needs when memory gets short.
void returnFreeMemory() { }

} // namespace corvane
