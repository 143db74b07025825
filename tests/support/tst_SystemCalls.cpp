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

#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

void bindSocket(const std::string &path, std::size_t from = 0)
{
    sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(address.sun_path + from, sizeof address.sun_path - from - 1);
    const auto size = offsetof(sockaddr_un, sun_path) + from + path.size();
    if (bind(socket(AF_UNIX, SOCK_STREAM, 0), reinterpret_cast<const sockaddr *>(&address),
             static_cast<socklen_t>(size))
        != 0)
        _exit(2);
}

/// Made in that folder, then given a name.
void writeUnnamedFile(const std::string &folder, const std::string &path)
{
    const int file = open(folder.c_str(), O_RDWR | O_TMPFILE, 0600);
    linkat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(file)).c_str(), AT_FDCWD, path.c_str(),
           AT_SYMLINK_FOLLOW);
}

void runShell(const char *command, bool inPlaceOfThis)
{
    std::array<std::string, 3> words{"sh", "-c", command};
    std::array<char *, 4> arguments{words[0].data(), words[1].data(), words[2].data(), nullptr};
    if (inPlaceOfThis)
        execv("/bin/sh", arguments.data());
    pid_t process = 0;
    posix_spawn(&process, "/bin/sh", nullptr, nullptr, arguments.data(), environ);
    waitpid(process, nullptr, 0);
}

/// Threads enough that strace has to cut calls in two.
void openInManyThreads(const std::string &path)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number, path] {
            for (int times = 0; times < 50; ++times)
                close(open(number == 2 && times == 25 ? path.c_str() : "/proc/self/stat",
                           number == 2 && times == 25 ? O_WRONLY | O_CREAT : O_RDONLY, 0600));
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

/// What the traced process does, by name, in a folder with the folders "own" and "foreign" and a
/// file "foreign/file".
using Deed = std::function<void(const std::string &folder)>;

const std::map<std::string, Deed> &deeds()
{
    static const std::map<std::string, Deed> all{
        {"nothing", [](const std::string &) {}},
        {"its own things",
         [](const std::string &folder) {
             const std::string file = folder + "/own/file";
             const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
             fchmod(descriptor, 0644);
             rename(file.c_str(), (folder + "/own/other").c_str());
             unlink((folder + "/own/other").c_str());
             writeUnnamedFile(folder + "/own", folder + "/own/named");
             open((folder + "/foreign/file").c_str(), O_RDONLY);
             bindSocket(folder + "/own/socket");
             std::array<int, 2> ends = {};
             socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
             std::thread([] {}).join();
             openInManyThreads(folder + "/own/file");
         }},
        {"a new file",
         [](const std::string &folder) {
             open((folder + "/foreign/new").c_str(), O_WRONLY | O_CREAT, 0600);
         }},
        {"a file for reading and writing",
         [](const std::string &folder) { open((folder + "/foreign/file").c_str(), O_RDWR); }},
        {"a file without a name",
         [](const std::string &folder) {
             open((folder + "/foreign").c_str(), O_WRONLY | O_TMPFILE, 0600);
         }},
        {"a name for a file without one",
         [](const std::string &folder) {
             writeUnnamedFile(folder + "/own", folder + "/foreign/named");
         }},
        {"a path from the folder it works in",
         [](const std::string &folder) {
             if (chdir((folder + "/foreign").c_str()) == 0)
                 open("new", O_WRONLY | O_CREAT, 0600);
         }},
        {"a path from an open folder",
         [](const std::string &folder) {
             const int place = open((folder + "/foreign").c_str(), O_RDONLY | O_DIRECTORY);
             mkdirat(place, "new", 0700);
         }},
        {"a path that leads out of its own",
         [](const std::string &folder) {
             open((folder + "/own/../foreign/new").c_str(), O_WRONLY | O_CREAT, 0600);
         }},
        {"a renaming out of its own",
         [](const std::string &folder) {
             rename((folder + "/own").c_str(), (folder + "/foreign/own").c_str());
         }},
        {"a removal",
         [](const std::string &folder) { unlink((folder + "/foreign/file").c_str()); }},
        {"a link",
         [](const std::string &folder) {
             symlink((folder + "/foreign/file").c_str(), (folder + "/own/link").c_str());
         }},
        {"permissions of an open file",
         [](const std::string &folder) {
             fchmod(open((folder + "/foreign/file").c_str(), O_RDONLY), 0600);
         }},
        {"times of an open file",
         [](const std::string &folder) {
             futimens(open((folder + "/foreign/file").c_str(), O_RDONLY), nullptr);
         }},
        {"an attribute",
         [](const std::string &folder) {
             setxattr((folder + "/foreign/file").c_str(), "user.word", "x", 1, 0);
         }},
        {"a file from one of many threads",
         [](const std::string &folder) { openInManyThreads(folder + "/foreign/new"); }},
        {"a child",
         [](const std::string &) {
             if (const pid_t child = fork(); child == 0)
                 _exit(0);
             else
                 waitpid(child, nullptr, 0);
         }},
        {"another program", [](const std::string &) { runShell(":", false); }},
        {"another program in its place", [](const std::string &) { runShell(":", true); }},
        {"what a child writes",
         [](const std::string &folder) {
             runShell((": >" + folder + "/foreign/new").c_str(), false);
         }},
        {"a socket for the internet", [](const std::string &) { socket(AF_INET, SOCK_DGRAM, 0); }},
        {"one for its sixth version",
         [](const std::string &) { socket(AF_INET6, SOCK_STREAM, 0); }},
        {"one to the kernel", [](const std::string &) { socket(AF_NETLINK, SOCK_RAW, 0); }},
        {"a socket of no known family", [](const std::string &) { socket(99, SOCK_STREAM, 0); }},
        {"an address of the internet",
         [](const std::string &) {
             const sockaddr_in address = {
                 .sin_family = AF_INET, .sin_port = 9, .sin_addr = {}, .sin_zero = {}};
             connect(socket(AF_UNIX, SOCK_STREAM, 0), reinterpret_cast<const sockaddr *>(&address),
                     sizeof address);
         }},
        {"a socket in a foreign place",
         [](const std::string &folder) { bindSocket(folder + "/foreign/socket"); }},
        {"a socket in no file system",
         [](const std::string &folder) { bindSocket(folder + "/own/socket", 1); }},
    };
    return all;
}

} // namespace

