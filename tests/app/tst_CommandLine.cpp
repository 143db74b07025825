#include "app/CommandLine.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestCommandLine : public QObject {
    Q_OBJECT

private slots:
    void opensWindowsByDefault();
    void readsItsOptions_data();
    void readsItsOptions();
    void readsTheForm_data();
    void readsTheForm();
    void leavesTheWindowSystemItsOwn_data();
    void leavesTheWindowSystemItsOwn();
    void namesWhatIsWrong_data();
    void namesWhatIsWrong();
    void explainsEachOption();
};

void TestCommandLine::opensWindowsByDefault()
{
    const CommandLine line = parsedCommandLine({u"corvane"_s});
    QVERIFY(!line.isBackground && !line.asksForHelp && !line.asksForVersion && !line.figures);
    QCOMPARE(line.error, QString());
}

void TestCommandLine::readsItsOptions_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<bool>("background");
    QTest::addColumn<bool>("help");
    QTest::addColumn<bool>("version");

    QTest::newRow("in the background") << u"--background"_s << true << false << false;
    QTest::newRow("help") << u"--help"_s << false << true << false;
    QTest::newRow("help, short") << u"-h"_s << false << true << false;
    QTest::newRow("version") << u"--version"_s << false << false << true;
    QTest::newRow("version, short") << u"-v"_s << false << false << true;
}

void TestCommandLine::readsItsOptions()
{
    QFETCH(QString, argument);
    const CommandLine line = parsedCommandLine({u"corvane"_s, argument});
    QTEST(line.isBackground, "background");
    QTEST(line.asksForHelp, "help");
    QTEST(line.asksForVersion, "version");
    QCOMPARE(line.error, QString());
}

void TestCommandLine::readsTheForm_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<FiguresForm>("form");

    QTest::newRow("no form") << u"--json"_s << FiguresForm::once;
    QTest::newRow("once") << u"--json=once"_s << FiguresForm::once;
    QTest::newRow("stream") << u"--json=stream"_s << FiguresForm::stream;
    QTest::newRow("waybar") << u"--json=waybar"_s << FiguresForm::waybar;
}

void TestCommandLine::readsTheForm()
{
    QFETCH(QString, argument);
    const CommandLine line = parsedCommandLine({u"corvane"_s, argument});
    QCOMPARE(line.error, QString());
    QVERIFY(line.figures.has_value());
    QTEST(*line.figures, "form");
}

void TestCommandLine::leavesTheWindowSystemItsOwn_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("an option with a value") << QStringList{u"-platform"_s, u"offscreen"_s};
    QTest::newRow("a session manager's") << QStringList{u"-session"_s, u"10a_1_2"_s};
    QTest::newRow("an option without a value") << QStringList{u"-reverse"_s};
    QTest::newRow("a process serial number") << QStringList{u"-psn_0_1234"_s};
}

void TestCommandLine::leavesTheWindowSystemItsOwn()
{
    QFETCH(QStringList, arguments);
    const CommandLine line =
        parsedCommandLine(QStringList{u"corvane"_s} + arguments + QStringList{u"--background"_s});
    QCOMPARE(line.error, QString());
    QVERIFY(line.isBackground);
}

void TestCommandLine::namesWhatIsWrong_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("an unknown option") << QStringList{u"--jsno"_s} << u"Unknown option 'jsno'."_s;
    QTest::newRow("an unknown short option") << QStringList{u"-x"_s} << u"Unknown option 'x'."_s;
    QTest::newRow("an unknown form") << QStringList{u"--json=xml"_s}
                                     << u"Unknown form 'xml' of --json: once, stream or waybar."_s;
    QTest::newRow("an empty form")
        << QStringList{u"--json="_s} << u"Unknown form '' of --json: once, stream or waybar."_s;
    QTest::newRow("an argument") << QStringList{u"stream"_s} << u"Unexpected argument 'stream'."_s;
    QTest::newRow("a form that stands apart")
        << QStringList{u"--json"_s, u"stream"_s} << u"Unexpected argument 'stream'."_s;
    QTest::newRow("a value for a switch")
        << QStringList{u"--background=1"_s} << u"Unexpected value after '--background'."_s;
}

void TestCommandLine::namesWhatIsWrong()
{
    QFETCH(QStringList, arguments);
    QTEST(parsedCommandLine(QStringList{u"corvane"_s} + arguments).error, "error");
}

void TestCommandLine::explainsEachOption()
{
    const QString help = helpText();
    for (const QString &option :
         {u"--help"_s, u"--version"_s, u"--background"_s, u"--json[=form]"_s})
        QVERIFY2(help.contains(option), qPrintable(option));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_CommandLine.moc"
