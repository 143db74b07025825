#include "windows/WindowAccessor.h"

#include <utility>

namespace corvane {

WindowAccessor::WindowAccessor(std::function<void(NativeWindow)> configure, QWidget *parent,
                               WindowPlatform platform)
    : QWidget(parent),
      m_configure(std::move(configure)),
      m_platform(std::move(platform))
{
    hide();
    // A queued call would not do: the loop takes calls that are queued meanwhile in the same turn.
    m_nextTurn.start(0, this);
}

void WindowAccessor::timerEvent(QTimerEvent *)
{
    --m_looksLeft;
    const NativeWindow window = m_platform.hostingWindow(*this);
    if (window || m_looksLeft == 0)
        m_nextTurn.stop();
    if (window)
        m_configure(window);
}

} // namespace corvane