/// The proof by strace itself: lines as strace 6.1 wrote them on Linux 6, and a process of which it
/// is known what it does.
class TestSystemCalls : public QObject {
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void tellsWhatADeedDid_data();
    void tellsWhatADeedDid();
};

void TestSystemCalls::reads_data()
{
    QTest::addColumn<QByteArray>("trace");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("nothing") << ""_ba << QStringList();
    QTest::newRow("a file that is read")
        << R"(4 openat(AT_FDCWD</tmp>, "/proc/meminfo", O_RDONLY|O_CLOEXEC) = 3</proc/meminfo>)"_ba
        << QStringList{u"openat /proc/meminfo"_s};
    QTest::newRow("a file that is written")
        << R"(4 openat(AT_FDCWD</tmp>, "/tmp/new", O_WRONLY|O_CREAT, 0600) = 3</tmp/new>)"_ba
        << QStringList{u"openat changes /tmp/new"_s};
    QTest::newRow("a path from the folder it works in")
        << R"(4 openat(AT_FDCWD</home/me>, "new", O_WRONLY|O_CREAT, 0600) = 3</home/me/new>)"_ba
        << QStringList{u"openat changes /home/me/new"_s};
    QTest::newRow("a path from an open folder")
        << R"(4 mkdirat(3</home/me>, "new", 0700)      = 0)"_ba
        << QStringList{u"mkdirat changes /home/me/new"_s};
    QTest::newRow("a path from a folder that is gone")
        << R"(4 openat(3</tmp/gone>(deleted), "new", O_WRONLY|O_CREAT, 0777) = -1 ENOENT (No such file or directory))"_ba
        << QStringList{u"openat changes new"_s};
    QTest::newRow("a path from nowhere, by an old call")
        << R"(4 rename("dev/null", "/dev/null")        = -1 ENOENT (No such file or directory))"_ba
        << QStringList{u"rename changes dev/null /dev/null"_s};
    QTest::newRow("quotes and letters in a name")
        << R"(4 openat(AT_FDCWD</tmp>, "q\"\303\274", O_WRONLY|O_CREAT, 0666) = 3</tmp/q\"\303\274>)"_ba
        << QStringList{uR"(openat changes /tmp/q\"\303\274)"_s};
    QTest::newRow("a file without a name")
        << R"(4 openat(AT_FDCWD</tmp>, "/home/me", O_RDWR|O_CLOEXEC|O_TMPFILE, 0777) = 4</home/me/#10970394>(deleted))"_ba
        << QStringList{u"openat changes /home/me"_s};
    QTest::newRow("that file with a name")
        << R"(4 linkat(AT_FDCWD</tmp>, "/proc/self/fd/4", AT_FDCWD</tmp>, "/home/me/file", AT_SYMLINK_FOLLOW) = 0)"_ba
        << QStringList{u"linkat changes /proc/self/fd/4 /home/me/file"_s};
    QTest::newRow("renaming between two folders")
        << R"(4 renameat2(AT_FDCWD</tmp>, "a", 5</home/me>, "b", RENAME_NOREPLACE) = 0)"_ba
        << QStringList{u"renameat2 changes /tmp/a /home/me/b"_s};
    QTest::newRow("what an open file is allowed")
        << R"(4 fchmod(3</home/me/file>, 0600)         = 0)"_ba
        << QStringList{u"fchmod changes /home/me/file"_s};
    QTest::newRow("what an open file is")
        << R"(4 newfstatat(17</proc/meminfo>, "", {st_mode=S_IFREG|0444, st_size=0, ...}, AT_EMPTY_PATH) = 0)"_ba
        << QStringList{u"newfstatat /proc/meminfo"_s};
    QTest::newRow("a folder that is there")
        << R"(4 mkdir("/run/user/1", 0700)             = -1 EEXIST (File exists))"_ba
        << QStringList{u"mkdir /run/user/1"_s};
    QTest::newRow("a call that nobody knows")
        << R"(4 rearrange("/home/me")                  = 0)"_ba
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
    QTest::newRow("one that is no file")
        << R"(4 connect(7<socket:[1]>, {sa_family=AF_UNIX, sun_path=@"/tmp/.X11-unix/X0"}, 20) = 0)"_ba
        << QStringList{u"connect @/tmp/.X11-unix/X0"_s};
    QTest::newRow("a socket of the internet")
        << "4 socket(AF_INET, SOCK_DGRAM, IPPROTO_IP) = 3<socket:[4107249]>\n"
           R"(4 connect(3<socket:[4107249]>, {sa_family=AF_INET, sin_port=htons(9), sin_addr=inet_addr("127.0.0.1")}, 16) = 0)"_ba
        << QStringList{u"socket network"_s, u"connect network 127.0.0.1"_s};
    QTest::newRow("a socket of no known family")
        << "4 socket(0x63 /* AF_??? */, SOCK_STREAM, 0) = -1 EAFNOSUPPORT (Address family not supported by protocol)"_ba
        << QStringList{u"socket network"_s};
    QTest::newRow("calls that come between each other")
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
    QTest::newRow("a call at whose end the trace ends")
        << R"(4 openat(AT_FDCWD</tmp>, "/tmp/new", O_WRONLY|O_CREAT, 0600 <unfinished ...>)"_ba
        << QStringList{u"openat changes /tmp/new"_s};
    QTest::newRow("signals and ends")
        << "4 --- SIGTERM {si_signo=SIGTERM, si_code=SI_USER, si_pid=1, si_uid=0} ---\n"
           "5 ????"
           "( <unfinished ...>\n"
           "5 +++ exited with 0 +++\n4 +++ killed by SIGTERM +++\n"_ba
        << QStringList();
    QTest::newRow("lines that cannot be read")
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

