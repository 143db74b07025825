#include "app/Activity.h"
#include "simulated_mac/recorded/Messages.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestActivityOnMac : public QObject {
    Q_OBJECT

private slots:
    void keepsTheTicksApartAsTheyWereAskedFor();
    void holdsOneActivityAndEndsIt();
};

void TestActivityOnMac::keepsTheTicksApartAsTheyWereAskedFor()
{
    QCOMPARE(nappedInterval(1), 8.0);
    {
        const Activity activity;
        QCOMPARE(nappedInterval(1), 1.0);
    }
    QCOMPARE(nappedInterval(1), 8.0);
}

void TestActivityOnMac::holdsOneActivityAndEndsIt()
{
    const std::size_t before = sentMessages().size();
    {
        const Activity activity;
        QCOMPARE(heldActivities().size(), 1U);
        QCOMPARE(sentMessages().size(), before + 1);
        // Initiated by the user, but the Mac may fall asleep while nobody uses it.
        QCOMPARE(sentMessages()[before],
                 std::string("NSProcessInfo beginActivityWithOptions:0xefffff "
                             "reason:Takes a sample every second"));
    }
    QCOMPARE(heldActivities().size(), 0U);
    QCOMPARE(sentMessages().size(), before + 2);
    QVERIFY(sentMessages().back().starts_with("NSProcessInfo endActivity:"));
}

QTEST_APPLESS_MAIN(TestActivityOnMac)
#include "tst_Activity_mac.moc"
