#include "windows/CollectionBehavior_mac.h"

#include <QTest>

using namespace corvane;

class TestCollectionBehavior : public QObject {
    Q_OBJECT

private slots:
    void changesOnlyTheFlagsOfFullScreen_data();
    void changesOnlyTheFlagsOfFullScreen();
};

void TestCollectionBehavior::changesOnlyTheFlagsOfFullScreen_data()
{
    QTest::addColumn<quint64>("before");
    QTest::addColumn<quint64>("after");
    QTest::newRow("no flags") << quint64(0) << quint64(1 << 7);
    QTest::newRow("an auxiliary window") << quint64(1 << 8) << quint64(1 << 7);
    QTest::newRow("a primary window") << quint64(1 << 7) << quint64(1 << 7);
    QTest::newRow("other flags are kept")
        << quint64(1 << 0 | 1 << 8 | 1 << 11) << quint64(1 << 0 | 1 << 7 | 1 << 11);
}

void TestCollectionBehavior::changesOnlyTheFlagsOfFullScreen()
{
    QFETCH(quint64, before);
    QTEST(quint64(CollectionBehavior::allowingFullScreen(before)), "after");
}

QTEST_APPLESS_MAIN(TestCollectionBehavior)
#include "tst_CollectionBehavior.moc"
