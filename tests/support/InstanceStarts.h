#pragma once

#include "instance/SingleInstance.h"

#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <future>
#include <string>

namespace corvane::test {

/// Starts of the program within this process. Each has a lock of its own on their common folder,
/// whose path is short enough for a socket.
class InstanceStarts {
public:
    const std::string &path() const { return m_path; }

    /// Another start's standing. It blocks, so it has a thread of its own; this outlives it.
    std::future<SingleInstance::Standing> second(
        std::chrono::milliseconds patience = std::chrono::minutes(1)) const
    {
        return std::async(std::launch::async, [this, patience] {
            return SingleInstance({.activationToken = "token"}, patience, m_path).standing();
        });
    }

private:
    const QTemporaryDir m_folder{QStringLiteral("/tmp/corvane-XXXXXX")};
    const std::string m_path = m_folder.path().toStdString();
};

} // namespace corvane::test

/// Compares with what another start comes to, once it has.
#define TRY_COMPARE_STANDING(future, expected)                                                     \
    QTRY_COMPARE_WITH_TIMEOUT((future).wait_for(std::chrono::seconds(0)),                          \
                              std::future_status::ready, 60'000);                                  \
    QCOMPARE((future).get(), expected)
