#include "support/VirtualDisplay.h"

#include <QRegularExpression>

#include <csignal>

namespace corvane::test {

using namespace Qt::StringLiterals;

namespace {

QStringList searchFor(const QString &title)
{
    return {u"search"_s, u"--onlyvisible"_s, u"--name"_s,
            u'^' + QRegularExpression::escape(title) + u'$'};
}

} // namespace

bool VirtualDisplay::start()
{
    // The server chooses a free number and prints it when it is ready. It must not start anew when
    // its last client leaves: a look at its windows may end while the program connects.
    m_server.start(u"Xvfb"_s,
                   {u"-displayfd"_s, u"1"_s, u"-noreset"_s, u"-nolisten"_s, u"tcp"_s, u"-screen"_s,
                    u"0"_s, u"1280x960x24"_s});
    QByteArray number;
    while (!number.endsWith('\n') && m_server.waitForReadyRead(60'000))
        number += m_server.readAllStandardOutput();
    m_name = u':' + QString::fromLatin1(number.trimmed());
    return number.endsWith('\n');
}

void VirtualDisplay::kill()
{
    m_server.kill();
    m_server.waitForFinished();
}

void VirtualDisplay::hang() const
{
    ::kill(static_cast<pid_t>(m_server.processId()), SIGSTOP);
}

int VirtualDisplay::visibleWindows(const QString &title) const
{
    return static_cast<int>(xdotool(searchFor(title)).count('\n'));
}

void VirtualDisplay::click(const QString &title, const QPoint &place) const
{
    xdotool(searchFor(title) << u"mousemove"_s << u"--window"_s << u"%1"_s
                             << QString::number(place.x()) << QString::number(place.y())
                             << u"click"_s << u"1"_s);
}

QByteArray VirtualDisplay::xdotool(const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, m_name);
    process.setProcessEnvironment(environment);
    process.start(u"xdotool"_s, arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

} // namespace corvane::test
