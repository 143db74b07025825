#include "platform/PeerUser.h"

#include "platform/UnixSocket.h"

#include <QTemporaryDir>
#include <QTest>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t otherUser = 65'534;

/// Ends this process, a child of the test: connects as another user and stays until it is cut off.
[[noreturn]] void connectAsAnotherUser(const std::string &path)
{
    const bool isReady = setgid(otherUser) == 0 && setuid(otherUser) == 0;
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    char byte = 0;
    if (isReady && connectTo(socket, path))
        _exit(read(socket.get(), &byte, 1) == 0 ? 0 : 1);
    _exit(1);
}

} // namespace

class TestPeerUser : public QObject {
    Q_OBJECT

private slots:
    void knowsItsOwnUser();
    void knowsAnotherUser();
    void isNobodyWithoutAConnection();
};

void TestPeerUser::knowsItsOwnUser()
{
    int ends[2] = {};
    QCOMPARE(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const FileDescriptor one(ends[0]);
    const FileDescriptor other(ends[1]);
    QVERIFY(isPeerOfSameUser(one.get()));
    QVERIFY(isPeerOfSameUser(other.get()));
}

void TestPeerUser::knowsAnotherUser()
{
    if (geteuid() != 0)
        QSKIP("only an administrator can become another user");
    const QTemporaryDir folder(u"/tmp/corvane-XXXXXX"_s);
    QCOMPARE(chmod(folder.path().toUtf8().constData(), 0755), 0);
    const std::string path = folder.filePath(u"socket"_s).toStdString();
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(listenAt(listener, path));
    QCOMPARE(chmod(path.c_str(), 0777), 0);

    const pid_t child = fork();
    if (child == 0)
        connectAsAnotherUser(path);
    pollfd waiting = {.fd = listener.get(), .events = POLLIN, .revents = 0};
    QCOMPARE(poll(&waiting, 1, 60'000), 1);
    {
        const FileDescriptor connection(accept(listener.get(), nullptr, nullptr));
        QVERIFY(connection && !isPeerOfSameUser(connection.get()));
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
}

void TestPeerUser::isNobodyWithoutAConnection()
{
    QVERIFY(!isPeerOfSameUser(-1));
    int ends[2] = {};
    QCOMPARE(pipe(ends), 0);
    const FileDescriptor reader(ends[0]);
    const FileDescriptor writer(ends[1]);
    QVERIFY(!isPeerOfSameUser(reader.get()));
}

QTEST_GUILESS_MAIN(TestPeerUser)
#include "tst_PeerUser.moc"
