#pragma once

#include "records/PowerSources.h"

#include <QColor>
#include <QString>

#include <optional>
#include <vector>

class QPainter;
class QRectF;

namespace corvane {

/// One of a machine's power sources, from the bottom of the stack upwards.
struct PowerPart {
    PowerSource source = PowerSource::cpu;
    QString label = {};
    QColor color = {};
    QColor fill = {};
    Coverage coverage = Coverage::known; ///< Else why it has no number.

    friend bool operator==(const PowerPart &, const PowerPart &) = default;
};

/// The parts that exist, known ones first; a locked CPU is the last. Of a whole chip CPU, GPU and
/// Neural Engine.
std::vector<PowerPart> powerParts(const MachineCoverage &machine);

/// Watts of one part in one sample.
struct PowerValue {
    std::optional<double> watts = {}; ///< Absent where nothing was known.
    bool isDenied = false;            ///< Of a whole chip: the sum is not known either.
};

/// A value for each part. Samples from the history file do not tell an absent value from a true 0:
/// there 0 is absent, except on a whole chip.
std::vector<PowerValue> powerValues(const std::vector<PowerPart> &parts,
                                    const SystemMetrics &sample, const MachineCoverage &machine);

/// The sum of what is known; absent when nothing is, or when a part is denied.
std::optional<double> totalWatts(const std::vector<PowerValue> &values);

/// What the sum of the newest sample holds: "GPU only", "CPU and GPUs", "whole package".
QString powerSumText(const std::vector<PowerPart> &parts, const std::vector<PowerValue> &values,
                     const MachineCoverage &machine);

/// The watts of the whole machine and their source: "System 23.41 W · battery".
QString systemWattsText(double watts, const QString &source);

/// The dot beside a part's label: a ring for one without a number.
void paintPowerDot(QPainter &painter, const QRectF &dot, const PowerPart &part);

} // namespace corvane
