#pragma once

#include "records/SystemMetrics.h"

#include <QColor>
#include <QString>

#include <vector>

namespace corvane {

/// One of the numbers in the dashboard's header.
struct QuickNumber {
    QString label = {};
    QString name = {}; ///< For assistive technology.
    QString value = {};
    QColor color = {};
    double minWidth = 0; ///< Of its column, so that it does not move when a digit changes.
};

/// Memory, GPU memory, CPU, GPU and power, each where the machine has it.
std::vector<QuickNumber> quickNumbers(const SystemMetrics &current);

/// What stands behind the chip's name: that there is nothing but CPU and memory to read, or the
/// watts of the whole machine where no card of power can show them. Usually empty.
QString machineNote(const SystemMetrics &current);

} // namespace corvane
