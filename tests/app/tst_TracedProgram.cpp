#include "history/PersistedMetric.h"
#include "settings/SettingsTabs.h"
#include "support/OwnMounts.h"
#include "support/ProgramRun.h"
#include "support/ProgramSession.h"
#include "support/SystemCalls.h"
#include "support/TrayTypes.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <optional>

#include <cerrno>
#include <csignal>
#include <grp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 120'000; ///< Milliseconds; strace is slow on a machine under load.

constexpr auto installedProgram = "/usr/src/corvane";

/// Installs the program where a package would, visible only to this process and its children; false
/// where this is not possible. Has to be called before the first thread starts.
bool install(const QByteArray &program)
{
    if (!unshareMounts() || mount("none", "/usr/src", "tmpfs", 0, "mode=755") != 0)
        return false;
    QFile file(QFile::decodeName(installedProgram));
    return file.open(QIODevice::WriteOnly) && file.write(program) == program.size()
        && file.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther
                               | QFile::ExeOther);
}

/// Root could write anywhere, so that the test would prove little.
void becomeOrdinaryUser()
{
    constexpr uid_t nobody = 65534;
    if (geteuid() != 0)
        return;
    if (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)
        qFatal("still root");
    prctl(PR_SET_DUMPABLE, 1); // The kind of tray is read from this process's name.
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Whether the process has ended, though its tracer may still hold a thread.
bool hasEnded(qint64 process)
{
    const QByteArray status = contents(u"/proc/%1/status"_s.arg(process));
    return status.isEmpty() || status.contains("State:\tZ");
}

} // namespace

/// The real program with its label in a tray, traced by strace. An ordinary user runs it in a
/// session of its own.
class TestTracedProgram : public QObject {
    Q_OBJECT

public:
    TestTracedProgram(QByteArray program, QByteArray quickClock, bool isInstalled)
        : m_program(std::move(program)),
          m_quickClock(std::move(quickClock)),
          m_isInstalled(isInstalled)
    {
    }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void changesOnlyItsOwnFiles_data();
    void changesOnlyItsOwnFiles();
    void opensNoFileOfAProcessUnlessTheDashboardIsOpen();
    void trimsItsHistoryInItsOwnFolder();
    void writesItsSettingsToTheirFile();
    void startsAtLoginThroughOneFile();
    void runsOnADiskThatFails_data();
    void runsOnADiskThatFails();
    void runsWithoutDescriptors_data();
    void runsWithoutDescriptors();
    void runsAndEndsWhileTheDiskHangs_data();
    void runsAndEndsWhileTheDiskHangs();
    void writesItsLastSampleBeforeItQuits_data();
    void writesItsLastSampleBeforeItQuits();

private:
    QString path(const QString &name) const { return m_session->path(name); }
    void launch(const QString &platform, const QStringList &options, const QString &program = {});
    void start(const QString &platform, const QStringList &options, const QString &program = {});
    int openingsBeforeItsOwn();
    QVariantList callMenu(const QString &method, const QVariantList &arguments);
    void click(const QString &label);
    void quit();
    void checkEnd();
    qint64 processId() const;
    QStringList foreignOpenFiles() const;
    QRegularExpression ownPlaces() const;
    void checkTrace(const QString &additionalPath = {});
    bool hasChanged(const QString &file) const;
    qsizetype count(const QByteArray &text) const { return contents(path(u"trace"_s)).count(text); }

    const QByteArray m_program; ///< The bytes of its file, which this user may not be able to read.
    const QByteArray m_quickClock;
    const bool m_isInstalled;
    std::optional<ProgramSession> m_session;
    std::optional<ProgramRun> m_strace;
};

