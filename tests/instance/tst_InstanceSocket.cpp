#include "instance/InstanceSocket.h"

#include "instance/InstanceMessage.h"
#include "platform/UnixSocket.h"
#include "support/ProcessState.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A client that sends what a test wants.
class Client {
public:
    explicit Client(const std::string &path) : m_socket(openUnixSocket())
    {
        isConnected = connectTo(m_socket, path);
    }

    /// Returns how many bytes were sent.
    ssize_t send(const std::string &bytes) const
    {
        return write(m_socket.get(), bytes.data(), bytes.size());
    }

    /// All bytes that came; absent while the connection is open.
    std::optional<std::string> received()
    {
        std::array<char, 256> piece = {};
        ssize_t count = 0;
        while ((count = read(m_socket.get(), piece.data(), piece.size())) > 0)
            m_bytes.append(piece.data(), static_cast<std::size_t>(count));
        const bool isOpen = count < 0 && errno == EAGAIN;
        return isOpen ? std::nullopt : std::optional(m_bytes);
    }

    bool isConnected = false;

private:
    FileDescriptor m_socket;
    std::string m_bytes;
};

const std::string answer(instanceAnswer);

constexpr InstanceSocket::Times impatient{.message = 50ms};
constexpr InstanceSocket::Times soonRetrying{.retry = 20ms};

} // namespace

class TestInstanceSocket : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void opensForAMessage();
    void acceptsAMessageInPieces();
    void replacesTheSocketOfAKilledProcess();
    void leavesNoSocketBehind();
    void leavesTheSocketOfAnother();
    void emitsNothingIfItCannotListen_data();
    void emitsNothingIfItCannotListen();
    void closesAConnectionWithOtherBytes_data();
    void closesAConnectionWithOtherBytes();
    void closesAConnectionWithoutAMessageInTime();
    void closesAConnectionThatSendsWithoutEnd();
    void answersBesideManySilentConnections();
    void survivesThousandsOfConnections();
    void survivesAClientThatDoesNotWaitForTheAnswer();
    void triesAgainAfterNoDescriptorWasLeft();

private:
    QTemporaryDir m_folder{u"/tmp/corvane-XXXXXX"_s};
    const std::string m_path = m_folder.filePath(u"socket"_s).toStdString();
};

void TestInstanceSocket::initTestCase()
{
    std::signal(SIGPIPE, SIG_IGN); // As in the program.
}

void TestInstanceSocket::opensForAMessage()
{
    const InstanceSocket socket(m_path);
    QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    Client client(m_path);
    client.send(instanceMessageBytes({.activationToken = "token"}));
    QTRY_COMPARE(client.received(), answer);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.first().first().toByteArray(), QByteArray("token"));
}

void TestInstanceSocket::acceptsAMessageInPieces()
{
    const InstanceSocket socket(m_path);
    QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    Client client(m_path);
    for (const char byte : instanceMessageBytes({})) {
        QVERIFY(requests.isEmpty());
        client.send(std::string(1, byte));
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(client.received(), answer);
    QCOMPARE(requests.count(), 1);
}

void TestInstanceSocket::replacesTheSocketOfAKilledProcess()
{
    {
        const FileDescriptor killed = openUnixSocket();
        QVERIFY(listenAt(killed, m_path));
    }
    QVERIFY(!Client(m_path).isConnected);
    const InstanceSocket socket(m_path);
    QVERIFY(Client(m_path).isConnected);
}

void TestInstanceSocket::leavesNoSocketBehind()
{
    {
        const InstanceSocket socket(m_path);
        QVERIFY(QFile::exists(QString::fromStdString(m_path)));
    }
    QVERIFY(!QFile::exists(QString::fromStdString(m_path)));
}

/// As after the folder was removed and another start made it anew.
void TestInstanceSocket::leavesTheSocketOfAnother()
{
    const std::string path = m_folder.filePath(u"shared"_s).toStdString();
    auto first = std::make_unique<InstanceSocket>(path);
    QCOMPARE(rename(path.c_str(), (path + "-old").c_str()), 0);
    const InstanceSocket second(path);
    first.reset();
    QVERIFY(Client(path).isConnected);
    QVERIFY(QFile::remove(m_folder.filePath(u"shared-old"_s)));
}

void TestInstanceSocket::emitsNothingIfItCannotListen_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("an empty path") << QString();
    QTest::newRow("in a missing folder") << m_folder.filePath(u"missing/socket"_s);
    QTest::newRow("the path of a folder") << m_folder.path();
    QTest::newRow("a path that is too long") << m_folder.filePath(QString(200, u'x'));
}

