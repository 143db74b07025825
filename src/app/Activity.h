#pragma once

#include <memory>

namespace corvane {

/// Keeps the system from slowing this program down while none of its windows is visible. A Mac
/// coalesces the timers of such a program: a sample a second becomes one in eight seconds. The
/// computer may still fall asleep. On Linux nothing has to be done.
///
/// Owned by the application, for its whole life; main thread.
class Activity {
public:
    Activity();
    ~Activity();
    Activity(const Activity &) = delete;
    Activity &operator=(const Activity &) = delete;

private:
    struct Token; ///< Null where there is nothing to hold.
    std::unique_ptr<Token> m_token;
};

} // namespace corvane
