#include "app/DBusMenuTypes.h"
#include "support/FakeTray.h"
#include "support/PrivateBus.h"
#include "support/SystemCalls.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

#include <csignal>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 120'000; // Milliseconds; the machine may be busy, and strace is slow.

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
    explicit TestTracedProgram(QByteArray program) : m_program(std::move(program)) { }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void touchesNothingButItsOwn_data();
    void touchesNothingButItsOwn();
    void goesOnWhereItsDiskDoesNot_data();
    void goesOnWhereItsDiskDoesNot();
    void writesItsLastSampleBeforeItEnds_data();
    void writesItsLastSampleBeforeItEnds();

private:
    QString path(const QString &name) const { return m_home->filePath(name); }
    void start(const QString &platform, const QStringList &options);
    QVariantList callMenu(const QString &method, const QVariantList &arguments);
    void click(const QString &label);
    void quit();
    void checkEnd();
    qint64 processId() const;
    void checkOpenFiles();
    QRegularExpression ownPlaces() const;
    qsizetype count(const QByteArray &text) const { return contents(path(u"trace"_s)).count(text); }

    const QByteArray m_program; ///< Its file, which this user may not be able to reach.
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeTray> m_tray;
    QProcess m_display;
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
    QFile program(path(u"corvane"_s));
    QVERIFY(program.open(QIODevice::WriteOnly));
    QCOMPARE(program.write(m_program), m_program.size());
    QVERIFY(program.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    program.close();
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
    m_display.terminate();
    m_display.waitForFinished();
    m_tray.reset();
    m_bus.reset();
}

/// Returns once the label is in the tray.
void TestTracedProgram::start(const QString &platform, const QStringList &options)
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
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // Leaks are not found under strace.
    if (platform == "xcb"_L1) {
        m_display.start(u"Xvfb"_s,
                        {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1280x960x24"_s});
        QVERIFY2(m_display.waitForReadyRead(patience), qPrintable(m_display.errorString()));
        environment.insert(u"DISPLAY"_s,
                           u':' + QString::fromLatin1(m_display.readAllStandardOutput()).trimmed());
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
                        + QStringList{path(u"corvane"_s)});
    QTRY_COMPARE_WITH_TIMEOUT(m_tray->items().size(), 1, patience);
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

/// Those of the program as it runs belong to its user or to the system, which lets all read them.
void TestTracedProgram::checkOpenFiles()
{
    const QString descriptors = u"/proc/%1/fd/"_s.arg(processId());
    const QStringList names =
        QDir(descriptors).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    QVERIFY(!names.isEmpty());
    for (const QString &name : names) {
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(descriptors + name).constData(), &status), 0);
        const bool isFile = S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)
            || S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode);
        const bool isOpenToAll = status.st_uid == 0 && (status.st_mode & S_IROTH) != 0;
        QVERIFY2(!isFile || status.st_uid == geteuid() || isOpenToAll,
                 qPrintable(QFile::symLinkTarget(descriptors + name)));
    }
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

void TestTracedProgram::touchesNothingButItsOwn_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("without a display") << u"offscreen"_s;
    QTest::newRow("on X11") << u"xcb"_s;
}

void TestTracedProgram::touchesNothingButItsOwn()
{
    QFETCH(const QString, platform);
    if (platform == "xcb"_L1 && QStandardPaths::findExecutable(u"Xvfb"_s).isEmpty())
        QSKIP("There is no Xvfb here.");
    start(platform, {u"-e"_s, QLatin1StringView(tracedCalls)});
    m_tray->call(m_tray->items().value(0), u"/StatusNotifierItem"_s,
                 QString::fromLatin1(FakeTray::itemInterface), u"Activate"_s, {600, 20});
    for (const QString &command : {u"Open Window"_s, u"Settings…"_s, u"About Corvane"_s})
        click(command);
    // By the fourth line the processes were looked at.
    const QString history = path(u"data/Corvane/history.jsonl"_s);
    QTRY_VERIFY_WITH_TIMEOUT(contents(history).count('\n') > 3, patience);
    checkOpenFiles();
    quit();

    const QList<SystemCall> calls = systemCalls(contents(path(u"trace"_s)));
    const QList<QByteArray> found = offences(calls, ownPlaces());
    QVERIFY2(found.isEmpty(), found.join('\n').constData());
    // The history's lines, at the least.
    QVERIFY(std::ranges::count_if(calls, &SystemCall::changesFiles) > 4);
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
    becomeOrdinaryUser();
    const QCoreApplication application(argc, argv);
    TestTracedProgram test(program);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TracedProgram.moc"
