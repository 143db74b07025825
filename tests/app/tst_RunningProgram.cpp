#include "history/PersistedMetric.h"
#include "instance/InstanceMessage.h"
#include "platform/FolderLock.h"
#include "platform/UnixSocket.h"
#include "support/FakeTray.h"
#include "support/OddFiles.h"
#include "support/PrivateBus.h"
#include "support/VirtualDisplay.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int ample = 60'000; ///< Milliseconds; for a machine under load.

const QString program = QStringLiteral(CORVANE_PROGRAM);
const QString identifier = u"io.github.corvane.Corvane"_s;

/// From whatever files, since the process began.
qint64 bytesRead(pid_t process)
{
    QFile file(u"/proc/%1/io"_s.arg(process));
    if (!file.open(QFile::ReadOnly))
        return 0;
    return file.readAll().split('\n').first().split(' ').last().toLongLong();
}

/// A process of the program. Killed when it goes out of sight.
class Corvane {
public:
    explicit Corvane(const QProcessEnvironment &environment)
    {
        m_process.setProcessEnvironment(environment);
        m_process.setChildProcessModifier([] {
            // As a session starts its programs, whoever runs the tests.
            for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGPIPE})
                std::signal(number, SIG_DFL);
        });
        m_process.start(program, QStringList());
        m_process.waitForStarted();
    }
    ~Corvane() { kill(); }

    qint64 id() const { return m_process.processId(); }
    void send(int signal) const { ::kill(static_cast<pid_t>(m_process.processId()), signal); }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

    /// The exit status, waited for; -1 for a process that crashed or does not end.
    int status() const
    {
        const bool ended = QTest::qWaitFor([this] { return !isRunning(); }, ample);
        return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    QString errors() { return QString::fromLocal8Bit(m_process.readAllStandardError()); }

private:
    QProcess m_process;
};

} // namespace

/// The real program, started as a desktop would, in a home and a session of its own.
class TestRunningProgram : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aSecondStartOpensTheDashboard();
    void startsAgainAfterItWasKilled();
    void aSecondStartGivesUpOnOneThatIsStopped();
    void twoSessionsDoNotMeetAndOneWritesTheHistory();
    void livesThroughATimeWithoutDescriptors();
    void runsWhereNoFolderCanBeHad();
    void runsWithAnyHistory_data();
    void runsWithAnyHistory();
    void hostileClientsDoNothing();

    void theDesktopOpensTheDashboard();
    void theDesktopQuits();
    void aSecondStartReachesTheFirstOverTheBus();
    void startsNoBus();

    void endsOnASignal_data();
    void endsOnASignal();
    void livesOnWithoutItsBus();
    void livesOnWhileItsBusHangs_data();
    void livesOnWhileItsBusHangs();
    void endsWithItsDisplay();
    void saysInOneLineThatThereIsNoDisplay_data();
    void saysInOneLineThatThereIsNoDisplay();

private:
    QString path(const QString &name) const { return m_home->filePath(name); }
    QString historyFolder() const { return path(u"data/Corvane"_s); }
    std::string socketPath() const
    {
        return path(u"runtime/io.github.corvane.Corvane/socket"_s).toStdString();
    }
    QDBusConnection bus() const
    {
        return QDBusConnection::connectToBus(m_bus->address(), u"fake-tray"_s);
    }
    void setUpBus();
    void setUpDisplay();
    std::vector<PersistedMetric> records() const;
    QList<double> times() const;
    bool isAnswering() const;
    QDBusMessage callDesktop(const QString &method, const QVariantList &arguments) const;

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeTray> m_tray;
    std::unique_ptr<VirtualDisplay> m_display;
};

