#include "updates/PackageLine.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr auto installed = PackageInfo::installed;
constexpr auto available = PackageInfo::available;
constexpr auto normal = static_cast<PackageInfo>(5);
constexpr auto security = static_cast<PackageInfo>(8);

PackageLine line(PackageInfo info, const QString &version)
{
    return {.info = info, .name = u"corvane"_s, .version = version};
}

} // namespace

class TestPackageLine : public QObject {
    Q_OBJECT

private slots:
    void readsIds_data();
    void readsIds();
    void masksTheSeverity();
    void findsTheUpdate_data();
    void findsTheUpdate();
};

void TestPackageLine::readsIds_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<std::optional<PackageLine>>("expected");
    const auto is = [](const QString &name, const QString &version) {
        return std::optional(PackageLine{.info = available, .name = name, .version = version});
    };
    const std::optional<PackageLine> none;
    QTest::newRow("an id of an archive")
        << u"corvane;0.2.0;amd64;probe-stable-"_s << is(u"corvane"_s, u"0.2.0"_s);
    QTest::newRow("epoch, revision and more")
        << u"corvane;1:0.2~rc1+b2-3^x;all;x"_s << is(u"corvane"_s, u"1:0.2~rc1+b2-3^x"_s);
    QTest::newRow("no architecture and no data") << u"corvane;1;;"_s << is(u"corvane"_s, u"1"_s);
    QTest::newRow("empty") << QString() << none;
    QTest::newRow("too few parts") << u"corvane;1;all"_s << none;
    QTest::newRow("too many parts") << u"corvane;1;all;x;y"_s << none;
    QTest::newRow("no name") << u";1;all;x"_s << none;
    QTest::newRow("no version") << u"corvane;;all;x"_s << none;
    QTest::newRow("markup for a version") << u"corvane;<b>1</b>;all;x"_s << none;
    QTest::newRow("a line break in a version") << u"corvane;1\n2;all;x"_s << none;
    QTest::newRow("another script") << u"corvane;١;all;x"_s << none;
    QTest::newRow("an endless version") << u"corvane;"_s + QString(129, u'1') + u";all;x"_s << none;
}

void TestPackageLine::readsIds()
{
    QFETCH(const QString, id);
    QTEST(packageLine(2, id), "expected");
}

void TestPackageLine::masksTheSeverity()
{
    QCOMPARE(packageLine(0x00050005, u"corvane;1;all;x"_s)->info, normal);
}

void TestPackageLine::findsTheUpdate_data()
{
    QTest::addColumn<QList<PackageLine>>("resolved");
    QTest::addColumn<QList<PackageLine>>("updates");
    QTest::addColumn<std::optional<QString>>("version");
    const std::optional<QString> none;
    const PackageLine old = line(installed, u"1.0"_s);
    const PackageLine newer = line(available, u"1.1"_s);
    QTest::newRow("an update") << QList{old, newer} << QList{line(normal, u"1.1"_s)}
                               << std::optional(u"1.1"_s);
    QTest::newRow("listed twice") << QList{old, newer, newer}
                                  << QList{line(security, u"1.1"_s), line(security, u"1.1"_s)}
                                  << std::optional(u"1.1"_s);
    QTest::newRow("in another order")
        << QList{newer, old} << QList{line(normal, u"1.1"_s)} << std::optional(u"1.1"_s);
    QTest::newRow("an older version is available")
        << QList{old, line(available, u"0.9"_s)} << QList<PackageLine>() << none;
    QTest::newRow("the installed version is available")
        << QList{old, line(available, u"1.0"_s)} << QList{line(normal, u"1.0"_s)} << none;
    QTest::newRow("held back") << QList{old, newer} << QList{line(PackageInfo::blocked, u"1.1"_s)}
                               << none;
    QTest::newRow("an update that was not resolved")
        << QList{old, newer} << QList{line(normal, u"1.2"_s)} << none;
    QTest::newRow("two newer versions") << QList{old, newer, line(available, u"1.2"_s)}
                                        << QList{line(normal, u"1.2"_s)} << std::optional(u"1.2"_s);
    QTest::newRow("not installed") << QList{newer} << QList{line(normal, u"1.1"_s)} << none;
    QTest::newRow("empty") << QList<PackageLine>() << QList<PackageLine>() << none;
}

void TestPackageLine::findsTheUpdate()
{
    QFETCH(const QList<PackageLine>, resolved);
    QFETCH(const QList<PackageLine>, updates);
    QTEST(updateVersion(resolved, updates), "version");
}

QTEST_GUILESS_MAIN(TestPackageLine)
#include "tst_PackageLine.moc"
