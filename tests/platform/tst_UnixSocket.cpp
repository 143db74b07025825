#include "platform/UnixSocket.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

bool isNonBlocking(const FileDescriptor &socket)
{
    return (fcntl(socket.get(), F_GETFL) & O_NONBLOCK) != 0;
}

bool closesInOtherPrograms(const FileDescriptor &socket)
{
    return (fcntl(socket.get(), F_GETFD) & FD_CLOEXEC) != 0;
}

bool canConnect(const std::string &path)
{
    return connectTo(openUnixSocket(), path);
}

} // namespace

class TestUnixSocket : public QObject {
    Q_OBJECT

private slots:
    void neverBlocks();
    void connectsWhereAProcessListens();
    void replacesTheSocketOfAKilledProcess();
    void refusesPaths_data();
    void refusesPaths();

private:
    QTemporaryDir m_folder{u"/tmp/corvane-XXXXXX"_s};
    const std::string m_path = m_folder.filePath(u"socket"_s).toStdString();
};

void TestUnixSocket::neverBlocks()
{
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(isNonBlocking(listener) && closesInOtherPrograms(listener));
    QVERIFY(listenAt(listener, m_path));
    QVERIFY(accept(listener.get(), nullptr, nullptr) < 0 && errno == EAGAIN);

    const FileDescriptor client = openUnixSocket();
    QVERIFY(connectTo(client, m_path));
    const FileDescriptor connection(accept(listener.get(), nullptr, nullptr));
    QVERIFY(connection && !isNonBlocking(connection));
    QVERIFY(makeNonBlocking(connection));
    QVERIFY(isNonBlocking(connection) && closesInOtherPrograms(connection));
    QVERIFY(!makeNonBlocking(FileDescriptor()));
}

void TestUnixSocket::connectsWhereAProcessListens()
{
    {
        const FileDescriptor listener = openUnixSocket();
        QVERIFY(listenAt(listener, m_path));
        QVERIFY(canConnect(m_path));
    }
    QVERIFY(QFile::exists(QString::fromStdString(m_path)));
    QVERIFY(!canConnect(m_path)); // Its file remains, but nobody listens.
}

void TestUnixSocket::replacesTheSocketOfAKilledProcess()
{
    {
        const FileDescriptor killed = openUnixSocket();
        QVERIFY(listenAt(killed, m_path));
    }
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(listenAt(listener, m_path));
    QVERIFY(canConnect(m_path));
}

void TestUnixSocket::refusesPaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("in a folder that is not there") << m_folder.filePath(u"missing/socket"_s);
    QTest::newRow("a folder") << m_folder.path();
    QTest::newRow("longer than an address can hold") << m_folder.filePath(QString(200, u'x'));
}

void TestUnixSocket::refusesPaths()
{
    QFETCH(QString, path);
    QVERIFY(!listenAt(openUnixSocket(), path.toStdString()));
    QVERIFY(!canConnect(path.toStdString()));
}

QTEST_GUILESS_MAIN(TestUnixSocket)
#include "tst_UnixSocket.moc"
