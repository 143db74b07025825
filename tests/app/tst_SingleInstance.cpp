#include "app/SingleInstance.h"

#include "app/InstanceSocket.h"
#include "app/UnixSocket.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <future>
#include <memory>
#include <vector>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Standing = SingleInstance::Standing;

namespace {

constexpr auto ample = 60s;

} // namespace

/// Starts of the program within this process; each has a lock of its own.
class TestSingleInstance : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void isTheFirstWhereNoneRuns();
    void isTheFirstWithoutAFolder();
    void asksTheFirst();
    void waitsUntilTheFirstListens();
    void takesOverFromOneThatEnds();
    void givesUpOnOneThatDoesNotListen();
    void givesUpOnOneThatDoesNotAnswer();
    void isNotTakenInByAnotherAnswer();
    void doesNotMeetOneOfAnotherFolder();
    void takesTheTokenOfThisStart();

private:
    std::future<Standing> secondStart(std::chrono::milliseconds patience = ample);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::string m_path;
};

void TestSingleInstance::initTestCase()
{
    std::signal(SIGPIPE, SIG_IGN); // As in the program.
}

void TestSingleInstance::init()
{
    m_folder = std::make_unique<QTemporaryDir>(u"/tmp/corvane-XXXXXX"_s);
    m_path = m_folder->path().toStdString();
}

/// It blocks, so it has a thread of its own.
std::future<Standing> TestSingleInstance::secondStart(std::chrono::milliseconds patience)
{
    return std::async(std::launch::async, [this, patience] {
        return SingleInstance({.activationToken = "token"}, patience, m_path).standing();
    });
}

#define TRY_COMPARE_STANDING(future, expected)                                                     \
    QTRY_COMPARE_WITH_TIMEOUT((future).wait_for(0s), std::future_status::ready, 60'000);           \
    QCOMPARE((future).get(), expected)

void TestSingleInstance::isTheFirstWhereNoneRuns()
{
    const SingleInstance first({}, 0ms, m_path);
    QCOMPARE(first.standing(), Standing::first);
    QCOMPARE(first.socketPath(), m_path + "/socket");
}

void TestSingleInstance::isTheFirstWithoutAFolder()
{
    const SingleInstance first({}, 0ms, "");
    const SingleInstance second({}, 0ms, "");
    QCOMPARE(second.standing(), Standing::first);
    QCOMPARE(second.socketPath(), std::string());
}

void TestSingleInstance::asksTheFirst()
{
    const SingleInstance first({}, 0ms, m_path);
    const InstanceSocket socket(first.socketPath());
    QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    auto second = secondStart();
    TRY_COMPARE_STANDING(second, Standing::second);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.first().first().toByteArray(), QByteArray("token"));
}

void TestSingleInstance::waitsUntilTheFirstListens()
{
    const SingleInstance first({}, 0ms, m_path);
    auto second = secondStart();
    QCOMPARE(second.wait_for(100ms), std::future_status::timeout);
    const InstanceSocket socket(first.socketPath());
    TRY_COMPARE_STANDING(second, Standing::second);
}

void TestSingleInstance::takesOverFromOneThatEnds()
{
    auto first = std::make_unique<SingleInstance>(InstanceMessage{}, 0ms, m_path);
    auto second = secondStart();
    QCOMPARE(second.wait_for(100ms), std::future_status::timeout);
    first.reset();
    TRY_COMPARE_STANDING(second, Standing::first);
}

void TestSingleInstance::givesUpOnOneThatDoesNotListen()
{
    const SingleInstance first({}, 0ms, m_path);
    auto second = secondStart(50ms);
    TRY_COMPARE_STANDING(second, Standing::unanswered);
}

/// As one does that was stopped: the system takes connections for it.
void TestSingleInstance::givesUpOnOneThatDoesNotAnswer()
{
    const SingleInstance first({}, 0ms, m_path);
    const FileDescriptor stopped = openUnixSocket();
    QVERIFY(listenAt(stopped, first.socketPath()));
    auto second = secondStart(50ms);
    TRY_COMPARE_STANDING(second, Standing::unanswered);
}

void TestSingleInstance::isNotTakenInByAnotherAnswer()
{
    const SingleInstance first({}, 0ms, m_path);
    const FileDescriptor stranger = openUnixSocket();
    QVERIFY(listenAt(stranger, first.socketPath()));
    auto second = secondStart(200ms);
    std::vector<FileDescriptor> guests;
    while (second.wait_for(1ms) != std::future_status::ready) {
        FileDescriptor guest(accept(stranger.get(), nullptr, nullptr));
        if (guest) {
            [[maybe_unused]] const ssize_t sent =
                write(guest.get(), "Corvane/2 opened\n", instanceAnswer.size());
            guests.push_back(std::move(guest));
        }
    }
    QVERIFY(!guests.empty());
    QCOMPARE(second.get(), Standing::unanswered);
}

void TestSingleInstance::doesNotMeetOneOfAnotherFolder()
{
    const QTemporaryDir other(u"/tmp/corvane-XXXXXX"_s);
    const SingleInstance first({}, 0ms, m_path);
    const SingleInstance second({}, 0ms, other.path().toStdString());
    QCOMPARE(second.standing(), Standing::first);
}

void TestSingleInstance::takesTheTokenOfThisStart()
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
