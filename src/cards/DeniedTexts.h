#pragma once

#include "records/SystemMetrics.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// A notice in place of what a device does not show.
struct DeniedNotice {
    QString symbol = {};
    QString line = {};
    QString hint = {};
};

/// Why a GPU shows no load; only for one whose load is denied.
DeniedNotice gpuNotice(Coverage load);

/// "CPU watts: locked, only root may read this." Empty where nothing is denied.
QString deniedNote(const QString &quantity, Coverage coverage);

/// Sentences for tool tips and assistive technology: what a card cannot show and why.
QStringList cpuNotes(const MachineCoverage &machine);
QStringList gpuNotes(const SystemMetrics &current); ///< And what holds a GPU back.
QStringList npuNotes(const MachineCoverage &machine);
QStringList powerNotes(const MachineCoverage &machine);

} // namespace corvane
