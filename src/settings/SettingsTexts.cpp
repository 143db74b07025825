#include "settings/SettingsTexts.h"

#include "login/DesktopEntry.h"
#include "login/LoginItem.h"

#include <QDir>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// The settings page on which a desktop lists what it starts at login.
struct StartupPage {
    QLatin1StringView desktop;
    QStringView page;
};

constexpr StartupPage startupPages[] = {
    {"KDE"_L1, u"System Settings → Autostart"},
    {"ubuntu"_L1, u"Startup Applications"}, // Also names itself GNOME, so it comes first.
    {"GNOME"_L1, u"Tweaks → Startup Applications"},
    {"XFCE"_L1, u"Session and Startup → Application Autostart"},
    {"X-Cinnamon"_L1, u"System Settings → Startup Applications"},
    {"MATE"_L1, u"Control Center → Startup Applications"},
    {"LXQt"_L1, u"Session Settings → Autostart"},
};

QString startupPage(const QStringList &desktops)
{
    for (const StartupPage &page : startupPages) {
        if (desktops.contains(page.desktop, Qt::CaseInsensitive))
            return page.page.toString();
    }
    return u"your desktop's startup settings"_s;
}

/// The path with "~" for the user's home.
QString shortened(const QString &file)
{
    const QString home = QDir::homePath() + u'/';
    return file.startsWith(home) ? u"~/"_s + file.sliced(home.size()) : file;
}

} // namespace

QString loginNote(HostSystem system, const QStringList &desktops, const QString &entry)
{
    if (system == HostSystem::mac)
        return u"Launch at login uses Apple's `SMAppService`. If toggling fails, enable it "
               "manually under System Settings → General → Login Items."_s;
    return u"Launch at login uses the entry `%1`. If toggling fails, enable it manually under %2."_s
        .arg(shortened(entry), startupPage(desktops));
}

QString loginNote()
{
    return loginNote(hostSystem(), currentDesktops(), loginItemFile());
}

QString updatesNote(bool isOffered, HostSystem system)
{
    if (system == HostSystem::mac && !isOffered)
        return u"This build offers no updates of its own."_s;
    if (system == HostSystem::mac)
        return u"Updates are delivered through Sparkle. Releases are signed and verified before "
               "installation."_s;
    return u"Updates come with the system's packages, signed and verified by it before "
           "installation."_s;
}

} // namespace corvane
