#include "simulated_mac/Faults.h"
#include "simulated_mac/Threads.h"
#include "threads/ThreadPriority.h"

#include <pthread/qos.h>

#include <QTest>

#include <thread>

using namespace corvane;
using namespace corvane::simulated;

class TestThreadPriorityOnMac : public QObject {
    Q_OBJECT

private slots:
    void lowersTheCallingThreadAlone();
    void staysWhenTheSystemRefuses();

private:
    static unsigned classAfterLowering();
};

unsigned TestThreadPriorityOnMac::classAfterLowering()
{
    unsigned after = 0;
    std::thread([&after] {
        lowerThreadPriority();
        after = threadClass();
    }).join();
    return after;
}

void TestThreadPriorityOnMac::lowersTheCallingThreadAlone()
{
    QCOMPARE(classAfterLowering(), unsigned(QOS_CLASS_UTILITY));
    QCOMPARE(threadClass(), unsigned(QOS_CLASS_DEFAULT));
}

void TestThreadPriorityOnMac::staysWhenTheSystemRefuses()
{
    faults().failOnce(Call::pthread_set_qos_class_self_np, Way::error);
    QCOMPARE(classAfterLowering(), unsigned(QOS_CLASS_DEFAULT));
}

QTEST_APPLESS_MAIN(TestThreadPriorityOnMac)
#include "tst_ThreadPriority_mac.moc"
