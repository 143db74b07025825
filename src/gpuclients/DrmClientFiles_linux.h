#pragma once

#include "gpuclients/DrmClient.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace corvane {

/// Reads the kernel's files about the descriptors that processes have of GPUs. Which ones these are
/// is remembered for ten seconds: to look at every descriptor of a process costs more than to read
/// those of GPUs. Owned by the GPU clients, used by one thread at a time.
class DrmClientFiles {
public:
    explicit DrmClientFiles(std::string root);

    /// The clients of a process at these device nodes ("renderD128"); files of other nodes are not
    /// read. A client with several descriptors may come several times. Empty for processes of
    /// other users, whose descriptors the kernel does not show. `now` is in monotonic seconds.
    std::vector<DrmClient> clientsOf(std::int32_t pid, const std::set<std::string> &nodes,
                                     double now);

    /// Forgets processes that were not asked for lately.
    void forgetOld(double now);

private:
    struct Descriptor {
        std::string number = {};
        std::string node = {};
    };
    struct Entry {
        double seconds = 0; ///< When the descriptors were looked at.
        std::vector<Descriptor> descriptors = {};
    };

    const std::vector<Descriptor> &descriptorsOf(std::int32_t pid, double now);

    std::string m_root;
    std::map<std::int32_t, Entry> m_processes = {};
};

} // namespace corvane