/// Neither a bus nor a display to be seen.
void TestRunningProgram::init()
{
    m_home = std::make_unique<QTemporaryDir>(u"/tmp/corvane-XXXXXX"_s);
    m_environment = QProcessEnvironment::systemEnvironment();
    for (const auto *name :
         {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "SESSION_MANAGER"})
        m_environment.remove(QString::fromLatin1(name));
    m_environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    m_environment.insert(u"HOME"_s, m_home->path());
    m_environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    m_environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    m_environment.insert(u"XDG_CACHE_HOME"_s, path(u"cache"_s));
    m_environment.insert(u"XDG_RUNTIME_DIR"_s, path(u"runtime"_s));
    m_environment.insert(u"TMPDIR"_s, path(u"tmp"_s));
    for (const QString &folder : {u"runtime"_s, u"tmp"_s})
        QVERIFY(QDir(m_home->path())
                    .mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void TestRunningProgram::cleanup()
{
    m_tray.reset();
    m_bus.reset();
    m_display.reset();
}

/// With a tray, so that the dashboard does not open by itself.
void TestRunningProgram::setUpBus()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "xfce4-panel");
    m_environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_bus->address());
}

void TestRunningProgram::setUpDisplay()
{
    m_display = std::make_unique<VirtualDisplay>();
    QVERIFY(m_display->start());
    m_environment.insert(u"DISPLAY"_s, m_display->name());
    m_environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
}

/// All lines of the history, each of which has to be whole.
std::vector<PersistedMetric> TestRunningProgram::records() const
{
    QFile file(historyFolder() + "/history.jsonl"_L1);
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

/// Of the records.
QList<double> TestRunningProgram::times() const
{
    QList<double> times;
    for (const PersistedMetric &record : records())
        times.append(record.t);
    return times;
}

/// Whether a client is taken in at the socket, which is what the program comes to last.
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
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }, ample))
        return {};
    return answer.reply();
}

#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, ample)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, ample)

void TestRunningProgram::aSecondStartOpensTheDashboard()
{
    setUpBus();
    setUpDisplay();
    Corvane first(m_environment);
    TRY_COMPARE(m_tray->items().size(), 3);
    TRY_VERIFY(isAnswering());
    QCOMPARE(m_display->visibleWindows(u"Corvane"_s), 0);

    Corvane second(m_environment);
    QCOMPARE(second.status(), 0);
    QCOMPARE(second.errors(), QString());
    TRY_COMPARE(m_display->visibleWindows(u"Corvane"_s), 1);

    // One dashboard stays one.
    QCOMPARE(Corvane(m_environment).status(), 0);
    QCOMPARE(m_display->visibleWindows(u"Corvane"_s), 1);
    QVERIFY(first.isRunning());
    first.send(SIGTERM);
    QCOMPARE(first.status(), 0);
}

void TestRunningProgram::startsAgainAfterItWasKilled()
{
    QList<double> known;
    for (int round = 0; round < 3; ++round) {
        Corvane first(m_environment);
        TRY_VERIFY(isAnswering());
        TRY_VERIFY(times().size() > known.size());
        QCOMPARE(times().first(known.size()), known);
        known = times();
        QCOMPARE(Corvane(m_environment).status(), 0);
        first.send(SIGKILL);
        QCOMPARE(first.status(), -1);
        QVERIFY2(QFile::exists(QString::fromStdString(socketPath())), "it could not clear up");
        QVERIFY(times().size() >= known.size());
        QCOMPARE(times().first(known.size()), known);
    }
}

void TestRunningProgram::aSecondStartGivesUpOnOneThatIsStopped()
{
    const Corvane first(m_environment);
    TRY_VERIFY(isAnswering());
    first.send(SIGSTOP);
    Corvane second(m_environment);
    QCOMPARE(second.status(), 1);
    QCOMPARE(second.errors(), u"Corvane is already running, but it does not answer.\n"_s);
    first.send(SIGCONT);
    QCOMPARE(Corvane(m_environment).status(), 0);
}

