#include "settings/SettingsTexts.h"

#include <QDir>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestSettingsTexts : public QObject {
    Q_OBJECT

private slots:
    void describeAMac();
    void nameTheStartupPageOfTheDesktop_data();
    void nameTheStartupPageOfTheDesktop();
    void shortenTheHomeFolderInTheEntry_data();
    void shortenTheHomeFolderInTheEntry();
    void nameTheSourceOfUpdates();
};

void TestSettingsTexts::describeAMac()
{
    QCOMPARE(loginNote(HostSystem::mac, {u"KDE"_s}, u"/home/me/entry.desktop"_s),
             u"Launch at login uses Apple's `SMAppService`. If toggling fails, enable it manually "
             "under System Settings → General → Login Items."_s);
    QCOMPARE(updatesNote(true, HostSystem::mac),
             u"Updates are delivered through Sparkle. Releases are signed and verified before "
             "installation."_s);
    QCOMPARE(updatesNote(false, HostSystem::mac), u"This build offers no updates of its own."_s);
}

void TestSettingsTexts::nameTheStartupPageOfTheDesktop_data()
{
    QTest::addColumn<QStringList>("desktops");
    QTest::addColumn<QString>("page");
    QTest::newRow("KDE") << QStringList{u"KDE"_s} << u"System Settings → Autostart"_s;
    QTest::newRow("GNOME") << QStringList{u"GNOME"_s} << u"Tweaks → Startup Applications"_s;
    QTest::newRow("Ubuntu has a program for it")
        << QStringList{u"ubuntu"_s, u"GNOME"_s} << u"Startup Applications"_s;
    QTest::newRow("Xfce") << QStringList{u"XFCE"_s}
                          << u"Session and Startup → Application Autostart"_s;
    QTest::newRow("any case") << QStringList{u"lxqt"_s} << u"Session Settings → Autostart"_s;
    QTest::newRow("an unknown desktop")
        << QStringList{u"sway"_s} << u"your desktop's startup settings"_s;
    QTest::newRow("no desktop") << QStringList{QString()} << u"your desktop's startup settings"_s;
}

void TestSettingsTexts::nameTheStartupPageOfTheDesktop()
{
    QFETCH(QStringList, desktops);
    QFETCH(QString, page);
    QCOMPARE(loginNote(HostSystem::linuxDesktop, desktops, u"/entry"_s),
             u"Launch at login uses the entry `/entry`. If toggling fails, enable it manually "
             "under %1."_s.arg(page));
}

void TestSettingsTexts::shortenTheHomeFolderInTheEntry_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("shown");
    const QString home = QDir::homePath();
    QTest::newRow("in the home folder") << home + u"/.config/a"_s << u"`~/.config/a`"_s;
    QTest::newRow("elsewhere") << u"/etc/xdg/a"_s << u"`/etc/xdg/a`"_s;
    QTest::newRow("beside the home folder") << home + u"s/a"_s << u'`' + home + u"s/a`"_s;
}

void TestSettingsTexts::shortenTheHomeFolderInTheEntry()
{
    QFETCH(QString, file);
    QFETCH(QString, shown);
    QVERIFY(loginNote(HostSystem::linuxDesktop, {}, file).contains(shown));
}

void TestSettingsTexts::nameTheSourceOfUpdates()
{
    for (const bool isOffered : {true, false}) {
        QCOMPARE(updatesNote(isOffered, HostSystem::linuxDesktop),
                 u"Updates come with the system's packages, signed and verified by it before "
                 "installation."_s);
    }
}

QTEST_MAIN(TestSettingsTexts)
#include "tst_SettingsTexts.moc"
