#pragma once

#include "drivers/NPUFiles_linux.h"
#include "gpu/GPUDevices_linux.h"
#include "gpu/GPUHandOver.h"
#include "gpu/GPUReading.h"
#include "records/MachineCoverage.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// One reading of all GPUs and NPUs whose drivers publish files.
struct FileGPUsReading {
    std::vector<GPUReading> gpus = {};      ///< Those that are awake and not to fall asleep.
    std::vector<GPUCoverage> coverage = {}; ///< Of all, in the order of their addresses.
    /// Of all; never null.
    std::shared_ptr<const std::vector<GPUAccess>> access = {};
    std::optional<NPUReading> npu = {}; ///< Absent: the machine has none.
};

/// The devices of a machine whose drivers publish files.
struct FileDevices {
    std::vector<GPUDevice> gpus = {}; ///< In the order of their addresses.
    std::optional<NPUDevice> npu = {};
};

/// Reads every GPU whose driver publishes files, unless that would wake it or keep it awake, and
/// the NPU. Nothing else may touch these files. A driver may take long to answer, so it belongs on
/// a background thread; used on one thread.
class FileGPUs {
public:
    /// `root` is the folder below which the kernel files lie.
    explicit FileGPUs(std::string root);
    ~FileGPUs();

    /// What the machine has now; to be called once a minute. The files of a device are searched
    /// for anew in each of its first minutes, since drivers may add some late, and while some are
    /// missing that were there before; otherwise every ten minutes.
    void setDevices(const FileDevices &devices);

    FileGPUsReading read(double now);

private:
    class Member;
    std::shared_ptr<const std::vector<GPUAccess>> access();

    std::string m_root;
    std::vector<Member> m_members;
    std::shared_ptr<const std::vector<GPUAccess>> m_access = {}; ///< Null after a search.
    std::optional<NPUFiles> m_npu;
};

/// What such a GPU is expected to tell, before anything was read of it.
GPUCoverage expectedCoverage(const GPUDevice &device, const std::string &name);

} // namespace corvane
