#pragma once

#include <functional>
#include <thread>

namespace corvane {

/// Starts a thread that runs the job. Not joinable if the system refuses a thread, as it does at a
/// user's limit of processes or without memory; the job is not run then. Any thread.
std::thread startThread(std::function<void()> job);

/// Whether the system grants a thread now. Libraries that wait for threads of their own without
/// looking whether they were started are called only then. Any thread.
bool canStartThread();

} // namespace corvane
