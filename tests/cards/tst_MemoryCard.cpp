#include "cards/MemoryCard.h"
#include "charts/Sparkline.h"
#include "gallery/ScriptedSamples.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr std::uint64_t gib = std::uint64_t(1) << 30;

struct Shown : ShownCard<MemoryCard> {
    Shown() : ShownCard(QSize(617, 262)) { }

    void show(const MemorySnapshot &memory)
    {
        const SystemMetrics current{.timestamp = 60, .memory = memory};
        card.show(current, std::vector<SystemMetrics>{{.timestamp = 0, .memory = memory}, current});
    }
};

} // namespace

class TestMemoryCard : public QObject {
    Q_OBJECT

private slots:
    void showsTheSnapshot();
    void showsThePressure_data();
    void showsThePressure();
    void showsSwap_data();
    void showsSwap();
    void spacesChips_data();
    void spacesChips();
    void keepsChipsInside_data();
    void keepsChipsInside();
    void paintsTheBar_data();
    void paintsTheBar();
    void chartsTheUsedShare();
    void repaintsOnlyWhatChanged();
    void leavesNoStalePixels_data();
    void leavesNoStalePixels();
};

void TestMemoryCard::showsTheSnapshot()
{
    Shown shown;
    shown.card.show(scriptedCurrent(), scriptedHistory());
    QCOMPARE(shown.card.accessibleTexts().front().value, u"Unified Memory"_s);
    QCOMPARE(shown.text(u"Memory used in percent"_s).value, u"71"_s);
    QCOMPARE(shown.text(u"App"_s).value, u"38.94 GB"_s); // Not reduced.
    QCOMPARE(shown.text(u"Wired"_s).value, u"6.41 GB"_s);
    QCOMPARE(shown.text(u"Compressed"_s).value, u"3.12 GB"_s);
    QCOMPARE(shown.text(u"Cached"_s).value, u"9.85 GB"_s);
    QCOMPARE(shown.text(u"Swap"_s).value, u"1.37 GB / 3 GB"_s);

    shown.show({.wired = 5 * gib, .compressed = 5 * gib, .appMemory = 2 * gib});
    QCOMPARE(shown.text(u"Memory used in percent"_s).value, u"0"_s);
    QCOMPARE(shown.text(u"App"_s).value, u"2 GB"_s);
}

void TestMemoryCard::showsThePressure_data()
{
    QTest::addColumn<MemoryPressure>("pressure");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QColor>("color");
    QTest::newRow("normal") << MemoryPressure::normal << u"NORMAL"_s << Theme::memory;
    QTest::newRow("warning") << MemoryPressure::warning << u"WARNING"_s << Theme::gpu;
    QTest::newRow("critical") << MemoryPressure::critical << u"CRITICAL"_s << QColor(255, 69, 58);
}

void TestMemoryCard::showsThePressure()
{
    QFETCH(MemoryPressure, pressure);
    QFETCH(QColor, color);
    Shown shown;
    shown.show({.total = gib, .pressure = MemoryPressure::warning});
    shown.show({.total = gib, .pressure = pressure});
    const AccessibleText badge = shown.text(u"Memory pressure"_s);
    QTEST(badge.value, "name");
    for (const double scale : {1.0, 2.0}) {
        // The dot lies 5 before the text; bounds are 2 wider than the text.
        const QImage image = rendered(shown.card, scale);
        QVERIFY(isClose(pixelAt(image, badge.place.left() + 2 - 5 - 3, 25), color, 4));
    }
}

void TestMemoryCard::showsSwap_data()
{
    QTest::addColumn<quint64>("total");
    QTest::addColumn<quint64>("used");
    QTest::addColumn<QString>("expected");
    QTest::newRow("in use") << quint64(3 * gib) << quint64(gib / 2) << u"512 MB / 3 GB"_s;
    QTest::newRow("unused") << quint64(3 * gib) << quint64(0) << u"0 MB / 3 GB"_s;
    QTest::newRow("none") << quint64(0) << quint64(0) << u"off"_s;
    QTest::newRow("none, though some is reported as used")
        << quint64(0) << quint64(gib) << u"off"_s;
}

void TestMemoryCard::showsSwap()
{
    QFETCH(quint64, total);
    QFETCH(quint64, used);
    Shown shown;
    shown.show({.swapTotal = total, .swapUsed = used});
    QTEST(shown.text(u"Swap"_s).value, "expected");
}

void TestMemoryCard::spacesChips_data()
{
    QTest::addColumn<double>("row");
    QTest::addColumn<double>("chips");
    QTest::addColumn<double>("expected");
    QTest::newRow("wide") << 585.0 << 400.0 << 18.0;
    QTest::newRow("just enough for 18") << 454.0 << 400.0 << 18.0;
    QTest::newRow("whole points, rounded down") << 453.0 << 400.0 << 17.0;
    QTest::newRow("never below 8") << 405.0 << 400.0 << 8.0;
    QTest::newRow("too narrow for 8") << 300.0 << 400.0 << 8.0;
}

void TestMemoryCard::spacesChips()
{
    QFETCH(double, row);
    QFETCH(double, chips);
    QTEST(chipSpacing(row, chips), "expected");
}

void TestMemoryCard::keepsChipsInside_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<quint64>("bytes");
    QTest::newRow("the narrowest card") << 437 << quint64(40 * gib);
    QTest::newRow("2 TiB in the narrowest card") << 437 << quint64(2048 * gib - gib / 3);
    QTest::newRow("2 TiB in the widest card") << 1257 << quint64(2048 * gib);
    QTest::newRow("an empty snapshot") << 437 << quint64(0);
}

