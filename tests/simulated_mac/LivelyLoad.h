#pragma once

#include "simulated_mac/Machine.h"

#include <optional>
#include <string_view>

namespace corvane::simulated {

/// Makes the booted machine live like one on which a language model answers now and then: steady
/// small work, bursts of tokens on the GPU, memory that fills, dies that warm up. The same in every
/// run. Owned by whoever steps the clock; main thread.
class LivelyLoad {
public:
    enum class Mode {
        rounds, ///< Questions to a model, with pauses between them.
        idle,
        work,
        asleep ///< GPU and Neural Engine off, the CPU's energy no longer published.
    };

    /// Starts from the machine as it is; what it gains in a second is overwritten from here on.
    explicit LivelyLoad(Mode mode = Mode::rounds);

    /// Absent for an unknown name.
    static std::optional<Mode> modeNamed(std::string_view name);

    /// Lets so many seconds pass under load.
    void step(double seconds);

private:
    /// Shares of full load, 0…1.
    struct Demand {
        double cpu = 0;
        double gpu = 0;
        double neuralEngine = 0;
    };
    Demand levels() const; ///< Before the unrest.
    Demand demand() const;
    void drivePower(const Demand &demand);
    void driveClusters(const Demand &demand);
    void driveGraphics(const Demand &demand);
    void driveProcessors(const Demand &demand);
    void driveMemory(const Demand &demand);
    void warmUp(const Demand &demand, double seconds);

    const Mode m_mode;
    const Machine m_idle; ///< The machine as it was found.
    double m_heat = 0.2;  ///< Lags behind the demand, 0…1.
    double m_filled = 0;  ///< Of the memory that a burst takes, 0…1.
};

} // namespace corvane::simulated