void TestRunningProgram::twoSessionsDoNotMeetAndOneWritesTheHistory()
{
    Corvane first(m_environment);
    TRY_VERIFY(!records().empty());
    QVERIFY(QDir(m_home->path()).mkdir(u"elsewhere"_s));
    m_environment.insert(u"XDG_RUNTIME_DIR"_s, path(u"elsewhere"_s));
    const Corvane second(m_environment);
    TRY_VERIFY(QFile::exists(path(u"elsewhere/io.github.corvane.Corvane/socket"_s)));
    QVERIFY(first.isRunning() && second.isRunning());
    QCOMPARE(FolderLock(historyFolder().toStdString()).take(), FolderLock::Holder::other);

    first.kill();
    const std::size_t count = records().size();
    TRY_VERIFY(records().size() > count); // From the second now.
}

/// Neither a file nor a connection can be had until it is over. The label alone is shown: Qt paints
/// a large window with threads, and ends the program where it cannot make what these wait with.
void TestRunningProgram::livesThroughATimeWithoutDescriptors()
{
    if (*CORVANE_SANITIZERS)
        QSKIP("Sanitizers need descriptors to look at memory.");
    setUpBus();
    const Corvane first(m_environment);
    TRY_COMPARE(m_tray->items().size(), 3);
    TRY_VERIFY(isAnswering());
    TRY_VERIFY(!records().empty());
    // All below are in use; those who wait for files could not with less.
    constexpr rlim_t limit = 8;
    const auto process = static_cast<pid_t>(first.id());
    for (rlim_t number = 0; number < limit; ++number)
        QVERIFY(QFileInfo(u"/proc/%1/fd/%2"_s.arg(process).arg(number)).isSymLink());
    rlimit before = {};
    QCOMPARE(prlimit(process, RLIMIT_NOFILE, nullptr, &before), 0);
    const rlimit none{.rlim_cur = limit, .rlim_max = before.rlim_max};
    QCOMPARE(prlimit(process, RLIMIT_NOFILE, &none, nullptr), 0);
    const std::size_t known = records().size();
    const Corvane second(m_environment); // Waits to be let in.
    const qint64 read = bytesRead(process);
    QVERIFY(read > 0);
    TRY_VERIFY(bytesRead(process) > read + 5000); // It has samples still.
    QVERIFY(records().size() <= known + 1);

    QCOMPARE(prlimit(process, RLIMIT_NOFILE, &before, nullptr), 0);
    TRY_VERIFY(records().size() > known + 1);
    QCOMPARE(second.status(), 0);
    first.send(SIGTERM);
    QCOMPARE(first.status(), 0);
}

void TestRunningProgram::runsWhereNoFolderCanBeHad()
{
    for (const QString &folder : {u"runtime"_s, u"tmp"_s})
        QVERIFY(QDir(m_home->path()).rmdir(folder));
    const Corvane first(m_environment);
    TRY_VERIFY(records().size() > 1);
    QCOMPARE(FolderLock(historyFolder().toStdString()).take(), FolderLock::Holder::other);
    first.send(SIGTERM);
    QCOMPARE(first.status(), 0);
    QCOMPARE(FolderLock(historyFolder().toStdString()).take(), FolderLock::Holder::self);
}

void TestRunningProgram::runsWithAnyHistory_data()
{
    QTest::addColumn<PutOddFile>("put");
    QTest::newRow("a FIFO that nobody reads or writes") << &putFIFO;
    QTest::newRow("a line of a hundred megabytes") << &putHugeLine;
}

