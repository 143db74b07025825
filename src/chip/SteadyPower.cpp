#include "chip/SteadyPower.h"

#include <algorithm>

namespace corvane {

namespace {

/// Batches come every 0.75 to 2.3 s: five seconds hold two of them and outlast a late one.
constexpr double windowSeconds = 5;

/// Two readings can follow each other within milliseconds.
constexpr double leastSeconds = 0.05;

} // namespace

std::optional<double> SteadyWatts::add(double joules, double seconds, Standstill standstill)
{
    m_time += seconds;
    if (joules > 0)
        m_hasMoved = true;
    const bool isRest = standstill == Standstill::published
        || (standstill == Standstill::idle && m_hasMoved && (!isBatched() || isStale()));
    if (joules > 0 || isRest) {
        addMark(std::max(joules, 0.0));
        m_watts = meanWatts();
        return m_watts;
    }
    m_stillAtWork = m_time;
    forgetStart();
    if (isStale())
        m_watts.reset();
    return m_watts;
}

bool SteadyWatts::isBatched() const
{
    return m_stillAtWork && m_time - *m_stillAtWork <= windowSeconds;
}

bool SteadyWatts::isStale() const
{
    return m_time - m_marks.back().time > windowSeconds;
}

/// With batches the energy of the first one belongs to an interval that began before the start.
void SteadyWatts::forgetStart()
{
    if (m_marks.size() < 2 || m_marks.front().time > 0)
        return;
    m_marks.erase(m_marks.begin());
    if (m_marks.size() == 1)
        m_watts.reset();
}

void SteadyWatts::addMark(double joules)
{
    m_marks.push_back({m_time, m_marks.back().joules + joules});
    if (isBatched())
        forgetStart();
    while (m_marks.size() > 2 && m_marks.front().time < m_time - windowSeconds)
        m_marks.erase(m_marks.begin());
}

std::optional<double> SteadyWatts::meanWatts() const
{
    if (m_marks.size() < 2)
        return std::nullopt;
    const Mark &newest = m_marks.back();
    const Mark &base = isBatched() ? m_marks.front() : m_marks[m_marks.size() - 2];
    return (newest.joules - base.joules) / (newest.time - base.time);
}

void SteadyPower::apply(ChipReading &reading, double seconds)
{
    using enum SteadyWatts::Standstill;
    const double interval = std::max(seconds, leastSeconds);
    const auto steady = [interval](SteadyWatts &part, double &watts, bool &isDenied,
                                   SteadyWatts::Standstill standstill) {
        const auto mean = part.add(watts * interval, interval, standstill);
        watts = mean.value_or(0);
        isDenied = !mean;
    };
    // The Neural Engine has no load of its own; its counter is published with that of the CPU,
    // which is never idle while this runs.
    const bool isPublished = reading.cpuWatts > 0;
    steady(m_ane, reading.aneWatts, reading.denied.aneWatts, isPublished ? published : working);
    steady(m_cpu, reading.cpuWatts, reading.denied.cpuWatts, working);
    steady(m_gpu, reading.gpuWatts, reading.denied.gpuWatts,
           reading.gpuActiveFraction > 0 ? working : idle);
}

} // namespace corvane