void TestTracedProgram::initTestCase()
{
    if (const QString obstacle = obstacleToTracing(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
}

void TestTracedProgram::init()
{
    m_session.emplace();
    for (const auto &[name, bytes] :
         {std::pair(u"corvane"_s, m_program), std::pair(u"quick_clock"_s, m_quickClock)}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    }
    QVERIFY(m_session->startBus("gnome-shell"));
    QProcessEnvironment &environment = m_session->environment;
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_session->bus->address());
    // Leaks cannot be found under strace, and the quick clock is loaded before the sanitizer.
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0:verify_asan_link_order=0"_s);
}

void TestTracedProgram::cleanup()
{
    m_strace.reset();
}

void TestTracedProgram::launch(const QString &platform, const QStringList &options,
                               const QString &program)
{
    if (platform == "xcb"_L1) {
        if (QStandardPaths::findExecutable(u"Xvfb"_s).isEmpty())
            QSKIP("There is no Xvfb here.");
        QVERIFY(m_session->startDisplay());
    }
    m_strace.emplace(m_session->environment, u"strace"_s,
                     QStringList{u"-f"_s, u"-y"_s, u"-o"_s, path(u"trace"_s)} + options
                         + QStringList{program.isEmpty() ? path(u"corvane"_s) : program});
}

/// Returns once the label is in the tray.
void TestTracedProgram::start(const QString &platform, const QStringList &options,
                              const QString &program)
{
    launch(platform, options, program);
    QTRY_COMPARE_WITH_TIMEOUT(m_session->tray->items().size(), 1, patience);
}

/// The number of files that are opened while the program is loaded, before it opens its own first.
int TestTracedProgram::openingsBeforeItsOwn()
{
    start(u"offscreen"_s, {u"-e"_s, u"trace=openat"_s});
    click(u"Quit"_s);
    m_strace->exitStatus(); // Waits for the end of the program.
    const QList<SystemCall> calls = systemCalls(contents(path(u"trace"_s)));
    const auto own = std::ranges::find_if(
        calls, [](const SystemCall &call) { return call.arguments.contains(CORVANE_IDENTIFIER); });
    return static_cast<int>(own - calls.begin());
}

QVariantList TestTracedProgram::callMenu(const QString &method, const QVariantList &arguments)
{
    const QString item = m_session->tray->items().value(0);
    const auto menu = m_session->tray->property(item, u"Menu"_s).value<QDBusObjectPath>();
    return m_session->tray->call(item, menu.path(), QString::fromLatin1(FakeTray::menuInterface),
                                 method, arguments);
}

/// Clicks a command of the label's menu.
void TestTracedProgram::click(const QString &label)
{
    const QVariantList answer = callMenu(u"GetLayout"_s, {0, -1, QStringList()});
    for (const auto &child : qdbus_cast<MenuLayout>(answer.value(1)).children) {
        if (child.properties.value(u"label"_s) == label) {
            callMenu(u"Event"_s,
                     {child.id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0u});
            return;
        }
    }
    QFAIL(qPrintable(u"The menu has no %1"_s.arg(label)));
}

void TestTracedProgram::quit()
{
    click(u"Quit"_s);
    checkEnd();
}

void TestTracedProgram::checkEnd()
{
    QCOMPARE(m_strace->exitStatus(), 0);
    QList<QByteArray> errors = m_strace->errors().split('\n');
    errors.removeIf([](const QByteArray &line) {
        return line.isEmpty() || line.startsWith("This plugin does not support ");
    });
    QCOMPARE(errors, QList<QByteArray>());
}

/// The id of the program, the only child of strace.
qint64 TestTracedProgram::processId() const
{
    const QByteArray children = contents(u"/proc/%1/task/%1/children"_s.arg(m_strace->id()));
    return children.split(' ').value(0).toLongLong();
}

/// The files that the program has open now, without those that belong to its user and those of the
/// system that everybody may read.
QStringList TestTracedProgram::foreignOpenFiles() const
{
    const QString descriptors = u"/proc/%1/fd/"_s.arg(processId());
    const QStringList names =
        QDir(descriptors).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    if (names.isEmpty())
        return {u"The descriptors cannot be listed."_s};
    QStringList foreign;
    for (const QString &name : names) {
        struct stat status = {};
        if (stat(QFile::encodeName(descriptors + name).constData(), &status) != 0) {
            if (errno != ENOENT) // ENOENT: it has been closed since.
                foreign.append(qt_error_string());
            continue;
        }
        const bool isFile = S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)
            || S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode);
        const bool isOpenToAll = status.st_uid == 0 && (status.st_mode & S_IROTH) != 0;
        if (isFile && status.st_uid != geteuid() && !isOpenToAll)
            foreign.append(QFile::symLinkTarget(descriptors + name));
    }
    return foreign;
}

