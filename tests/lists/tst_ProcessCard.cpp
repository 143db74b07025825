#include "gallery/ScriptedSamples.h"
#include "lists/ProcessCard.h"
#include "lists/RowList.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(std::optional<std::uint64_t>)

namespace {

constexpr std::uint64_t gib = std::uint64_t(1) << 30;

/// The size is that on a dashboard of 1280 × 900.
struct Shown : ShownCard<ProcessCard> {
    Shown() : ShownCard(QSize(617, 304)) { }
};

/// Columns of the bar, in the card: behind the name and before the bytes and the share.
constexpr double barLeft = 16 + 130 + 10;
constexpr double barEnd = 617 - 16 - 38 - 10 - 60 - 10;
constexpr double gpuColumn = 84 + 10; ///< Takes the end of the bar.

bool isGreen(const QImage &image, double x)
{
    const QColor color = pixelAt(image, x, 46 + 10);
    return color.green() > 2 * color.red();
}

} // namespace

class TestProcessCard : public QObject {
    Q_OBJECT

private slots:
    void dividesByTheLargest_data();
    void dividesByTheLargest();
    void showsAnEmptyState();
    void listsEveryProcess();
    void showsSharesOfNoMemoryAsZero();
    void fillsBarsRelativeToTheLargest_data();
    void fillsBarsRelativeToTheLargest();
    void hasAColumnForGPUMemoryWhereItIsTold_data();
    void hasAColumnForGPUMemoryWhereItIsTold();
    void keepsTheColumnWhileThereIsACard();
    void repaintsOnlyChangedRows();
    void leavesNoStalePixels_data();
    void leavesNoStalePixels();
    void sanitizesHostileNames();
};

void TestProcessCard::dividesByTheLargest_data()
{
    QTest::addColumn<quint64>("memory");
    QTest::addColumn<quint64>("largest");
    QTest::addColumn<double>("expected");
    QTest::newRow("the largest itself") << quint64(8) << quint64(8) << 1.0;
    QTest::newRow("a quarter of it") << quint64(2) << quint64(8) << 0.25;
    QTest::newRow("0 of 0") << quint64(0) << quint64(0) << 0.0;
}

void TestProcessCard::dividesByTheLargest()
{
    QFETCH(quint64, memory);
    QFETCH(quint64, largest);
    QTEST(footprintFraction(memory, largest), "expected");
}

void TestProcessCard::showsAnEmptyState()
{
    Shown shown;
    QVERIFY(!shown.card.list()->isVisible());
    QCOMPARE(shown.card.accessibleTexts().back().value, u"No process data yet"_s);
    shown.card.show(scriptedProcesses(), 64 * gib);
    QVERIFY(shown.card.list()->isVisible());
    QCOMPARE(shown.card.accessibleTexts().size(), std::size_t(1));
    shown.card.show({}, 64 * gib);
    QVERIFY(!shown.card.list()->isVisible());
    QCOMPARE(shown.card.list()->rowCount(), 0);
    QCOMPARE(shown.card.accessibleTexts().back().value, u"No process data yet"_s);
}

void TestProcessCard::listsEveryProcess()
{
    Shown shown;
    shown.card.show(scriptedProcesses(), 64 * gib);
    QCOMPARE(shown.card.list()->rowCount(), 20);
    QCOMPARE(shown.row(0).name, u"llama-server"_s);
    QCOMPARE(shown.row(0).value, u"20.94 GB, 32.7%"_s);
    QCOMPARE(shown.row(11).value, u"514 MB, 0.8%"_s);
    QCOMPARE(shown.card.list()->geometry(), QRect(0, 46, 617, 250));
}

void TestProcessCard::showsSharesOfNoMemoryAsZero()
{
    Shown shown;
    shown.card.show({{1, u"a"_s, 4 * gib}}, 0);
    QCOMPARE(shown.row(0).value, u"4 GB, 0.0%"_s);
}

void TestProcessCard::fillsBarsRelativeToTheLargest_data()
{
    QTest::addColumn<quint64>("second");
    QTest::addColumn<quint64>("first");
    QTest::addColumn<double>("filled");
    const double whole = barEnd - barLeft;
    QTest::newRow("half of the largest") << quint64(4 * gib) << quint64(8 * gib) << whole / 2;
    QTest::newRow("at least 2 points") << quint64(1) << quint64(8 * gib) << 2.0;
    QTest::newRow("2 points without any memory") << quint64(0) << quint64(0) << 2.0;
    QTest::newRow("at most the whole bar") << quint64(9 * gib) << quint64(8 * gib) << whole;
}

void TestProcessCard::fillsBarsRelativeToTheLargest()
{
    QFETCH(quint64, second);
    QFETCH(quint64, first);
    QFETCH(double, filled);
    Shown shown;
    shown.card.show({{1, u"a"_s, first}, {2, u"b"_s, second}}, 64 * gib);
    for (const double scale : {1.0, 2.0}) {
        const QImage image = rendered(shown.card, scale);
        constexpr double middle = 46 + 20 + 10;
        const auto isFilled = [&](double x) {
            const QColor color = pixelAt(image, x, middle);
            return color.green() > 2 * color.red();
        };
        QVERIFY(isFilled(barLeft + filled / 2));
        QVERIFY(isFilled(barLeft + std::max(filled - 2.5, 0.6)));
        QVERIFY(!isFilled(barLeft + filled + 1.1));
        QVERIFY(!isFilled(barLeft - 1.1));
        // The bar is 6 high, in the middle of its row.
        QVERIFY(filled < 10
                || pixelAt(image, barLeft + 5, middle - 4).green()
                    < 1.5 * pixelAt(image, barLeft + 5, middle - 4).red());
    }
}

