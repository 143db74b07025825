#pragma once

#include "windows/WindowPlatform.h"

#include <QBasicTimer>
#include <QWidget>

namespace corvane {

/// An invisible view that finds its hosting window and passes it to `configure`, once. Owned by its
/// parent in that window; main thread. It looks in nine successive turns of the main loop, then
/// stops without a call.
class WindowAccessor : public QWidget {
    Q_OBJECT

public:
    explicit WindowAccessor(std::function<void(NativeWindow)> configure, QWidget *parent = nullptr,
                            WindowPlatform platform = systemWindowPlatform());

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    std::function<void(NativeWindow)> m_configure;
    WindowPlatform m_platform;
    QBasicTimer m_nextTurn;
    int m_attemptsLeft = 9;
};

} // namespace corvane
