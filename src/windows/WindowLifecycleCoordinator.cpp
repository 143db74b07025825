#include "windows/WindowLifecycleCoordinator.h"

#include "threads/MainThread.h"

#include <utility>

namespace corvane {

WindowLifecycleCoordinator::WindowLifecycleCoordinator(WindowPlatform platform)
    : m_platform(std::move(platform))
{
    assertMainThread();
}

WindowLifecycleCoordinator &WindowLifecycleCoordinator::shared()
{
    static WindowLifecycleCoordinator coordinator;
    return coordinator;
}

void WindowLifecycleCoordinator::attach(NativeWindow window)
{
    m_platform.allowFullScreen(window);
    m_platform.enableZoomButton(window);
    m_platform.setActivationPolicy(ActivationPolicy::regular);
    m_platform.activate(window);
    m_observers.erase(window);
    m_observers.emplace(
        window, m_platform.observeClose(window, [this, window] { windowWillClose(window); }));
}

void WindowLifecycleCoordinator::windowWillClose(NativeWindow window)
{
    m_platform.setActivationPolicy(ActivationPolicy::accessory);
    m_observers.erase(window);
}

} // namespace corvane
