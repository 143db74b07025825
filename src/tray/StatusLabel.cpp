#include "tray/StatusLabel.h"

namespace corvane {

std::vector<StatusRun> statusRuns(const LabelNumbers &numbers)
{
    constexpr double gap = 5;
    std::vector<StatusRun> runs;
    for (const LabelNumber &number : numbers)
        runs.push_back({number.text.toStdString(), statusColor(number.color), gap});
    runs.back().gapAfter = 0;
    return runs;
}

StatusColor statusColor(const QColor &color)
{
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

QPoint statusAnchor(const StatusPlace &place)
{
    return {qRound(place.middle), qRound(place.primaryScreenHeight - place.bottom)};
}

} // namespace corvane
