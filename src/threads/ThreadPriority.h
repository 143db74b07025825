#pragma once

namespace corvane {

/// Lowers the priority of the calling thread, so that it yields to what the user waits for.
void lowerThreadPriority();

} // namespace corvane
