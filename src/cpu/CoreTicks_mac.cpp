#include "cpu/CoreTicks_mac.h"

#include <mach/mach.h>

#include <algorithm>

namespace corvane {

namespace {

/// The kernel's array of counters; frees it when it goes.
class ProcessorLoads {
public:
    ProcessorLoads()
    {
        // Called once: each call would add a right to the host port.
        static const mach_port_t host = mach_host_self();
        if (host_processor_info(host, PROCESSOR_CPU_LOAD_INFO, &m_count, &m_words, &m_wordCount)
            != KERN_SUCCESS)
            m_words = nullptr;
    }

    ~ProcessorLoads()
    {
        if (m_words)
            vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(m_words),
                          m_wordCount * sizeof(integer_t));
    }

    ProcessorLoads(const ProcessorLoads &) = delete;
    ProcessorLoads &operator=(const ProcessorLoads &) = delete;

    bool isValid() const { return m_words != nullptr; }

    /// Whole processors that the array really holds.
    std::size_t count() const
    {
        return std::min<std::size_t>(m_count, m_wordCount / CPU_STATE_MAX);
    }

    std::uint32_t ticks(std::size_t processor, int state) const
    {
        return static_cast<std::uint32_t>(
            m_words[processor * CPU_STATE_MAX + static_cast<std::size_t>(state)]);
    }

private:
    natural_t m_count = 0;
    processor_info_array_t m_words = nullptr;
    mach_msg_type_number_t m_wordCount = 0;
};

} // namespace

std::optional<std::vector<CoreTicks>> readCoreTicks()
{
    const ProcessorLoads loads;
    if (!loads.isValid())
        return std::nullopt;
    std::vector<CoreTicks> ticks;
    ticks.reserve(loads.count());
    for (std::size_t processor = 0; processor < loads.count(); ++processor) {
        ticks.push_back({.user = loads.ticks(processor, CPU_STATE_USER),
                         .system = loads.ticks(processor, CPU_STATE_SYSTEM),
                         .idle = loads.ticks(processor, CPU_STATE_IDLE),
                         .nice = loads.ticks(processor, CPU_STATE_NICE)});
    }
    return ticks;
}

} // namespace corvane
