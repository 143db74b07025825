#pragma once

#include "gpuclients/DrmClient.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace corvane {

/// Remembers the counters of DRM clients, to tell how much of the time each kept the engines busy.
/// Owned by one reader.
class DrmLoads {
public:
    /// Shares of the time since the client was last added, 0…1 for each class of engines; empty for
    /// a client that is seen for the first time. `now` is in monotonic seconds.
    std::map<std::string, double> add(const DrmClient &client, double now);

    /// Forgets clients that were not added for a minute.
    void forgetOld(double now);

private:
    struct Counter {
        std::uint64_t busy = 0;
        std::uint64_t total = 0;
    };
    struct Entry {
        double seconds = 0;
        std::map<std::string, Counter> counters = {};
        std::map<std::string, double> shares = {};
    };

    std::map<std::pair<std::string, std::string>, Entry> m_clients = {}; ///< By address and id.
};

} // namespace corvane
