#pragma once

namespace corvane {

/// Starts the thread with which Qt paints large areas, the only one of Qt's global pool; it lives
/// as long as the process. Qt would start and end such threads while it paints, and would wait
/// forever for one that the system refuses. False if the system refuses this one; the process then
/// has to end without destroying the pool, which waits for it too. Main thread; once, before
/// anything is painted.
bool startPaintingThread();

} // namespace corvane
