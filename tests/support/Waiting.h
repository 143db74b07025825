#pragma once

#include <QTest>

namespace corvane::test {

/// Milliseconds that a test waits at most; enough for a machine under load.
inline constexpr int patience = 60'000;

} // namespace corvane::test

/// Wait as long as `patience` for the condition, and fail the test if it does not come.
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, corvane::test::patience)
#define TRY_COMPARE(actual, expected)                                                              \
    QTRY_COMPARE_WITH_TIMEOUT(actual, expected, corvane::test::patience)
