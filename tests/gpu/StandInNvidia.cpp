#include "gpu/StandInNvidia.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::test {

StandInNvidia::StandInNvidia()
{
    qputenv("CORVANE_STAND_IN", m_folder.path().toUtf8());
}

StandInNvidia::~StandInNvidia()
{
    qunsetenv("CORVANE_STAND_IN");
}

void StandInNvidia::script(const QByteArray &lines) const
{
    // Whole or not at all: the library may be reading it.
    const QString next = QString::fromUtf8(path("next"));
    QFile file(next);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no script");
    file.write(lines);
    file.close();
    if (::rename(path("next").constData(), path("script").constData()) != 0)
        qFatal("no script");
}

void StandInNvidia::stall(const QByteArray &function) const
{
    if (::mkfifo(path("gate").constData(), 0600) != 0)
        qFatal("no gate");
    script(function + " stalls " + path("gate") + '\n');
}

void StandInNvidia::letGo() const
{
    script({});
    ::close(::open(path("gate").constData(), O_WRONLY | O_CLOEXEC)); // Waits for the one who waits.
    ::unlink(path("gate").constData());
}

int StandInNvidia::calls(const QByteArray &function) const
{
    QFile file(QString::fromUtf8(path("calls")));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return int(file.readAll().split('\n').count(function));
}

QByteArray StandInNvidia::path(const char *file) const
{
    return m_folder.path().toUtf8() + '/' + file;
}

} // namespace corvane::test
