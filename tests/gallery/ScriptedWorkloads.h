#pragma once

#include "gallery/ScriptedMachines.h"

namespace corvane::test {

// Machines with that many AI workloads, at most twelve, of all kinds: with known and unknown
// models, at work and idle, in several processes.

ScriptedMachine busyMac(int workloads);  ///< Footprints alone; the GPU's time is known.
ScriptedMachine busyCard(int workloads); ///< A graphics card; not all of its memory is attributed.
ScriptedMachine busyAPU(int workloads);

} // namespace corvane::test
