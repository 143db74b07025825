#include "support/ProgramSession.h"

#include "threads/MainThread.h"

#include <QDir>
#include <QFile>

namespace corvane::test {

using namespace Qt::StringLiterals;

// Below /tmp, because a socket's path has to be short.
ProgramSession::ProgramSession() : m_home(u"/tmp/corvane-XXXXXX"_s)
{
    assertMainThread();
    const QProcessEnvironment outer = QProcessEnvironment::systemEnvironment();
    for (const QString &name :
         {u"PATH"_s, u"ASAN_OPTIONS"_s, u"LSAN_OPTIONS"_s, u"UBSAN_OPTIONS"_s})
        environment.insert(name, outer.value(name));
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"HOME"_s, homePath());
    environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    environment.insert(u"XDG_CACHE_HOME"_s, path(u"cache"_s));
    environment.insert(u"XDG_RUNTIME_DIR"_s, path(u"runtime"_s));
    environment.insert(u"TMPDIR"_s, path(u"tmp"_s));
    for (const QString &folder : {u"config"_s, u"data"_s, u"cache"_s, u"runtime"_s, u"tmp"_s}) {
        if (!makeFolder(folder))
            qFatal("The home cannot be made");
    }
}

bool ProgramSession::makeFolder(const QString &name) const
{
    return QDir(homePath()).mkdir(name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool ProgramSession::startBus(const char *trayProgram)
{
    bus = std::make_unique<PrivateBus>();
    if (!bus->start())
        return false;
    tray = std::make_unique<FakeTray>(bus->address(), trayProgram);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus->address());
    return true;
}

bool ProgramSession::startDisplay()
{
    display = std::make_unique<VirtualDisplay>();
    if (!display->start())
        return false;
    environment.insert(u"DISPLAY"_s, display->name());
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    return true;
}

void ProgramSession::openDashboard() const
{
    tray->call(tray->items().value(0), u"/StatusNotifierItem"_s,
               QString::fromLatin1(FakeTray::itemInterface), u"SecondaryActivate"_s, {0, 0});
}

} // namespace corvane::test
