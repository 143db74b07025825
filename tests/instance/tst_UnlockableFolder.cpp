#include "instance/InstanceSocket.h"
#include "instance/SingleInstance.h"
#include "support/FaultyCalls.h"
#include "support/InstanceStarts.h"

#include <QSignalSpy>
#include <QTest>

#include <cerrno>

using namespace corvane;
using namespace corvane::test;
using namespace std::chrono_literals;
using Standing = SingleInstance::Standing;

namespace {

/// Longer than the test may run: neither test waits for it.
constexpr auto timeout = 10min;

} // namespace

/// Starts of the program where the file system of the lock's folder has no locks.
class TestUnlockableFolder : public QObject {
    Q_OBJECT

private slots:
    void cleanup();
    void isTheFirstIfNoneAnswers_data();
    void isTheFirstIfNoneAnswers();
    void asksTheFirstNonetheless();
};

void TestUnlockableFolder::cleanup()
{
    FaultyCalls::clear();
}

void TestUnlockableFolder::isTheFirstIfNoneAnswers_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("the server has no locks") << ENOLCK;
    QTest::newRow("the file system has none") << EOPNOTSUPP;
    QTest::newRow("the system has none") << ENOSYS;
}

void TestUnlockableFolder::isTheFirstIfNoneAnswers()
{
    QFETCH(const int, error);
    const InstanceStarts starts;
    FaultyCalls::fail(FaultyCalls::Call::lock, starts.path(), error);
    const SingleInstance first(InstanceMessage{}, timeout, starts.path());
    QCOMPARE(first.standing(), Standing::first);
    QCOMPARE(first.socketPath(), starts.path() + "/socket");
}

void TestUnlockableFolder::asksTheFirstNonetheless()
{
    const InstanceStarts starts;
    FaultyCalls::fail(FaultyCalls::Call::lock, starts.path(), ENOLCK);
    const SingleInstance first(InstanceMessage{}, timeout, starts.path());
    const InstanceSocket socket(first.socketPath());
    const QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    auto second = starts.second(timeout);
    TRY_COMPARE_STANDING(second, Standing::second);
    QCOMPARE(requests.count(), 1);
}

QTEST_GUILESS_MAIN(TestUnlockableFolder)
#include "tst_UnlockableFolder.moc"
