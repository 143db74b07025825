#pragma once

#include <chrono>

namespace corvane {

/// How long the label waits for the desktop. A Mac's menu bar is always there and needs none of
/// these. Tests pass shorter times.
struct TrayWaits {
    /// For a tray, at the start and after one went away: a session starts its programs in any
    /// order, and a panel that restarts is gone for a moment.
    std::chrono::milliseconds tray{1500};

    /// For the desktop to read a registered item, once or again and again; then the next one is
    /// registered anyway.
    std::chrono::milliseconds read{5000};

    /// Between the last read of one item and the registration of the next. Xfce's panel reads three
    /// times, then writes a new item into its settings; a second new item that arrives before these
    /// have been read back is never shown.
    std::chrono::milliseconds quiet{600};

    /// Between the last registration and the check of the tray's list. A tray that loses an item
    /// does so within its start.
    std::chrono::milliseconds check{2000};
};

} // namespace corvane
