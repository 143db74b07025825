#include "login/DesktopEntry.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

QByteArray entryWith(const QByteArray &lines)
{
    return "[Desktop Entry]\nType=Application\nExec=/usr/bin/corvane\n" + lines;
}

} // namespace

class TestDesktopEntry : public QObject {
    Q_OBJECT

private slots:
    void isAbsentWithoutAValidGroup_data();
    void isAbsentWithoutAValidGroup();
    void decidesWhetherItIsStarted_data();
    void decidesWhetherItIsStarted();
    void readsTheProgram_data();
    void readsTheProgram();
    void unescapesValues();
    void writesAnyPath_data();
    void writesAnyPath();
    void writesEscapedAndQuotedPaths();
};

void TestDesktopEntry::isAbsentWithoutAValidGroup_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("another group") << QByteArray("[Desktop Action x]\nExec=/usr/bin/corvane\n");
    QTest::newRow("keys before any group") << QByteArray("Exec=/usr/bin/corvane\n");
    QTest::newRow("not UTF-8") << entryWith("Name=\xff\xfe\n");
    QTest::newRow("a zero byte") << entryWith(QByteArray("Name=a\0b\n", 9));
    QTest::newRow("UTF-16") << QByteArray("[\0D\0e\0s\0k\0", 10);
}

void TestDesktopEntry::isAbsentWithoutAValidGroup()
{
    QFETCH(const QByteArray, bytes);
    QVERIFY(!desktopEntry(bytes));
}

void TestDesktopEntry::decidesWhetherItIsStarted_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("desktops");
    QTest::addColumn<bool>("isOn");
    const QStringList gnome{u"ubuntu"_s, u"GNOME"_s};
    QTest::newRow("a plain entry") << entryWith("") << gnome << true;
    QTest::newRow("no desktop in the session") << entryWith("") << QStringList() << true;
    QTest::newRow("hidden") << entryWith("Hidden=true\n") << gnome << false;
    QTest::newRow("not hidden") << entryWith("Hidden=false\n") << gnome << true;
    QTest::newRow("switched off by the desktop")
        << entryWith("X-GNOME-Autostart-enabled=false\n") << gnome << false;
    QTest::newRow("switched on by the desktop")
        << entryWith("X-GNOME-Autostart-enabled=true\n") << gnome << true;
    QTest::newRow("the desktop's key has another value")
        << entryWith("X-GNOME-Autostart-enabled=perhaps\n") << gnome << false;
    QTest::newRow("for this desktop") << entryWith("OnlyShowIn=KDE;GNOME;\n") << gnome << true;
    QTest::newRow("for other desktops") << entryWith("OnlyShowIn=KDE;XFCE;\n") << gnome << false;
    QTest::newRow("for no desktop") << entryWith("OnlyShowIn=\n") << gnome << false;
    QTest::newRow("for a desktop, in a session without one")
        << entryWith("OnlyShowIn=GNOME\n") << QStringList() << false;
    QTest::newRow("not for this desktop") << entryWith("NotShowIn=GNOME;\n") << gnome << false;
    QTest::newRow("not for other desktops") << entryWith("NotShowIn=KDE;\n") << gnome << true;
    QTest::newRow("the first desktop decides")
        << entryWith("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n") << gnome << true;
    QTest::newRow("names are case-sensitive") << entryWith("OnlyShowIn=gnome\n") << gnome << false;
    QTest::newRow("a link") << entryWith("Type=Link\n") << gnome << false;
    QTest::newRow("no type") << QByteArray("[Desktop Entry]\nExec=/x\n") << gnome << true;
    QTest::newRow("no command") << QByteArray("[Desktop Entry]\nType=Application\n") << gnome
                                << false;
    QTest::newRow("a quote that is not closed")
        << QByteArray("[Desktop Entry]\nExec=\"/x\n") << gnome << false;
    QTest::newRow("the last of two lines counts")
        << entryWith("Hidden=true\nHidden=false\n") << gnome << true;
    QTest::newRow("blanks around the equals sign")
        << entryWith("Hidden = true \n") << gnome << false;
    QTest::newRow("line ends of Windows") << entryWith("Hidden=true\r\n") << gnome << false;
    QTest::newRow("no last newline") << entryWith("Hidden=true") << gnome << false;
    QTest::newRow("a comment") << entryWith("#Hidden=true\n") << gnome << true;
    QTest::newRow("a key of another group") << entryWith("[Other]\nHidden=true\n") << gnome << true;
    QTest::newRow("a translated key") << entryWith("Hidden[de]=true\n") << gnome << true;
    QTest::newRow("malformed lines") << entryWith("Hidden\n=\n[\n") << gnome << true;
}

void TestDesktopEntry::decidesWhetherItIsStarted()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QStringList, desktops);
    const auto entry = desktopEntry(bytes);
    QVERIFY(entry);
    QTEST(isStarted(*entry, desktops), "isOn");
}

