#include "app/InstanceSocket.h"
#include "app/SingleInstance.h"
#include "support/FaultyCalls.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <future>
#include <memory>

#include <cerrno>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Standing = SingleInstance::Standing;

namespace {

/// Nobody waits that long for a lock that cannot be had; for an answer one may.
constexpr auto patience = 10min;

} // namespace

/// Starts of the program where the file system of the lock's folder has no locks.
class TestUnlockableFolder : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void isTheFirstWhereNoneAnswers_data();
    void isTheFirstWhereNoneAnswers();
    void asksTheFirstAllTheSame();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::string m_path;
};

void TestUnlockableFolder::init()
{
    m_folder = std::make_unique<QTemporaryDir>(u"/tmp/corvane-XXXXXX"_s);
    m_path = m_folder->path().toStdString();
}

void TestUnlockableFolder::cleanup()
{
    FaultyCalls::clear();
}

void TestUnlockableFolder::isTheFirstWhereNoneAnswers_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("the server keeps no locks") << ENOLCK;
    QTest::newRow("the file system has none") << EOPNOTSUPP;
    QTest::newRow("the system has none") << ENOSYS;
}

void TestUnlockableFolder::isTheFirstWhereNoneAnswers()
{
    QFETCH(const int, error);
    FaultyCalls::fail(FaultyCalls::Call::lock, m_path, error);
    const SingleInstance first({}, patience, m_path);
    QCOMPARE(first.standing(), Standing::first);
    QCOMPARE(first.socketPath(), m_path + "/socket");
}

void TestUnlockableFolder::asksTheFirstAllTheSame()
{
    FaultyCalls::fail(FaultyCalls::Call::lock, m_path, ENOLCK);
    const SingleInstance first({}, patience, m_path);
    const InstanceSocket socket(first.socketPath());
    const QSignalSpy requests(&socket, &InstanceSocket::openRequested);
    auto second = std::async(std::launch::async,
                             [this] { return SingleInstance({}, patience, m_path).standing(); });
    QTRY_COMPARE_WITH_TIMEOUT(second.wait_for(0s), std::future_status::ready, 60'000);
    QCOMPARE(second.get(), Standing::second);
    QCOMPARE(requests.count(), 1);
}

QTEST_GUILESS_MAIN(TestUnlockableFolder)
#include "tst_UnlockableFolder.moc"
