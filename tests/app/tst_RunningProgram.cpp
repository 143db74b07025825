#include "history/PersistedMetric.h"
#include "instance/InstanceMessage.h"
#include "platform/FolderLock.h"
#include "platform/UnixSocket.h"
#include "support/HalfBus.h"
#include "support/OddFiles.h"
#include "support/ProgramRun.h"
#include "support/ProgramSession.h"
#include "support/SystemCalls.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <optional>
#include <vector>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const QString identifier = u"io.github.corvane.Corvane"_s;

/// Bytes that the process has read from files since it began.
qint64 bytesRead(pid_t process)
{
    QFile file(u"/proc/%1/io"_s.arg(process));
    if (!file.open(QFile::ReadOnly))
        return 0;
    return file.readAll().split('\n').first().split(' ').last().toLongLong();
}

/// The most memory that the process has used so far, in KiB.
qint64 peakKiB(qint64 process)
{
    QFile file(u"/proc/%1/status"_s.arg(process));
    if (!file.open(QFile::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    const QByteArray line = text.mid(text.indexOf("VmHWM:")).split('\n').first();
    return line.chopped(3).split('\t').last().trimmed().toLongLong();
}

} // namespace

/// The real program in a session of its own, from its start to its end.
class TestRunningProgram : public QObject {
    Q_OBJECT

private slots:
    void init() { m_session.emplace(); }

    void aSecondStartOpensTheDashboard();
    void restartsAfterItWasKilled();
    void aSecondStartGivesUpOnOneThatIsStopped();
    void twoSessionsRunSideBySideAndOneWritesTheHistory();
    void survivesATimeWithoutDescriptors();
    void runsWithLimits_data();
    void runsWithLimits();
    void endsInOneLineWithoutThreads();
    void endsInOneLineWithoutDescriptors();
    void endsInOneLineWithoutAStack();
    void runsOrEndsInOneLineWithFewThreads_data();
    void runsOrEndsInOneLineWithFewThreads();
    void runsWithoutRuntimeAndTemporaryFolders();
    void runsWithAnyHistory_data();
    void runsWithAnyHistory();
    void runsWithAnyPreferences_data();
    void runsWithAnyPreferences();
    void ignoresHostileClients();

    void theDesktopOpensTheDashboard();
    void manyRequestsOpenOneDashboard();
    void theDesktopQuits();
    void aSecondStartReachesTheFirstOverTheBus();
    void startsNoBus();

    void quitsOnASignal_data();
    void quitsOnASignal();
    void survivesTheEndOfItsBus();
    void runsWhileItsBusHangs_data();
    void runsWhileItsBusHangs();
    void runsWithHalfABus();
    void endsWithItsDisplay();
    void endsWhileItsDisplayHangs();
    void reportsAMissingDisplayInOneLine_data();
    void reportsAMissingDisplayInOneLine();
    void answersWithoutADisplay_data();
    void answersWithoutADisplay();

private:
    QString historyFolder() const { return m_session->path(u"data/Corvane"_s); }
    std::string socketPath() const { return m_session->socketPath().toStdString(); }
    QDBusConnection bus() const
    {
        return QDBusConnection::connectToBus(m_session->bus->address(), u"fake-tray"_s);
    }
    ProgramRun start() const { return ProgramRun(m_session->environment); }
    std::vector<PersistedMetric> records() const;
    QList<double> times() const;
    bool isAnswering() const;
    QDBusMessage callDesktop(const QString &method, const QVariantList &arguments) const;

    std::optional<ProgramSession> m_session;
};

/// All records of the history; empty if a line is incomplete.
std::vector<PersistedMetric> TestRunningProgram::records() const
{
    QFile file(m_session->historyFile());
    std::vector<PersistedMetric> records;
    if (!file.open(QFile::ReadOnly))
        return records;
    QList<QByteArray> lines = file.readAll().split('\n');
    if (!lines.takeLast().isEmpty())
        return {};
    for (const QByteArray &line : lines) {
        const auto record = PersistedMetric::fromJson(line);
        if (!record)
            return {};
        records.push_back(*record);
    }
    return records;
}

/// The times of the records.
QList<double> TestRunningProgram::times() const
{
    QList<double> times;
    for (const PersistedMetric &record : records())
        times.append(record.t);
    return times;
}

/// Whether the socket accepts a client, which is the last step of the start.
bool TestRunningProgram::isAnswering() const
{
    return connectTo(openUnixSocket(), socketPath());
}

QDBusMessage TestRunningProgram::callDesktop(const QString &method,
                                             const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        identifier, u"/io/github/corvane/Corvane"_s, u"org.freedesktop.Application"_s, method);
    message.setArguments(arguments);
    const QDBusPendingCall answer = bus().asyncCall(message);
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }, patience))
        return {};
    return answer.reply();
}

