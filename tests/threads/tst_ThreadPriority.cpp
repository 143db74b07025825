#include "threads/BackgroundJob.h"

#include <QTest>

#include <sys/resource.h>
#include <unistd.h>

using namespace corvane;

namespace {

int niceness()
{
    return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
}

} // namespace

class TestThreadPriority : public QObject {
    Q_OBJECT

private slots:
    void lowersTheJobsThreadAlone();
};

void TestThreadPriority::lowersTheJobsThreadAlone()
{
    const int own = niceness();
    QObject owner;
    std::optional<int> jobs;
    runThenDeliver(&owner, niceness, [&jobs](int value) { jobs = value; });
    QTRY_VERIFY(jobs);
    QCOMPARE(*jobs, std::max(own, 10));
    QCOMPARE(niceness(), own);
}

QTEST_GUILESS_MAIN(TestThreadPriority)
#include "tst_ThreadPriority.moc"
