#pragma once

#include <QtGlobal>

#include <array>
#include <optional>

namespace corvane {

/// How much history the charts cover; the value is the length in whole seconds. One minute is kept
/// sample by sample, the longer ones as means.
enum class HistoryWindow : qint64 { oneMin = 60, tenMin = 600, oneHour = 3'600, oneDay = 86'400 };

inline constexpr std::array allHistoryWindows{HistoryWindow::oneMin, HistoryWindow::tenMin,
                                              HistoryWindow::oneHour, HistoryWindow::oneDay};

/// Length in seconds.
constexpr qint64 seconds(HistoryWindow window)
{
    return static_cast<qint64>(window);
}

/// The window of that many seconds; absent when there is none.
constexpr std::optional<HistoryWindow> historyWindow(qint64 rawSeconds)
{
    for (const HistoryWindow window : allHistoryWindows) {
        if (seconds(window) == rawSeconds)
            return window;
    }
    return std::nullopt;
}

} // namespace corvane
