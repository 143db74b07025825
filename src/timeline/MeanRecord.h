#pragma once

#include "timeline/Measure.h"

#include <array>
#include <cstdint>
#include <optional>

namespace corvane {

/// Mean, smallest and largest value of a measure over the samples of a span in which it was known.
struct Mean {
    float mean = 0;
    float least = 0;
    float greatest = 0;
    std::uint16_t known = 0; ///< Samples that had a value; without any the rest has no meaning.

    friend bool operator==(const Mean &, const Mean &) = default;
};

/// All measures of a span of time. A plain value. A span without samples, such as one asleep, has
/// no record.
struct MeanRecord {
    double start = 0;  ///< Seconds since 2001, a multiple of `seconds`.
    float seconds = 0; ///< Length of the span.
    std::array<Mean, measureCount> means = {};

    double end() const { return start + static_cast<double>(seconds); }
    const Mean &operator[](Measure measure) const { return means[indexOf(measure)]; }
    friend bool operator==(const MeanRecord &, const MeanRecord &) = default;
};

/// The start of the span of that length in which a time lies.
double spanStart(double time, double seconds);

/// The samples of both as if they had been taken together.
Mean merged(const Mean &a, const Mean &b);

/// Two records of one span, which the clock has reached twice.
MeanRecord merged(const MeanRecord &a, const MeanRecord &b);

/// Collects the samples of one span.
class MeanBuilder {
public:
    void add(const Measures &measures);
    void add(const MeanBuilder &other);

    /// Keeps nothing of what was added.
    void clear() { m_sums = {}; }

    MeanRecord record(double start, double seconds) const;

private:
    struct Sum {
        double sum = 0;
        double least = 0;
        double greatest = 0;
        std::uint16_t known = 0;

        void add(const Sum &other);
    };

    std::array<Sum, measureCount> m_sums = {};
};

} // namespace corvane
