#include "drivers/APUMetrics.h"

#include "support/MachineTree.h"

#include <QFile>
#include <QTest>

using namespace corvane;

namespace {

/// The measurements of the APU in tests/machines, of format 3.0.
QByteArray metricsOfLaptop()
{
    const test::MachineTree tree("amd-apu-npu-laptop");
    QFile file(QString::fromStdString(
        tree.root() + "/sys/devices/pci0000:00/0000:00:08.1/0000:c1:00.0/gpu_metrics"));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<APUMetrics> parsed(const QByteArray &bytes)
{
    return parseAPUMetrics({bytes.constData(), std::size_t(bytes.size())});
}

void put16(QByteArray &bytes, qsizetype offset, int value)
{
    bytes[offset] = char(value & 0xff);
    bytes[offset + 1] = char(value >> 8);
}

/// A file of that size and format, in which everything is unknown.
QByteArray unknown(int size, int format, int content)
{
    QByteArray bytes(size, '\xff');
    put16(bytes, 0, size);
    bytes[2] = char(format);
    bytes[3] = char(content);
    return bytes;
}

} // namespace

class TestAPUMetrics : public QObject {
    Q_OBJECT

private slots:
    void readsTheNewestFormat();
    void readsTheOlderFormats();
    void acceptsKnownFormatsOfTheirSizeAlone_data();
    void acceptsKnownFormatsOfTheirSizeAlone();
    void leavesOutWhatCannotBe();
};

void TestAPUMetrics::readsTheNewestFormat()
{
    const auto metrics = parsed(metricsOfLaptop());
    QVERIFY(metrics);
    QCOMPARE(metrics->packageWatts, std::optional(41.2));
    QCOMPARE(metrics->coreWatts, std::optional(9.84));
    QCOMPARE(metrics->graphicsWatts, std::optional(21.63));
    QCOMPARE(metrics->npuFraction, std::optional(0.17)); // Of the four columns that it has.
    QCOMPARE(metrics->npuWatts, std::optional(1.35));
    QCOMPARE(metrics->npuMHz, std::optional(1800.0));
}

void TestAPUMetrics::readsTheOlderFormats()
{
    QByteArray bytes = unknown(120, 2, 1);
    put16(bytes, 40, 15'000);
    put16(bytes, 42, 5'500);
    put16(bytes, 46, 7'250);
    const APUMetrics expected = {.packageWatts = 15, .coreWatts = 5.5, .graphicsWatts = 7.25};
    QVERIFY(parsed(bytes) == expected);
}

void TestAPUMetrics::acceptsKnownFormatsOfTheirSizeAlone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("2.1") << unknown(120, 2, 1) << true;
    QTest::newRow("2.2") << unknown(128, 2, 2) << true;
    QTest::newRow("2.3") << unknown(152, 2, 3) << true;
    QTest::newRow("2.4") << unknown(168, 2, 4) << true;
    QTest::newRow("3.0") << unknown(264, 3, 0) << true;
    QTest::newRow("2.0 is misaligned") << unknown(120, 2, 0) << false;
    QTest::newRow("a card's") << unknown(120, 1, 3) << false;
    QTest::newRow("a newer one") << unknown(264, 3, 1) << false;
    QTest::newRow("another size") << unknown(128, 2, 1) << false;
    QTest::newRow("cut") << unknown(264, 3, 0).left(200) << false;
    QTest::newRow("three bytes") << QByteArray("\x08\x01\x03", 3) << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestAPUMetrics::acceptsKnownFormatsOfTheirSizeAlone()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isAccepted);
    const auto metrics = parsed(bytes);
    QCOMPARE(metrics.has_value(), isAccepted);
    QVERIFY(!metrics || *metrics == APUMetrics()); // All bits set: unknown.
}

void TestAPUMetrics::leavesOutWhatCannotBe()
{
    QByteArray bytes = metricsOfLaptop();
    put16(bytes, 46, 101); // A column's share in per cent.
    put16(bytes, 180, 0);  // The clock of an NPU at rest.
    bytes[127] = '\x7f';   // Millions of watts.
    const auto metrics = parsed(bytes);
    QVERIFY(metrics && !metrics->npuFraction && !metrics->npuMHz && !metrics->graphicsWatts);
    QCOMPARE(metrics->npuWatts, std::optional(1.35));
}

QTEST_GUILESS_MAIN(TestAPUMetrics)
#include "tst_APUMetrics.moc"
