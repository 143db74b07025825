#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace corvane::test {

/// The Mac that a self-check runs on, read in other ways than the program's: a real one, or the
/// simulated one, with a stepped clock and this process in its list.
class LiveMac {
public:
    /// `arguments` are those of this process, beginning with the program's name.
    explicit LiveMac(const std::vector<std::string> &arguments);

    /// Whether it is a virtual machine, which has no power manager and no sensors.
    bool isVirtualMachine() const;

    std::uint64_t memoryBytes() const;
    std::size_t logicalCores() const;

    /// Lets a second pass in which one core is busy.
    void workForASecond() const;

    /// The time on the clock that `workForASecond` advances.
    static double seconds();
};

} // namespace corvane::test