void TestRunningProgram::aSecondStartOpensTheDashboard()
{
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    ProgramRun first = start();
    TRY_VERIFY(m_session->hasLabel());
    TRY_VERIFY(isAnswering());
    QCOMPARE(m_session->display->visibleWindows(u"Corvane"_s), 0);

    ProgramRun second = start();
    QCOMPARE(second.exitStatus(), 0);
    QCOMPARE(second.errors(), QByteArray());
    TRY_COMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1);

    // One dashboard stays one.
    QCOMPARE(start().exitStatus(), 0);
    QCOMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1);
    QVERIFY(first.isRunning());
    first.send(SIGTERM);
    QCOMPARE(first.exitStatus(), 0);
}

void TestRunningProgram::restartsAfterItWasKilled()
{
    QList<double> known;
    for (int round = 0; round < 3; ++round) {
        ProgramRun first = start();
        TRY_VERIFY(isAnswering());
        TRY_VERIFY(times().size() > known.size());
        QCOMPARE(times().first(known.size()), known);
        known = times();
        QCOMPARE(start().exitStatus(), 0);
        first.send(SIGKILL);
        QCOMPARE(first.exitStatus(), -1);
        QVERIFY2(QFile::exists(QString::fromStdString(socketPath())),
                 "a killed process cannot remove its socket");
        QVERIFY(times().size() >= known.size());
        QCOMPARE(times().first(known.size()), known);
    }
}

void TestRunningProgram::aSecondStartGivesUpOnOneThatIsStopped()
{
    const ProgramRun first = start();
    TRY_VERIFY(isAnswering());
    first.send(SIGSTOP);
    ProgramRun second = start();
    QCOMPARE(second.exitStatus(), 1);
    QCOMPARE(second.errors(), "Corvane is already running, but it does not answer.\n"_ba);
    first.send(SIGCONT);
    QCOMPARE(start().exitStatus(), 0);
}

void TestRunningProgram::twoSessionsRunSideBySideAndOneWritesTheHistory()
{
    ProgramRun first = start();
    TRY_VERIFY(!records().empty());
    QVERIFY(m_session->makeFolder(u"elsewhere"_s));
    m_session->environment.insert(u"XDG_RUNTIME_DIR"_s, m_session->path(u"elsewhere"_s));
    const ProgramRun second = start();
    TRY_VERIFY(QFile::exists(m_session->path(u"elsewhere/io.github.corvane.Corvane/socket"_s)));
    QVERIFY(first.isRunning() && second.isRunning());
    QCOMPARE(FolderLock(historyFolder().toStdString()).take(), FolderLock::Holder::other);

    first.kill();
    const std::size_t count = records().size();
    TRY_VERIFY(records().size() > count); // The second writes now.
}

