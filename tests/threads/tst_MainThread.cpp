#include "threads/MainThread.h"

#include "support/DyingChild.h"

#include <QTest>

#include <thread>

using namespace corvane;

class TestMainThread : public QObject {
    Q_OBJECT

private slots:
    void passesOnTheMainThread();
    void stopsAnyOtherThread();
};

void TestMainThread::passesOnTheMainThread()
{
    QVERIFY(!test::aborts(assertMainThread));
}

void TestMainThread::stopsAnyOtherThread()
{
    QVERIFY(test::aborts([] { std::thread(assertMainThread).join(); }));
}

QTEST_GUILESS_MAIN(TestMainThread)
#include "tst_MainThread.moc"
