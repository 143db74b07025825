#include "history/HistoryStore.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestHistoryStore : public QObject {
    Q_OBJECT

private slots:
    void keepsRecordsAcrossStarts();
};

void TestHistoryStore::keepsRecordsAcrossStarts()
{
    const QTemporaryDir folder;
    const QString directory = folder.filePath(u"new/Corvane"_s);
    {
        HistoryStore store(directory);
        QVERIFY(QFile::exists(directory + "/history.jsonl"_L1));
        for (int i = 0; i < 130; ++i)
            store.append({.t = i + 0.1, .memTotal = 100, .memUsed = quint64(i)});
        store.trim(120);
    }
    const std::vector<PersistedMetric> metrics = HistoryStore(directory).loadLast(200);
    QCOMPARE(metrics.size(), 120u);
    QCOMPARE(metrics.front().t, 10.1);
    QCOMPARE(metrics.back().memUsed, 129u);
}

QTEST_APPLESS_MAIN(TestHistoryStore)
#include "tst_HistoryStore.moc"
