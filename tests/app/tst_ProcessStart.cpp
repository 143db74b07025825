#include "app/ProcessStart.h"

#include <QTest>

#include <array>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// The exit status of a child that runs `function`; -1 if a signal ended it.
template <typename Function>
int statusOfChild(Function function)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(function());
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool isNullDevice(int descriptor)
{
    struct stat null = {};
    struct stat status = {};
    return stat("/dev/null", &null) == 0 && fstat(descriptor, &status) == 0
        && status.st_rdev == null.st_rdev && S_ISCHR(status.st_mode);
}

} // namespace

class TestProcessStart : public QObject {
    Q_OBJECT

private slots:
    void opensClosedStandardDescriptors_data();
    void opensClosedStandardDescriptors();
    void dropsRelativeFolders_data();
    void dropsRelativeFolders();
    void writesToBrokenPipesFail();
    void writesBeyondTheLargestFileFail();
    void raisesTheDescriptorLimit();
    void noticesALimitThatIsTooLow_data();
    void noticesALimitThatIsTooLow();
    void noticesAStackThatIsTooSmall_data();
    void noticesAStackThatIsTooSmall();
};

void TestProcessStart::opensClosedStandardDescriptors_data()
{
    QTest::addColumn<int>("closed"); // A bit for each.
    QTest::newRow("the input") << 1;
    QTest::newRow("the output") << 2;
    QTest::newRow("the errors") << 4;
    QTest::newRow("input and errors") << 5;
    QTest::newRow("all") << 7;
}

void TestProcessStart::opensClosedStandardDescriptors()
{
    QFETCH(const int, closed);
    const int status = statusOfChild([closed] {
        std::array<struct stat, 3> before = {};
        for (int number = 0; number < 3; ++number) {
            fstat(number, &before[static_cast<std::size_t>(number)]);
            if ((closed & 1 << number) != 0)
                close(number);
        }
        openStandardDescriptors();
        for (int number = 0; number < 3; ++number) {
            struct stat now = {};
            fstat(number, &now);
            const struct stat &was = before[static_cast<std::size_t>(number)];
            const bool isRight = (closed & 1 << number) != 0
                ? isNullDevice(number)
                : now.st_ino == was.st_ino && now.st_dev == was.st_dev;
            if (!isRight)
                return 10 + number;
        }
        return open("/dev/null", O_RDONLY) > 2 ? 0 : 1;
    });
    QCOMPARE(status, 0);
}

void TestProcessStart::dropsRelativeFolders_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("expected"); // Null: unset.
    const passwd *user = getpwuid(getuid());
    const QByteArray home = user ? QByteArray(user->pw_dir) : "/"_ba;
    const auto row = [](const QByteArray &name, const QByteArray &variable, const QByteArray &value,
                        const QByteArray &expected) {
        QTest::newRow(name.constData()) << variable << value << expected;
    };
    row("an absolute home", "HOME", "/home/me", "/home/me");
    row("a relative home", "HOME", "me", home);
    row("an empty home", "HOME", "", home);
    row("no home", "HOME", {}, home);
    for (const QByteArray variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                      "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
        row(variable + ", absolute", variable, "/some/where", "/some/where");
        row(variable + ", relative", variable, "some/where", {});
        row(variable + ", below the present folder", variable, "./x", {});
        row(variable + ", empty", variable, "", {});
        row(variable + ", unset", variable, {}, {});
    }
    for (const QByteArray variable : {"XDG_CONFIG_DIRS", "XDG_DATA_DIRS"}) {
        row(variable + ", absolute", variable, "/a:/b", "/a:/b");
        row(variable + ", some relative", variable, "x:/a:../y::/b:", "/a:/b");
        row(variable + ", all relative", variable, "x:y", {});
        row(variable + ", unset", variable, {}, {});
    }
}

void TestProcessStart::dropsRelativeFolders()
{
    QFETCH(const QByteArray, variable);
    QFETCH(const QByteArray, value);
    QFETCH(const QByteArray, expected);
    const int status = statusOfChild([&] {
        if (value.isNull())
            unsetenv(variable.constData());
        else
            setenv(variable.constData(), value.constData(), 1);
        dropRelativeFolders();
        const char *now = getenv(variable.constData());
        return expected.isNull() ? now != nullptr : !now || expected != QByteArray(now);
    });
    QCOMPARE(status, 0);
}

void TestProcessStart::writesToBrokenPipesFail()
{
    ignoreWriteSignals();
    std::array<int, 2> ends = {};
    QCOMPARE(pipe(ends.data()), 0);
    close(ends[0]);
    QCOMPARE(write(ends[1], "x", 1), -1);
    QCOMPARE(errno, EPIPE);
    close(ends[1]);
}

void TestProcessStart::writesBeyondTheLargestFileFail()
{
    const int status = statusOfChild([] {
        std::signal(SIGXFSZ, SIG_DFL);
        ignoreWriteSignals();
        char name[] = "/tmp/corvane-XXXXXX";
        const int file = mkstemp(name);
        unlink(name);
        const rlimit none{.rlim_cur = 0, .rlim_max = 0};
        setrlimit(RLIMIT_FSIZE, &none);
        return write(file, "x", 1) == -1 && errno == EFBIG ? 0 : 1;
    });
    QCOMPARE(status, 0);
}

void TestProcessStart::raisesTheDescriptorLimit()
{
    const int status = statusOfChild([] {
        rlimit limit = {};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 64;
        setrlimit(RLIMIT_NOFILE, &limit);
        const bool isEnough = raiseDescriptorLimit();
        getrlimit(RLIMIT_NOFILE, &limit);
        return isEnough && limit.rlim_cur == limit.rlim_max && limit.rlim_max > 64 ? 0 : 1;
    });
    QCOMPARE(status, 0);
}

void TestProcessStart::noticesALimitThatIsTooLow_data()
{
    QTest::addColumn<int>("most");
    QTest::addColumn<bool>("isEnough");
    QTest::newRow("31") << 31 << false;
    QTest::newRow("32") << 32 << true;
}

void TestProcessStart::noticesALimitThatIsTooLow()
{
    QFETCH(const int, most);
    QFETCH(const bool, isEnough);
    const int status = statusOfChild([most] {
        const rlimit limit{static_cast<rlim_t>(most), static_cast<rlim_t>(most)};
        setrlimit(RLIMIT_NOFILE, &limit);
        return raiseDescriptorLimit() ? 1 : 0;
    });
    QCOMPARE(status, isEnough ? 1 : 0);
}

void TestProcessStart::noticesAStackThatIsTooSmall_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<bool>("isEnough");
    QTest::newRow("a page less than 256 KiB") << quint64(252 * 1024) << false;
    QTest::newRow("256 KiB") << quint64(256 * 1024) << true;
    QTest::newRow("unlimited") << quint64(RLIM_INFINITY) << true;
}

void TestProcessStart::noticesAStackThatIsTooSmall()
{
    QFETCH(const quint64, bytes);
    QFETCH(const bool, isEnough);
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_STACK, &before), 0);
    if (bytes > before.rlim_max)
        QSKIP("The system does not allow as much.");
    const rlimit limit{.rlim_cur = bytes, .rlim_max = before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_STACK, &limit), 0);
    const bool has = hasStack();
    setrlimit(RLIMIT_STACK, &before);
    QCOMPARE(has, isEnough);
}

QTEST_GUILESS_MAIN(TestProcessStart)
#include "tst_ProcessStart.moc"
