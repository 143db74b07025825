#include "timeline/Timeline.h"

#include <algorithm>
#include <utility>

namespace corvane {

std::optional<MinuteRecord> Timeline::add(const SystemMetrics &sample, double steadySeconds)
{
    const Measures measures = measuresOf(sample, coverageOf(sample));
    const double before = std::exchange(m_lastSteady, steadySeconds).value_or(steadySeconds);
    const Energy energy = energyOf(measures, measuredSeconds(before, steadySeconds));
    m_lastTime = sample.timestamp;
    m_sinceStart += energy;
    return add(sample.timestamp, measures, energy);
}

std::optional<MinuteRecord> Timeline::add(double time, const Measures &measures,
                                          const Energy &energy)
{
    beginShortSpan(spanStart(time, shortSpan), time);
    m_short.means.add(measures);
    std::optional<MinuteRecord> ended = beginMinute(spanStart(time, minuteSeconds), time);
    m_minute.means.add(measures);
    m_minute.energy += energy;
    m_ledger.add(time, energy);
    return ended;
}

/// Ends the open span unless it is that one.
void Timeline::beginShortSpan(double start, double now)
{
    if (m_short.start && *m_short.start != start) {
        m_shortSpans.insert(m_short.means.record(*m_short.start, shortSpan), now);
        m_short = {};
    }
    m_short.start = start;
}

std::optional<MinuteRecord> Timeline::beginMinute(double start, double now)
{
    std::optional<MinuteRecord> ended;
    if (m_minute.start && *m_minute.start != start) {
        ended = {m_minute.means.record(*m_minute.start, minuteSeconds), m_minute.energy};
        m_minutes.insert(ended->means, now);
        m_minute = {};
    }
    m_minute.start = start;
    return ended;
}

std::vector<MinuteRecord> Timeline::add(const LoadedMinutes &loaded, const MachineCoverage &machine)
{
    for (const EnergyLedger::Quarter &quarter : loaded.energy)
        m_ledger.add(quarter.start, quarter.energy);
    for (const MeanRecord &minute : loaded.means)
        m_minutes.insert(minute, m_lastTime);

    // The unsaved samples go through what is open, as if they had just been taken. What was open
    // follows them.
    const Open openShort = std::exchange(m_short, {});
    const Open openMinute = std::exchange(m_minute, {});
    std::vector<MinuteRecord> ended;
    const auto keep = [&ended](const std::optional<MinuteRecord> &minute) {
        if (minute)
            ended.push_back(*minute);
    };
    for (const auto &[sample, seconds] : loaded.unsaved) {
        const Measures measures = measuresOf(sample, machine);
        keep(add(sample.timestamp, measures, energyOf(measures, seconds)));
    }
    if (openShort.start) {
        beginShortSpan(*openShort.start, m_lastTime);
        m_short.means.add(openShort.means);
    }
    if (openMinute.start) {
        keep(beginMinute(*openMinute.start, m_lastTime));
        m_minute.means.add(openMinute.means);
        m_minute.energy += openMinute.energy;
    }
    seedShortSpans(loaded.means, m_lastTime);
    return ended;
}

/// For the part of the hour before the start, of which the disk keeps minutes alone.
void Timeline::seedShortSpans(const std::vector<MeanRecord> &minutes, double now)
{
    const auto &records = m_shortSpans.records();
    const double first = records.empty() ? now : records.front().start;
    for (const MeanRecord &minute : minutes) {
        if (minute.end() <= first && minute.start >= now - shortKept)
            m_shortSpans.insert(minute, now);
    }
}

MeanWindow Timeline::window(double seconds, double now) const
{
    const bool isShort = seconds <= shortKept;
    const std::vector<MeanRecord> &records = (isShort ? m_shortSpans : m_minutes).records();
    const double end = spanStart(now, isShort ? shortSpan : minuteSeconds);
    const double begin = end - seconds;
    const auto first = std::ranges::lower_bound(
        records, begin, {}, [](const MeanRecord &record) { return record.end(); });
    const auto last = std::ranges::upper_bound(
        first, records.end(), end, {}, [](const MeanRecord &record) { return record.end(); });
    return {begin, end, std::span(first, last)};
}

EnergyReport Timeline::energy(double now) const
{
    return {m_sinceStart, m_ledger.week(now)};
}

} // namespace corvane
