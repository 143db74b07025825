#pragma once

#include "gpu/GPUProcessUse.h"
#include "threads/Mutex.h"

#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// One GPU as others than the watch may use it.
struct GPUAccess {
    enum class State {
        open,      ///< It may be read.
        leftAlone, ///< Nothing of it may be touched, so that it can fall asleep.
        asleep
    };

    std::string device = {};  ///< Identifies it across readings.
    std::string address = {}; ///< On the PCI bus; empty when hidden.
    std::string folder = {};  ///< Of the device; empty when there is nothing to read in files.
    bool integrated = false;
    State state = State::open;

    /// As a vendor's library reported last; absent without one. Kept while the GPU is left alone.
    std::optional<std::vector<GPUProcessUse>> processes = {};
};

/// What the tick, the survey of processes and the views tell each other about the GPUs. Shared by
/// all; safe from any thread. Instants are in monotonic seconds.
class GPUHandOver {
public:
    /// Tells what GPUs there are. By the tick.
    void publish(std::vector<GPUAccess> gpus);

    /// Whether someone has asked lately, so that the vendors' libraries are worth asking. By the
    /// tick.
    bool isAsked(double now) const;

    /// Whether anything shows what the tick reads of the GPUs, so that the vendors' libraries are
    /// worth their memory; true until told otherwise. By the tick.
    bool isShown() const;

    /// By whoever shows it.
    void setShown(bool isShown);

    /// How many bytes of a GPU's memory the processes hold that this user may see; absent when
    /// nobody added them up lately. By the tick.
    std::optional<std::uint64_t> heldBytes(const std::string &device, double now) const;

    /// The GPUs as published last. By the survey.
    std::vector<GPUAccess> ask(double now);

    /// Tells the sum for each GPU of which it is known. By the survey.
    void setHeldBytes(std::map<std::string, std::uint64_t> bytes, double now);

private:
    static constexpr double never = -std::numeric_limits<double>::infinity();

    mutable Mutex m_mutex = {};
    std::vector<GPUAccess> m_gpus GUARDED_BY(m_mutex) = {};
    std::map<std::string, std::uint64_t> m_heldBytes GUARDED_BY(m_mutex) = {};
    bool m_isShown GUARDED_BY(m_mutex) = true;
    double m_asked GUARDED_BY(m_mutex) = never;
    double m_added GUARDED_BY(m_mutex) = never;
};

} // namespace corvane
