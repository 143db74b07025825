#include "app/DisplayGuard.h"

#include <QStringList>
#include <QTest>

#include <array>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// Qt's own text.
const QString noPlugin =
    u"This application failed to start because no Qt platform plugin could be initialized. "
    "Reinstalling the application may fix this problem.\n\nAvailable platform plugins are: xcb.\n"_s;

QStringList received;

void receive(QtMsgType, const QMessageLogContext &context, const QString &text)
{
    received.append(QString::fromLatin1(context.category) + u'|' + text);
}

} // namespace

class TestDisplayGuard : public QObject {
    Q_OBJECT

private slots:
    void init();
    void namesTheDisplaysOfTheEnvironment_data();
    void namesTheDisplaysOfTheEnvironment();
    void keepsTheTextOfAnotherFailure();
    void printsHeldMessagesAtTheEnd();
    void exitsWithOneLine();
};

void TestDisplayGuard::init()
{
    for (const char *name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"})
        qunsetenv(name);
}

void TestDisplayGuard::namesTheDisplaysOfTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("platform");
    QTest::addColumn<QByteArray>("wayland");
    QTest::addColumn<QByteArray>("display");
    QTest::addColumn<QString>("end");
    const QByteArray none;
    QTest::newRow("none") << none << none << none << u"it can reach."_s;
    QTest::newRow("one of X11") << none << none << QByteArray(":77")
                                << u"it can reach (DISPLAY=:77)."_s;
    QTest::newRow("two") << none << QByteArray("wayland-0") << QByteArray(":0")
                         << u"it can reach (WAYLAND_DISPLAY=wayland-0, DISPLAY=:0)."_s;
    QTest::newRow("a platform") << QByteArray("wayland") << none << none
                                << u"it can reach (QT_QPA_PLATFORM=wayland)."_s;
    QTest::newRow("one of two lines")
        << none << none << QByteArray(":1\n:2") << u"it can reach (DISPLAY=:1 :2)."_s;
}

void TestDisplayGuard::namesTheDisplaysOfTheEnvironment()
{
    QFETCH(const QByteArray, platform);
    QFETCH(const QByteArray, wayland);
    QFETCH(const QByteArray, display);
    QFETCH(const QString, end);
    qputenv("QT_QPA_PLATFORM", platform);
    qputenv("WAYLAND_DISPLAY", wayland);
    qputenv("DISPLAY", display);
    QCOMPARE(startFailureText(noPlugin),
             u"Corvane cannot start: there is no display that "_s + end);
}

void TestDisplayGuard::keepsTheTextOfAnotherFailure()
{
    QCOMPARE(startFailureText(u"Something else\nbroke"_s),
             u"Corvane cannot start: Something else broke"_s);
}

void TestDisplayGuard::printsHeldMessagesAtTheEnd()
{
    received.clear();
    const QtMessageHandler ofTheTest = qInstallMessageHandler(receive);
    {
        const DisplayGuard guard;
        qWarning("first");
        qInfo("second");
        QVERIFY(received.isEmpty());
    }
    qWarning("third");
    qInstallMessageHandler(ofTheTest);
    QCOMPARE(received, QStringList({u"default|first"_s, u"default|second"_s, u"default|third"_s}));
}

void TestDisplayGuard::exitsWithOneLine()
{
    std::array<int, 2> ends = {};
    QCOMPARE(pipe(ends.data()), 0);
    const pid_t process = fork();
    if (process == 0) {
        dup2(ends[1], STDERR_FILENO);
        const DisplayGuard guard;
        qWarning("could not connect to display");
        qFatal("%s", qPrintable(noPlugin));
    }
    close(ends[1]);
    std::string printed;
    for (char byte = 0; read(ends[0], &byte, 1) == 1;)
        printed += byte;
    close(ends[0]);
    int status = 0;
    waitpid(process, &status, 0);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 1);
    QCOMPARE(printed, startFailureText(noPlugin).toStdString() + '\n');
}

QTEST_APPLESS_MAIN(TestDisplayGuard)
#include "tst_DisplayGuard.moc"
