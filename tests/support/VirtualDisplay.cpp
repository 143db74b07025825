#include "support/VirtualDisplay.h"

#include <QRegularExpression>

namespace corvane::test {

using namespace Qt::StringLiterals;

bool VirtualDisplay::start()
{
    // It chooses a number that is free, and tells it when it is ready.
    m_server.start(u"Xvfb"_s,
                   {u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s, u"-screen"_s, u"0"_s,
                    u"1280x960x24"_s});
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

int VirtualDisplay::visibleWindows(const QString &title) const
{
    QProcess search;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, m_name);
    search.setProcessEnvironment(environment);
    search.start(u"xdotool"_s,
                 {u"search"_s, u"--onlyvisible"_s, u"--name"_s,
                  u'^' + QRegularExpression::escape(title) + u'$'});
    search.waitForFinished();
    return static_cast<int>(search.readAllStandardOutput().count('\n'));
}

} // namespace corvane::test
