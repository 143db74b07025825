#pragma once

namespace corvane {

/// Makes the calling thread one that yields to everything the user waits for.
void lowerThreadPriority();

} // namespace corvane