void TestProcessCard::hasAColumnForGPUMemoryWhereItIsTold_data()
{
    using Bytes = std::optional<std::uint64_t>;
    QTest::addColumn<QString>("label");
    QTest::addColumn<Bytes>("told");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("hasColumn");
    QTest::newRow("a process on a card")
        << u"VRAM"_s << Bytes(6 * gib) << u"8 GB, 12.5%, 6 GB VRAM"_s << true;
    QTest::newRow("a true zero") << u"VRAM"_s << Bytes(0) << u"8 GB, 12.5%, 0 MB VRAM"_s << true;
    QTest::newRow("a card that no process is known to use")
        << u"VRAM"_s << Bytes() << u"8 GB, 12.5%"_s << false;
    QTest::newRow("a machine without a card")
        << QString() << Bytes(6 * gib) << u"8 GB, 12.5%"_s << false;
}

void TestProcessCard::hasAColumnForGPUMemoryWhereItIsTold()
{
    QFETCH(QString, label);
    QFETCH(std::optional<std::uint64_t>, told);
    QFETCH(bool, hasColumn);
    Shown shown;
    shown.card.setGPUMemoryLabel(label);
    shown.card.show({{1, u"a"_s, 8 * gib, told}, {2, u"b"_s, gib}}, 64 * gib);
    QTEST(shown.row(0).value, "value");
    QCOMPARE(shown.row(1).value, u"1 GB, 1.6%"_s);
    const QImage image = rendered(shown.card, 1);
    QVERIFY(isGreen(image, barEnd - gpuColumn - 5));
    QCOMPARE(isGreen(image, barEnd - gpuColumn + 5), !hasColumn);
}

void TestProcessCard::keepsTheColumnWhileThereIsACard()
{
    Shown shown;
    shown.card.setGPUMemoryLabel(u"VRAM"_s);
    shown.card.show({{1, u"a"_s, 8 * gib, gib}}, 64 * gib);
    shown.card.show({{1, u"a"_s, 8 * gib}}, 64 * gib);
    QVERIFY(!isGreen(rendered(shown.card, 1), barEnd - gpuColumn + 5));
    shown.card.setGPUMemoryLabel(QString());
    QVERIFY(isGreen(rendered(shown.card, 1), barEnd - gpuColumn + 5));
}

void TestProcessCard::repaintsOnlyChangedRows()
{
    Shown shown;
    std::vector<ProcessRow> rows = scriptedProcesses();
    shown.card.show(rows, 64 * gib);
    QCoreApplication::processEvents();
    PaintWatch watch(*shown.card.list());
    shown.card.show(rows, 64 * gib);
    QCoreApplication::processEvents();
    QCOMPARE(watch.region(), QRegion());

    rows[3].memory += 64 << 20;
    shown.card.show(rows, 64 * gib);
    QCoreApplication::processEvents();
    QCOMPARE(watch.region().boundingRect(), QRect(16, 60, 585, 20));
}

void TestProcessCard::leavesNoStalePixels_data()
{
    using Rows = std::vector<ProcessRow>;
    Rows grown = scriptedProcesses();
    grown[3].memory += gib;
    Rows swapped = scriptedProcesses();
    std::swap(swapped[1], swapped[2]);
    Rows fewer = scriptedProcesses();
    fewer.resize(3);
    QTest::addColumn<Rows>("after");
    QTest::newRow("another byte count") << grown;
    QTest::newRow("two rows change places") << swapped;
    QTest::newRow("fewer rows") << fewer;
    QTest::newRow("no rows") << Rows();
}

void TestProcessCard::leavesNoStalePixels()
{
    QFETCH(std::vector<ProcessRow>, after);
    Shown shown;
    for (const bool back : {false, true}) {
        shown.card.show(back ? after : scriptedProcesses(), 64 * gib);
        const auto change = [&] { shown.card.show(back ? scriptedProcesses() : after, 64 * gib); };
        QCOMPARE(stalePixelsAfter(change, shown.card), QRect());
    }
}

void TestProcessCard::sanitizesHostileNames()
{
    Shown shown;
    const QString marks = u"a\u202Eb\u2066c\nd\te<b>f</b>"_s;
    shown.card.show({{1, QString(4000, u'W'), gib}, {2, marks, gib}, {3, QString(), gib}},
                    64 * gib);
    const QString name = shown.row(1).name;
    QVERIFY(!name.contains(u'\n') && !name.contains(QChar(0x202E)) && !name.contains(u'\t'));
    QVERIFY(name.endsWith(u"<b>f</b>"_s)); // As it is, not as markup.
    QVERIFY(shown.row(0).name.size() <= 512);
    // A long name stops before the bar.
    const QImage image = rendered(shown.card, 2);
    for (double y = 46; y < 66; ++y)
        QVERIFY(pixelAt(image, 16 + 130 + 5, y).red() < 60);
}

QTEST_MAIN(TestProcessCard)
#include "tst_ProcessCard.moc"
