#pragma once

#include <cstddef>

#include <pthread.h>

namespace corvane::test {

/// While an object of this type exists, the system refuses every thread: there is no room for its
/// stack. Linux.
class NoThreads {
public:
    NoThreads()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t huge = {};
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t(1) << 47);
        pthread_setattr_default_np(&huge);
        pthread_attr_destroy(&huge);
    }
    ~NoThreads()
    {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoThreads(const NoThreads &) = delete;
    NoThreads &operator=(const NoThreads &) = delete;

private:
    pthread_attr_t m_before = {};
};

} // namespace corvane::test