/// No file and no connection can be opened for a while, and so no window.
void TestRunningProgram::survivesATimeWithoutDescriptors()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers need descriptors to look at memory.");
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    const ProgramRun first = start();
    TRY_COMPARE(m_session->tray->listings(), 1); // The label has all its items.
    TRY_VERIFY(isAnswering());
    TRY_VERIFY(!records().empty());
    // All descriptors below are in use; poll would fail with a lower limit.
    constexpr rlim_t limit = 8;
    const auto process = static_cast<pid_t>(first.id());
    for (rlim_t number = 0; number < limit; ++number)
        QVERIFY(QFileInfo(u"/proc/%1/fd/%2"_s.arg(process).arg(number)).isSymLink());
    rlimit before = {};
    QCOMPARE(prlimit(process, RLIMIT_NOFILE, nullptr, &before), 0);
    const rlimit none{.rlim_cur = limit, .rlim_max = before.rlim_max};
    QCOMPARE(prlimit(process, RLIMIT_NOFILE, &none, nullptr), 0);
    const std::size_t known = records().size();
    const ProgramRun second = start(); // Waits for its connection.
    for (const QString &method : {u"SecondaryActivate"_s, u"Activate"_s})
        m_session->tray->call(m_session->tray->items().value(0), u"/StatusNotifierItem"_s,
                              QString::fromLatin1(FakeTray::itemInterface), method, {0, 0});
    const qint64 read = bytesRead(process);
    QVERIFY(read > 0);
    TRY_VERIFY(bytesRead(process) > read + 5000); // It still samples.
    QVERIFY(records().size() <= known + 1);
    QCOMPARE(m_session->display->visibleWindows(u"Corvane"_s), 0);

    QCOMPARE(prlimit(process, RLIMIT_NOFILE, &before, nullptr), 0);
    TRY_VERIFY(records().size() > known + 1);
    QCOMPARE(second.exitStatus(), 0);
    TRY_COMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1);
    first.send(SIGTERM);
    QCOMPARE(first.exitStatus(), 0);
}

void TestRunningProgram::runsWithLimits_data()
{
    QTest::addColumn<QString>("shell");
    QTest::newRow("no file may grow") << u"ulimit -f 0; exec "_s;
    QTest::newRow("a small stack") << u"ulimit -s 256; exec "_s;
    QTest::newRow("without standard streams") << u"exec <&- >&- 2>&- "_s;
}

/// As its parent may start it.
void TestRunningProgram::runsWithLimits()
{
    QFETCH(const QString, shell);
    QVERIFY(m_session->startBus());
    const ProgramRun first(m_session->environment, u"sh"_s,
                           {u"-c"_s, shell + u"\"$0\""_s, programFile()});
    TRY_VERIFY(m_session->hasLabel());
    TRY_VERIFY(isAnswering());
    const QString folder = u"/proc/%1/fd/"_s.arg(first.id());
    for (const QString &number : {u"0"_s, u"1"_s, u"2"_s}) {
        const QString file = QFile::symLinkTarget(folder + number);
        QVERIFY2(file.contains("pipe:"_L1) || file == "/dev/null"_L1, qPrintable(file));
    }
    const qint64 read = bytesRead(static_cast<pid_t>(first.id()));
    TRY_VERIFY(bytesRead(static_cast<pid_t>(first.id())) > read + 5000); // It still samples.
    first.send(SIGTERM);
    QCOMPARE(first.exitStatus(), 0);
}

/// The system refuses every thread but the first.
void TestRunningProgram::endsInOneLineWithoutThreads()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers need threads of their own.");
    if (const QString obstacle = obstacleToTracing(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    ProgramRun corvane(m_session->environment, u"strace"_s,
                       {u"-f"_s, u"-o"_s, m_session->path(u"trace"_s), u"-e"_s,
                        u"inject=clone,clone3:error=EAGAIN"_s, programFile()});
    QCOMPARE(corvane.exitStatus(), 1);
    QCOMPARE(corvane.errors(), "Corvane cannot start: the system allows it no more threads.\n"_ba);
}

void TestRunningProgram::endsInOneLineWithoutDescriptors()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers need descriptors to look at memory.");
    for (const int most : {6, 8}) {
        ProgramRun corvane(m_session->environment, u"sh"_s,
                           {u"-c"_s, u"ulimit -n %1; exec \"$0\""_s.arg(most), programFile()});
        QCOMPARE(corvane.exitStatus(), 1);
        QCOMPARE(corvane.errors(),
                 "Corvane cannot start: the system allows it no more open files.\n"_ba);
    }
}

void TestRunningProgram::runsOrEndsInOneLineWithFewThreads_data()
{
    QTest::addColumn<int>("most");
    for (const int most : {1, 3, 4, 5})
        QTest::addRow("ulimit -u %d", most) << most;
}

