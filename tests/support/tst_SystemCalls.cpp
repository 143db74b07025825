#include "support/SystemCalls.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

void createFile(const std::string &path)
{
    close(open(path.c_str(), O_WRONLY | O_CREAT, 0600));
}

void bindSocket(const std::string &path)
{
    sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(socket(AF_UNIX, SOCK_STREAM, 0), reinterpret_cast<const sockaddr *>(&address),
             sizeof address)
        != 0)
        _exit(2);
}

/// Creates a file without a name in the folder, then links it to the path.
void linkUnnamedFile(const std::string &folder, const std::string &path)
{
    const int file = open(folder.c_str(), O_RDWR | O_TMPFILE, 0600);
    linkat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(file)).c_str(), AT_FDCWD, path.c_str(),
           AT_SYMLINK_FOLLOW);
}

/// Enough threads that strace has to split calls into two lines.
void createFileAmongThreads(const std::string &path)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number, path] {
            for (int round = 0; round < 50; ++round) {
                close(open("/proc/self/stat", O_RDONLY));
                if (number == 2 && round == 25)
                    createFile(path);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

/// Everything that the program may do.
void useOwnFolder(const std::string &folder)
{
    const std::string file = folder + "/own/file";
    fchmod(open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600), 0644);
    rename(file.c_str(), (folder + "/own/other").c_str());
    unlink((folder + "/own/other").c_str());
    linkUnnamedFile(folder + "/own", folder + "/own/named");
    open((folder + "/foreign/file").c_str(), O_RDONLY);
    bindSocket(folder + "/own/socket");
    std::array<int, 2> ends = {};
    socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
    createFileAmongThreads(folder + "/own/file");
}

/// What the traced process does, by name. Its argument is a folder with the folders "own" and
/// "foreign" and the file "foreign/file".
using Action = std::function<void(const std::string &folder)>;

const std::map<std::string, Action> &actions()
{
    static const std::map<std::string, Action> all{
        {"changes in its own folder", useOwnFolder},
        {"a new file from one of many threads",
         [](const std::string &folder) { createFileAmongThreads(folder + "/foreign/new"); }},
        {"a path relative to the working folder",
         [](const std::string &folder) {
             if (chdir((folder + "/foreign").c_str()) == 0)
                 createFile("new");
         }},
        {"a file moved out of its own folder",
         [](const std::string &folder) {
             rename((folder + "/own").c_str(), (folder + "/foreign/own").c_str());
         }},
        {"permissions of an open file",
         [](const std::string &folder) {
             fchmod(open((folder + "/foreign/file").c_str(), O_RDONLY), 0600);
         }},
        {"a file that a child process creates",
         [](const std::string &folder) {
             const std::string command = ": >" + folder + "/foreign/new";
             [[maybe_unused]] const int status = std::system(command.c_str());
         }},
        {"a socket for the internet", [](const std::string &) { socket(AF_INET, SOCK_DGRAM, 0); }},
        {"a Unix socket in a foreign folder",
         [](const std::string &folder) { bindSocket(folder + "/foreign/socket"); }},
    };
    return all;
}

} // namespace

/// Tests the reader of traces on lines that strace 6.1 wrote on Linux 6, and on the trace of a
/// process whose actions are known.
class TestSystemCalls : public QObject {
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void findsTheForbiddenCalls_data();
    void findsTheForbiddenCalls();
};

