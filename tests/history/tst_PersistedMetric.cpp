#include "history/PersistedMetric.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr quint64 largest = std::numeric_limits<quint64>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

const PersistedMetric example{.t = 785000000.25,
                              .memTotal = 17'179'869'184,
                              .memUsed = 8'589'934'592,
                              .memPct = 50,
                              .cpuPct = 37.5,
                              .gpuPct = 12.25,
                              .cpuW = 3.75,
                              .gpuW = 1.5,
                              .aneW = 0.125};

bool same(const PersistedMetric &a, const PersistedMetric &b)
{
    return a.t == b.t && a.memTotal == b.memTotal && a.memUsed == b.memUsed && a.memPct == b.memPct
        && a.cpuPct == b.cpuPct && a.gpuPct == b.gpuPct && a.cpuW == b.cpuW && a.gpuW == b.gpuW
        && a.aneW == b.aneW;
}

bool survives(const PersistedMetric &metric)
{
    const auto line = metric.toJson();
    const auto read = line ? PersistedMetric::fromJson(*line) : std::nullopt;
    return read && same(*read, metric);
}

/// The example's line with one value replaced.
QByteArray lineWith(const QByteArray &key, const QByteArray &value)
{
    QByteArray line = *example.toJson();
    const qsizetype start = line.indexOf('"' + key + "\":") + key.size() + 3;
    qsizetype end = start;
    while (line.at(end) != ',' && line.at(end) != '}')
        ++end;
    return line.replace(start, end - start, value);
}

} // namespace

class TestPersistedMetric : public QObject {
    Q_OBJECT

private slots:
    void comesFromASample();
    void hasZerosWithoutAChip();
    void hasAShareOfZeroWithoutATotal();
    void becomesASampleAgain();
    void givesEachSampleANewIdentity();
    void isOneObjectALine();
    void isValidForAnotherReader();
    void isNotWrittenUnlessFinite_data();
    void isNotWrittenUnlessFinite();
    void isReadBackToTheLastBit();
    void keepsByteCountsExactly_data();
    void keepsByteCountsExactly();
    void readsEveryNumberOfJson_data();
    void readsEveryNumberOfJson();
    void readsByteCountsInAnyNotation_data();
    void readsByteCountsInAnyNotation();
    void readsLines_data();
    void readsLines();
    void needsAllKeys();
    void survivesEveryDamagedByte();
};

void TestPersistedMetric::comesFromASample()
{
    const SystemMetrics sample{.timestamp = 12.5,
                               .memory = {.total = 4000, .used = 1000, .free = 7},
                               .chip = ChipReading{.cpuWatts = 1,
                                                   .gpuWatts = 2,
                                                   .aneWatts = 3,
                                                   .cpuActiveFraction = 0.25,
                                                   .gpuActiveFraction = 0.5}};
    QVERIFY(same(PersistedMetric::from(sample),
                 {.t = 12.5,
                  .memTotal = 4000,
                  .memUsed = 1000,
                  .memPct = 25,
                  .cpuPct = 25,
                  .gpuPct = 50,
                  .cpuW = 1,
                  .gpuW = 2,
                  .aneW = 3}));
}

void TestPersistedMetric::hasZerosWithoutAChip()
{
    const SystemMetrics sample{.timestamp = 1, .memory = {.total = 4, .used = 1}};
    QVERIFY(
        same(PersistedMetric::from(sample), {.t = 1, .memTotal = 4, .memUsed = 1, .memPct = 25}));
}

void TestPersistedMetric::hasAShareOfZeroWithoutATotal()
{
    QCOMPARE(PersistedMetric::from({.memory = {.total = 0, .used = 5}}).memPct, 0.0);
}

