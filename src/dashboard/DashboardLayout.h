#pragma once

#include <QRect>

#include <array>

namespace corvane {

/// The dashboard's cards in reading order.
enum class DashboardCard { memory, power, cpu, gpu, ane, workloads, processes };

/// Positions of the dashboard's parts in a window, in points.
struct DashboardLayout {
    static constexpr QSize minimum{920, 760};

    QRect header = {};
    std::array<QRect, 7> cards = {};

    const QRect &card(DashboardCard which) const { return cards[static_cast<std::size_t>(which)]; }
};

/// Heights of the three rows of cards in a window of that height. Each row gets a third of what
/// exceeds the sum of the natural heights. What is missing is taken from the second row first, then
/// from the first, then from the third, each down to its minimum.
std::array<int, 3> dashboardRowHeights(int windowHeight);

/// The cards of a row share its width evenly; their edges are on whole points.
DashboardLayout dashboardLayout(const QSize &window);

} // namespace corvane
