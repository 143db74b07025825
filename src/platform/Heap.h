#pragma once

namespace corvane {

/// Makes all threads share one heap, since few threads of this program allocate memory. Call it
/// before the first thread starts.
void shareOneHeap();

/// Returns free memory of the heap to the system, for example after a window was closed.
void returnFreeMemory();

} // namespace corvane
