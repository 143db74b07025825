#include "threads/OneThread.h"

#include "support/DyingChild.h"

#include <QTest>

using namespace corvane;

#ifdef NDEBUG
#error "The tests are built with assertions."
#endif

class TestOneThread : public QObject {
    Q_OBJECT

private slots:
    void belongsToItsFirstUser();
    void stopsASecondUser();
    void belongsToTheNextUserAfterAMove();
};

void TestOneThread::belongsToItsFirstUser()
{
    OneThread object; // Made here, used elsewhere.
    std::thread([&object] {
        object.check();
        object.check();
    }).join();
}

void TestOneThread::stopsASecondUser()
{
    QVERIFY(test::aborts([] {
        OneThread object;
        object.check();
        std::thread([&object] { object.check(); }).join();
    }));
}

void TestOneThread::belongsToTheNextUserAfterAMove()
{
    OneThread object;
    object.check();
    OneThread moved = std::move(object);
    std::thread([&moved] { moved.check(); }).join();
    OneThread assigned;
    assigned.check();
    assigned = std::move(moved);
    std::thread([&assigned] { assigned.check(); }).join();
}

QTEST_APPLESS_MAIN(TestOneThread)
#include "tst_OneThread.moc"
