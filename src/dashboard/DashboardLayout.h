#pragma once

#include <QRect>

#include <array>

namespace corvane {

/// The dashboard's cards in reading order.
enum class DashboardCard { memory, power, cpu, gpu, ane, workloads, processes };

/// Where the parts of the dashboard lie in a window.
struct DashboardLayout {
    static constexpr QSize minimum{920, 760};

    QRect header = {};
    std::array<QRect, 7> cards = {};

    const QRect &card(DashboardCard which) const { return cards[static_cast<std::size_t>(which)]; }
};

/// Heights of the three rows of cards in a window of that height. Above their natural sum each gets
/// a third of the surplus; below it the second row gives way first, then the first, then the third,
/// each down to its minimum. Pure.
std::array<int, 3> dashboardRowHeights(int windowHeight);

/// Edges on whole points; the cards of a row share it evenly.
DashboardLayout dashboardLayout(const QSize &window);

} // namespace corvane
