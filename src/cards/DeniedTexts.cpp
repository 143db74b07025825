#include "cards/DeniedTexts.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

void add(QStringList &notes, const QString &quantity, Coverage coverage)
{
    if (const QString note = deniedNote(quantity, coverage); !note.isEmpty())
        notes.append(note);
}

/// Several GPUs may have the same name.
QString numberedName(const std::vector<GPUCoverage> &gpus, std::size_t index)
{
    const QString &name = gpus[index].name;
    return gpus.size() == 1 ? name : u"GPU %1, %2"_s.arg(QString::number(index), name);
}

QString limitNote(const QString &name, GPULimit limit)
{
    switch (limit) {
    case GPULimit::power:
        return name + u": slowed down by its power limit."_s;
    case GPULimit::temperature:
        return name + u": slowed down by its temperature."_s;
    case GPULimit::hardware:
        break;
    }
    return name + u": slowed down by its hardware."_s;
}

} // namespace

QString deniedNote(const QString &quantity, Coverage coverage)
{
    switch (coverage) {
    case Coverage::asleep:
        return quantity + u": the device sleeps and is left asleep."_s;
    case Coverage::locked:
        return quantity + u": locked, only root may read this."_s;
    case Coverage::unpublished:
        return quantity + u": not published by the driver."_s;
    case Coverage::noLibrary:
        return quantity + u": the driver's library is missing."_s;
    case Coverage::newDriver:
        return quantity + u": the driver was updated and waits for a restart."_s;
    case Coverage::absent:
    case Coverage::known:
        break;
    }
    return {};
}

DeniedNotice gpuNotice(Coverage load)
{
    switch (load) {
    case Coverage::asleep:
        return {u"moon.zzz"_s, u"Asleep"_s,
                u"Left asleep; it shows here when something wakes it."_s};
    case Coverage::locked:
        return {u"info.circle"_s, u"The load is locked"_s, u"Only root may read it."_s};
    case Coverage::noLibrary:
        return {u"info.circle"_s, u"NVIDIA’s driver library is missing"_s,
                u"It comes with the driver: libnvidia-ml.so.1"_s};
    case Coverage::newDriver:
        return {u"info.circle"_s, u"The driver and its library differ"_s,
                u"The driver was updated: restart the computer."_s};
    case Coverage::unpublished:
    case Coverage::absent:
    case Coverage::known:
        break;
    }
    return {u"info.circle"_s, u"Load not published"_s, u"The driver does not tell it."_s};
}

QStringList cpuNotes(const MachineCoverage &machine)
{
    QStringList notes;
    add(notes, u"CPU watts"_s, machine.cpuWatts);
    add(notes, u"CPU temperature"_s, machine.cpuTemperature);
    return notes;
}

QStringList gpuNotes(const SystemMetrics &current)
{
    QStringList notes;
    const std::vector<GPUCoverage> gpus = countedGPUs(coverageOf(current));
    for (std::size_t i = 0; i < gpus.size(); ++i) {
        const GPUCoverage &gpu = gpus[i];
        const QString name = numberedName(gpus, i);
        add(notes, u"Load of "_s + name, gpu.load);
        if (gpu.watts != gpu.load)
            add(notes, u"Watts of "_s + name, gpu.watts);
        const GPUMetrics *metrics = metricsOf(gpu, current.chip);
        if (metrics && metrics->limit)
            notes.append(limitNote(name, *metrics->limit));
    }
    return notes;
}

QStringList npuNotes(const MachineCoverage &machine)
{
    QStringList notes;
    add(notes, u"NPU load"_s, machine.npuLoad);
    add(notes, u"NPU watts"_s, machine.npuWatts);
    return notes;
}

QStringList powerNotes(const MachineCoverage &machine)
{
    QStringList notes;
    add(notes, u"CPU watts"_s, machine.cpuWatts);
    const std::vector<GPUCoverage> gpus = countedGPUs(machine);
    for (std::size_t i = 0; i < gpus.size(); ++i)
        add(notes, u"Watts of "_s + numberedName(gpus, i), gpus[i].watts);
    add(notes, u"NPU watts"_s, machine.npuWatts);
    return notes;
}

} // namespace corvane
