#pragma once

#include "instance/InstanceFolder.h"
#include "instance/InstanceMessage.h"
#include "platform/FolderLock.h"

#include <chrono>
#include <optional>
#include <string>

namespace corvane {

/// Makes this process the user's only Corvane or, if one runs already, asks that one to open its
/// dashboard, unless there is no message for it. Created before everything else and kept until the
/// process ends, because it holds the lock. Without a folder that can be locked, this process
/// counts as the first unless another one answers at once.
class SingleInstance {
public:
    enum class Standing {
        first,      ///< No other runs.
        second,     ///< Another runs and has opened its dashboard, if asked.
        unanswered, ///< Another runs but does not answer.
    };

    /// Blocks until the result is known, at most for the time-out: the other process may be
    /// starting or ending.
    explicit SingleInstance(const std::optional<InstanceMessage> &message,
                            std::chrono::milliseconds timeout = std::chrono::seconds(10),
                            const std::string &folder = instanceFolder());

    Standing standing() const { return m_standing; }

    /// Where the first instance listens; empty without a folder.
    const std::string &socketPath() const { return m_socketPath; }

private:
    FolderLock m_lock;
    std::string m_socketPath;
    Standing m_standing = Standing::first;
};

/// The message of this start, with the activation token that the desktop gave it.
InstanceMessage messageOfThisStart();

} // namespace corvane
