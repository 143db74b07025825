#include "dashboard/DashboardLayout.h"

#include "records/MachineParts.h"
#include "ui/ContentArea.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace corvane {

namespace {

using enum DashboardCard;
using Cell = DashboardRow::Cell;

constexpr int padding = 16;
constexpr int gap = 14;
constexpr int headerHeight = 34;
constexpr std::array minimumHeights{236, 176, 240};
constexpr std::array naturalHeights{258, 222, 300};

/// Equal shares of a row for all cards.
DashboardRow evenly(std::initializer_list<DashboardCard> cards)
{
    DashboardRow row;
    for (const DashboardCard card : cards)
        row.cells.push_back({card});
    return row;
}

DashboardRow lists()
{
    return evenly({workloads, processes});
}

DashboardGrid gridWithGPUMemory(const MachineCoverage &machine)
{
    const bool watts = hasWatts(machine);
    const bool npuToo = hasNPU(machine);
    const DashboardRow memories = evenly({memory, gpuMemory});
    if (countedGPUs(machine).size() == 1) {
        DashboardRow units = evenly({cpu, gpu});
        if (npuToo)
            units.cells.push_back({npu});
        if (watts)
            units.cells.push_back({smallPower});
        return {memories, units, lists()};
    }
    if (npuToo && watts) // Four quarters are too narrow for the columns of several GPUs.
        return {evenly({memory, gpuMemory, smallPower}), {{{cpu}, {npu}, {gpus, 2}}}, lists()};
    if (npuToo)
        return {memories, {{{cpu}, {npu}, {gpus, 2}}}, lists()};
    if (watts)
        return {memories, {{{cpu}, {smallPower}, {gpus, 2}}}, lists()};
    return {memories, evenly({cpu, gpus}), lists()};
}

DashboardGrid gridWithGPU(const MachineCoverage &machine)
{
    const bool npuToo = hasNPU(machine);
    const DashboardCard load = countedGPUs(machine).size() == 1 ? gpu : gpus;
    if (hasWatts(machine)) {
        return {evenly({memory, power}), npuToo ? evenly({cpu, load, npu}) : evenly({cpu, load}),
                lists()};
    }
    if (npuToo)
        return {evenly({memory, cpu}), evenly({load, npu}), lists()};
    if (load == gpus)
        return {evenly({memory, cpu, gpus}), lists()};
    return {{{{memory, 2}, {cpu}, {gpu}}}, lists()};
}

DashboardGrid gridWithoutGPU(const MachineCoverage &machine)
{
    const bool npuToo = hasNPU(machine);
    if (hasWatts(machine) && npuToo)
        return {evenly({memory, power}), evenly({cpu, npu}), lists()};
    if (hasWatts(machine))
        return {{{{memory, 2}, {cpu}, {smallPower}}}, lists()};
    if (npuToo)
        return {{{{memory, 2}, {cpu}, {npu}}}, lists()};
    return {evenly({memory, cpu}), lists()};
}

/// The place of a card that starts at a column of a row.
QRectF placeOf(const QRectF &row, int column, int span, int columns)
{
    const double width = (row.width() - gap * (columns - 1)) / columns;
    const double left = row.left() + column * (width + gap);
    return {left, row.top(), span * (width + gap) - gap, row.height()};
}

std::vector<int> twoRowHeights(int windowHeight)
{
    const int both = std::max(windowHeight, DashboardLayout::minimum.height()) - 2 * padding
        - headerHeight - 2 * gap;
    constexpr int first = naturalHeights[0];
    constexpr int last = naturalHeights[2];
    const int firstHeight = first + 2 * (both - first - last) / 3;
    return {firstHeight, both - firstHeight};
}

} // namespace

int DashboardRow::columns() const
{
    return std::accumulate(cells.begin(), cells.end(), 0,
                           [](int sum, const Cell &cell) { return sum + cell.columns; });
}

DashboardGrid dashboardGrid(const MachineCoverage &machine)
{
    if (machine.isWhole)
        return {evenly({memory, power}), evenly({cpu, gpu, npu}), lists()};
    if (!gpusWithMemory(machine).empty())
        return gridWithGPUMemory(machine);
    if (!machine.gpus.empty())
        return gridWithGPU(machine);
    return gridWithoutGPU(machine);
}

QRectF DashboardLayout::card(DashboardCard which) const
{
    const auto found = std::ranges::find(cards, which, &Place::card);
    return found == cards.end() ? QRectF() : found->rect;
}

std::vector<int> dashboardRowHeights(int windowHeight, std::size_t rows)
{
    if (rows == 2)
        return twoRowHeights(windowHeight);
    std::vector<int> heights(naturalHeights.begin(), naturalHeights.end());
    const int available = windowHeight - 2 * padding - headerHeight - 3 * gap;
    const int natural = std::accumulate(heights.begin(), heights.end(), 0);
    if (available >= natural) {
        const int third = (available - natural) / 3;
        heights[0] += third;
        heights[1] += third;
        heights[2] += available - natural - 2 * third;
        return heights;
    }
    int missing = natural - available;
    for (const std::size_t row : {1U, 0U, 2U}) {
        const int given = std::min(missing, heights[row] - minimumHeights[row]);
        heights[row] -= given;
        missing -= given;
    }
    return heights;
}

DashboardLayout dashboardLayout(const QSize &window, const DashboardGrid &grid, double scale)
{
    const int width = window.width() - 2 * padding;
    const std::vector<int> heights = dashboardRowHeights(window.height(), grid.size());

    DashboardLayout layout{.header = {padding, padding, width, headerHeight}};
    int top = padding + headerHeight + gap;
    for (std::size_t row = 0; row < grid.size(); ++row) {
        int column = 0;
        for (const auto &[card, span] : grid[row].cells) {
            const QRectF line(padding, top, width, heights[row]);
            const QRectF place = placeOf(line, column, span, grid[row].columns());
            layout.cards.push_back({card, edgesOnPixels(place, scale)});
            column += span;
        }
        top += heights[row] + gap;
    }
    return layout;
}

} // namespace corvane
