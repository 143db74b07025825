#pragma once

#include "chip/ChipName.h"
#include "platform/HostSystem.h"

#include <QString>

namespace corvane {

namespace SystemInfo {

/// The processor's marketing name, read once.
const QString &chipName();

/// The name to show for the result of `readChipName`; the system's stand-in when that is absent or
/// blank.
QString shownChipName(const std::optional<std::string> &name, HostSystem system = hostSystem());

} // namespace SystemInfo

/// The detected chip with its power ceilings in watts. A value; `current` is made once.
struct ChipInfo {
    QString name = {};
    double cpuMaxW = 0;
    double gpuMaxW = 0;
    double aneMaxW = 0; ///< Denominator of the Neural Engine's load percentage.

    /// This machine's chip.
    static const ChipInfo &current();

    /// The ceilings of the first chip in the table whose name is part of `chipName`; those of an
    /// unknown chip otherwise.
    static ChipInfo detect(const QString &chipName = SystemInfo::chipName());
};

} // namespace corvane