void TestPersistedMetric::becomesASampleAgain()
{
    // The stored share of the memory is not used: it follows from the bytes.
    PersistedMetric metric = example;
    metric.memPct = 99;
    const SystemMetrics sample = metric.toSample();
    QCOMPARE(sample.timestamp, 785000000.25);
    QCOMPARE(sample.memory.total, 17'179'869'184U);
    QCOMPARE(sample.memory.used, 8'589'934'592U);
    const MemorySnapshot &memory = sample.memory;
    for (const std::uint64_t size :
         {memory.free, memory.active, memory.wired, memory.compressed, memory.cached,
          memory.appMemory, memory.swapTotal, memory.swapUsed})
        QCOMPARE(size, 0U);
    QCOMPARE(memory.pressure, MemoryPressure::normal);
    QVERIFY(sample.chip);
    QCOMPARE(sample.chip->cpuWatts, 3.75);
    QCOMPARE(sample.chip->gpuWatts, 1.5);
    QCOMPARE(sample.chip->aneWatts, 0.125);
    QCOMPARE(sample.chip->cpuActiveFraction, 0.375);
    QCOMPARE(sample.chip->gpuActiveFraction, 0.1225);
    QCOMPARE(sample.chip->cpuActiveMHz, 0.0);
    QVERIFY(!sample.chip->gpuDominantState);
    QVERIFY(sample.chip->cpuCoreUtilizations.empty());
    QVERIFY(sample.chip->gpuStateResidency.empty());
    QVERIFY(!sample.chip->cpuTempC && !sample.chip->gpuTempC && !sample.chip->aneTempC
            && !sample.chip->packageTempC);
}

void TestPersistedMetric::givesEachSampleANewIdentity()
{
    QVERIFY(!example.toSample().id.isNull());
    QVERIFY(example.toSample().id != example.toSample().id);
}

void TestPersistedMetric::isOneObjectALine()
{
    QCOMPARE(example.toJson(),
             std::optional<QByteArray>(
                 R"({"t":785000000.25,"memTotal":17179869184,"memUsed":8589934592,"memPct":50,)"
                 R"("cpuPct":37.5,"gpuPct":12.25,"cpuW":3.75,"gpuW":1.5,"aneW":0.125})"));
}

void TestPersistedMetric::isValidForAnotherReader()
{
    PersistedMetric metric = example;
    metric.cpuPct = 1e-7;
    metric.gpuPct = 1e22;
    const QJsonObject object = QJsonDocument::fromJson(*metric.toJson()).object();
    QCOMPARE(object.size(), 9);
    QCOMPARE(object.value("memTotal"_L1).toInteger(), 17'179'869'184);
    QCOMPARE(object.value("cpuPct"_L1).toDouble(), 1e-7);
    QCOMPARE(object.value("gpuPct"_L1).toDouble(), 1e22);
}

void TestPersistedMetric::isNotWrittenUnlessFinite_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("not a number") << notANumber;
    QTest::newRow("infinite") << infinity;
    QTest::newRow("infinite below") << -infinity;
}

void TestPersistedMetric::isNotWrittenUnlessFinite()
{
    QFETCH(double, number);
    QVERIFY(example.toJson());
    for (const auto field :
         {&PersistedMetric::t, &PersistedMetric::memPct, &PersistedMetric::cpuPct,
          &PersistedMetric::gpuPct, &PersistedMetric::cpuW, &PersistedMetric::gpuW,
          &PersistedMetric::aneW}) {
        PersistedMetric metric = example;
        metric.*field = number;
        QVERIFY(!metric.toJson());
    }
}

void TestPersistedMetric::isReadBackToTheLastBit()
{
    std::mt19937_64 random(20010101);
    int finite = 0;
    for (int i = 0; i < 5'000; ++i) {
        PersistedMetric metric = example;
        metric.t = std::nextafter(785000000 + i / 7.0, infinity);
        metric.memTotal = random();
        metric.memUsed = random() >> (i % 64);
        const auto anyNumber = std::bit_cast<double>(random());
        metric.gpuW = std::isfinite(anyNumber) ? anyNumber : 0;
        finite += std::isfinite(anyNumber) ? 1 : 0;
        QVERIFY2(survives(metric), metric.toJson().value_or("no line").constData());
    }
    QVERIFY(finite > 4'900);
}

void TestPersistedMetric::keepsByteCountsExactly_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::newRow("none") << quint64(0);
    QTest::newRow("the last up to which doubles have all whole numbers") << (quint64(1) << 53);
    QTest::newRow("the first that no double holds") << (quint64(1) << 53) + 1;
    QTest::newRow("the largest signed") << largest / 2;
    QTest::newRow("one above it") << largest / 2 + 1;
    QTest::newRow("one below the largest") << largest - 1;
    QTest::newRow("the largest") << largest;
}

void TestPersistedMetric::keepsByteCountsExactly()
{
    QFETCH(quint64, bytes);
    PersistedMetric metric = example;
    metric.memTotal = bytes;
    metric.memUsed = largest - bytes;
    QVERIFY(survives(metric));
}

void TestPersistedMetric::readsEveryNumberOfJson_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<std::optional<double>>("expected");
    const auto row = [](const char *name, const QByteArray &value, std::optional<double> expected) {
        QTest::newRow(name) << value << expected;
    };
    row("an integer", "12", 12);
    row("negative", "-12.5", -12.5);
    row("a small exponent", "125e-1", 12.5);
    row("a capital exponent with a plus", "1.25E+1", 12.5);
    row("an integer of more than 64 bits", "36893488147419103232", 36893488147419103232.0);
    row("the largest double", "1.7976931348623157e308", 1.7976931348623157e308);
    row("the smallest double", "5e-324", 5e-324);
    row("more digits than a double has", "0.1000000000000000055511151231257827", 0.1);
    row("beyond every double", "1e400", {});
    row("an exponent that no integer holds", "1e99999999999999999999", {});
    row("beyond every negative double", "-1e400", {});
    row("closer to zero than every double", "1e-400", {});
    row("true", "true", {});
    row("null", "null", {});
    row("a number as text", "\"12\"", {});
    row("an object", "{\"a\":12}", {});
}

void TestPersistedMetric::readsEveryNumberOfJson()
{
    QFETCH(QByteArray, value);
    QFETCH(std::optional<double>, expected);
    const QList<std::pair<QByteArray, double PersistedMetric::*>> fields{
        {"t", &PersistedMetric::t},           {"memPct", &PersistedMetric::memPct},
        {"cpuPct", &PersistedMetric::cpuPct}, {"gpuPct", &PersistedMetric::gpuPct},
        {"cpuW", &PersistedMetric::cpuW},     {"gpuW", &PersistedMetric::gpuW},
        {"aneW", &PersistedMetric::aneW}};
    for (const auto &[key, field] : fields) {
        const auto metric = PersistedMetric::fromJson(lineWith(key, value));
        QCOMPARE(metric ? std::optional((*metric).*field) : std::nullopt, expected);
    }
}

void TestPersistedMetric::readsByteCountsInAnyNotation_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<std::optional<quint64>>("expected");
    const auto row = [](const char *name, const QByteArray &value,
                        std::optional<quint64> expected) {
        QTest::newRow(name) << value << expected;
    };
    row("with a fraction of zero", "17179869184.0", 17'179'869'184);
    row("with an exponent", "1.6e10", 16'000'000'000);
    row("with a capital exponent", "1E3", 1000);
    row("the largest", "18446744073709551615", largest);
    row("a zero with a sign is zero", "-0", 0);
    row("one more than the largest", "18446744073709551616", {});
    row("a fraction", "0.5", {});
    row("a fraction beyond a double's digits", "9007199254740993.5", {});
    row("just below one", "0.99999999999999999999999999", {});
    row("one beyond a double's digits", "9007199254740993", 9'007'199'254'740'993);
    row("the same with a fraction of zero", "9007199254740993.000", 9'007'199'254'740'993);
    row("the largest with an exponent", "1.8446744073709551615e19", largest);
    row("one more, with an exponent", "1.8446744073709551616e19", {});
    row("the largest times ten", "184467440737095516150", {});
    row("an exponent with a plus", "2e+2", 200);
    row("a negative exponent that leaves a whole", "1200e-2", 12);
    row("a negative exponent that leaves a fraction", "1205e-2", {});
    row("many zeros cancelled by the exponent", "1" + QByteArray(300, '0') + "e-300", 1);
    row("zero with any exponent", "0e99999999999999999999999", 0);
    row("zero with sign, fraction and exponent", "-0.00e-5", 0);
    row("negative with an exponent", "-1e3", {});
    row("an exponent that no integer holds", "1e99999999999999999999", {});
    row("negative", "-1", {});
    row("beyond every double", "1e400", {});
}

void TestPersistedMetric::readsByteCountsInAnyNotation()
{
    QFETCH(QByteArray, value);
    QFETCH(std::optional<quint64>, expected);
    const auto total = PersistedMetric::fromJson(lineWith("memTotal", value));
    QCOMPARE(total ? std::optional(total->memTotal) : std::nullopt, expected);
    const auto used = PersistedMetric::fromJson(lineWith("memUsed", value));
    QCOMPARE(used ? std::optional(used->memUsed) : std::nullopt, expected);
}

void TestPersistedMetric::readsLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("expected");
    const QByteArray whole = *example.toJson();
    const QByteArray inside = whole.mid(1, whole.size() - 2);
    const auto row = [](const char *name, const QByteArray &line, bool expected) {
        QTest::newRow(name) << line << expected;
    };
    row("as written", whole, true);
    row("a carriage return at its end", whole + '\r', true);
    row("spacing", QByteArray(whole).replace(':', " :\t").replace(',', " , "), true);
    row("an unknown key", "{\"host\":\"a\",\"x\":[{}]," + inside + "}", true);
    row("a key that stands twice", "{\"t\":1," + inside + "}", true);
    row("a key that stands twice, null first and a number last",
        "{\"memUsed\":null," + inside + "}", true);
    row("a key that stands twice, a number first and null last",
        "{" + inside + ",\"memUsed\":null}", false);
    row("an escaped key", QByteArray(whole).replace("\"t\"", "\"\\u0074\""), true);
    row("the same keys in a nested object", "{\"old\":{\"t\":1,\"memUsed\":-1}," + inside + "}",
        true);
    row("all keys in a nested object", "{\"record\":" + whole + "}", false);
    row("a list around it", "[" + whole + "]", false);
    row("two records on a line", whole + whole, false);
    row("a cut piece before it", whole.left(40) + whole, false);
    row("text after it", whole + "x", false);
    row("a NUL after it", whole + '\0', false);
    row("a key in capitals", QByteArray(whole).replace("\"t\"", "\"T\""), false);
    row("a byte order mark before it", "\xef\xbb\xbf" + whole, true);
    row("sixty thousand nested lists",
        "{\"x\":" + QByteArray(60'000, '[') + QByteArray(60'000, ']') + ',' + inside + "}", true);
    row("a text that looks like keys", "{\"x\":\"\\\",\\\"t\\\":1,\"," + inside + "}", true);
    row("an unknown number that no double holds", "{\"x\":1e400," + inside + "}", false);
    row("an empty object", "{}", false);
    row("a number", "5", false);
    row("an empty line", "", false);
    row("bytes that are no text", QByteArray::fromHex("00ff80feff0d1b5b"), false);
}

void TestPersistedMetric::readsLines()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, expected);
    const auto metric = PersistedMetric::fromJson(line);
    QCOMPARE(metric.has_value(), expected);
    if (metric)
        QVERIFY(same(*metric, example));
}

void TestPersistedMetric::needsAllKeys()
{
    const QByteArray whole = *example.toJson();
    for (qsizetype cut = 0; cut < whole.size(); ++cut)
        QVERIFY2(!PersistedMetric::fromJson(whole.left(cut)), whole.left(cut).constData());
    const QList<QByteArray> members = whole.mid(1, whole.size() - 2).split(',');
    QCOMPARE(members.size(), 9);
    for (const QByteArray &member : members) {
        QList<QByteArray> others = members;
        others.removeOne(member);
        QVERIFY2(!PersistedMetric::fromJson('{' + others.join(',') + '}'), member.constData());
        others.prepend(member);
        const auto reordered = PersistedMetric::fromJson('{' + others.join(',') + '}');
        QVERIFY(reordered && same(*reordered, example));
    }
}

void TestPersistedMetric::survivesEveryDamagedByte()
{
    const QByteArray whole = *example.toJson();
    for (qsizetype i = 0; i < whole.size(); ++i) {
        for (const char c : QByteArray("{}[],:\"\\ .e-0\xff\0", 15)) {
            QByteArray damaged = whole;
            damaged[i] = c;
            const auto metric = PersistedMetric::fromJson(damaged);
            QVERIFY2(!metric || survives(*metric), damaged.constData());
        }
    }
}

QTEST_APPLESS_MAIN(TestPersistedMetric)
#include "tst_PersistedMetric.moc"
