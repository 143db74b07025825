#include "records/HistoryWindow.h"

#include <QTest>

#include <limits>

using namespace corvane;

class TestHistoryWindow : public QObject {
    Q_OBJECT

private slots:
    void fromSeconds_data();
    void fromSeconds();
    void everyWindowComesBackFromItsSeconds();
};

void TestHistoryWindow::fromSeconds_data()
{
    QTest::addColumn<qint64>("rawSeconds");
    QTest::addColumn<bool>("known");
    QTest::newRow("one minute") << qint64(60) << true;
    QTest::newRow("ten minutes") << qint64(600) << true;
    QTest::newRow("an hour") << qint64(3'600) << true;
    QTest::newRow("a day") << qint64(86'400) << true;
    QTest::newRow("a week") << qint64(604'800) << false;
    QTest::newRow("half a minute") << qint64(30) << false;
    QTest::newRow("five minutes") << qint64(300) << false;
    QTest::newRow("nothing") << qint64(0) << false;
    QTest::newRow("negative") << qint64(-60) << false;
    QTest::newRow("60 in the lower 32 bits") << (qint64(1) << 32) + 60 << false;
    QTest::newRow("the largest") << std::numeric_limits<qint64>::max() << false;
}

void TestHistoryWindow::fromSeconds()
{
    QFETCH(qint64, rawSeconds);
    const auto window = historyWindow(rawSeconds);
    QTEST(window.has_value(), "known");
    if (window)
        QCOMPARE(seconds(*window), rawSeconds);
}

void TestHistoryWindow::everyWindowComesBackFromItsSeconds()
{
    QCOMPARE(allHistoryWindows.size(), std::size_t(4));
    QCOMPARE(seconds(HistoryWindow::oneMin), qint64(60));
    for (const HistoryWindow window : allHistoryWindows)
        QVERIFY(historyWindow(seconds(window)) == window);
}

QTEST_APPLESS_MAIN(TestHistoryWindow)
#include "tst_HistoryWindow.moc"
