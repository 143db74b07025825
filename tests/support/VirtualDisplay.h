#pragma once

#include <QPoint>
#include <QProcess>
#include <QString>

namespace corvane::test {

/// An X display of the test's own without a window manager. It can be killed.
class VirtualDisplay {
public:
    ~VirtualDisplay() { kill(); }

    /// Runs from here on; false if it did not come up.
    bool start();
    void kill();

    /// As in DISPLAY.
    const QString &name() const { return m_name; }

    /// Windows with this title that are to be seen.
    int visibleWindows(const QString &title) const;

    /// On a place in the window with this title.
    void click(const QString &title, const QPoint &place) const;

private:
    QByteArray xdotool(const QStringList &arguments) const;

    QProcess m_server;
    QString m_name;
};

} // namespace corvane::test
