#pragma once

#include "timeline/Energy.h"
#include "timeline/MeanRecord.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace corvane {

inline constexpr double minuteSeconds = 60;

/// What is kept of one minute: a line of the minute file, as a JSON list without spaces. A plain
/// value.
struct MinuteRecord {
    MeanRecord means = {};
    Energy energy = {};

    /// The line without its line feed; absent if a number is not finite, which JSON cannot hold.
    std::optional<QByteArray> toLine() const;

    /// Absent for a line that is damaged in any way.
    static std::optional<MinuteRecord> fromLine(std::string_view line);

    friend bool operator==(const MinuteRecord &, const MinuteRecord &) = default;
};

/// The start and the energy of a line, without a look at the rest of it.
struct MinuteEnergy {
    double start = 0;
    Energy energy = {};

    /// Absent if this part of the line is damaged, or the line has no end.
    static std::optional<MinuteEnergy> fromLine(std::string_view line);
};

} // namespace corvane