void TestInstanceSocket::emitsNothingIfItCannotListen()
{
    QFETCH(const QString, path);
    const InstanceSocket socket(path.toStdString());
    QVERIFY(!Client(path.toStdString()).isConnected);
}

void TestInstanceSocket::closesAConnectionWithOtherBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    std::mt19937 random(1234);
    QByteArray garbage(4096, '\0');
    for (char &byte : garbage)
        byte = static_cast<char>(random());
    QTest::newRow("binary garbage") << garbage;
    QTest::newRow("a message with an endless token")
        << QByteArray("Corvane/1 open\n" + QByteArray(4096, 'x'));
}

void TestInstanceSocket::closesAConnectionWithOtherBytes()
{
    QFETCH(const QByteArray, bytes);
    const InstanceSocket socket(m_path);
    const QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    Client client(m_path);
    client.send(bytes.toStdString());
    QTRY_COMPARE(client.received(), std::string());
    QCOMPARE(requests.count(), 0);
}

void TestInstanceSocket::closesAConnectionWithoutAMessageInTime()
{
    const InstanceSocket socket(m_path, impatient);
    const QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    Client silent(m_path);
    Client half(m_path);
    half.send("Corvane/1 op");
    QTRY_COMPARE_WITH_TIMEOUT(silent.received(), std::string(), 60'000);
    QTRY_COMPARE_WITH_TIMEOUT(half.received(), std::string(), 60'000);
    QCOMPARE(requests.count(), 0);
}

void TestInstanceSocket::closesAConnectionThatSendsWithoutEnd()
{
    const InstanceSocket socket(m_path, impatient);
    Client client(m_path);
    QTRY_VERIFY_WITH_TIMEOUT(client.send("x") < 0 && errno == EPIPE, 60'000);
}

void TestInstanceSocket::answersBesideManySilentConnections()
{
    const InstanceSocket socket(m_path);
    std::vector<std::unique_ptr<Client>> silent;
    for (qsizetype number = 0; number < InstanceSocket::maxConnections; ++number) {
        silent.push_back(std::make_unique<Client>(m_path));
        QVERIFY(silent.back()->isConnected);
        QCoreApplication::processEvents();
    }
    Client client(m_path);
    client.send(instanceMessageBytes({}));
    QTRY_COMPARE(client.received(), answer);
}

void TestInstanceSocket::survivesThousandsOfConnections()
{
    const InstanceSocket socket(m_path);
    const qsizetype descriptors = test::openDescriptors();
    int connected = 0;
    for (int number = 0; number < 5000; ++number) {
        connected += Client(m_path).isConnected ? 1 : 0;
        if (number % 8 == 0)
            QCoreApplication::processEvents();
    }
    QVERIFY(connected >= 100);
    QTRY_COMPARE(test::openDescriptors(), descriptors);
    Client client(m_path);
    client.send(instanceMessageBytes({}));
    QTRY_COMPARE(client.received(), answer);
}

void TestInstanceSocket::survivesAClientThatDoesNotWaitForTheAnswer()
{
    const InstanceSocket socket(m_path);
    const QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    Client(m_path).send(instanceMessageBytes({}));
    QTRY_COMPARE(requests.count(), 1);
}

/// Meanwhile the connection stays queued, and the event loop must not spin over it.
void TestInstanceSocket::triesAgainAfterNoDescriptorWasLeft()
{
    const InstanceSocket socket(m_path, soonRetrying);
    Client client(m_path);
    client.send(instanceMessageBytes({}));
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few{.rlim_cur = 100, .rlim_max = before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<FileDescriptor> all;
    while (all.empty() || all.back())
        all.emplace_back(dup(STDOUT_FILENO));
    QCoreApplication::processEvents();
    QVERIFY(!client.received());
    all.clear();
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client.received(), answer, 60'000);
}

QTEST_GUILESS_MAIN(TestInstanceSocket)
#include "tst_InstanceSocket.moc"
