#pragma once

#include <QByteArray>

#include <memory>
#include <optional>

namespace corvane::test {

/// An X11 session manager for one program, which works while events are processed. Only one may
/// exist at a time. Main thread.
class SessionManager {
public:
    SessionManager();
    ~SessionManager();

    /// The value for SESSION_MANAGER; empty if the manager could not start.
    QByteArray address() const;

    /// Whether the program has registered and answered the request that follows.
    bool hasClient() const;

    /// Requests the program to save its state because the session ends; it may ask the user.
    void announceEnd();

    /// Whether the program answered that it is ready.
    bool isReadyForEnd() const;

    /// Requests the program to quit.
    void end();

    /// How often the program requested to ask the user.
    int questions() const;

    /// The restart style that the program has set; absent if it has not.
    std::optional<int> restartStyle() const;

    static constexpr int restartNever = 3; ///< SmRestartNever.

private:
    struct Session;
    std::unique_ptr<Session> m_session;
};

} // namespace corvane::test
