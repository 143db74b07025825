#include "threads/ThreadName.h"

#include <algorithm>

#include <pthread.h>

namespace corvane {

void nameThread(const std::string &name)
{
    constexpr std::size_t maxBytes = 15; // A longer name is refused.
    const std::size_t start = name.size() - std::min(name.size(), maxBytes);
    pthread_setname_np(pthread_self(), name.c_str() + start);
}

} // namespace corvane
