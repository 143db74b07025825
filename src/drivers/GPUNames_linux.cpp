#include "drivers/GPUNames_linux.h"

#include "drivers/PCINames.h"
#include "platform/KernelFile_linux.h"

#include <map>
#include <optional>

namespace corvane {

namespace {

std::string makerOf(const GPUDevice &device)
{
    switch (device.driver) {
    case GPUDriver::amdgpu:
        return "AMD";
    case GPUDriver::i915:
    case GPUDriver::xe:
        return "Intel";
    case GPUDriver::nouveau:
    case GPUDriver::nvidia:
        break;
    }
    return "NVIDIA";
}

std::string readNameList(const std::string &root)
{
    constexpr std::size_t longestList = 8 << 20; // It has some 1.5 MB.
    for (const char *path : {"/usr/share/hwdata/pci.ids", "/usr/share/misc/pci.ids"}) {
        if (auto list = readKernelFile(root + path, longestList))
            return std::move(*list);
    }
    return {};
}

std::string listedName(const GPUDevice &device, const std::string &list)
{
    const auto vendor = parsePCINumber(readTrimmedFile(device.folder + "/vendor"));
    const auto number = parsePCINumber(readTrimmedFile(device.folder + "/device"));
    if (!vendor || !number)
        return {};
    const auto name = pciDeviceName(list, *vendor, *number);
    return name ? gpuProductName(makerOf(device), *name) : std::string();
}

} // namespace

std::vector<std::string> numberedGPUNames(const std::vector<GPUDevice> &devices)
{
    std::map<std::string, int> counts;
    std::vector<std::string> names;
    for (const GPUDevice &device : devices) {
        const std::string maker = makerOf(device);
        names.push_back(maker + " GPU " + std::to_string(counts[maker]++));
    }
    return names;
}

std::vector<std::string> gpuNames(const std::vector<GPUDevice> &devices, const std::string &root)
{
    std::vector<std::string> names = numberedGPUNames(devices);
    const std::string list = devices.empty() ? std::string() : readNameList(root);
    for (std::size_t place = 0; place < devices.size(); ++place) {
        if (std::string name = listedName(devices[place], list); !name.empty())
            names[place] = std::move(name);
    }
    return names;
}

std::string amdProductName(const GPUDevice &device)
{
    return gpuProductName("AMD", readTrimmedFile(device.folder + "/product_name"));
}

} // namespace corvane