/// The paths that the program may create, change or remove.
QRegularExpression TestTracedProgram::ownPlaces() const
{
    const QString home = QRegularExpression::escape(m_session->homePath());
    const QStringList places{
        home + u"/(config|data)(/Corvane)?"_s, // Folders.
        home + u"/data/Corvane/(history|minutes)\\.jsonl(\\.new)?"_s,
        // The preferences, Qt's lock file and the new file that replaces them.
        home + u"/config/Corvane/Corvane\\.conf(\\.lock|\\.[A-Za-z0-9]{6})?"_s,
        home + u"/runtime/" CORVANE_IDENTIFIER "(/socket)?"_s,
        home + u"/cache/fontconfig(/.*)?"_s,             // The cache of the font library.
        home + u"/cache/mesa_shader_cache[^/]*(/.*)?"_s, // That of the graphics driver.
        u"/proc/self/task/[0-9]+/comm"_s,                // The names of its threads.
        u"/dev/null"_s,
    };
    return QRegularExpression(places.join(u'|'));
}

void TestTracedProgram::checkTrace(const QString &additionalPath)
{
    QString places = ownPlaces().pattern();
    if (!additionalPath.isEmpty())
        places += u'|' + additionalPath;
    const QList<QByteArray> found =
        forbiddenCalls(systemCalls(contents(path(u"trace"_s))), QRegularExpression(places));
    QVERIFY2(found.isEmpty(), found.join('\n').constData());
}

/// Whether the program changed the file or tried to.
bool TestTracedProgram::hasChanged(const QString &file) const
{
    return std::ranges::any_of(systemCalls(contents(path(u"trace"_s))),
                               [&file](const SystemCall &call) {
                                   return call.changesFiles() && call.paths().contains(file);
                               });
}

void TestTracedProgram::changesOnlyItsOwnFiles_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("without a display") << u"offscreen"_s;
    QTest::newRow("on X11") << u"xcb"_s;
}

void TestTracedProgram::changesOnlyItsOwnFiles()
{
    QFETCH(const QString, platform);
    start(platform, {u"-e"_s, QLatin1StringView(tracedCalls)});
    m_session->tray->call(m_session->tray->items().value(0), u"/StatusNotifierItem"_s,
                          QString::fromLatin1(FakeTray::itemInterface), u"Activate"_s, {600, 20});
    for (const QString &command : {u"Open Window"_s, u"Settings…"_s, u"About Corvane"_s})
        click(command);
    // By the fourth line the processes have been read.
    const QString history = m_session->historyFile();
    QStringList foreign;
    int checks = 0;
    const auto check = [&] {
        foreign += foreignOpenFiles();
        return ++checks >= 20 && contents(history).count('\n') > 3;
    };
    QTRY_VERIFY_WITH_TIMEOUT(check(), patience);
    QCOMPARE(foreign, QStringList());
    quit();
    checkTrace();
    QVERIFY(hasChanged(history));
}

void TestTracedProgram::opensNoFileOfAProcessUnlessTheDashboardIsOpen()
{
    start(u"offscreen"_s, {u"-e"_s, u"trace=openat,open"_s});
    const QString history = m_session->historyFile();
    const auto samples = [&history] { return contents(history).count('\n'); };
    const QByteArray ownFolder = "/proc/" + QByteArray::number(processId()) + '/';
    const auto opened = [&] {
        static const QRegularExpression file(u"^(/proc/)?([0-9]+)/[a-z]"_s);
        qsizetype count = 0;
        for (const SystemCall &call : systemCalls(contents(path(u"trace"_s)))) {
            const QStringList paths = call.paths();
            count += std::ranges::any_of(paths, [&ownFolder](const QString &path) {
                return file.match(path).hasMatch()
                    && !path.startsWith(QLatin1StringView(ownFolder));
            });
        }
        return count;
    };
    const auto pass = [&samples](qsizetype count) {
        const qsizetype wanted = samples() + count;
        return QTest::qWaitFor([&] { return samples() >= wanted; }, patience);
    };
    QVERIFY(pass(7));       // Two third ticks are among them.
    QVERIFY(opened() <= 1); // The tray is known by its process's name.
    click(u"Open Window"_s);
    QTRY_VERIFY_WITH_TIMEOUT(opened() > 5, patience);
    quit();
}

