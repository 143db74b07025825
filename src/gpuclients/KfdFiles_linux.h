#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace corvane {

/// Memory that a process has on a GPU for computing.
struct KfdUse {
    std::string address = {}; ///< Of the GPU on the PCI bus.
    std::int32_t pid = 0;
    std::uint64_t bytes = 0;
};

/// The files of AMD's compute driver about the processes of all users. Owned by the GPU clients,
/// used by one thread at a time.
class KfdFiles {
public:
    explicit KfdFiles(std::string root);

    /// Who has memory on the GPUs with these addresses; files of other GPUs are not read. `now` is
    /// in monotonic seconds: which GPU has which number in the files is looked up once a minute.
    std::vector<KfdUse> read(const std::set<std::string> &addresses, double now);

private:
    void readTopology();

    std::string m_folder;
    std::map<std::string, std::string> m_addresses = {}; ///< By number in the files.
    double m_nextTopology = -std::numeric_limits<double>::infinity();
};

} // namespace corvane