void TestMemoryCard::keepsChipsInside()
{
    QFETCH(int, width);
    QFETCH(quint64, bytes);
    Shown shown;
    shown.card.resize(width, 236);
    shown.show({.total = 2048 * gib,
                .used = bytes,
                .wired = bytes,
                .compressed = bytes,
                .cached = bytes,
                .appMemory = bytes,
                .swapTotal = 2048 * gib,
                .swapUsed = bytes});
    double end = 0;
    for (const QString &chip : {u"App"_s, u"Wired"_s, u"Compressed"_s, u"Cached"_s}) {
        const QRectF place = shown.text(chip).place;
        QVERIFY(place.left() > end);
        end = place.right();
    }
    QVERIFY(end <= width - 16 + 2 + 0.01);
    QVERIFY(shown.text(u"Swap"_s).place.right() <= width - 14);
}

void TestMemoryCard::paintsTheBar_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 2") << 2.0;
}

void TestMemoryCard::paintsTheBar()
{
    QFETCH(double, scale);
    Shown shown;
    shown.show({.total = 100, .wired = 20, .compressed = 20, .cached = 20, .appMemory = 60});
    const QRectF bar = shown.card.breakdownBar();
    QCOMPARE(bar, QRectF(16, 94, 585, 10));
    const QImage image = rendered(shown.card, scale);
    const auto at = [&](double share) {
        return pixelAt(image, bar.left() + bar.width() * share, bar.center().y());
    };
    const auto isGrey = [](const QColor &color) {
        return qAbs(color.red() - color.green()) < 12 && qAbs(color.blue() - color.green()) < 20;
    };
    QVERIFY(at(0.1).green() > 180 && at(0.195).green() > 180 && !isGrey(at(0.195)));
    QVERIFY(at(0.205).green() > 200 && isGrey(at(0.205)) && isGrey(at(0.395)));
    QVERIFY(at(0.405).blue() > 200 && !isGrey(at(0.405)) && !isGrey(at(0.595)));
    QVERIFY(isGrey(at(0.605)) && at(0.7).green() > 60 && at(0.7).green() < 100);
    QVERIFY(at(0.805).green() < 50 && at(0.98).green() < 50);
    // A capsule: nothing in its corner, and nothing above or below it.
    const QColor ground = pixelAt(image, bar.left() + 50, bar.top() - 2);
    QVERIFY(isClose(pixelAt(image, bar.left() + 0.3, bar.top() + 0.3), ground, 6));
    QVERIFY(isClose(pixelAt(image, bar.left() + 50, bar.bottom() + 1), ground, 6));
}

void TestMemoryCard::chartsTheUsedShare()
{
    Shown shown;
    shown.show({.total = 100, .used = 50});
    QCOMPARE(shown.card.chart()->geometry(), QRect(16, 168, 585, 78));
    QVERIFY(shown.card.chart()->accessibleValue().endsWith(u", 50%"_s));
    const QImage image = rendered(shown.card, 2);
    // The line is 2 wide, at half of the chart.
    QVERIFY(isClose(pixelAt(image, 300, 207), Theme::memory, 6));
    QVERIFY(pixelAt(image, 300, 204).green() < 60);
    // Its fill fades downwards.
    QVERIFY(pixelAt(image, 200, 212).green() > pixelAt(image, 200, 230).green());
}

void TestMemoryCard::repaintsOnlyWhatChanged()
{
    Shown shown;
    const MemorySnapshot memory{.total = 64 * gib, .used = 32 * gib, .swapTotal = gib};
    shown.show(memory);
    QCoreApplication::processEvents();
    PaintWatch watch(shown.card);
    shown.show(memory);
    QCoreApplication::processEvents();
    QCOMPARE(watch.region(), QRegion());
    MemorySnapshot other = memory;
    other.swapUsed = gib / 2;
    shown.show(other);
    QCoreApplication::processEvents();
    QVERIFY(QRect(16, 135, 300, 30).contains(watch.region().boundingRect()));
}

void TestMemoryCard::leavesNoStalePixels_data()
{
    const auto sized = [](std::uint64_t app) {
        return MemorySnapshot{.total = 64 * gib,
                              .used = 32 * gib,
                              .wired = 3 * gib,
                              .compressed = 2 * gib,
                              .cached = gib,
                              .appMemory = app};
    };
    MemorySnapshot pressed = sized(9 * gib);
    pressed.pressure = MemoryPressure::critical;
    QTest::addColumn<MemorySnapshot>("before");
    QTest::addColumn<MemorySnapshot>("after");
    QTest::newRow("a longer byte count moves the following chips right")
        << sized(9 * gib) << sized(12 * gib + gib / 8);
    QTest::newRow("a slightly shorter byte count")
        << sized(1000 * (gib >> 10) + (gib >> 12)) << sized(1000 * (gib >> 10));
    QTest::newRow("the first snapshot") << MemorySnapshot{} << sized(9 * gib);
    QTest::newRow("a shorter byte count moves them left")
        << sized(12 * gib + gib / 8) << sized(9 * gib);
    QTest::newRow("another pressure") << sized(9 * gib) << pressed;
}

void TestMemoryCard::leavesNoStalePixels()
{
    QFETCH(MemorySnapshot, before);
    QFETCH(MemorySnapshot, after);
    Shown shown;
    shown.show(before);
    QCOMPARE(stalePixelsAfter([&] { shown.show(after); }, shown.card), QRect());
}

QTEST_MAIN(TestMemoryCard)
#include "tst_MemoryCard.moc"
