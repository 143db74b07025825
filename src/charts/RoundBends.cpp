#include "charts/RoundBends.h"

#include <cmath>
#include <numbers>

namespace corvane {

namespace {

constexpr double sharp = std::numbers::pi / 4; ///< A mitre reaches 8 % beyond a round join there.
constexpr double turnOfStep = 0.4;     ///< Radians; its mitre reaches 2 % beyond the circle.
constexpr double lengthOfStep = 0.001; ///< Points; too short to be seen.

/// The angle from one direction to another, between -π and π.
double turnBetween(const QPointF &from, const QPointF &to)
{
    return std::atan2(from.x() * to.y() - from.y() * to.x(), QPointF::dotProduct(from, to));
}

void appendArc(QPolygonF &line, const QPointF &before, double turn)
{
    const double start = std::atan2(before.y(), before.x());
    const int steps = static_cast<int>(std::ceil(std::abs(turn) / turnOfStep));
    for (int step = 1; step < steps; ++step) {
        const double angle = start + turn * step / steps;
        line.append(line.back() + lengthOfStep * QPointF(std::cos(angle), std::sin(angle)));
    }
}

} // namespace

QPolygonF withRoundBends(const QPolygonF &line)
{
    QPolygonF rounded;
    rounded.reserve(line.size());
    for (qsizetype i = 0; i < line.size(); ++i) {
        rounded.append(line[i]);
        if (i == 0 || i + 1 == line.size())
            continue;
        const QPointF before = line[i] - line[i - 1];
        const double turn = turnBetween(before, line[i + 1] - line[i]);
        if (std::abs(turn) > sharp)
            appendArc(rounded, before, turn);
    }
    return rounded;
}

} // namespace corvane
