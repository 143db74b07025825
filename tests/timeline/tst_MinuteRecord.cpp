#include "timeline/MinuteRecord.h"

#include <QTest>

#include <limits>

using namespace corvane;

namespace {

MinuteRecord minute()
{
    MinuteRecord minute{.means = {.start = 785'000'040, .seconds = 60},
                        .energy = {.seconds = 59.75, .all = 225.125, .cpu = 90.5, .npu = 0}};
    minute.means.means[indexOf(Measure::memory)] = {50.25F, 49.5F, 51, 60};
    minute.means.means[indexOf(Measure::totalWatts)] = {3.75F, 0.5F, 12, 58};
    return minute;
}

const QByteArray line = "[785000040,59.75,225.125,90.5,null,0,[60,50.25,49.5,51],null,null,null,"
                        "null,null,null,null,null,[58,3.75,0.5,12],null,null,null,null]";

std::optional<MinuteRecord> read(const QByteArray &text)
{
    return MinuteRecord::fromLine(std::string_view(text.data(), std::size_t(text.size())));
}

QByteArray withEnergy(const QByteArray &start, const QByteArray &joules)
{
    return '[' + start + ",1," + joules + ",null,null,null"
        + QByteArray(",null").repeated(int(measureCount)) + ']';
}

} // namespace

class TestMinuteRecord : public QObject {
    Q_OBJECT

private slots:
    void writesItsLine();
    void readsItsLine();
    void readsTheEnergyAlone();
    void writesNoNumberThatJSONCannotHold();
    void readsNumbersExactly_data();
    void readsNumbersExactly();
    void refusesDamage_data();
    void refusesDamage();
    void everyCutLineIsDamaged();
};

void TestMinuteRecord::writesItsLine()
{
    QCOMPARE(minute().toLine().value_or(QByteArray()), line);
}

void TestMinuteRecord::readsItsLine()
{
    QVERIFY(read(line) == minute());
}

void TestMinuteRecord::readsTheEnergyAlone()
{
    const auto energy = MinuteEnergy::fromLine(line.toStdString());
    QVERIFY(energy);
    QCOMPARE(energy->start, 785'000'040.0);
    QCOMPARE(energy->energy, minute().energy);
}

void TestMinuteRecord::writesNoNumberThatJSONCannotHold()
{
    MinuteRecord broken = minute();
    broken.energy.gpu = std::numeric_limits<double>::infinity();
    QVERIFY(!broken.toLine());
    broken = minute();
    broken.means.means[0].mean = std::numeric_limits<float>::quiet_NaN();
    QVERIFY(!broken.toLine());
}

void TestMinuteRecord::readsNumbersExactly_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("number");
    QTest::newRow("zero") << QByteArray("0") << 0.0;
    QTest::newRow("fifteen digits") << QByteArray("123456.789012345") << 123456.789012345;
    QTest::newRow("more digits than a double has")
        << QByteArray("0.1000000000000000055511151231257827") << 0.1;
    QTest::newRow("seventeen digits") << QByteArray("226.98000000000002") << 226.98000000000002;
    QTest::newRow("an exponent") << QByteArray("1.5e-05") << 1.5e-05;
    QTest::newRow("a capital exponent with a sign") << QByteArray("2E+3") << 2000.0;
    QTest::newRow("a small fraction") << QByteArray("0.00000000000001") << 1e-14;
}

void TestMinuteRecord::readsNumbersExactly()
{
    QFETCH(QByteArray, text);
    const auto record = read(withEnergy("60", text));
    QVERIFY(record);
    QTEST(record->energy.all, "number");
}

void TestMinuteRecord::refusesDamage_data()
{
    const auto replaced = [](const char *before, const char *after) {
        return QByteArray(line).replace(before, after);
    };
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("the line with the version")
        << QByteArray(R"({"corvane":"minutes","version":1})");
    QTest::newRow("two lines in one") << line + line;
    QTest::newRow("a piece and a line") << line.left(40) + line;
    QTest::newRow("a start inside a minute") << replaced("785000040", "785000041");
    QTest::newRow("a start beyond all calendars") << withEnergy("6e300", "1");
    QTest::newRow("a number that no double holds") << withEnergy("60", "1e400");
    QTest::newRow("negative joules") << withEnergy("60", "-1");
    QTest::newRow("a leading zero") << withEnergy("60", "01");
    QTest::newRow("a point without a fraction") << withEnergy("60", "1.");
    QTest::newRow("a fraction without a whole") << withEnergy("60", ".5");
    QTest::newRow("a sign alone") << withEnergy("60", "-");
    QTest::newRow("an exponent without digits") << withEnergy("60", "1e");
    QTest::newRow("a plus") << withEnergy("60", "+1");
    QTest::newRow("not a number") << withEnergy("60", "nan");
    QTest::newRow("a space") << replaced(",", ", ");
    QTest::newRow("one measure less") << replaced(",null]", "]");
    QTest::newRow("one measure more") << replaced(",null]", ",null,null]");
    QTest::newRow("a mean of no sample") << replaced("[60,", "[0,");
    QTest::newRow("a mean of a part of a sample") << replaced("[60,", "[60.5,");
    QTest::newRow("a mean of too many samples") << replaced("[60,", "[65536,");
    QTest::newRow("a mean below its range") << replaced("[60,50.25", "[60,49.25");
    QTest::newRow("a mean above its range") << replaced("[60,50.25", "[60,51.25");
    QTest::newRow("values that no float holds") << replaced("49.5,51]", "49.5,1e60]");
    QTest::newRow("a byte of another alphabet") << replaced("59.75",
                                                            "59\xb7"
                                                            "75");
}

void TestMinuteRecord::refusesDamage()
{
    QFETCH(QByteArray, text);
    QVERIFY(!read(text));
}

void TestMinuteRecord::everyCutLineIsDamaged()
{
    for (qsizetype length = 0; length < line.size(); ++length) {
        QVERIFY(!read(line.left(length)));
        QVERIFY(!read(line.right(length)));
    }
}

QTEST_APPLESS_MAIN(TestMinuteRecord)
#include "tst_MinuteRecord.moc"
