#include "platform/ThreadStart.h"

#include <system_error>
#include <utility>

namespace corvane {

std::thread startThread(std::function<void()> job)
{
    try {
        return std::thread(std::move(job));
    } catch (const std::system_error &) {
        return {};
    }
}

bool canStartThread()
{
    std::thread thread = startThread([] {});
    if (!thread.joinable())
        return false;
    thread.join();
    return true;
}

} // namespace corvane
