#pragma once

namespace corvane {

/// Makes all threads share one heap, since few of this program's allocate anything. To be called
/// before the first of them starts.
void shareOneHeap();

/// Gives what lies free in the heap back to the system, as after a window was closed.
void returnFreeMemory();

} // namespace corvane
