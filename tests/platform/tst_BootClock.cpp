#include "platform/BootClock.h"

#include <QDeadlineTimer>
#include <QTest>

using namespace corvane;

class TestBootClock : public QObject {
    Q_OBJECT

private slots:
    void runsForwards();
};

void TestBootClock::runsForwards()
{
    const double start = secondsSinceBoot();
    QVERIFY(start > 0);
    double previous = start;
    const QDeadlineTimer deadline(std::chrono::minutes(1));
    while (previous == start && !deadline.hasExpired()) {
        const double now = secondsSinceBoot();
        QVERIFY(now >= previous);
        previous = now;
    }
    QVERIFY(previous > start);
}

QTEST_APPLESS_MAIN(TestBootClock)
#include "tst_BootClock.moc"
