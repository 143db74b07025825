#pragma once

#include "gpu/GPUDevices_linux.h"

#include <string>
#include <vector>

namespace corvane {

/// "AMD GPU 0", with the number among the GPUs of its maker, for each of the devices.
std::vector<std::string> numberedGPUNames(const std::vector<GPUDevice> &devices);

/// Names for the devices of a machine, in their order, without waking any of them: those of the
/// list of PCI devices where the distribution installed one, else the numbered ones. Takes
/// milliseconds where there is a list, so it belongs on a background thread.
std::vector<std::string> gpuNames(const std::vector<GPUDevice> &devices, const std::string &root);

/// What amdgpu calls a card; empty when it calls it nothing. Wakes the card.
std::string amdProductName(const GPUDevice &device);

} // namespace corvane
