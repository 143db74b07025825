#pragma once

#include "chip/ChipIdentity.h"
#include "figures/MetricsFile.h"
#include "login/LaunchAtLoginManager.h"
#include "sampler/AppSettings.h"
#include "sampler/SystemSampler.h"
#include "updates/UpdaterManager.h"

namespace corvane {

/// The state that lives as long as the program, in the order of construction. Created once by the
/// application before anything is shown.
struct AppState {
    AppSettings settings;            ///< From the stored preferences.
    SystemSampler sampler{settings}; ///< Samples from its construction on.
    LaunchAtLoginManager launch;
    UpdaterManager updater;
    MetricsFile metrics{sampler, ChipInfo::current().name}; ///< Written where the settings say.
};

} // namespace corvane
