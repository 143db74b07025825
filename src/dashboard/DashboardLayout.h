#pragma once

#include "records/MachineCoverage.h"

#include <QRect>

#include <vector>

namespace corvane {

/// What a card of the dashboard is about.
enum class DashboardCard {
    memory,
    gpuMemory,
    power,      ///< As wide as the memory card, with the chart alone.
    smallPower, ///< With a figure, like the cards of the units.
    cpu,
    gpu,
    gpus, ///< Several GPUs, a column each.
    npu,
    workloads,
    processes
};

/// A row of cards. Its width is divided into equal columns, each card takes some of them.
struct DashboardRow {
    struct Cell {
        DashboardCard card = DashboardCard::memory;
        int columns = 1;

        friend bool operator==(const Cell &, const Cell &) = default;
    };

    std::vector<Cell> cells = {};

    int columns() const;

    friend bool operator==(const DashboardRow &, const DashboardRow &) = default;
};

using DashboardGrid = std::vector<DashboardRow>; ///< Two or three rows.

/// The cards of a machine. They depend on the devices that are there and not on what these tell at
/// the moment.
DashboardGrid dashboardGrid(const MachineCoverage &machine);

/// Positions of the dashboard's parts in a window, in points.
struct DashboardLayout {
    static constexpr QSize minimum{920, 760};

    struct Place {
        DashboardCard card = DashboardCard::memory;
        QRectF rect = {};
    };

    QRect header = {};
    std::vector<Place> cards = {}; ///< In reading order.

    /// Null if there is no such card.
    QRectF card(DashboardCard which) const;
};

/// Heights of the rows of cards in a window of that height. Of three rows each gets a third of what
/// exceeds the sum of the natural heights, of two the first gets two thirds. What is missing is
/// taken from the second row first, then from the first, then from the third, each down to its
/// minimum.
std::vector<int> dashboardRowHeights(int windowHeight, std::size_t rows);

/// The edges of the cards are on device pixels, at that many of them to the point.
DashboardLayout dashboardLayout(const QSize &window, const DashboardGrid &grid, double scale = 1);

} // namespace corvane
