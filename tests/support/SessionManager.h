#pragma once

#include <QByteArray>

#include <memory>
#include <optional>

namespace corvane::test {

/// A session manager of X11 for one program. It talks to it while events are processed. One at a
/// time; main thread.
class SessionManager {
public:
    SessionManager();
    ~SessionManager();

    /// As in SESSION_MANAGER; empty if it cannot be reached.
    QByteArray address() const;

    /// Whether the program came and answered the first request that each gets.
    bool hasClient() const;

    /// Asks the program to save what it has, since the session ends; it may put questions.
    void announceEnd();

    /// Whether it answered that it is ready for the end.
    bool isReadyForEnd() const;

    /// Tells it to be gone.
    void end();

    /// How often it wanted to ask the user, or to keep the session.
    int questions() const;

    /// The number of the way in which the program wants to be started again, if it told.
    std::optional<int> restartStyle() const;

    static constexpr int restartNever = 3; ///< SmRestartNever.

private:
    struct Session;
    std::unique_ptr<Session> m_session;
};

} // namespace corvane::test
