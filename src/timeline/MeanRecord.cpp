#include "timeline/MeanRecord.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane {

namespace {

std::uint16_t addedCounts(std::uint16_t a, std::uint16_t b)
{
    constexpr unsigned most = std::numeric_limits<std::uint16_t>::max();
    return static_cast<std::uint16_t>(std::min(unsigned(a) + unsigned(b), most));
}

} // namespace

double spanStart(double time, double seconds)
{
    return std::floor(time / seconds) * seconds;
}

Mean merged(const Mean &a, const Mean &b)
{
    if (a.known == 0)
        return b;
    if (b.known == 0)
        return a;
    const double sum = double(a.mean) * a.known + double(b.mean) * b.known;
    return {.mean = static_cast<float>(sum / (double(a.known) + double(b.known))),
            .least = std::min(a.least, b.least),
            .greatest = std::max(a.greatest, b.greatest),
            .known = addedCounts(a.known, b.known)};
}

MeanRecord merged(const MeanRecord &a, const MeanRecord &b)
{
    MeanRecord both = a;
    for (std::size_t i = 0; i < measureCount; ++i)
        both.means[i] = merged(a.means[i], b.means[i]);
    return both;
}

void MeanBuilder::Sum::add(const Sum &other)
{
    if (other.known == 0)
        return;
    least = known > 0 ? std::min(least, other.least) : other.least;
    greatest = known > 0 ? std::max(greatest, other.greatest) : other.greatest;
    sum += other.sum;
    known = addedCounts(known, other.known);
}

void MeanBuilder::add(const Measures &measures)
{
    for (std::size_t i = 0; i < measureCount; ++i) {
        if (const auto &value = measures[i])
            m_sums[i].add({.sum = *value, .least = *value, .greatest = *value, .known = 1});
    }
}

void MeanBuilder::add(const MeanBuilder &other)
{
    for (std::size_t i = 0; i < measureCount; ++i)
        m_sums[i].add(other.m_sums[i]);
}

MeanRecord MeanBuilder::record(double start, double seconds) const
{
    MeanRecord record{.start = start, .seconds = static_cast<float>(seconds)};
    for (std::size_t i = 0; i < measureCount; ++i) {
        const Sum &sum = m_sums[i];
        if (sum.known > 0)
            record.means[i] = {.mean = static_cast<float>(sum.sum / sum.known),
                               .least = static_cast<float>(sum.least),
                               .greatest = static_cast<float>(sum.greatest),
                               .known = sum.known};
    }
    return record;
}

} // namespace corvane
