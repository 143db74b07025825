#include "history/PersistedMetric.h"
#include "settings/SettingsTabs.h"
#include "support/FakeTray.h"
#include "support/OwnMounts.h"
#include "support/PrivateBus.h"
#include "support/SystemCalls.h"
#include "support/VirtualDisplay.h"
#include "tray/DBusMenuTypes.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

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

constexpr int patience = 120'000; // Milliseconds; the machine may be busy, and strace is slow.

constexpr auto installedProgram = "/usr/src/corvane";

/// Puts the program where a package would, for this process and those that it starts; false where
/// that cannot be done. Has to come before the first thread.
bool install(const QByteArray &program)
{
    if (!takeMountsOfItsOwn() || mount("none", "/usr/src", "tmpfs", 0, "mode=755") != 0)
        return false;
    QFile file(QFile::decodeName(installedProgram));
    return file.open(QIODevice::WriteOnly) && file.write(program) == program.size()
        && file.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther
                               | QFile::ExeOther);
}

/// Root may write anywhere, which would prove little.
void becomeOrdinaryUser()
{
    constexpr uid_t nobody = 65534;
    if (geteuid() != 0)
        return;
    if (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)
        qFatal("still root");
    prctl(PR_SET_DUMPABLE, 1); // The tray's bar is told by this process's name.
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The program itself, with its label in a tray, as strace sees it from outside. It is run by an
/// ordinary user with a home of its own.
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
    void touchesNothingButItsOwn_data();
    void touchesNothingButItsOwn();
    void cutsItsHistoryInItsOwnPlace();
    void keepsItsSettingsInTheirPlace();
    void startsAtLoginByOneEntry();
    void goesOnWhereItsDiskDoesNot_data();
    void goesOnWhereItsDiskDoesNot();
    void goesOnWithoutDescriptors_data();
    void goesOnWithoutDescriptors();
    void writesItsLastSampleBeforeItEnds_data();
    void writesItsLastSampleBeforeItEnds();

private:
    QString path(const QString &name) const { return m_home->filePath(name); }
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
    void checkTrace(const QString &furtherPlace = {});
    bool hasChanged(const QString &file) const;
    qsizetype count(const QByteArray &text) const { return contents(path(u"trace"_s)).count(text); }

    const QByteArray m_program; ///< Its file, which this user may not be able to reach.
    const QByteArray m_quickClock;
    const bool m_isInstalled;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeTray> m_tray;
    std::unique_ptr<VirtualDisplay> m_display;
    QProcess m_process;
};

void TestTracedProgram::initTestCase()
{
    registerDBusMenuTypes();
    if (const QString obstacle = obstacleToTracing(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
}

void TestTracedProgram::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    for (const auto &[name, bytes] :
         {std::pair(u"corvane"_s, m_program), std::pair(u"quick_clock"_s, m_quickClock)}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    }
    for (const QString &folder : {u"config"_s, u"data"_s, u"cache"_s, u"run"_s})
        QVERIFY(QDir(m_home->path()).mkdir(folder));
    QVERIFY(QFile::setPermissions(path(u"run"_s),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "gnome-shell");
}

void TestTracedProgram::cleanup()
{
    m_process.kill();
    m_process.waitForFinished();
    m_display.reset();
    m_tray.reset();
    m_bus.reset();
}

void TestTracedProgram::launch(const QString &platform, const QStringList &options,
                               const QString &program)
{
    QProcessEnvironment environment;
    environment.insert(u"PATH"_s, qEnvironmentVariable("PATH"));
    environment.insert(u"HOME"_s, m_home->path());
    environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    environment.insert(u"XDG_CACHE_HOME"_s, path(u"cache"_s));
    environment.insert(u"XDG_RUNTIME_DIR"_s, path(u"run"_s));
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_bus->address());
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus->address());
    // Leaks are not found under strace, and the quick clock comes before the sanitizer's library.
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0:verify_asan_link_order=0"_s);
    if (platform == "xcb"_L1) {
        if (QStandardPaths::findExecutable(u"Xvfb"_s).isEmpty())
            QSKIP("There is no Xvfb here.");
        m_display = std::make_unique<VirtualDisplay>();
        QVERIFY(m_display->start());
        environment.insert(u"DISPLAY"_s, m_display->name());
    } else {
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
    }
    m_process.setProcessEnvironment(environment);
    m_process.setChildProcessModifier([] {
        // As a session starts its programs, whoever runs the tests.
        for (const int number : {SIGTERM, SIGINT, SIGHUP})
            std::signal(number, SIG_DFL);
    });
    m_process.start(u"strace"_s,
                    QStringList{u"-f"_s, u"-y"_s, u"-o"_s, path(u"trace"_s)} + options
                        + QStringList{program.isEmpty() ? path(u"corvane"_s) : program});
}