void TestSystemCalls::reads_data()
{
    QTest::addColumn<QByteArray>("trace");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("an empty trace") << ""_ba << QStringList();
    QTest::newRow("a file that is read")
        << R"(4 openat(AT_FDCWD</tmp>, "/proc/meminfo", O_RDONLY|O_CLOEXEC) = 3</proc/meminfo>)"_ba
        << QStringList{u"openat /proc/meminfo"_s};
    QTest::newRow("a file that is written")
        << R"(4 openat(AT_FDCWD</tmp>, "/tmp/new", O_WRONLY|O_CREAT, 0600) = 3</tmp/new>)"_ba
        << QStringList{u"openat changes /tmp/new"_s};
    QTest::newRow("a path relative to the working folder")
        << R"(4 openat(AT_FDCWD</home/me>, "new", O_WRONLY|O_CREAT, 0600) = 3</home/me/new>)"_ba
        << QStringList{u"openat changes /home/me/new"_s};
    QTest::newRow("a path relative to an open folder")
        << R"(4 mkdirat(3</home/me>, "new", 0700)      = 0)"_ba
        << QStringList{u"mkdirat changes /home/me/new"_s};
    QTest::newRow("a path relative to a deleted folder")
        << R"(4 openat(3</tmp/gone>(deleted), "new", O_WRONLY|O_CREAT, 0777) = -1 ENOENT (No such file or directory))"_ba
        << QStringList{u"openat changes new"_s};
    QTest::newRow("a path relative to an unknown folder, by an old call")
        << R"(4 rename("dev/null", "/dev/null")        = -1 ENOENT (No such file or directory))"_ba
        << QStringList{u"rename changes dev/null /dev/null"_s};
    QTest::newRow("quotes and letters in a name")
        << R"(4 openat(AT_FDCWD</tmp>, "q\"\303\274", O_WRONLY|O_CREAT, 0666) = 3</tmp/q\"\303\274>)"_ba
        << QStringList{uR"(openat changes /tmp/q\"\303\274)"_s};
    QTest::newRow("a file without a name")
        << R"(4 openat(AT_FDCWD</tmp>, "/home/me", O_RDWR|O_CLOEXEC|O_TMPFILE, 0777) = 4</home/me/#10970394>(deleted))"_ba
        << QStringList{u"openat changes /home/me"_s};
    QTest::newRow("that file linked to a name")
        << R"(4 linkat(AT_FDCWD</tmp>, "/proc/self/fd/4", AT_FDCWD</tmp>, "/home/me/file", AT_SYMLINK_FOLLOW) = 0)"_ba
        << QStringList{u"linkat changes /proc/self/fd/4 /home/me/file"_s};
    QTest::newRow("a rename between two folders")
        << R"(4 renameat2(AT_FDCWD</tmp>, "a", 5</home/me>, "b", RENAME_NOREPLACE) = 0)"_ba
        << QStringList{u"renameat2 changes /tmp/a /home/me/b"_s};
    QTest::newRow("permissions of an open file")
        << R"(4 fchmod(3</home/me/file>, 0600)         = 0)"_ba
        << QStringList{u"fchmod changes /home/me/file"_s};
    QTest::newRow("status of an open file")
        << R"(4 newfstatat(17</proc/meminfo>, "", {st_mode=S_IFREG|0444, st_size=0, ...}, AT_EMPTY_PATH) = 0)"_ba
        << QStringList{u"newfstatat /proc/meminfo"_s};
    QTest::newRow("a folder that exists")
        << R"(4 mkdir("/run/user/1", 0700)             = -1 EEXIST (File exists))"_ba
        << QStringList{u"mkdir /run/user/1"_s};
    QTest::newRow("an unknown call") << R"(4 rearrange("/home/me")                  = 0)"_ba
                                     << QStringList{u"rearrange changes /home/me"_s};
    QTest::newRow("a thread")
        << "4 clone3({flags=CLONE_VM|CLONE_FS|CLONE_FILES|CLONE_SIGHAND|CLONE_THREAD|CLONE_SYSVSEM, exit_signal=0, stack=0x7f4e42d52000, stack_size=0x7ffd80} => {parent_tid=[22308]}, 88) = 22308"_ba
        << QStringList{u"clone3"_s};
    QTest::newRow("a process")
        << "4 clone3({flags=CLONE_VM|CLONE_VFORK, exit_signal=SIGCHLD, stack=0x7f281d8d9000, stack_size=0x9000}, 88) = 26025"_ba
        << QStringList{u"clone3 starts"_s};
    QTest::newRow("a process, by the older call")
        << "4 clone(child_stack=NULL, flags=CLONE_CHILD_CLEARTID|CLONE_CHILD_SETTID|SIGCHLD, child_tidptr=0x7f2fd4afcb50) = 26005"_ba
        << QStringList{u"clone starts"_s};
    QTest::newRow("a Unix socket")
        << "4 socket(AF_UNIX, SOCK_STREAM|SOCK_CLOEXEC, 0) = 3<socket:[4091696]>\n"
           R"(4 bind(3<socket:[4091696]>, {sa_family=AF_UNIX, sun_path="/run/me/socket"}, 110) = 0)"_ba
        << QStringList{u"socket"_s, u"bind changes /run/me/socket"_s};
    QTest::newRow("a Unix socket without a file")
        << R"(4 connect(7<socket:[1]>, {sa_family=AF_UNIX, sun_path=@"/tmp/.X11-unix/X0"}, 20) = 0)"_ba
        << QStringList{u"connect @/tmp/.X11-unix/X0"_s};
    QTest::newRow("a socket of the internet")
        << "4 socket(AF_INET, SOCK_DGRAM, IPPROTO_IP) = 3<socket:[4107249]>\n"
           R"(4 connect(3<socket:[4107249]>, {sa_family=AF_INET, sin_port=htons(9), sin_addr=inet_addr("127.0.0.1")}, 16) = 0)"_ba
        << QStringList{u"socket network"_s, u"connect network 127.0.0.1"_s};
    QTest::newRow("a socket of an unknown family")
        << "4 socket(0x63 /* AF_??? */, SOCK_STREAM, 0) = -1 EAFNOSUPPORT (Address family not supported by protocol)"_ba
        << QStringList{u"socket network"_s};
    QTest::newRow("calls that overlap")
        << R"(4 openat(16</proc>, "12/statm", O_RDONLY|O_CLOEXEC <unfinished ...>
