#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/GPUHolders.h"
#include "records/SystemMetrics.h"

#include <vector>

namespace corvane::test {

/// An invented minute of a Linux machine, one sample a second, and its processes. For pictures and
/// tests.
struct ScriptedMachine {
    QString name = {}; ///< Of its pictures.
    QString chip = {};
    std::vector<SystemMetrics> history = {}; ///< Oldest first.
    std::vector<ProcessRow> processes = {};
    std::vector<AIWorkload> workloads = {};
    std::vector<GPUHolders> holders = {};

    const SystemMetrics &current() const { return history.back(); }
    const MachineCoverage &coverage() const { return coverageOf(history.back()); }

    /// The same with a change to what every sample of it tells.
    template <typename Change>
    ScriptedMachine with(Change change) const
    {
        ScriptedMachine changed = *this;
        auto machine = std::make_shared<MachineCoverage>(coverage());
        change(*machine);
        for (SystemMetrics &sample : changed.history)
            sample.chip->coverage = machine;
        return changed;
    }
};

ScriptedMachine oneCardMinute();        ///< A graphics card; CPU watts not readable.
ScriptedMachine apuMinute();            ///< Integrated GPU and NPU, all watts readable.
ScriptedMachine twoCardsMinute();       ///< CPU watts not readable.
ScriptedMachine fourCardsMinute();      ///< CPU watts opened by an administrator.
ScriptedMachine eightCardsMinute();     ///< The same.
ScriptedMachine integratedOnlyMinute(); ///< Integrated GPU without memory figures; no watts.
ScriptedMachine sleepingCardMinute();   ///< The integrated GPU is read instead.
ScriptedMachine virtualMachineMinute(); ///< No GPU, watts or temperatures.
ScriptedMachine unlikeCardsMinute();    ///< Two cards of different kinds, one of them asleep.
ScriptedMachine unifiedMemoryMinute();  ///< A GPU whose memory is the machine's.
ScriptedMachine lowerBoundMinute();     ///< A card that tells only this user's share of its memory.

std::vector<ScriptedMachine> allScriptedMachines();

} // namespace corvane::test
