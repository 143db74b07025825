#include "tray/TrayAdvice.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

const QString general =
    u"This desktop shows no tray items. Add a tray to its panel to see the numbers there."_s;
const QString extension =
    u"To see the numbers in GNOME’s bar, install its AppIndicator extension and turn it on."_s;
const QString package =
    u"To see the numbers in GNOME’s bar, install gnome-shell-extension-appindicator and turn the extension on."_s;

bool write(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QFile::WriteOnly)
        && file.write(contents) == contents.size();
}

} // namespace

class TestTrayAdvice : public QObject {
    Q_OBJECT

private slots:
    void namesWhatHelps_data();
    void namesWhatHelps();
    void readsTheSessionsDesktopAndSystem();
    void aSystemWithoutReleaseFileIsUnknown();
    void aReleaseFileThatIsAPipeHoldsNothingUp();
};

void TestTrayAdvice::namesWhatHelps_data()
{
    QTest::addColumn<QString>("desktops");
    QTest::addColumn<QByteArray>("osRelease");
    QTest::addColumn<QString>("expected");
    QTest::newRow("Debian") << u"GNOME"_s << "PRETTY_NAME=\"Debian GNU/Linux 12\"\nID=debian\n"_ba
                            << package;
    QTest::newRow("Ubuntu, with its own desktop first")
        << u"ubuntu:GNOME"_s << "NAME=\"Ubuntu\"\nID=ubuntu\nID_LIKE=debian\n"_ba << package;
    QTest::newRow("Fedora, quoted") << u"GNOME"_s << "ID=\"fedora\"\n"_ba << package;
    QTest::newRow("Arch, in single quotes") << u"GNOME"_s << "ID='arch'"_ba << package;
    QTest::newRow("a derivative of two")
        << u"GNOME"_s << "ID=rocky\nID_LIKE=\"rhel centos fedora\"\n"_ba << package;
    QTest::newRow("GNOME's classic session")
        << u"GNOME-Classic:GNOME"_s << "ID=debian\n"_ba << package;
    QTest::newRow("another distribution") << u"GNOME"_s << "ID=\"example\"\n"_ba << extension;
    QTest::newRow("a name that only begins like one")
        << u"GNOME"_s << "ID=archaic\nID_LIKE=debianish\n"_ba << extension;
    QTest::newRow("a key that only begins like one")
        << u"GNOME"_s << "IDENTITY=debian\nVARIANT_ID=fedora\n"_ba << extension;
    QTest::newRow("no equals sign, one quote, no end of line")
        << u"GNOME"_s << "ID debian\nID=\"debian\nID"_ba << extension;
    QTest::newRow("nothing known of the system") << u"GNOME"_s << QByteArray() << extension;
    QTest::newRow("not text at all") << u"GNOME"_s << QByteArray("\0\xff\n=\n\"", 6) << extension;
    QTest::newRow("another desktop") << u"sway"_s << "ID=debian\n"_ba << general;
    QTest::newRow("a desktop with a similar name")
        << u"GNOME-Flashback"_s << "ID=debian\n"_ba << general;
    QTest::newRow("no desktop is named") << QString() << "ID=debian\n"_ba << general;
}

void TestTrayAdvice::namesWhatHelps()
{
    QFETCH(QString, desktops);
    QFETCH(QByteArray, osRelease);
    QTEST(trayAdvice(desktops.split(u':', Qt::SkipEmptyParts), osRelease.toStdString()),
          "expected");
}

void TestTrayAdvice::readsTheSessionsDesktopAndSystem()
{
    const QTemporaryDir root;
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    QVERIFY(write(root.filePath(u"usr/lib/os-release"_s), "ID=debian\n"));
    QCOMPARE(trayAdviceForSession(root.path() + u'/'), package);
    QVERIFY(write(root.filePath(u"etc/os-release"_s), "ID=other\n"));
    QCOMPARE(trayAdviceForSession(root.path() + u'/'), extension);
    qputenv("XDG_CURRENT_DESKTOP", "sway");
    QCOMPARE(trayAdviceForSession(root.path() + u'/'), general);
}

void TestTrayAdvice::aSystemWithoutReleaseFileIsUnknown()
{
    const QTemporaryDir root;
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    QCOMPARE(trayAdviceForSession(root.path() + u'/'), extension);
}

void TestTrayAdvice::aReleaseFileThatIsAPipeHoldsNothingUp()
{
    const QTemporaryDir root;
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    QVERIFY(QDir(root.path()).mkpath(u"etc"_s));
    QCOMPARE(mkfifo(QFile::encodeName(root.filePath(u"etc/os-release"_s)).constData(), 0600), 0);
    QCOMPARE(trayAdviceForSession(root.path() + u'/'), extension);
}

QTEST_GUILESS_MAIN(TestTrayAdvice)
#include "tst_TrayAdvice.moc"
