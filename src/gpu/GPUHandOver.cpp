#include "gpu/GPUHandOver.h"

#include <utility>

namespace corvane {

namespace {

/// A survey is taken every third second while someone looks at it.
constexpr double secondsOfInterest = 8;

} // namespace

void GPUHandOver::publish(std::vector<GPUAccess> gpus)
{
    const MutexLock lock(m_mutex);
    m_gpus = std::move(gpus);
}

bool GPUHandOver::isAsked(double now) const
{
    const MutexLock lock(m_mutex);
    return now - m_asked <= secondsOfInterest;
}

bool GPUHandOver::isShown() const
{
    const MutexLock lock(m_mutex);
    return m_isShown;
}

void GPUHandOver::setShown(bool isShown)
{
    const MutexLock lock(m_mutex);
    m_isShown = isShown;
}

std::optional<std::uint64_t> GPUHandOver::heldBytes(const std::string &device, double now) const
{
    const MutexLock lock(m_mutex);
    const auto held = m_heldBytes.find(device);
    if (now - m_added > secondsOfInterest || held == m_heldBytes.end())
        return std::nullopt;
    return held->second;
}

std::vector<GPUAccess> GPUHandOver::ask(double now)
{
    const MutexLock lock(m_mutex);
    m_asked = now;
    return m_gpus;
}

void GPUHandOver::setHeldBytes(std::map<std::string, std::uint64_t> bytes, double now)
{
    const MutexLock lock(m_mutex);
    m_heldBytes = std::move(bytes);
    m_added = now;
}

} // namespace corvane
