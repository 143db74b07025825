#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace corvane::test {

/// The Mac that a self-check runs on, asked by other ways than those of the program: a real one, or
/// the simulated one, which is given a clock to step and this process to list. Main thread.
class LiveMac {
public:
    /// `arguments` are this process's own, the program's name first.
    explicit LiveMac(const std::vector<std::string> &arguments);

    /// Whether it runs as a guest, to which a host shows no power manager and no sensors.
    bool isVirtualMachine() const;

    std::uint64_t memoryBytes() const;
    std::size_t logicalCores() const;

    /// Lets a second pass in which one core has all to do.
    void workForASecond() const;

    /// On the clock that the second passes on.
    static double seconds();
};

} // namespace corvane::test