void TestRunningProgram::runsWithAnyHistory()
{
    QFETCH(const PutOddFile, put);
    QVERIFY(QDir().mkpath(historyFolder()));
    QVERIFY(put(historyFolder() + "/history.jsonl"_L1));
    setUpBus();
    const Corvane first(m_environment);
    TRY_COMPARE(m_tray->items().size(), 3);
    TRY_VERIFY(isAnswering());
    QCOMPARE(Corvane(m_environment).status(), 0);
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    QCOMPARE(callDesktop(u"ActivateAction"_s, {u"quit"_s, QVariantList(), QVariantMap()}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(first.status(), 0);
}

void TestRunningProgram::hostileClientsDoNothing()
{
    const Corvane first(m_environment);
    TRY_VERIFY(isAnswering());
    const QList<QByteArray> words{"", "Corvane/1 op", QByteArray(100'000, '\0'),
                                  QByteArray(100'000, '\n'), "\377\376\200Corvane/1 open\n\n"};
    std::vector<FileDescriptor> clients;
    for (int number = 0; number < 200; ++number) {
        clients.push_back(openUnixSocket());
        connectTo(clients.back(), socketPath());
        const QByteArray &said = words[number % words.size()];
        [[maybe_unused]] const ssize_t sent =
            write(clients.back().get(), said.constData(), static_cast<std::size_t>(said.size()));
    }
    QCOMPARE(Corvane(m_environment).status(), 0);
    QVERIFY(first.isRunning());
}

void TestRunningProgram::theDesktopOpensTheDashboard()
{
    setUpBus();
    setUpDisplay();
    const Corvane corvane(m_environment);
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    const QVariantMap platformData{{u"activation-token"_s, u"token"_s}};
    QCOMPARE(callDesktop(u"Activate"_s, {platformData}).type(), QDBusMessage::ReplyMessage);
    TRY_COMPARE(m_display->visibleWindows(u"Corvane"_s), 1);
}

void TestRunningProgram::theDesktopQuits()
{
    setUpBus();
    const Corvane corvane(m_environment);
    TRY_VERIFY(bus().interface()->isServiceRegistered(identifier).value());
    const QVariantList quit{u"quit"_s, QVariantList(), QVariantMap()};
    QCOMPARE(callDesktop(u"ActivateAction"_s, quit).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(corvane.status(), 0);
}

/// Where the two have no folder in common.
void TestRunningProgram::aSecondStartReachesTheFirstOverTheBus()
{
    setUpBus();
    setUpDisplay();
    const Corvane first(m_environment);
    TRY_COMPARE(m_tray->items().size(), 3);
    QVERIFY(QDir(m_home->path()).mkdir(u"elsewhere"_s));
    m_environment.insert(u"XDG_RUNTIME_DIR"_s, path(u"elsewhere"_s));
    QCOMPARE(Corvane(m_environment).status(), 0);
    TRY_COMPARE(m_display->visibleWindows(u"Corvane"_s), 1);
    QVERIFY(first.isRunning());
}

/// On X11 without a tray Qt's own icons look for one on the bus.
void TestRunningProgram::startsNoBus()
{
    setUpDisplay();
    QVERIFY(QDir(m_home->path()).mkdir(u"bin"_s));
    QFile launcher(path(u"bin/dbus-launch"_s)); // Found where the system has none.
    QVERIFY(launcher.open(QFile::WriteOnly));
    launcher.write("#!/bin/sh\n: > \"$HOME/launched\"\n");
    launcher.close();
    QVERIFY(launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    m_environment.insert(u"PATH"_s, path(u"bin"_s) + u':' + m_environment.value(u"PATH"_s));

    const Corvane corvane(m_environment);
    TRY_COMPARE(m_display->visibleWindows(u"Corvane"_s), 1); // There is no tray.
    TRY_VERIFY(records().size() > 3);
    QVERIFY(!QFile::exists(path(u"launched"_s)));
    for (const QString &process : QDir(u"/proc"_s).entryList({u"[1-9]*"_s}, QDir::Dirs)) {
        QFile name("/proc/"_L1 + process + "/comm"_L1);
        QFile environment("/proc/"_L1 + process + "/environ"_L1);
        if (name.open(QFile::ReadOnly) && environment.open(QFile::ReadOnly)
            && environment.readAll().contains("HOME=" + QFile::encodeName(m_home->path())))
            QVERIFY2(!name.readAll().startsWith("dbus"), qPrintable(process));
    }
}

void TestRunningProgram::endsOnASignal_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestRunningProgram::endsOnASignal()
{
    QFETCH(const int, number);
    Corvane corvane(m_environment);
    TRY_VERIFY(isAnswering());
    TRY_VERIFY(records().size() > 1);
    const std::size_t known = records().size();
    corvane.send(number);
    QCOMPARE(corvane.status(), 0);
    QVERIFY(records().size() >= known);
    QVERIFY(!QFile::exists(QString::fromStdString(socketPath())));
}

void TestRunningProgram::livesOnWithoutItsBus()
{
    setUpBus();
    const Corvane corvane(m_environment);
    TRY_COMPARE(m_tray->items().size(), 3);
    m_bus->kill();
    const std::size_t known = records().size();
    TRY_VERIFY(records().size() > known + 1);
    QCOMPARE(Corvane(m_environment).status(), 0);
    corvane.send(SIGTERM);
    QCOMPARE(corvane.status(), 0);
}

void TestRunningProgram::livesOnWhileItsBusHangs_data()
{
    QTest::addColumn<bool>("hangsAtTheStart");
    QTest::addColumn<bool>("hasDisplay");
    QTest::newRow("from the start on") << true << false;
    QTest::newRow("from the start on, on X11") << true << true;
    QTest::newRow("once the label is there") << false << false;
    QTest::newRow("once the label is there, on X11") << false << true;
}

void TestRunningProgram::livesOnWhileItsBusHangs()
{
    QFETCH(const bool, hangsAtTheStart);
    QFETCH(const bool, hasDisplay);
    setUpBus();
    if (hasDisplay)
        setUpDisplay();
    if (hangsAtTheStart)
        m_bus->hang();
    const Corvane corvane(m_environment);
    if (!hangsAtTheStart) {
        TRY_COMPARE(m_tray->items().size(), 3);
        m_bus->hang();
    }
    const std::size_t known = records().size();
    TRY_VERIFY(records().size() > known + 3);
    QCOMPARE(Corvane(m_environment).status(), 0);
    m_bus->goOn();
    TRY_COMPARE(m_tray->items().size(), 3);
    m_bus->hang();
    corvane.send(SIGTERM);
    QCOMPARE(corvane.status(), 0);
}

/// As at a logout in which nobody says goodbye.
void TestRunningProgram::endsWithItsDisplay()
{
    setUpBus();
    setUpDisplay();
    const Corvane corvane(m_environment);
    TRY_COMPARE(m_tray->items().size(), 3);
    TRY_VERIFY(records().size() > 1);
    const std::size_t known = records().size();
    m_display->kill();
    QCOMPARE(corvane.status(), 1);
    QVERIFY(records().size() >= known);
}

void TestRunningProgram::saysInOneLineThatThereIsNoDisplay_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::newRow("none at all") << QString() << QString();
    QTest::newRow("an X server that is not there") << u"DISPLAY"_s << u":4242"_s;
    QTest::newRow("a compositor that is not there") << u"WAYLAND_DISPLAY"_s << u"wayland-42"_s;
    QTest::newRow("a Wayland that cannot be had") << u"QT_QPA_PLATFORM"_s << u"wayland"_s;
    QTest::newRow("a platform that there is not") << u"QT_QPA_PLATFORM"_s << u"paper"_s;
}

void TestRunningProgram::saysInOneLineThatThereIsNoDisplay()
{
    QFETCH(const QString, variable);
    QFETCH(const QString, value);
    m_environment.remove(u"QT_QPA_PLATFORM"_s);
    m_environment.remove(u"QT_LOGGING_RULES"_s);
    QString line = u"Corvane cannot start: there is no display that it can reach"_s;
    if (!variable.isEmpty()) {
        m_environment.insert(variable, value);
        line += u" (%1=%2)"_s.arg(variable, value);
    }
    Corvane corvane(m_environment);
    QCOMPARE(corvane.status(), 1);
    QCOMPARE(corvane.errors(), line + ".\n"_L1);
}

QTEST_GUILESS_MAIN(TestRunningProgram)
#include "tst_RunningProgram.moc"
