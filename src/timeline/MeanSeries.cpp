#include "timeline/MeanSeries.h"

#include <algorithm>
#include <iterator>

namespace corvane {

MeanSeries::MeanSeries(double seconds, std::size_t most) : m_seconds(seconds), m_most(most)
{
    m_records.reserve(most + 1);
}

void MeanSeries::insert(const MeanRecord &record, double now)
{
    const auto place = std::ranges::upper_bound(m_records, record.start, {}, &MeanRecord::start);
    if (place != m_records.begin() && std::prev(place)->end() > record.start)
        *std::prev(place) = merged(*std::prev(place), record);
    else
        m_records.insert(place, record);
    dropOutside(now);
}

void MeanSeries::dropOutside(double now)
{
    constexpr double day = 86'400;
    const auto future = std::ranges::upper_bound(m_records, now + day, {}, &MeanRecord::start);
    m_records.erase(future, m_records.end());
    const auto kept = std::ranges::lower_bound(m_records, now - m_seconds, {}, &MeanRecord::start);
    m_records.erase(m_records.begin(), kept);
    if (m_records.size() > m_most)
        m_records.erase(m_records.begin(), m_records.end() - static_cast<std::ptrdiff_t>(m_most));
}

} // namespace corvane
