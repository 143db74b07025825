#include "charts/HoverTime.h"

#include <QLocale>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestHoverTime : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("TZ", "UTC"); }
    void formats_data();
    void formats();
    void ignoresTheLocale();
};

void TestHoverTime::formats_data()
{
    QTest::addColumn<double>("date");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the reference date") << 0.0 << u"00:00:00"_s;
    QTest::newRow("an afternoon") << 50'709.0 << u"14:05:09"_s;
    QTest::newRow("fractions are cut") << 50'709.999 << u"14:05:09"_s;
    QTest::newRow("the last second of a day") << 86'399.0 << u"23:59:59"_s;
    QTest::newRow("before the reference date") << -1.0 << u"23:59:59"_s;
    QTest::newRow("a time that no calendar has") << 1e300 << QString();
}

void TestHoverTime::formats()
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
