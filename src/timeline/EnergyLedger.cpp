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
    if (time >= m_week.lastStart && time < m_week.end)
        m_week.days.back().energy += energy;
    else
        m_week = {};
    if (m_quarters.size() > mostQuarters)
        m_quarters.erase(m_quarters.begin());
}

std::vector<DayEnergy> EnergyLedger::week(double now) const
{
    const QDateTime local = localDateTime(now);
    if (!local.isValid())
        return {};
    if (now >= m_week.lastStart && now < m_week.end
        && local.offsetFromUtc() == m_week.secondsFromUTC)
        return m_week.days;
    const QDate today = local.date();
    m_week = {.end = dayStart(today.addDays(1 - weekDays)),
              .secondsFromUTC = local.offsetFromUtc()};
    auto quarter = std::ranges::lower_bound(m_quarters, m_week.end, {}, &Quarter::start);
    for (int back = weekDays - 1; back >= 0; --back) {
        DayEnergy day{.date = today.addDays(-back)};
        m_week.lastStart = m_week.end;
        m_week.end = dayStart(day.date.addDays(1));
        for (; quarter != m_quarters.end() && quarter->start < m_week.end; ++quarter)
            day.energy += quarter->energy;
        m_week.days.push_back(day);
    }
    return m_week.days;
}

} // namespace corvane
