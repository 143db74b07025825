#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/GPUHolders.h"
#include "records/SystemMetrics.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace corvane::test {

/// Replaces what the machine tells in a sample with a reading.
template <typename Change>
void changeCoverage(SystemMetrics &sample, Change change)
{
    auto coverage = std::make_shared<MachineCoverage>(coverageOf(sample));
    change(*coverage);
    sample.chip->coverage = std::move(coverage);
}

/// The sample after `change` was applied to a copy of its coverage and its reading.
SystemMetrics changed(
    SystemMetrics sample,
    const std::function<void(MachineCoverage &coverage, ChipReading &chip)> &change);

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
        for (SystemMetrics &sample : changed.history)
            changeCoverage(sample, change);
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