/// Returns once the label is in the tray.
void TestTracedProgram::start(const QString &platform, const QStringList &options,
                              const QString &program)
{
    launch(platform, options, program);
    QTRY_COMPARE_WITH_TIMEOUT(m_tray->items().size(), 1, patience);
}

/// How many files the main thread opens until the program is loaded and opens one by itself.
int TestTracedProgram::openingsBeforeItsOwn()
{
    start(u"offscreen"_s, {u"-e"_s, u"trace=openat"_s});
    click(u"Quit"_s);
    m_process.waitForFinished(patience);
    const QList<SystemCall> calls = systemCalls(contents(path(u"trace"_s)));
    const auto own = std::ranges::find_if(
        calls, [](const SystemCall &call) { return call.arguments.contains(CORVANE_IDENTIFIER); });
    return static_cast<int>(own - calls.begin());
}

QVariantList TestTracedProgram::callMenu(const QString &method, const QVariantList &arguments)
{
    const QString item = m_tray->items().value(0);
    const auto menu = m_tray->property(item, u"Menu"_s).value<QDBusObjectPath>();
    return m_tray->call(item, menu.path(), QString::fromLatin1(FakeTray::menuInterface), method,
                        arguments);
}

/// A command of the label's menu.
void TestTracedProgram::click(const QString &label)
{
    const QVariantList answer = callMenu(u"GetLayout"_s, {0, -1, QStringList()});
    for (const auto &child : qdbus_cast<DBusMenuLayout>(answer.value(1)).children) {
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
    QTRY_COMPARE_WITH_TIMEOUT(m_process.state(), QProcess::NotRunning, patience);
    QCOMPARE(m_process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process.exitCode(), 0);
    QList<QByteArray> said = m_process.readAllStandardError().split('\n');
    said.removeIf([](const QByteArray &line) {
        return line.isEmpty() || line.startsWith("This plugin does not support ");
    });
    QCOMPARE(said, QList<QByteArray>());
}

/// Of the program, which strace has as its only child.
qint64 TestTracedProgram::processId() const
{
    const QByteArray children = contents(u"/proc/%1/task/%1/children"_s.arg(m_process.processId()));
    return children.split(' ').value(0).toLongLong();
}

/// Of the files that the program has open at this moment those that belong neither to its user nor
/// to the system, which lets all read them.
QStringList TestTracedProgram::foreignOpenFiles() const
{
    const QString descriptors = u"/proc/%1/fd/"_s.arg(processId());
    const QStringList names =
        QDir(descriptors).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    if (names.isEmpty())
        return {u"They cannot be seen."_s};
    QStringList foreign;
    for (const QString &name : names) {
        struct stat status = {};
        if (stat(QFile::encodeName(descriptors + name).constData(), &status) != 0) {
            if (errno != ENOENT) // Else it was closed meanwhile.
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

/// What the program may make, change or take away.
QRegularExpression TestTracedProgram::ownPlaces() const
{
    const QString home = QRegularExpression::escape(m_home->path());
    const QStringList places{
        home + u"/(config|data)(/Corvane)?"_s, // Folders.
        home + u"/data/Corvane/history\\.jsonl(\\.new)?"_s,
        // The preferences, with Qt's lock and the new file that takes their place.
        home + u"/config/Corvane/Corvane\\.conf(\\.lock|\\.[A-Za-z0-9]{6})?"_s,
        home + u"/run/" CORVANE_IDENTIFIER "(/socket)?"_s,
        home + u"/cache/fontconfig(/.*)?"_s,             // What the font library found out.
        home + u"/cache/mesa_shader_cache[^/]*(/.*)?"_s, // And that for pictures.
        u"/proc/self/task/[0-9]+/comm"_s,                // Names of its own threads.
        u"/dev/null"_s,
    };
    return QRegularExpression(places.join(u'|'));
}

void TestTracedProgram::checkTrace(const QString &furtherPlace)
{
    QString places = ownPlaces().pattern();
    if (!furtherPlace.isEmpty())
        places += u'|' + furtherPlace;
    const QList<QByteArray> found =
        forbiddenCalls(systemCalls(contents(path(u"trace"_s))), QRegularExpression(places));
    QVERIFY2(found.isEmpty(), found.join('\n').constData());
}

/// Or tried to.
bool TestTracedProgram::hasChanged(const QString &file) const
{
    return std::ranges::any_of(systemCalls(contents(path(u"trace"_s))),
                               [&file](const SystemCall &call) {
                                   return call.changesFiles() && call.paths().contains(file);
                               });
}

void TestTracedProgram::touchesNothingButItsOwn_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("without a display") << u"offscreen"_s;
    QTest::newRow("on X11") << u"xcb"_s;
}

void TestTracedProgram::touchesNothingButItsOwn()
{
    QFETCH(const QString, platform);
    start(platform, {u"-e"_s, QLatin1StringView(tracedCalls)});
    m_tray->call(m_tray->items().value(0), u"/StatusNotifierItem"_s,
                 QString::fromLatin1(FakeTray::itemInterface), u"Activate"_s, {600, 20});
    for (const QString &command : {u"Open Window"_s, u"Settings…"_s, u"About Corvane"_s})
        click(command);
    // By the fourth line the processes were looked at.
    const QString history = path(u"data/Corvane/history.jsonl"_s);
    QStringList foreign;
    int looks = 0;
    const auto look = [&] {
        foreign += foreignOpenFiles();
        return ++looks >= 20 && contents(history).count('\n') > 3;
    };
    QTRY_VERIFY_WITH_TIMEOUT(look(), patience);
    QCOMPARE(foreign, QStringList());
    quit();
    checkTrace();
    QVERIFY(hasChanged(history));
}

/// It does so at every sixtieth sample, which is three seconds by a clock that is quick.
void TestTracedProgram::cutsItsHistoryInItsOwnPlace()
{
    const QString history = path(u"data/Corvane/history.jsonl"_s);
    QVERIFY(QDir(path(u"data"_s)).mkdir(u"Corvane"_s));
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

/// The one setting that there is to write is when updates were looked for, and that only where the
/// program is a package's.
void TestTracedProgram::keepsItsSettingsInTheirPlace()
{
    if (!m_isInstalled)
        QSKIP("This user cannot have mounts of its own here.");
    const QString settings = path(u"config/Corvane/Corvane.conf"_s);
    start(u"offscreen"_s, {u"-e"_s, QLatin1StringView(tracedCalls)},
          QString::fromLatin1(installedProgram));
    click(u"Check for Updates…"_s);
    QTRY_VERIFY_WITH_TIMEOUT(contents(settings).contains("lastUpdateCheck="), patience);
    quit();
    checkTrace();
    QVERIFY(hasChanged(settings + u".lock"_s));
}

/// And by the user's will alone: no other test allows the entry.
void TestTracedProgram::startsAtLoginByOneEntry()
{
    const QString folder = path(u"config/autostart"_s);
    const QString entry = folder + u"/" CORVANE_IDENTIFIER ".desktop"_s;
    const QString window = u"Corvane Settings"_s;
    constexpr QPoint loginSwitch(260, SettingsTabs::barHeight + 64); // In the first row.
    start(u"xcb"_s, {u"-e"_s, QLatin1StringView(tracedCalls)});
    click(u"Settings…"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_display->visibleWindows(window), 1, patience);
    m_display->click(window, loginSwitch);
    QTRY_VERIFY_WITH_TIMEOUT(contents(entry).contains(QFile::encodeName(path(u"corvane"_s))),
                             patience);
    m_display->click(window, loginSwitch);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(entry), patience);
    quit();
    checkTrace(QRegularExpression::escape(folder) + u"(/" CORVANE_IDENTIFIER "\\.desktop.*)?"_s);
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestTracedProgram::goesOnWhereItsDiskDoesNot_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("full") << u"write:error=ENOSPC"_s;
    QTest::newRow("broken") << u"write:error=EIO"_s;
    QTest::newRow("read-only") << u"openat:error=EROFS:when=3+"_s;
    QTest::newRow("gone") << u"openat:error=ESTALE:when=3+"_s;
    QTest::newRow("no descriptors left") << u"openat:error=EMFILE:when=3+"_s;
}

void TestTracedProgram::goesOnWhereItsDiskDoesNot()
{
    QFETCH(const QString, fault);
    const QString history = path(u"data/Corvane/history.jsonl"_s);
    start(u"offscreen"_s,
          {u"-P"_s, history, u"-P"_s, u"/proc/meminfo"_s, u"-e"_s, u"inject="_s + fault});
    click(u"Open Window"_s);
    QTRY_VERIFY_WITH_TIMEOUT(count("(INJECTED)") > 0, patience);
    const qsizetype reads = count("/proc/meminfo>, \"MemTotal");
    QTRY_VERIFY_WITH_TIMEOUT(count("/proc/meminfo>, \"MemTotal") > reads + 3, patience);
    quit();
    QVERIFY(contents(history).count('\n') <= 2);
}

void TestTracedProgram::goesOnWithoutDescriptors_data()
{
    QTest::addColumn<int>("later"); // Than the first file that the program itself opens.
    QTest::addColumn<bool>("forGood");
    for (const int later : {0, 16, 32, 48, 64, 128, 192, 256})
        QTest::addRow("none left from opening %d on", later) << later << true;
    for (const int later : {48, 64, 128, 256})
        QTest::addRow("none left for a while at opening %d", later) << later << false;
}

/// No file can be opened by any thread, whoever wants it. At the worst there is no display.
void TestTracedProgram::goesOnWithoutDescriptors()
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
    const auto hasEnded = [this] { return m_process.state() == QProcess::NotRunning; };
    // It reads the memory at every sample, or tries to.
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded() || count("/proc/meminfo") > 6, patience);
    if (!hasEnded())
        QCOMPARE(kill(static_cast<pid_t>(processId()), SIGTERM), 0);
    QTRY_VERIFY_WITH_TIMEOUT(hasEnded(), patience);
    QCOMPARE(m_process.exitStatus(), QProcess::NormalExit);
    const QByteArray said = m_process.readAllStandardError();
    const bool hadNoDisplay = said.contains("Corvane cannot start: there is no display");
    QVERIFY2(m_process.exitCode() == (hadNoDisplay ? 1 : 0), said.constData());
    QVERIFY(count("(INJECTED)") > 0);
}

void TestTracedProgram::writesItsLastSampleBeforeItEnds_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("the command to quit") << 0;
}

/// Its main thread reads the memory once a sample; another writes a line for each.
void TestTracedProgram::writesItsLastSampleBeforeItEnds()
{
    QFETCH(const int, signal);
    const QString history = path(u"data/Corvane/history.jsonl"_s);
    // The disk takes six seconds for the second line, and for every eighth behind it.
    start(u"offscreen"_s,
          {u"-P"_s, history, u"-P"_s, u"/proc/meminfo"_s, u"-e"_s,
           u"inject=write:delay_enter=6000000:when=2+8"_s});
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
    const QByteArray program = contents(QStringLiteral(CORVANE_PROGRAM));
    const QByteArray quickClock = contents(QStringLiteral(QUICK_CLOCK));
    const bool isInstalled = install(program);
    becomeOrdinaryUser();
    const QCoreApplication application(argc, argv);
    TestTracedProgram test(program, quickClock, isInstalled);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TracedProgram.moc"
