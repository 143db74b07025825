#include "cards/DeniedTexts.h"

#include "records/MachineParts.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

void add(QStringList &notes, const QString &quantity, Coverage coverage)
{
    if (const QString note = deniedNote(quantity, coverage); !note.isEmpty())
        notes.append(note);
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

QStringList gpuNotes(const MachineCoverage &machine)
{
    QStringList notes;
    for (const GPUCoverage &gpu : countedGPUs(machine)) {
        add(notes, u"Load of %1"_s.arg(gpu.name), gpu.load);
        if (gpu.watts != gpu.load)
            add(notes, u"Watts of %1"_s.arg(gpu.name), gpu.watts);
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
    for (const GPUCoverage &gpu : countedGPUs(machine))
        add(notes, u"Watts of %1"_s.arg(gpu.name), gpu.watts);
    add(notes, u"NPU watts"_s, machine.npuWatts);
    return notes;
}

} // namespace corvane
