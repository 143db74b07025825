#include "dashboard/DashboardLayout.h"

#include <algorithm>
#include <numeric>

namespace corvane {

namespace {

constexpr int padding = 16;
constexpr int gap = 14;
constexpr int headerHeight = 34;
constexpr std::array minimumHeights{236, 176, 240};
constexpr std::array naturalHeights{258, 222, 300};

/// One of `count` even shares of a row, its edges rounded.
QRect share(const QRect &row, int index, int count)
{
    const double width = static_cast<double>(row.width() - gap * (count - 1)) / count;
    const double left = row.left() + index * (width + gap);
    const int first = qRound(left);
    return {first, row.top(), qRound(left + width) - first, row.height()};
}

} // namespace

std::array<int, 3> dashboardRowHeights(int windowHeight)
{
    std::array<int, 3> heights = naturalHeights;
    const int rows = windowHeight - 2 * padding - headerHeight - 3 * gap;
    const int natural = std::accumulate(heights.begin(), heights.end(), 0);
    if (rows >= natural) {
        const int third = (rows - natural) / 3;
        heights[0] += third;
        heights[1] += third;
        heights[2] += rows - natural - 2 * third;
        return heights;
    }
    int missing = natural - rows;
    for (const std::size_t row : {1U, 0U, 2U}) {
        const int given = std::min(missing, heights[row] - minimumHeights[row]);
        heights[row] -= given;
        missing -= given;
    }
    return heights;
}

DashboardLayout dashboardLayout(const QSize &window)
{
    const int width = window.width() - 2 * padding;
    const std::array<int, 3> heights = dashboardRowHeights(window.height());
    const std::array<int, 3> cardsInRow{2, 3, 2};

    DashboardLayout layout{.header = {padding, padding, width, headerHeight}};
    int top = padding + headerHeight + gap;
    std::size_t next = 0;
    for (std::size_t row = 0; row < heights.size(); ++row) {
        for (int index = 0; index < cardsInRow[row]; ++index) {
            layout.cards[next++] =
                share({padding, top, width, heights[row]}, index, cardsInRow[row]);
        }
        top += heights[row] + gap;
    }
    return layout;
}

} // namespace corvane