void TestSystemCalls::tellsWhatADeedDid_data()
{
    QTest::addColumn<QByteArray>("offence");
    const auto add = [](const char *deed, const char *offence) {
        QTest::newRow(deed) << QByteArray(offence);
    };
    add("nothing", "");
    add("its own things", "");
    add("a new file", "/foreign/new");
    add("a file for reading and writing", "/foreign/file");
    add("a file without a name", "O_TMPFILE");
    add("a name for a file without one", "/foreign/named");
    add("a path from the folder it works in", "new");
    add("a path from an open folder", "mkdirat(");
    add("a path that leads out of its own", "/own/../foreign/new");
    add("a renaming out of its own", "rename");
    add("a removal", "unlink");
    add("a link", "symlink");
    add("permissions of an open file", "fchmod(");
    add("times of an open file", "utimensat(");
    add("an attribute", "setxattr(");
    add("a file from one of many threads", "/foreign/new");
    add("a child", "clone");
    add("another program", "clone");
    add("another program in its place", "execve(");
    add("what a child writes", "/foreign/new");
    add("a socket for the internet", "socket(AF_INET,");
    add("one for its sixth version", "socket(AF_INET6,");
    add("one to the kernel", "socket(AF_NETLINK,");
    add("a socket of no known family", "socket(");
    add("an address of the internet", "sa_family=AF_INET");
    add("a socket in a foreign place", "/foreign/socket");
    add("a socket in no file system", "sun_path=@");
}

void TestSystemCalls::tellsWhatADeedDid()
{
    QFETCH(const QByteArray, offence);
    if (const QString obstacle = obstacleToTracing(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    const QTemporaryDir folder;
    for (const QString &place : {u"own"_s, u"foreign"_s})
        QVERIFY(QDir(folder.path()).mkdir(place));
    QVERIFY(QFile(folder.filePath(u"foreign/file"_s)).open(QFile::WriteOnly));
    const QString trace = folder.filePath(u"trace"_s);
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // Not found under strace.
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
    const QList<QByteArray> found = offences(
        calls, QRegularExpression(QRegularExpression::escape(folder.path()) + u"/own(/.*)?"_s));
    QCOMPARE(found.isEmpty(), offence.isEmpty());
    QVERIFY2(found.join('\n').contains(offence), found.join('\n').constData());
}

/// With "--do DEED FOLDER" it is the process that is traced.
int main(int argc, char **argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--do") == 0) {
        deeds().at(argv[2])(argv[3]);
        return 0;
    }
    const QCoreApplication application(argc, argv);
    TestSystemCalls test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SystemCalls.moc"
