#include "history/PersistedMetric.h"

#include <QTest>

#include <clocale>

using namespace corvane;

namespace {

char decimalPoint[8] = ".";

} // namespace

/// In place of the C library's: the language's decimal point, which Qt sets from the environment.
extern "C" lconv *localeconv() noexcept
{
    static lconv conventions = {};
    conventions.decimal_point = decimalPoint;
    return &conventions;
}

/// The file is the same in every language.
class TestDecimalPoint : public QObject {
    Q_OBJECT

private slots:
    void isTheSameInEveryLanguage_data();
    void isTheSameInEveryLanguage();
};

void TestDecimalPoint::isTheSameInEveryLanguage_data()
{
    QTest::addColumn<QByteArray>("point");
    QTest::newRow("a point") << QByteArray(".");
    QTest::newRow("a comma") << QByteArray(",");
    QTest::newRow("several bytes") << QByteArray("\u066b");
}

void TestDecimalPoint::isTheSameInEveryLanguage()
{
    QFETCH(const QByteArray, point);
    qstrncpy(decimalPoint, point.constData(), sizeof decimalPoint);
    const QByteArray line =
        R"({"t":785000000.25,"memTotal":17179869184.0,"memUsed":8589934592,"memPct":50,)"
        R"("cpuPct":37.5,"gpuPct":12.25e0,"cpuW":3.75,"gpuW":1.5,"aneW":0.125})";
    const auto metric = PersistedMetric::fromJson(line);
    QVERIFY(metric);
    QCOMPARE(metric->t, 785000000.25);
    QCOMPARE(metric->memTotal, 17'179'869'184U);
    QCOMPARE(metric->gpuPct, 12.25);
    QCOMPARE(*metric->toJson(),
             QByteArray(line).replace("184.0", "184").replace("12.25e0", "12.25"));
}

QTEST_APPLESS_MAIN(TestDecimalPoint)
#include "tst_DecimalPoint.moc"
