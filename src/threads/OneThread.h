#pragma once

#include <cassert>
#include <thread>

namespace corvane {

/// A member of objects that belong to one thread: the first that calls `check`. Stops a debug build
/// when another thread calls it. After a move the object belongs to the thread that uses it next.
class OneThread {
public:
    OneThread() = default;
    OneThread(OneThread &&) noexcept { }
    OneThread &operator=(OneThread &&) noexcept
    {
        m_user = {};
        return *this;
    }

    void check()
    {
        if (m_user == std::thread::id())
            m_user = std::this_thread::get_id();
        assert(m_user == std::this_thread::get_id());
    }

private:
    std::thread::id m_user = {};
};

} // namespace corvane