void TestDesktopEntry::readsTheProgram_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("program");
    QTest::newRow("a path") << QByteArray("/usr/bin/corvane") << u"/usr/bin/corvane"_s;
    QTest::newRow("with arguments")
        << QByteArray("/usr/bin/corvane --x %U") << u"/usr/bin/corvane"_s;
    QTest::newRow("quoted") << QByteArray(R"("/opt/a b/corvane" %U)") << u"/opt/a b/corvane"_s;
    QTest::newRow("single quotes") << QByteArray("'/opt/a b/corvane'") << u"/opt/a b/corvane"_s;
    QTest::newRow("a word in several quotes")
        << QByteArray(R"(/opt/"a b"/corvane)") << u"/opt/a b/corvane"_s;
    QTest::newRow("an escaped blank")
        << QByteArray(R"(/opt/a\\ b/corvane)") << u"/opt/a b/corvane"_s;
    QTest::newRow("a literal dollar") << QByteArray(R"("/opt/\\$x")") << u"/opt/$x"_s;
    QTest::newRow("a literal backslash") << QByteArray(R"("/opt/\\\\x")") << u"/opt/\\x"_s;
    QTest::newRow("a backslash before another letter")
        << QByteArray(R"("/opt/\\x")") << u"/opt/\\x"_s;
    QTest::newRow("a doubled percent sign")
        << QByteArray("/opt/100%%/corvane") << u"/opt/100%/corvane"_s;
    QTest::newRow("with variables set")
        << QByteArray("env A=1 B= /usr/bin/corvane %U") << u"/usr/bin/corvane"_s;
    QTest::newRow("only variables") << QByteArray("/usr/bin/env A=1") << QString();
    QTest::newRow("a quote that is not closed after env")
        << QByteArray("env \"/usr/bin/corvane") << QString();
    QTest::newRow("empty") << QByteArray("  ") << QString();
    QTest::newRow("a backslash at the end") << QByteArray(R"(/x\\)") << u"/x\\"_s;
    QTest::newRow("only quotes") << QByteArray(R"("")") << QString();
}

void TestDesktopEntry::readsTheProgram()
{
    QFETCH(const QByteArray, command);
    const auto entry = desktopEntry("[Desktop Entry]\nExec=" + command + '\n');
    QVERIFY(entry);
    QTEST(entry->program, "program");
}

void TestDesktopEntry::unescapesValues()
{
    const auto entry = desktopEntry(R"([Desktop Entry]
TryExec=a\sb\nc\td\re\\f\xg\)");
    QVERIFY(entry);
    QCOMPARE(entry->tryExec, u"a b\nc\td\re\\f\\xg\\"_s);
}

void TestDesktopEntry::writesAnyPath_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("plain") << u"/usr/bin/corvane"_s;
    QTest::newRow("a blank") << u"/home/a b/corvane"_s;
    QTest::newRow("a blank at the end") << u"/home/corvane "_s;
    QTest::newRow("a percent sign") << u"/home/100%/%U/%%/corvane"_s;
    QTest::newRow("a percent sign and a blank") << u"/home/100 %/corvane"_s;
    QTest::newRow("double quotes") << u"/home/\"x\"/corvane"_s;
    QTest::newRow("single quotes") << u"/home/it's/corvane"_s;
    QTest::newRow("backslashes") << u"/home/a\\b\\\\c\\"_s;
    QTest::newRow("dollar and backtick") << u"/home/$HOME/`x`/corvane"_s;
    QTest::newRow("all characters of shells") << u"/home/ \"'\\><~|&;$*?#()`%/corvane"_s;
    QTest::newRow("newline, tab and return") << u"/home/a\nb\tc\rd/corvane"_s;
    QTest::newRow("other scripts") << u"/home/Jörg/програма/🐦/corvane"_s;
    QTest::newRow("rare white space") << u"/home/a\vb\u00a0c/\u2003"_s;
    QTest::newRow("a group's heading in the path") << u"/home/\n[Desktop Entry]\nHidden=true"_s;
}

void TestDesktopEntry::writesAnyPath()
{
    QFETCH(const QString, program);
    const auto entry = desktopEntry(autostartEntry(program));
    QVERIFY(entry);
    QCOMPARE(entry->program, program);
    QCOMPARE(entry->tryExec, program);
    QVERIFY(isStarted(*entry, {u"GNOME"_s}));
}

void TestDesktopEntry::writesEscapedAndQuotedPaths()
{
    const QList<QByteArray> lines = autostartEntry(u"/opt/a $b/corvane"_s).split('\n');
    QCOMPARE(lines.constFirst(), QByteArray("[Desktop Entry]"));
    QVERIFY(lines.contains("Type=Application"));
    QVERIFY(lines.contains(R"(Exec="/opt/a \\$b/corvane" --background)"));
    QVERIFY(lines.contains(R"(TryExec=/opt/a $b/corvane)"));
    QVERIFY(autostartEntry(u"/100%/corvane"_s)
                .contains("\nExec=/usr/bin/env /100%%/corvane --background\n"));
    QVERIFY(
        autostartEntry(u"/usr/bin/corvane"_s).contains("\nExec=/usr/bin/corvane --background\n"));
}

QTEST_GUILESS_MAIN(TestDesktopEntry)
#include "tst_DesktopEntry.moc"
