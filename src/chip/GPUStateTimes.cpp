#include "chip/GPUStateTimes.h"

#include "chip/NaturalOrder.h"

#include <algorithm>
#include <functional>

namespace corvane {

void GPUStateTimes::add(std::string_view state, double time)
{
    m_total += time;
    const auto known = std::ranges::find(m_states, state, &StateTime::name);
    if (known != m_states.end())
        known->time += time;
    else
        m_states.push_back({std::string(state), time});
    if (time > m_longest) {
        m_longest = time;
        m_dominant = state;
    }
}

std::vector<GPUStateShare> GPUStateTimes::shares() const
{
    constexpr double leastShare = 0.01;
    constexpr std::size_t mostShares = 10;
    if (m_total <= 0)
        return {};
    std::vector<const StateTime *> shown;
    for (const StateTime &state : m_states) {
        if (state.time / m_total >= leastShare)
            shown.push_back(&state);
    }
    std::ranges::stable_sort(shown, std::greater(), &StateTime::time);
    shown.resize(std::min(shown.size(), mostShares));
    std::ranges::stable_sort(shown, naturallyLess, &StateTime::name);
    std::vector<GPUStateShare> shares;
    shares.reserve(shown.size());
    for (const StateTime *state : shown)
        shares.push_back({QString::fromStdString(state->name), state->time / m_total});
    return shares;
}

} // namespace corvane
