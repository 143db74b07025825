#include "cards/UtilizationCard.h"
#include "charts/Sparkline.h"
#include "chip/ChipSource.h"
#include "devices/PowerCard.h"
#include "simulated_mac/SimulatedMac.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace corvane::simulated;
using namespace corvane::test;

namespace {

using Watts = std::vector<std::optional<double>>;

/// A minute of a chip's readings, one a second; from its middle on, the energy counters of CPU and
/// Neural Engine stand still.
std::vector<SystemMetrics> minuteWithFrozenCounters()
{
    mac().boot(baseM1());
    const ChipSource chip = openChipSource([] { return mac().clock(); });
    std::vector<SystemMetrics> minute;
    for (int second = 0; second < 60; ++second) {
        for (Channel &channel : mac().machine.channels) {
            if (second == 30 && channel.unit == "mJ")
                channel.publishedEvery = std::numeric_limits<double>::infinity();
        }
        mac().advance(1);
        minute.push_back({.timestamp = static_cast<double>(second), .chip = chip()});
    }
    return minute;
}

/// The first sample from which on there is no value.
std::size_t gapOf(const Watts &values)
{
    std::size_t end = values.size();
    while (end > 0 && !values[end - 1])
        --end;
    return end;
}

} // namespace

/// The cards of power and of the Neural Engine while the chip publishes no energy.
class TestPowerCardOnMac : public QObject {
    Q_OBJECT

private slots:
    void frozenCountersAreAGap();
    void nothingIsDrawnInAGap();
};

void TestPowerCardOnMac::frozenCountersAreAGap()
{
    const std::vector<SystemMetrics> minute = minuteWithFrozenCounters();
    ShownCard<PowerCard> power(QSize(617, 262));
    power.card.show(minute.back(), minute);
    const std::vector<SparklineSeries> &series = power.card.chart()->shown().series;
    QCOMPARE(gapOf(series[0].values), std::size_t(35)); // The last batch is held for five seconds.
    QCOMPARE(series[0].values[34], std::optional(2.5));
    QCOMPARE(gapOf(series[1].values), minute.size()); // The GPU's counter goes on.
    QCOMPARE(gapOf(series[2].values), std::size_t(35));

    ShownCard<UtilizationCard> engine(QSize(400, 226), ComputeUnit::ane, nullptr, ChipInfo());
    engine.card.show(minute.back(), minute);
    QCOMPARE(gapOf(engine.card.chart()->shown().series[0].values), std::size_t(35));
}

/// The area of the GPU begins at the bottom, without a line of the CPU below it.
void TestPowerCardOnMac::nothingIsDrawnInAGap()
{
    const std::vector<SystemMetrics> minute = minuteWithFrozenCounters();
    ShownCard<PowerCard> power(QSize(617, 262));
    power.card.show(minute.back(), minute);
    const QImage image = rendered(*power.card.chart(), 2);
    const auto bottom = [&](double x) {
        return pixelAt(image, x, power.card.chart()->height() - 0.5);
    };
    QVERIFY(bottom(200).blue() > bottom(200).red());
    for (int x = 380; x < 500; x += 10)
        QVERIFY(bottom(x).red() > bottom(x).blue());
}

QTEST_MAIN(TestPowerCardOnMac)
#include "tst_PowerCard_mac.moc"
