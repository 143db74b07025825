#include "charts/HoverTime.h"

#include <QLocale>
#include <QTest>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestHoverTime : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("TZ", "UTC"); }
    void shows_data();
    void shows();
    void ignoresTheLocale();
};

void TestHoverTime::shows_data()
{
    QTest::addColumn<double>("date");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the reference date") << 0.0 << u"00:00:00"_s;
    QTest::newRow("an afternoon") << 50'709.0 << u"14:05:09"_s;
    QTest::newRow("fractions are cut") << 50'709.999 << u"14:05:09"_s;
    QTest::newRow("the last second of a day") << 86'399.0 << u"23:59:59"_s;
    QTest::newRow("before the reference date") << -1.0 << u"23:59:59"_s;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << QString();
    QTest::newRow("endless") << std::numeric_limits<double>::infinity() << QString();
    QTest::newRow("no calendar holds it") << 1e300 << QString();
}

void TestHoverTime::shows()
{
    QFETCH(double, date);
    QTEST(HoverTime::string(date), "expected");
}

void TestHoverTime::ignoresTheLocale()
{
    for (const char *name : {"en_US", "ar_EG", "fi_FI", "hi_IN"}) {
        QLocale::setDefault(QLocale(QString::fromLatin1(name)));
        QCOMPARE(HoverTime::string(50'709), u"14:05:09"_s);
    }
    QLocale::setDefault(QLocale::c());
}

QTEST_GUILESS_MAIN(TestHoverTime)
#include "tst_HoverTime.moc"
