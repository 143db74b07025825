#include "instance/SingleInstance.h"

#include "instance/InstanceSocket.h"
#include "platform/UnixSocket.h"
#include "support/InstanceStarts.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <vector>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace std::chrono_literals;
using Standing = SingleInstance::Standing;

class TestSingleInstance : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void isTheFirstIfNoneRuns();
    void isTheFirstWithoutAFolder();
    void asksTheFirstToOpen();
    void waitsUntilTheFirstListens();
    void succeedsOneThatEnds();
    void givesUpOnOneThatDoesNotListen();
    void givesUpOnOneThatDoesNotAnswer();
    void givesUpOnOneThatClosesTheConnection();
    void rejectsAnotherAnswer();
    void ignoresOneOfAnotherFolder();
    void passesTheTokenOfThisStartOn();
};

void TestSingleInstance::initTestCase()
{
    std::signal(SIGPIPE, SIG_IGN); // As in the program.
}

void TestSingleInstance::isTheFirstIfNoneRuns()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    QCOMPARE(first.standing(), Standing::first);
    QCOMPARE(first.socketPath(), starts.path() + "/socket");
}

void TestSingleInstance::isTheFirstWithoutAFolder()
{
    const SingleInstance first(InstanceMessage{}, 0ms, "");
    const SingleInstance second(InstanceMessage{}, 0ms, "");
    QCOMPARE(second.standing(), Standing::first);
    QCOMPARE(second.socketPath(), std::string());
}

void TestSingleInstance::asksTheFirstToOpen()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    const InstanceSocket socket(first.socketPath());
    QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    auto second = starts.second();
    TRY_COMPARE_STANDING(second, Standing::second);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.first().first().toByteArray(), QByteArray("token"));
}

void TestSingleInstance::waitsUntilTheFirstListens()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    auto second = starts.second();
    QCOMPARE(second.wait_for(100ms), std::future_status::timeout);
    const InstanceSocket socket(first.socketPath());
    TRY_COMPARE_STANDING(second, Standing::second);
}

void TestSingleInstance::succeedsOneThatEnds()
{
    const InstanceStarts starts;
    auto first = std::make_unique<SingleInstance>(InstanceMessage{}, 0ms, starts.path());
    auto second = starts.second();
    QCOMPARE(second.wait_for(100ms), std::future_status::timeout);
    first.reset();
    TRY_COMPARE_STANDING(second, Standing::first);
}

void TestSingleInstance::givesUpOnOneThatDoesNotListen()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    auto second = starts.second(50ms);
    TRY_COMPARE_STANDING(second, Standing::unanswered);
}

/// Such as a stopped process, for which the system still accepts connections.
void TestSingleInstance::givesUpOnOneThatDoesNotAnswer()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    const FileDescriptor stopped = openUnixSocket();
    QVERIFY(listenAt(stopped, first.socketPath()));
    auto second = starts.second(50ms);
    TRY_COMPARE_STANDING(second, Standing::unanswered);
}

void TestSingleInstance::givesUpOnOneThatClosesTheConnection()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(listenAt(listener, first.socketPath()));
    auto second = starts.second(200ms);
    int connections = 0;
    while (second.wait_for(1ms) != std::future_status::ready)
        connections += FileDescriptor(accept(listener.get(), nullptr, nullptr)) ? 1 : 0;
    QVERIFY(connections > 0);
    QCOMPARE(second.get(), Standing::unanswered);
}

void TestSingleInstance::rejectsAnotherAnswer()
{
    const InstanceStarts starts;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(listenAt(listener, first.socketPath()));
    auto second = starts.second(200ms);
    std::vector<FileDescriptor> connections;
    while (second.wait_for(1ms) != std::future_status::ready) {
        FileDescriptor connection(accept(listener.get(), nullptr, nullptr));
        if (connection) {
            [[maybe_unused]] const ssize_t sent =
                write(connection.get(), "Corvane/2 opened\n", instanceAnswer.size());
            connections.push_back(std::move(connection));
        }
    }
    QVERIFY(!connections.empty());
    QCOMPARE(second.get(), Standing::unanswered);
}

void TestSingleInstance::ignoresOneOfAnotherFolder()
{
    const InstanceStarts starts;
    const InstanceStarts others;
    const SingleInstance first(InstanceMessage{}, 0ms, starts.path());
    const SingleInstance second(InstanceMessage{}, 0ms, others.path());
    QCOMPARE(second.standing(), Standing::first);
}

void TestSingleInstance::passesTheTokenOfThisStartOn()
{
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
    QCOMPARE(messageOfThisStart(), InstanceMessage{});
    qputenv("DESKTOP_STARTUP_ID", "panel-1_TIME2");
    QCOMPARE(messageOfThisStart(), InstanceMessage{.activationToken = "panel-1_TIME2"});
    qputenv("XDG_ACTIVATION_TOKEN", "uuid");
    QCOMPARE(messageOfThisStart(), InstanceMessage{.activationToken = "uuid"});
}

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_SingleInstance.moc"