/// The history is trimmed at every sixtieth sample: every three seconds by the quick clock.
void TestTracedProgram::trimsItsHistoryInItsOwnFolder()
{
    const QString history = m_session->historyFile();
    QVERIFY(m_session->makeFolder(u"data/Corvane"_s));
    QFile file(history);
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (int number = 0; number < 130; ++number)
        file.write(*PersistedMetric{.t = static_cast<double>(number)}.toJson() + '\n');
    file.close();
    start(u"offscreen"_s,
          {u"-E"_s, u"LD_PRELOAD="_s + path(u"quick_clock"_s), u"-e"_s,
           QLatin1StringView(tracedCalls)});
    QTRY_VERIFY_WITH_TIMEOUT(count("history.jsonl.new\", \"") > 0, patience); // Renamed.
    quit();
    checkTrace();
    QVERIFY(hasChanged(history + u".new"_s));
    QVERIFY(contents(history).count('\n') < 130 + 60);
    QVERIFY(!contents(history).startsWith(*PersistedMetric{.t = 0}.toJson()));
    QVERIFY(!QFile::exists(history + u".new"_s));
}

/// The only setting that is written is the time of the last update check, and only where the
/// program belongs to a package.
void TestTracedProgram::writesItsSettingsToTheirFile()
{
    if (!m_isInstalled)
        QSKIP("This user cannot unshare the mounts here.");
    const QString settings = path(u"config/Corvane/Corvane.conf"_s);
    start(u"offscreen"_s, {u"-e"_s, QLatin1StringView(tracedCalls)},
          QString::fromLatin1(installedProgram));
    click(u"Check for Updates…"_s);
    QTRY_VERIFY_WITH_TIMEOUT(contents(settings).contains("lastUpdateCheck="), patience);
    quit();
    checkTrace();
    QVERIFY(hasChanged(settings + u".lock"_s));
}

/// Only the switch creates the file: no other test allows its path.
void TestTracedProgram::startsAtLoginThroughOneFile()
{
    const QString folder = path(u"config/autostart"_s);
    const QString entry = folder + u"/" CORVANE_IDENTIFIER ".desktop"_s;
    const QString window = u"Corvane Settings"_s;
    constexpr QPoint loginSwitch(260, SettingsTabs::barHeight + 64); // In the first row.
    start(u"xcb"_s, {u"-e"_s, QLatin1StringView(tracedCalls)});
    click(u"Settings…"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_session->display->visibleWindows(window), 1, patience);
    m_session->display->click(window, loginSwitch);
    QTRY_VERIFY_WITH_TIMEOUT(contents(entry).contains(QFile::encodeName(path(u"corvane"_s))),
                             patience);
    m_session->display->click(window, loginSwitch);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(entry), patience);
    quit();
    checkTrace(QRegularExpression::escape(folder) + u"(/" CORVANE_IDENTIFIER "\\.desktop.*)?"_s);
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestTracedProgram::runsOnADiskThatFails_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("full") << u"write:error=ENOSPC"_s;
    QTest::newRow("broken") << u"write:error=EIO"_s;
    QTest::newRow("read-only") << u"openat:error=EROFS:when=3+"_s;
    QTest::newRow("gone") << u"openat:error=ESTALE:when=3+"_s;
    QTest::newRow("no descriptors left") << u"openat:error=EMFILE:when=3+"_s;
}

void TestTracedProgram::runsOnADiskThatFails()
{
    QFETCH(const QString, fault);
    const QString history = m_session->historyFile();
    start(u"offscreen"_s,
          {u"-P"_s, history, u"-P"_s, u"/proc/meminfo"_s, u"-e"_s, u"inject="_s + fault});
    click(u"Open Window"_s);
    QTRY_VERIFY_WITH_TIMEOUT(count("(INJECTED)") > 0, patience);
    const qsizetype reads = count("/proc/meminfo>, \"MemTotal");
    QTRY_VERIFY_WITH_TIMEOUT(count("/proc/meminfo>, \"MemTotal") > reads + 3, patience);
    quit();
    QVERIFY(contents(history).count('\n') <= 2);
}

void TestTracedProgram::runsWithoutDescriptors_data()
{
    QTest::addColumn<int>("later"); // Counted from the first file that the program itself opens.
    QTest::addColumn<bool>("forGood");
    for (const int later : {0, 16, 32, 48, 64, 128, 192, 256})
        QTest::addRow("none left from opening %d on", later) << later << true;
    for (const int later : {48, 64, 128, 256})
        QTest::addRow("none left for a while at opening %d", later) << later << false;
}

