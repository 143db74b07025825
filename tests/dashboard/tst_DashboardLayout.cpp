#include "dashboard/DashboardLayout.h"

#include <QTest>

using namespace corvane;

class TestDashboardLayout : public QObject {
    Q_OBJECT

private slots:
    void distributesTheHeight_data();
    void distributesTheHeight();
    void fillsTheWindow_data();
    void fillsTheWindow();
    void placesCardsInTheSmallestWindow();
    void snapsSharesToWholePoints();
};

void TestDashboardLayout::distributesTheHeight_data()
{
    QTest::addColumn<int>("window");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("natural") << 888 << QList<int>{258, 222, 300};
    QTest::newRow("a surplus goes to all rows") << 900 << QList<int>{262, 226, 304};
    QTest::newRow("the third row takes the remainder") << 890 << QList<int>{258, 222, 302};
    QTest::newRow("a large window") << 1440 << QList<int>{442, 406, 484};
    QTest::newRow("the second row shrinks first") << 868 << QList<int>{258, 202, 300};
    QTest::newRow("down to its minimum") << 842 << QList<int>{258, 176, 300};
    QTest::newRow("then the first") << 832 << QList<int>{248, 176, 300};
    QTest::newRow("down to its minimum too") << 820 << QList<int>{236, 176, 300};
    QTest::newRow("then the third") << 800 << QList<int>{236, 176, 280};
    QTest::newRow("the smallest window") << 760 << QList<int>{236, 176, 240};
    QTest::newRow("not below the minimums") << 500 << QList<int>{236, 176, 240};
}

void TestDashboardLayout::distributesTheHeight()
{
    QFETCH(int, window);
    const std::array<int, 3> rows = dashboardRowHeights(window);
    QTEST(QList<int>(rows.begin(), rows.end()), "rows");
}

void TestDashboardLayout::fillsTheWindow_data()
{
    QTest::addColumn<QSize>("window");
    QTest::newRow("smallest") << DashboardLayout::minimum;
    QTest::newRow("default") << QSize(1280, 900);
    QTest::newRow("odd") << QSize(1023, 801);
    QTest::newRow("large") << QSize(2560, 1440);
}

void TestDashboardLayout::fillsTheWindow()
{
    QFETCH(QSize, window);
    const DashboardLayout layout = dashboardLayout(window);
    const auto right = [](const QRect &rect) { return rect.x() + rect.width(); };
    QCOMPARE(layout.header, QRect(16, 16, window.width() - 32, 34));
    for (const DashboardCard last :
         {DashboardCard::power, DashboardCard::ane, DashboardCard::processes})
        QCOMPARE(right(layout.card(last)), window.width() - 16);
    for (const DashboardCard first :
         {DashboardCard::memory, DashboardCard::cpu, DashboardCard::workloads})
        QCOMPARE(layout.card(first).x(), 16);
    const QRect last = layout.card(DashboardCard::processes);
    QCOMPARE(last.y() + last.height(), window.height() - 16);
    QCOMPARE(layout.card(DashboardCard::memory).y(), 16 + 34 + 14);

    // Neighbours keep 14 from each other, and share their row evenly but for rounding.
    const QRect cpu = layout.card(DashboardCard::cpu);
    const QRect gpu = layout.card(DashboardCard::gpu);
    const QRect ane = layout.card(DashboardCard::ane);
    QVERIFY(qAbs(gpu.x() - right(cpu) - 14) <= 1 && qAbs(ane.x() - right(gpu) - 14) <= 1);
    QVERIFY(qAbs(gpu.width() - cpu.width()) <= 1 && qAbs(ane.width() - gpu.width()) <= 1);
    QCOMPARE(cpu.y(), layout.card(DashboardCard::memory).bottom() + 1 + 14);
}

void TestDashboardLayout::placesCardsInTheSmallestWindow()
{
    const DashboardLayout layout = dashboardLayout(DashboardLayout::minimum);
    QCOMPARE(layout.card(DashboardCard::memory), QRect(16, 64, 437, 236));
    QCOMPARE(layout.card(DashboardCard::power), QRect(467, 64, 437, 236));
    QCOMPARE(layout.card(DashboardCard::cpu).y(), 314);
    QCOMPARE(layout.card(DashboardCard::processes), QRect(467, 504, 437, 240));
}

void TestDashboardLayout::snapsSharesToWholePoints()
{
    const DashboardLayout layout = dashboardLayout({1280, 900});
    QCOMPARE(layout.card(DashboardCard::cpu), QRect(16, 340, 407, 226));
    QCOMPARE(layout.card(DashboardCard::gpu), QRect(437, 340, 406, 226));
    QCOMPARE(layout.card(DashboardCard::ane), QRect(857, 340, 407, 226));
}

QTEST_APPLESS_MAIN(TestDashboardLayout)
#include "tst_DashboardLayout.moc"
