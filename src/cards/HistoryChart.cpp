#include "cards/HistoryChart.h"

namespace corvane {

SparklineData historyChart(const std::vector<SystemMetrics> &history)
{
    SparklineData chart;
    chart.timestamps.reserve(history.size());
    for (const SystemMetrics &sample : history)
        chart.timestamps.push_back(sample.timestamp);
    if (!history.empty())
        chart.xDomain = {history.front().timestamp, history.back().timestamp};
    return chart;
}

} // namespace corvane