/// No thread can open a file. The program may at worst report that there is no display.
void TestTracedProgram::runsWithoutDescriptors()
{
    QFETCH(const int, later);
    QFETCH(const bool, forGood);
    static const int before = openingsBeforeItsOwn();
    QVERIFY(before > 10);
    const int first = before + 1 + later;
    const QString last = forGood ? u"+"_s : u"..%1"_s.arg(first + 9);
    launch(u"offscreen"_s,
           {u"-E"_s, u"LD_PRELOAD="_s + path(u"quick_clock"_s), u"-e"_s, u"trace=openat,pread64"_s,
            u"-e"_s, u"inject=openat:error=EMFILE:when=%1%2"_s.arg(first).arg(last)});
    // It reads the memory at every sample, or tries to.
    QTRY_VERIFY_WITH_TIMEOUT(!m_strace->isRunning() || count("/proc/meminfo") > 6, patience);
    if (m_strace->isRunning())
        QCOMPARE(kill(static_cast<pid_t>(processId()), SIGTERM), 0);
    const int status = m_strace->exitStatus();
    const QByteArray errors = m_strace->errors();
    const bool hadNoDisplay = errors.contains("Corvane cannot start: there is no display");
    QVERIFY2(status == (hadNoDisplay ? 1 : 0),
             ("status " + QByteArray::number(status) + ": " + errors).constData());
    QVERIFY(count("(INJECTED)") > 0);
}

void TestTracedProgram::runsAndEndsWhileTheDiskHangs_data()
{
    QTest::addColumn<QString>("call");
    QTest::newRow("when the history is opened at the start") << u"openat"_s;
    QTest::newRow("when a record is written") << u"write"_s;
}

/// The label stands, the memory is sampled, and a signal ends the program.
void TestTracedProgram::runsAndEndsWhileTheDiskHangs()
{
    QFETCH(const QString, call);
    start(u"offscreen"_s,
          {u"-P"_s, m_session->historyFile(), u"-P"_s, u"/proc/meminfo"_s, u"-e"_s,
           u"trace=openat,pread64,write"_s, u"-e"_s,
           u"inject=%1:delay_enter=600000000:when=%2"_s.arg(call).arg(call == "write"_L1 ? 1 : 2)});
    QTRY_VERIFY_WITH_TIMEOUT(count("/proc/meminfo>, \"MemTotal") > 4, patience);
    QCOMPARE(contents(m_session->historyFile()), QByteArray());
    QElapsedTimer elapsed;
    elapsed.start();
    const qint64 program = processId();
    QCOMPARE(kill(static_cast<pid_t>(program), SIGTERM), 0);
    // strace itself stays until the delay is over.
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(program), patience);
    QVERIFY2(elapsed.elapsed() < 8'000, qPrintable(QString::number(elapsed.elapsed())));
}

void TestTracedProgram::writesItsLastSampleBeforeItQuits_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("the command to quit") << 0;
}

/// The main thread reads the memory once a sample; another thread writes a line for each.
void TestTracedProgram::writesItsLastSampleBeforeItQuits()
{
    QFETCH(const int, signal);
    const QString history = m_session->historyFile();
    // The disk takes four seconds for the second line and for every eighth after it.
    start(u"offscreen"_s,
          {u"-P"_s, history, u"-P"_s, u"/proc/meminfo"_s, u"-e"_s,
           u"inject=write:delay_enter=4000000:when=2+8"_s});
    const qint64 program = processId();
    const QRegularExpression read(u"^%1 +pread64\\("_s.arg(program),
                                  QRegularExpression::MultilineOption);
    const auto samples = [&] {
        return QString::fromLatin1(contents(path(u"trace"_s))).count(read);
    };
    const auto lines = [&] { return contents(history).count('\n'); };
    QTRY_VERIFY_WITH_TIMEOUT(samples() > lines() + 2, patience);
    if (signal == 0)
        click(u"Quit"_s);
    else
        QCOMPARE(kill(static_cast<pid_t>(program), signal), 0);
    checkEnd();
    QCOMPARE(lines(), samples());
}

int main(int argc, char **argv)
{
    const QByteArray program = contents(programFile());
    const QByteArray quickClock = contents(QStringLiteral(QUICK_CLOCK));
    const bool isInstalled = install(program);
    becomeOrdinaryUser();
    const QCoreApplication application(argc, argv);
    TestTracedProgram test(program, quickClock, isInstalled);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TracedProgram.moc"
