#pragma once

#include <functional>
#include <system_error>
#include <thread>
#include <utility>

namespace corvane {

/// Starts a thread that runs the job. Not joinable if the system refuses a thread, as it does at a
/// user's limit of processes or without memory; the job is not run then. Any thread.
inline std::thread startThread(std::function<void()> job)
{
    try {
        return std::thread(std::move(job));
    } catch (const std::system_error &) {
        return {};
    }
}

/// Whether the system grants a thread now. Libraries that wait for threads of their own without
/// looking whether they were started are called only then. Any thread.
inline bool canStartThread()
{
    std::thread thread = startThread([] {});
    if (!thread.joinable())
        return false;
    thread.join();
    return true;
}

} // namespace corvane
