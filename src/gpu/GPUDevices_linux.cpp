#include "gpu/GPUDevices_linux.h"

#include "gpu/GPUText.h"
#include "platform/KernelFolder_linux.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>

#include <sys/stat.h>

// Devices are found by the names of folders and by the targets of links alone.

namespace corvane {

namespace {

namespace fs = std::filesystem;

bool exists(const std::string &path)
{
    std::error_code error;
    return fs::exists(path, error);
}

/// The inode of a folder; 0 if it is not there.
std::uint64_t numberOf(const std::string &folder)
{
    struct stat status = {};
    return ::stat(folder.c_str(), &status) == 0 ? status.st_ino : 0;
}

/// `prefix` and a number: connectors and render nodes have other names.
bool isNumbered(std::string_view name, std::string_view prefix)
{
    return name.starts_with(prefix) && name.size() > prefix.size()
        && name.find_first_not_of("0123456789", prefix.size()) == std::string_view::npos;
}

/// An APU has neither memory nor a bus of its own, so no files about their load; Intel's is always
/// at the same address and has no sensors.
bool isIntegrated(GPUDriver driver, const GPUDevice &device)
{
    switch (driver) {
    case GPUDriver::amdgpu:
        return !exists(device.folder + "/mem_busy_percent") && !exists(device.folder + "/pcie_bw");
    case GPUDriver::i915:
    case GPUDriver::xe:
        return device.address == "0000:00:02.0" && !exists(device.folder + "/hwmon");
    case GPUDriver::nouveau:
    case GPUDriver::nvidia:
        break;
    }
    return false;
}

void appendCards(std::vector<GPUDevice> &devices, const std::string &root)
{
    const std::string drm = root + "/sys/class/drm/";
    for (const std::string &name : namesInFolder(drm)) {
        if (!isNumbered(name, "card"))
            continue;
        std::error_code error;
        const fs::path folder = fs::canonical(drm + name + "/device", error);
        const auto driver = error ? std::nullopt : gpuDriver(folder.string());
        if (!driver)
            continue;
        GPUDevice device = {.driver = *driver,
                            .address = folder.filename().string(),
                            .folder = folder.string(),
                            .card = drm + name,
                            .cardNumber = numberOf(drm + name)};
        device.integrated = isIntegrated(*driver, device);
        devices.push_back(std::move(device));
    }
}

/// NVIDIA's driver makes a display node only when it is set to.
void appendWithoutCard(std::vector<GPUDevice> &devices, const std::string &root)
{
    for (const char *folder : {"/sys/bus/pci/drivers/nvidia", "/proc/driver/nvidia/gpus"}) {
        for (const std::string &address : namesInFolder(root + folder)) {
            if (!isPCIAddress(address)
                || std::ranges::find(devices, address, &GPUDevice::address) != devices.end())
                continue;
            std::error_code error;
            const fs::path path = fs::canonical(root + "/sys/bus/pci/devices/" + address, error);
            devices.push_back({.driver = GPUDriver::nvidia,
                               .address = address,
                               .folder = error ? std::string() : path.string()});
        }
    }
}

/// A container may have the device, but not see the bus that it is on.
void appendHidden(std::vector<GPUDevice> &devices, const std::string &root)
{
    if (std::ranges::find(devices, GPUDriver::nvidia, &GPUDevice::driver) != devices.end())
        return;
    const std::vector<std::string> nodes = namesInFolder(root + "/dev");
    if (std::ranges::any_of(nodes, [](const auto &name) { return isNumbered(name, "nvidia"); }))
        devices.push_back({.driver = GPUDriver::nvidia});
}

} // namespace

std::optional<GPUDriver> gpuDriver(const std::string &device)
{
    static const std::map<std::string, GPUDriver> drivers = {{"amdgpu", GPUDriver::amdgpu},
                                                             {"i915", GPUDriver::i915},
                                                             {"xe", GPUDriver::xe},
                                                             {"nouveau", GPUDriver::nouveau},
                                                             {"nvidia", GPUDriver::nvidia}};
    std::error_code error;
    const auto driver =
        drivers.find(fs::read_symlink(device + "/driver", error).filename().string());
    if (error || driver == drivers.end())
        return std::nullopt;
    return driver->second;
}

std::vector<GPUDevice> findGPUDevices(const std::string &root)
{
    std::vector<GPUDevice> devices;
    appendCards(devices, root);
    appendWithoutCard(devices, root);
    appendHidden(devices, root);
    std::ranges::sort(devices, {}, &GPUDevice::address);
    return devices;
}

} // namespace corvane
