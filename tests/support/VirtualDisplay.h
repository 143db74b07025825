#pragma once

#include <QPoint>
#include <QProcess>
#include <QString>

namespace corvane::test {

/// An X display without a window manager, for one test. It can be killed.
class VirtualDisplay {
public:
    ~VirtualDisplay() { kill(); }

    /// Returns once the display accepts programs; false if it does not start.
    bool start();
    void kill();

    /// Suspends the server: it answers nobody. It can be killed while it is suspended.
    void hang() const;

    /// The value for DISPLAY.
    const QString &name() const { return m_name; }

    /// The number of visible windows with this title.
    int visibleWindows(const QString &title) const;

    /// Clicks at this position in the window with this title.
    void click(const QString &title, const QPoint &place) const;

private:
    QByteArray xdotool(const QStringList &arguments) const;

    QProcess m_server;
    QString m_name;
};

} // namespace corvane::test