void TestRunningProgram::endsInOneLineWithoutAStack()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers need more of it themselves.");
    ProgramRun corvane(m_session->environment, u"sh"_s,
                       {u"-c"_s, u"ulimit -s 64; exec \"$0\""_s, programFile()});
    QCOMPARE(corvane.exitStatus(), 1);
    QCOMPARE(corvane.errors(),
             "Corvane cannot start: the system allows it no more memory for its stack.\n"_ba);
}

/// Of a user who has no other process, as the limit counts all of a user's threads. On a display:
/// the libraries of X11 and of accessibility start threads too.
void TestRunningProgram::runsOrEndsInOneLineWithFewThreads()
{
    QFETCH(const int, most);
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers need threads of their own.");
    if (getuid() != 0)
        QSKIP("Only root can start it as another user.");
    const QString user = QString::number(100'000 + getpid());
    const QStringList change{u"--reuid"_s, user, u"--regid"_s, user, u"--clear-groups"_s};
    if (QProcess::execute(u"setpriv"_s, change + QStringList{u"test"_s, u"-x"_s, programFile()})
        != 0)
        QSKIP("Other users cannot read the program.");
    QVERIFY(m_session->startDisplay());
    QCOMPARE(QProcess::execute(u"chown"_s, {u"-R"_s, user, m_session->homePath()}), 0);
    ProgramRun corvane(m_session->environment, u"setpriv"_s,
                       change
                           + QStringList{u"bash"_s, u"-c"_s,
                                         u"ulimit -u %1; exec \"$0\""_s.arg(most), programFile()});
    TRY_VERIFY(!corvane.isRunning() || isAnswering());
    if (!corvane.isRunning()) {
        QCOMPARE(corvane.exitStatus(), 1);
        QCOMPARE(corvane.errors(),
                 "Corvane cannot start: the system allows it no more threads.\n"_ba);
        return;
    }
    const qint64 read = bytesRead(static_cast<pid_t>(corvane.id()));
    TRY_VERIFY(bytesRead(static_cast<pid_t>(corvane.id())) > read + 1500); // It still samples.
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
    QCOMPARE(corvane.errors(), QByteArray());
}

void TestRunningProgram::runsWithoutRuntimeAndTemporaryFolders()
{
    for (const QString &folder : {u"runtime"_s, u"tmp"_s})
        QVERIFY(QDir(m_session->homePath()).rmdir(folder));
    const ProgramRun first = start();
    TRY_VERIFY(records().size() > 1);
    QCOMPARE(FolderLock(historyFolder().toStdString()).take(), FolderLock::Holder::other);
    first.send(SIGTERM);
    QCOMPARE(first.exitStatus(), 0);
    QCOMPARE(FolderLock(historyFolder().toStdString()).take(), FolderLock::Holder::self);
}

void TestRunningProgram::runsWithAnyHistory_data()
{
    QTest::addColumn<PutOddFile>("put");
    QTest::newRow("a FIFO without a reader or writer") << &putFIFO;
    QTest::newRow("a line of a hundred megabytes") << &putHugeLine;
}

void TestRunningProgram::runsWithAnyHistory()
{
    QFETCH(const PutOddFile, put);
    QVERIFY(QDir().mkpath(historyFolder()));
    QVERIFY(put(m_session->historyFile()));
    QVERIFY(m_session->startBus());
    const ProgramRun first = start();
    TRY_VERIFY(m_session->hasLabel());
    TRY_VERIFY(isAnswering());
    QCOMPARE(start().exitStatus(), 0);
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    QCOMPARE(callDesktop(u"ActivateAction"_s, {u"quit"_s, QVariantList(), QVariantMap()}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(first.exitStatus(), 0);
}

void TestRunningProgram::runsWithAnyPreferences_data()
{
    QTest::addColumn<PutOddFile>("put");
    QTest::newRow("a FIFO without a reader or writer") << &putFIFO;
    QTest::newRow("a file of half a gigabyte") << &putHugeFile;
    QTest::newRow("a file without an end") << &putEndlessFile;
    QTest::newRow("all byte values") << &putGarbage;
}

void TestRunningProgram::runsWithAnyPreferences()
{
    QFETCH(const PutOddFile, put);
    QVERIFY(m_session->makeFolder(u"config/Corvane"_s));
    QVERIFY(put(m_session->path(u"config/Corvane/Corvane.conf"_s)));
    QVERIFY(m_session->startBus());
    const ProgramRun corvane = start();
    TRY_VERIFY(m_session->hasLabel());
    TRY_VERIFY(isAnswering());
    QVERIFY(peakKiB(corvane.id()) > 0);
    QVERIFY2(peakKiB(corvane.id()) < 400'000, qPrintable(QString::number(peakKiB(corvane.id()))));
    QElapsedTimer elapsed;
    elapsed.start();
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
    QVERIFY2(elapsed.elapsed() < 8'000, qPrintable(QString::number(elapsed.elapsed())));
}

void TestRunningProgram::ignoresHostileClients()
{
    const ProgramRun first = start();
    TRY_VERIFY(isAnswering());
    const QList<QByteArray> messages{"", "Corvane/1 op", QByteArray(100'000, '\0'),
                                     QByteArray(100'000, '\n'), "\377\376\200Corvane/1 open\n\n"};
    std::vector<FileDescriptor> clients;
    for (int number = 0; number < 200; ++number) {
        clients.push_back(openUnixSocket());
        connectTo(clients.back(), socketPath());
        const QByteArray &message = messages[number % messages.size()];
        [[maybe_unused]] const ssize_t sent = write(clients.back().get(), message.constData(),
                                                    static_cast<std::size_t>(message.size()));
    }
    QCOMPARE(start().exitStatus(), 0);
    QVERIFY(first.isRunning());
}

void TestRunningProgram::theDesktopOpensTheDashboard()
{
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    const ProgramRun corvane = start();
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    const QVariantMap platformData{{u"activation-token"_s, u"token"_s}};
    QCOMPARE(callDesktop(u"Activate"_s, {platformData}).type(), QDBusMessage::ReplyMessage);
    TRY_COMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1);
}

/// As a program on the bus may send them; nobody waits for the replies.
void TestRunningProgram::manyRequestsOpenOneDashboard()
{
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    const ProgramRun corvane = start();
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    QDBusMessage message =
        QDBusMessage::createMethodCall(identifier, u"/io/github/corvane/Corvane"_s,
                                       u"org.freedesktop.Application"_s, u"Activate"_s);
    message.setArguments({QVariantMap{{u"activation-token"_s, QString(1000, u'x')}}});
    for (int number = 0; number < 5000; ++number)
        bus().send(message);
    TRY_COMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1);
    const std::size_t known = records().size();
    TRY_VERIFY(records().size() > known);
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
}

void TestRunningProgram::theDesktopQuits()
{
    QVERIFY(m_session->startBus());
    const ProgramRun corvane = start();
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    const QVariantList quit{u"quit"_s, QVariantList(), QVariantMap()};
    QCOMPARE(callDesktop(u"ActivateAction"_s, quit).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(corvane.exitStatus(), 0);
}

/// The two starts have different runtime folders.
void TestRunningProgram::aSecondStartReachesTheFirstOverTheBus()
{
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    const ProgramRun first = start();
    TRY_VERIFY(m_session->hasLabel());
    QVERIFY(m_session->makeFolder(u"elsewhere"_s));
    m_session->environment.insert(u"XDG_RUNTIME_DIR"_s, m_session->path(u"elsewhere"_s));
    QCOMPARE(start().exitStatus(), 0);
    TRY_COMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1);
    QVERIFY(first.isRunning());
}

/// On X11 without a tray, Qt's own icons look for one on the bus.
void TestRunningProgram::startsNoBus()
{
    QVERIFY(m_session->startDisplay());
    QVERIFY(m_session->makeFolder(u"bin"_s));
    QFile launcher(m_session->path(u"bin/dbus-launch"_s)); // Comes first in PATH.
    QVERIFY(launcher.open(QFile::WriteOnly));
    launcher.write("#!/bin/sh\n: > \"$HOME/launched\"\n");
    launcher.close();
    QVERIFY(launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    m_session->environment.insert(
        u"PATH"_s, m_session->path(u"bin"_s) + u':' + m_session->environment.value(u"PATH"_s));

    const ProgramRun corvane = start();
    TRY_COMPARE(m_session->display->visibleWindows(u"Corvane"_s), 1); // There is no tray.
    TRY_VERIFY(records().size() > 3);
    QVERIFY(!QFile::exists(m_session->path(u"launched"_s)));
    for (const QString &process : QDir(u"/proc"_s).entryList({u"[1-9]*"_s}, QDir::Dirs)) {
        QFile name("/proc/"_L1 + process + "/comm"_L1);
        QFile environment("/proc/"_L1 + process + "/environ"_L1);
        if (name.open(QFile::ReadOnly) && environment.open(QFile::ReadOnly)
            && environment.readAll().contains("HOME=" + QFile::encodeName(m_session->homePath())))
            QVERIFY2(!name.readAll().startsWith("dbus"), qPrintable(process));
    }
}

void TestRunningProgram::quitsOnASignal_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestRunningProgram::quitsOnASignal()
{
    QFETCH(const int, number);
    ProgramRun corvane = start();
    TRY_VERIFY(isAnswering());
    TRY_VERIFY(records().size() > 1);
    const std::size_t known = records().size();
    corvane.send(number);
    QCOMPARE(corvane.exitStatus(), 0);
    QVERIFY(records().size() >= known);
    QVERIFY(!QFile::exists(QString::fromStdString(socketPath())));
}

void TestRunningProgram::survivesTheEndOfItsBus()
{
    QVERIFY(m_session->startBus());
    const ProgramRun corvane = start();
    TRY_VERIFY(m_session->hasLabel());
    m_session->bus->kill();
    const std::size_t known = records().size();
    TRY_VERIFY(records().size() > known + 1);
    QCOMPARE(start().exitStatus(), 0);
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
}

void TestRunningProgram::runsWhileItsBusHangs_data()
{
    QTest::addColumn<bool>("hangsAtTheStart");
    QTest::addColumn<bool>("hasDisplay");
    QTest::newRow("from the start") << true << false;
    QTest::newRow("from the start, on X11") << true << true;
    QTest::newRow("after the label appeared") << false << false;
    QTest::newRow("after the label appeared, on X11") << false << true;
}

void TestRunningProgram::runsWhileItsBusHangs()
{
    QFETCH(const bool, hangsAtTheStart);
    QFETCH(const bool, hasDisplay);
    QVERIFY(m_session->startBus());
    if (hasDisplay)
        QVERIFY(m_session->startDisplay());
    if (hangsAtTheStart)
        m_session->bus->hang();
    const ProgramRun corvane = start();
    if (!hangsAtTheStart) {
        TRY_VERIFY(m_session->hasLabel());
        m_session->bus->hang();
    }
    const std::size_t known = records().size();
    TRY_VERIFY(records().size() > known + 3);
    QCOMPARE(start().exitStatus(), 0);
    m_session->bus->goOn();
    TRY_VERIFY(m_session->hasLabel());
    m_session->bus->hang();
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
}

/// Both buses authenticate the program and then say nothing.
void TestRunningProgram::runsWithHalfABus()
{
    const HalfBus bus(HalfBus::Transport::unixSocket,
                      m_session->path(u"runtime/half"_s).toStdString());
    const QString address = u"unix:path=/nowhere/bus;"_s + bus.address();
    m_session->environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
    m_session->environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, address);
    const ProgramRun corvane = start();
    TRY_VERIFY(isAnswering());
    TRY_VERIFY(records().size() > 2);
    QVERIFY(bus.greetings() > 0);
    QCOMPARE(start().exitStatus(), 0); // The main thread is free.
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
}

/// As at a logout without a session manager.
void TestRunningProgram::endsWithItsDisplay()
{
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    const ProgramRun corvane = start();
    TRY_VERIFY(m_session->hasLabel());
    TRY_VERIFY(records().size() > 1);
    const std::size_t known = records().size();
    m_session->display->kill();
    QCOMPARE(corvane.exitStatus(), 1);
    QVERIFY(records().size() >= known);
}

/// While no window is open, nothing that is shown depends on the display.
void TestRunningProgram::endsWhileItsDisplayHangs()
{
    QVERIFY(m_session->startBus());
    QVERIFY(m_session->startDisplay());
    const ProgramRun corvane = start();
    TRY_VERIFY(m_session->hasLabel());
    TRY_VERIFY(!records().empty());
    m_session->display->hang();
    const std::size_t known = records().size();
    TRY_VERIFY(records().size() > known + 1);
    QElapsedTimer elapsed;
    elapsed.start();
    corvane.send(SIGTERM);
    QCOMPARE(corvane.exitStatus(), 0);
    QVERIFY2(elapsed.elapsed() < 8'000, qPrintable(QString::number(elapsed.elapsed())));
}

void TestRunningProgram::reportsAMissingDisplayInOneLine_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::newRow("no display is named") << QString() << QString();
    QTest::newRow("an X server that does not run") << u"DISPLAY"_s << u":4242"_s;
    QTest::newRow("a compositor that does not run") << u"WAYLAND_DISPLAY"_s << u"wayland-42"_s;
    QTest::newRow("Wayland without a compositor") << u"QT_QPA_PLATFORM"_s << u"wayland"_s;
    QTest::newRow("an unknown platform") << u"QT_QPA_PLATFORM"_s << u"paper"_s;
}

void TestRunningProgram::reportsAMissingDisplayInOneLine()
{
    QFETCH(const QString, variable);
    QFETCH(const QString, value);
    m_session->environment.remove(u"QT_QPA_PLATFORM"_s);
    QString line = u"Corvane cannot start: there is no display that it can reach"_s;
    if (!variable.isEmpty()) {
        m_session->environment.insert(variable, value);
        line += u" (%1=%2)"_s.arg(variable, value);
    }
    ProgramRun corvane = start();
    QCOMPARE(corvane.exitStatus(), 1);
    QCOMPARE(corvane.errors(), line.toUtf8() + ".\n");
}

void TestRunningProgram::answersWithoutADisplay_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("begin");
    QTest::addColumn<QByteArray>("errors");

    QTest::newRow("help") << u"--help"_s << 0 << QByteArray("Usage: ") << QByteArray();
    QTest::newRow("version") << u"--version"_s << 0 << QByteArray("Corvane ") << QByteArray();
    QTest::newRow("figures") << u"--json"_s << 0 << QByteArray("{") << QByteArray();
    QTest::newRow("figures of which one line is read")
        << u"--json=stream | head -n 1"_s << 0 << QByteArray("{") << QByteArray();
    QTest::newRow("figures for a closed output")
        << u"--json=stream >&-"_s << 1 << QByteArray() << QByteArray();
    QTest::newRow("figures for a full disk")
        << u"--json=stream >/dev/full"_s << 1 << QByteArray()
        << QByteArray("Corvane: Standard output cannot be written: No space left on device.\n");
    QTest::newRow("help for a full disk")
        << u"--help >/dev/full"_s << 1 << QByteArray()
        << QByteArray("Corvane: Standard output cannot be written: No space left on device.\n");
    QTest::newRow("an unknown option")
        << u"--jsno"_s << 2 << QByteArray() << QByteArray("Corvane: Unknown option 'jsno'.\n");
}

/// And writes no file.
void TestRunningProgram::answersWithoutADisplay()
{
    QFETCH(const QString, command);
    QFETCH(const QByteArray, begin);
    m_session->environment.remove(u"QT_QPA_PLATFORM"_s);
    QProcess shell;
    shell.setProcessEnvironment(m_session->environment);
    shell.start(u"sh"_s, {u"-c"_s, u'"' + programFile() + u"\" "_s + command});
    QVERIFY(shell.waitForFinished());
    QTEST(shell.exitCode(), "status");
    QTEST(shell.readAllStandardError(), "errors");
    const QByteArray output = shell.readAllStandardOutput();
    QVERIFY2(output.startsWith(begin) && output.isEmpty() == begin.isEmpty(), output.constData());
    for (const QString &folder : {u"config"_s, u"data"_s, u"cache"_s, u"runtime"_s})
        QVERIFY2(QDir(m_session->path(folder)).isEmpty(), qPrintable(folder));
}

QTEST_GUILESS_MAIN(TestRunningProgram)
#include "tst_RunningProgram.moc"
