#include "ui/ByteFormatter.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr quint64 kib = 1024;
constexpr quint64 mib = 1024 * kib;
constexpr quint64 gib = 1024 * mib;

} // namespace

class TestByteFormatter : public QObject {
    Q_OBJECT

private slots:
    void formats_data();
    void formats();
    void followsTheLocale_data();
    void followsTheLocale();
    void sharesOneInTheUsersLocale();
};

void TestByteFormatter::formats_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("expected");
    QTest::newRow("zero") << quint64(0) << u"0 MB"_s;
    QTest::newRow("one byte") << quint64(1) << u"0 MB"_s;
    QTest::newRow("the largest count that rounds to zero") << quint64(52428) << u"0 MB"_s;
    QTest::newRow("the smallest count that shows") << quint64(52429) << u"0.1 MB"_s;
    QTest::newRow("a fraction digit") << mib * 377 / 2 << u"188.5 MB"_s;
    QTest::newRow("no trailing zero") << 512 * mib << u"512 MB"_s;
    QTest::newRow("whole tens keep their zero") << 100 * mib << u"100 MB"_s;
    QTest::newRow("the unit is chosen before rounding")
        << quint64(1023.97 * double(mib)) << u"1,024 MB"_s;
    QTest::newRow("the last byte below one GiB") << gib - 1 << u"1,024 MB"_s;
    QTest::newRow("one GiB") << gib << u"1 GB"_s;
    QTest::newRow("one byte more than one GiB") << gib + 1 << u"1 GB"_s;
    QTest::newRow("one fraction digit of two") << gib * 3 / 2 << u"1.5 GB"_s;
    QTest::newRow("two fraction digits") << quint64(12.349 * double(gib)) << u"12.35 GB"_s;
    QTest::newRow("a zero inside the fraction") << gib + gib / 20 << u"1.05 GB"_s;
    QTest::newRow("a tie down to even, MB") << 256 * kib << u"0.2 MB"_s;
    QTest::newRow("one byte above a tie down to even") << 256 * kib + 1 << u"0.3 MB"_s;
    QTest::newRow("a tie up to even, MB") << 768 * kib << u"0.8 MB"_s;
    QTest::newRow("one byte below a tie up to even") << 768 * kib - 1 << u"0.7 MB"_s;
    QTest::newRow("a tie after an odd number of MB") << mib + 256 * kib << u"1.2 MB"_s;
    QTest::newRow("a tie at 1.125 GiB") << gib / 8 * 9 << u"1.12 GB"_s;
    QTest::newRow("a tie at 1.375 GiB") << gib / 8 * 11 << u"1.38 GB"_s;
    QTest::newRow("a tie at 1.625 GiB") << gib / 8 * 13 << u"1.62 GB"_s;
    QTest::newRow("a tie at 1.875 GiB") << gib / 8 * 15 << u"1.88 GB"_s;
    QTest::newRow("a small machine") << 16 * gib << u"16 GB"_s;
    QTest::newRow("a large machine") << 128 * gib << u"128 GB"_s;
    QTest::newRow("no larger unit") << 2048 * gib << u"2,048 GB"_s;
    QTest::newRow("the largest signed count")
        << quint64(std::numeric_limits<qint64>::max()) << u"8,589,934,592 GB"_s;
    QTest::newRow("counts beyond the largest signed one show as that one")
        << std::numeric_limits<quint64>::max() << u"8,589,934,592 GB"_s;
}

void TestByteFormatter::formats()
{
    QFETCH(quint64, bytes);
    const ByteFormatter formatter(QLocale(QLocale::English, QLocale::UnitedStates));
    QTEST(formatter.string(bytes), "expected");
}

void TestByteFormatter::followsTheLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("expected");
    QTest::newRow("German: comma") << u"de_DE"_s << quint64(12.349 * double(gib)) << u"12,35 GB"_s;
    QTest::newRow("German: grouped by points") << u"de_DE"_s << 2048 * gib << u"2.048 GB"_s;
    QTest::newRow("German: zero") << u"de_DE"_s << quint64(0) << u"0 MB"_s;
    QTest::newRow("French: comma") << u"fr_FR"_s << mib * 377 / 2 << u"188,5 MB"_s;
    QTest::newRow("French: grouped by narrow no-break spaces")
        << u"fr_FR"_s << 2048 * gib << u"2\u202f048 GB"_s;
    QTest::newRow("Egyptian Arabic: its own digits, comma and grouping")
        << u"ar_EG"_s << 2048 * gib + gib / 2 << u"\u0662\u066c\u0660\u0664\u0668\u066b\u0665 GB"_s;
    QTest::newRow("Hindi: grouped like English below a lakh")
        << u"hi_IN"_s << 2048 * gib << u"2,048 GB"_s;
    QTest::newRow("C: a point and no grouping")
        << u"C"_s << quint64(1023.97 * double(mib)) << u"1024 MB"_s;
    QTest::newRow("C: a fraction") << u"C"_s << gib * 3 / 2 << u"1.5 GB"_s;
}

void TestByteFormatter::followsTheLocale()
{
    QFETCH(QString, locale);
    QFETCH(quint64, bytes);
    QTEST(ByteFormatter(QLocale(locale)).string(bytes), "expected");
}

void TestByteFormatter::sharesOneInTheUsersLocale()
{
    QCOMPARE(&ByteFormatter::f(), &ByteFormatter::f());
    QCOMPARE(ByteFormatter::f().string(2048 * gib), ByteFormatter(QLocale()).string(2048 * gib));
}

QTEST_APPLESS_MAIN(TestByteFormatter)
#include "tst_ByteFormatter.moc"