5 mkdir("/run/user/1", 0700 <unfinished ...>
6 clone3({flags=CLONE_VM|CLONE_VFORK, exit_signal=SIGCHLD} <unfinished ...>
7 newfstatat(AT_FDCWD</tmp>, "/etc/localtime",  <unfinished ...>
5 <... mkdir resumed>)             = -1 EEXIST (File exists)
4 <... openat resumed>)             = 17</proc/12/statm>
5 mkdir("/run/user/2", 0700) = 0
7 <... newfstatat resumed>{st_mode=S_IFREG|0644, st_size=114, ...}, 0) = 0
6 <... clone3 resumed> => {parent_tid=[8]}, 88) = 8)"_ba
        << QStringList{u"openat /proc/12/statm"_s, u"mkdir /run/user/1"_s, u"clone3 starts"_s,
                       u"newfstatat /etc/localtime"_s, u"mkdir changes /run/user/2"_s};
    QTest::newRow("a call that the end of the trace cuts off")
        << R"(4 openat(AT_FDCWD</tmp>, "/tmp/new", O_WRONLY|O_CREAT, 0600 <unfinished ...>)"_ba
        << QStringList{u"openat changes /tmp/new"_s};
    QTest::newRow("signals and ends")
        << "4 --- SIGTERM {si_signo=SIGTERM, si_code=SI_USER, si_pid=1, si_uid=0} ---\n"
           "5 ????"
           "( <unfinished ...>\n"
           "5 +++ exited with 0 +++\n4 +++ killed by SIGTERM +++\n"_ba
        << QStringList();
    QTest::newRow("lines that cannot be parsed")
        << "mkdir(\"/tmp/new\", 0700) = 0\n4 <... mkdir resumed>) = 0\n"_ba
        << QStringList{u" changes /tmp/new"_s, u" changes"_s};
}

void TestSystemCalls::reads()
{
    QFETCH(const QByteArray, trace);
    QStringList found;
    for (const SystemCall &call : systemCalls(trace)) {
        QStringList words{QString::fromUtf8(call.name)};
        if (call.changesFiles())
            words.append(u"changes"_s);
        if (call.startsProcess())
            words.append(u"starts"_s);
        if (call.usesNetwork())
            words.append(u"network"_s);
        found.append((words + call.paths()).join(u' '));
    }
    QTEST(found, "calls");
}

void TestSystemCalls::findsTheForbiddenCalls_data()
{
    QTest::addColumn<QList<QByteArray>>("expected"); // A part of each.
    QTest::newRow("changes in its own folder") << QList<QByteArray>();
    QTest::newRow("a new file from one of many threads") << QList{"/foreign/new"_ba};
    QTest::newRow("a path relative to the working folder") << QList{"/foreign>, \"new\""_ba};
    QTest::newRow("a file moved out of its own folder") << QList{"/foreign/own"_ba};
    QTest::newRow("permissions of an open file") << QList{"fchmod("_ba};
    QTest::newRow("a file that a child process creates")
        << QList{"clone"_ba, "execve("_ba, "/foreign/new"_ba};
    QTest::newRow("a socket for the internet") << QList{"socket(AF_INET,"_ba};
    QTest::newRow("a Unix socket in a foreign folder") << QList{"/foreign/socket"_ba};
}

void TestSystemCalls::findsTheForbiddenCalls()
{
    QFETCH(const QList<QByteArray>, expected);
    if (const QString obstacle = obstacleToTracing(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    const QTemporaryDir folder;
    for (const QString &place : {u"own"_s, u"foreign"_s})
        QVERIFY(QDir(folder.path()).mkdir(place));
    QVERIFY(QFile(folder.filePath(u"foreign/file"_s)).open(QFile::WriteOnly));
    const QString trace = folder.filePath(u"trace"_s);
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // Impossible under strace.
    strace.setProcessEnvironment(environment);
    strace.setProcessChannelMode(QProcess::ForwardedChannels);
    strace.start(u"strace"_s,
                 {u"-f"_s, u"-y"_s, u"-e"_s, QLatin1StringView(tracedCalls), u"-o"_s, trace,
                  QCoreApplication::applicationFilePath(), u"--do"_s,
                  QString::fromLatin1(QTest::currentDataTag()), folder.path()});
    QVERIFY(strace.waitForFinished(120'000));
    QCOMPARE(strace.exitCode(), 0);

    QFile file(trace);
    QVERIFY(file.open(QFile::ReadOnly));
    const QList<SystemCall> calls = systemCalls(file.readAll());
    const QList<QByteArray> found = forbiddenCalls(
        calls, QRegularExpression(QRegularExpression::escape(folder.path()) + u"/own(/.*)?"_s));
    QVERIFY2(found.size() == expected.size(), found.join('\n').constData());
    for (qsizetype call = 0; call < found.size(); ++call)
        QVERIFY2(found[call].contains(expected[call]), found[call].constData());
}

/// "--do ACTION FOLDER" runs one of the actions: this is the process that is traced.
int main(int argc, char **argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--do") == 0) {
        actions().at(argv[2])(argv[3]);
        return 0;
    }
    const QCoreApplication application(argc, argv);
    TestSystemCalls test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SystemCalls.moc"
