#pragma once

#include "instance/SingleInstance.h"

#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <future>
#include <string>

namespace corvane::test {

/// Starts of the program, simulated in this process. Each has its own lock on their common folder,
/// whose path is short enough for a socket.
class InstanceStarts {
public:
    const std::string &path() const { return m_path; }

    /// The standing of another start, which blocks and so runs on a thread. This must outlive it.
    std::future<SingleInstance::Standing> second(
        std::chrono::milliseconds timeout = std::chrono::minutes(1)) const
    {
        return std::async(std::launch::async, [this, timeout] {
            return SingleInstance(InstanceMessage{.activationToken = "token"}, timeout, m_path)
                .standing();
        });
    }

private:
    const QTemporaryDir m_folder{QStringLiteral("/tmp/corvane-XXXXXX")};
    const std::string m_path = m_folder.path().toStdString();
};

} // namespace corvane::test

/// Waits for another start's standing and compares it.
#define TRY_COMPARE_STANDING(future, expected)                                                     \
    QTRY_COMPARE_WITH_TIMEOUT((future).wait_for(std::chrono::seconds(0)),                          \
                              std::future_status::ready, 60'000);                                  \
    QCOMPARE((future).get(), expected)
