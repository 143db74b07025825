#pragma once

#include "instance/InstanceFolder.h"
#include "instance/InstanceMessage.h"
#include "platform/FolderLock.h"

#include <chrono>
#include <string>

namespace corvane {

/// Makes this process the user's one Corvane; where there is one, asks that to open its dashboard.
/// Made first of all and kept until the process ends, since the lock goes with it. Without a folder
/// that can be locked, this process takes itself for the first unless another answers right away.
class SingleInstance {
public:
    enum class Standing {
        first,      ///< No other runs.
        second,     ///< Another runs and has opened its dashboard.
        unanswered, ///< Another runs but does not answer.
    };

    /// Returns when the standing is known, within the patience: the other may be about to start, or
    /// to end.
    explicit SingleInstance(const InstanceMessage &message,
                            std::chrono::milliseconds patience = std::chrono::seconds(10),
                            const std::string &folder = instanceFolder());

    Standing standing() const { return m_standing; }

    /// Where the first is to be asked; empty: nowhere.
    const std::string &socketPath() const { return m_socketPath; }

private:
    FolderLock m_lock;
    std::string m_socketPath;
    Standing m_standing = Standing::first;
};

/// The message of this start, with the token that the desktop gave it.
InstanceMessage messageOfThisStart();

} // namespace corvane
