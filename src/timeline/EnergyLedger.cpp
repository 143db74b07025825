#include "timeline/EnergyLedger.h"

#include "records/ReferenceDate.h"
#include "timeline/MeanRecord.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr std::size_t mostQuarters = std::size_t(9) * 24 * 4;
constexpr int weekDays = 7;

/// The first instant of a local day, in seconds since 2001.
double dayStart(const QDate &date)
{
    static const double reference =
        static_cast<double>(localDateTime(0).toMSecsSinceEpoch()) / 1000;
    return static_cast<double>(date.startOfDay().toMSecsSinceEpoch()) / 1000 - reference;
}

} // namespace

EnergyLedger::EnergyLedger()
{
    m_quarters.reserve(mostQuarters + 1);
}

void EnergyLedger::add(double time, const Energy &energy)
{
    const double start = spanStart(time, quarterSeconds);
    auto place = m_quarters.end();
    if (!m_quarters.empty() && m_quarters.back().start >= start)
        place = std::ranges::lower_bound(m_quarters, start, {}, &Quarter::start);
    if (place == m_quarters.end() || place->start != start)
        place = m_quarters.insert(place, {.start = start});
    place->energy += energy;
    if (m_quarters.size() > mostQuarters)
        m_quarters.erase(m_quarters.begin());
}

std::vector<DayEnergy> EnergyLedger::week(double now) const
{
    const QDate today = localDateTime(now).date();
    if (!today.isValid())
        return {};
    std::vector<DayEnergy> days;
    for (int back = weekDays - 1; back >= 0; --back) {
        const QDate date = today.addDays(-back);
        DayEnergy day{.date = date};
        const double end = dayStart(date.addDays(1));
        auto quarter = std::ranges::lower_bound(m_quarters, dayStart(date), {}, &Quarter::start);
        for (; quarter != m_quarters.end() && quarter->start < end; ++quarter)
            day.energy += quarter->energy;
        days.push_back(day);
    }
    return days;
}

} // namespace corvane
