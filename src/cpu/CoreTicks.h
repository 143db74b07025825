#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// Cumulative tick counters of one logical CPU, in the kernel's order. They wrap at 32 bits.
struct CoreTicks {
    std::uint32_t user = 0;
    std::uint32_t system = 0;
    std::uint32_t idle = 0;
    std::uint32_t nice = 0;

    friend bool operator==(const CoreTicks &, const CoreTicks &) = default;
};

/// Reads the counters of all logical CPUs, in processor order. Owned by one sampler; main thread.
/// Readers of the same machine that follow each other at once may share one reading. `root` is the
/// folder below which kernel files lie (Linux).
class CoreTicksReader {
public:
    explicit CoreTicksReader(const std::string &root = "/");
    ~CoreTicksReader();

    /// Nothing when the counters cannot be read. A CPU that went offline keeps its place and its
    /// last counters.
    std::optional<std::vector<CoreTicks>> read();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace corvane
