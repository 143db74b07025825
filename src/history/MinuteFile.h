#pragma once

#include "history/LineFile.h"
#include "timeline/Timeline.h"

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What the file of the minutes holds.
struct StoredMinutes {
    std::vector<MeanRecord> means = {};             ///< Of the day before the time of reading.
    std::vector<EnergyLedger::Quarter> energy = {}; ///< Of all lines, by quarters of an hour.
    std::vector<double> newestStarts = {};          ///< Of the last lines, in the file's order.

    /// Whether the samples of that minute have become a line. The last minute of which there are
    /// samples has none yet if the last line is another one, even where a clock that was set back
    /// has made it come twice.
    bool hasLine(double start, bool isLastMinute) const;
};

/// The file of the minutes: a line with the version, then a line for each minute. Used by one
/// thread at a time. Failures are those of `LineFile`; a damaged line is skipped. A file of another
/// version reads as empty and is not written.
class MinuteFile {
public:
    /// A week of minutes.
    static constexpr std::size_t mostLines = std::size_t(7) * 24 * 60;

    explicit MinuteFile(const std::string &path);

    void create() const;
    void append(const MinuteRecord &minute);
    StoredMinutes read(double now) const;

    /// Cuts the file to its newest `mostLines` lines.
    void cut();

private:
    bool isOfThisVersion() const;

    LineFile m_file;
    std::size_t m_appended = 0;                         ///< Since the file was cut.
    mutable std::optional<bool> m_isOfThisVersion = {}; ///< Absent until the file was looked at.
};

} // namespace corvane
