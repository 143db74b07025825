#include "windows/WindowAccessor.h"

#include "threads/MainThread.h"

#include <utility>

namespace corvane {

WindowAccessor::WindowAccessor(std::function<void(NativeWindow)> configure, QWidget *parent,
                               WindowPlatform platform)
    : QWidget(parent),
      m_configure(std::move(configure)),
      m_platform(std::move(platform))
{
    assertMainThread();
    hide();
    // A timer rather than a queued call, which would run in the same turn if queued during it.
    m_nextTurn.start(0, this);
}

void WindowAccessor::timerEvent(QTimerEvent *)
{
    --m_attemptsLeft;
    const NativeWindow window = m_platform.hostingWindow(*this);
    if (window || m_attemptsLeft == 0)
        m_nextTurn.stop();
    if (window)
        m_configure(window);
}

} // namespace corvane
