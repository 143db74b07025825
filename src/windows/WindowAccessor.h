#pragma once

#include "windows/WindowPlatform.h"

#include <QBasicTimer>
#include <QWidget>

namespace corvane {

/// An invisible view that finds the window which hosts it and hands it to `configure`, once. A part
/// of the window's tree, which owns it; main thread. It looks in nine successive turns of the main
/// loop, then gives up silently.
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
    QBasicTimer m_nextTurn; ///< Goes with the view.
    int m_looksLeft = 9;
};

} // namespace corvane
