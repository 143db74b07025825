#include "tray/StatusLabel.h"

#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestStatusLabel : public QObject {
    Q_OBJECT

private slots:
    void showsEachNumberInItsOwnColour();
    void keepsTheNumbersFivePointsApart();
    void convertsAColour();
    void measuresFromTheTopOfThePrimaryScreen_data();
    void measuresFromTheTopOfThePrimaryScreen();
};

namespace {

LabelNumbers numbers()
{
    return labelNumbers(
        SystemMetrics{.memory = {.total = 1000, .used = 634},
                      .chip = ChipReading{.cpuWatts = 11.7, .gpuActiveFraction = 0.419}});
}

} // namespace

void TestStatusLabel::showsEachNumberInItsOwnColour()
{
    const auto runs = statusRuns(numbers());
    QCOMPARE(runs.size(), 3U);
    QCOMPARE(runs[0].text, std::string("63"));
    QCOMPARE(runs[1].text, std::string("41"));
    QCOMPARE(runs[2].text, std::string("12W"));
    QVERIFY(runs[0].color == statusColor(Theme::memory));
    QVERIFY(runs[1].color == statusColor(Theme::gpu));
    QVERIFY(runs[2].color == statusColor(Theme::power));
}

void TestStatusLabel::keepsTheNumbersFivePointsApart()
{
    const auto runs = statusRuns(numbers());
    QCOMPARE(runs[0].gapAfter, 5.0);
    QCOMPARE(runs[1].gapAfter, 5.0);
    QCOMPARE(runs[2].gapAfter, 0.0);
}

void TestStatusLabel::convertsAColour()
{
    const StatusColor color = statusColor(QColor(255, 0, 51, 102));
    QCOMPARE(color.red, 1.0);
    QCOMPARE(color.green, 0.0);
    QVERIFY(qAbs(color.blue - 0.2) < 1e-4);
    QVERIFY(qAbs(color.opacity - 0.4) < 1e-4);
}

void TestStatusLabel::measuresFromTheTopOfThePrimaryScreen_data()
{
    QTest::addColumn<double>("middle");
    QTest::addColumn<double>("bottom");
    QTest::addColumn<double>("height");
    QTest::addColumn<QPoint>("anchor");

    QTest::newRow("the bar of the primary screen") << 1203.5 << 958.0 << 982.0 << QPoint(1204, 24);
    QTest::newRow("a screen to the left of it") << -300.0 << 958.0 << 982.0 << QPoint(-300, 24);
    QTest::newRow("a screen above it") << 640.0 << 2038.0 << 982.0 << QPoint(640, -1056);
    QTest::newRow("a taller screen beside it") << 2500.0 << 1416.0 << 982.0 << QPoint(2500, -434);
    QTest::newRow("no screen") << 0.0 << 0.0 << 0.0 << QPoint(0, 0);
}

void TestStatusLabel::measuresFromTheTopOfThePrimaryScreen()
{
    QFETCH(double, middle);
    QFETCH(double, bottom);
    QFETCH(double, height);
    QTEST(statusAnchor({.middle = middle, .bottom = bottom, .primaryScreenHeight = height}),
          "anchor");
}

QTEST_MAIN(TestStatusLabel)
#include "tst_StatusLabel.moc"
