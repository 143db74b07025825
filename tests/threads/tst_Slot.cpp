#include "threads/Slot.h"

#include <QTest>

#include <thread>

using namespace corvane;

class TestSlot : public QObject {
    Q_OBJECT

private slots:
    void holdsNothingAtFirst();
    void handsTheNewestValueOver();
};

void TestSlot::holdsNothingAtFirst()
{
    QCOMPARE(Slot<int>().get(), 0);
}

void TestSlot::handsTheNewestValueOver()
{
    Slot<int> slot;
    std::thread writer([&slot] {
        for (int value = 1; value <= 1000; ++value)
            slot.put(value);
    });
    for (int least = 0; least < 1000;) {
        const int value = slot.get();
        QVERIFY(value >= least);
        least = value;
    }
    writer.join();
    QCOMPARE(slot.get(), 1000);
}

QTEST_GUILESS_MAIN(TestSlot)
#include "tst_Slot.moc"
