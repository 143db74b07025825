#include "processes/AIFramework.h"
#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"

#include <QSet>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestAIFramework : public QObject {
    Q_OBJECT

private slots:
    void isDescribed();
    void listsAllCasesInOrder();
    void comparesAndHashesRowsByAllFields();
    void comparesAndHashesWorkloadsByAllFields();
};

void TestAIFramework::isDescribed()
{
    QSet<QString> rawValues;
    QSet<QString> names;
    for (const AIFramework framework : allAIFrameworks) {
        rawValues.insert(rawValue(framework));
        names.insert(displayName(framework));
        QVERIFY(!symbol(framework).isEmpty());
    }
    for (const AIFramework framework : furtherAIFrameworks) {
        rawValues.insert(rawValue(framework));
        names.insert(displayName(framework));
        QVERIFY(!symbol(framework).isEmpty());
    }
    const auto count = qsizetype(allAIFrameworks.size() + furtherAIFrameworks.size());
    QCOMPARE(rawValues.size(), count);
    QCOMPARE(names.size(), count);
    QCOMPARE(displayName(AIFramework::whisper), u"Whisper"_s);
    QCOMPARE(rawValue(AIFramework::llamaCpp), u"llamaCpp"_s);
    QCOMPARE(displayName(AIFramework::llamaCpp), u"llama.cpp"_s);
    QCOMPARE(symbol(AIFramework::llamaCpp), u"cpu.fill"_s);
}

void TestAIFramework::listsAllCasesInOrder()
{
    QCOMPARE(allAIFrameworks.size(), std::size_t(11));
    for (std::size_t i = 0; i < allAIFrameworks.size(); ++i)
        QCOMPARE(static_cast<std::size_t>(allAIFrameworks[i]), i);
    for (std::size_t i = 0; i < furtherAIFrameworks.size(); ++i)
        QCOMPARE(static_cast<std::size_t>(furtherAIFrameworks[i]), allAIFrameworks.size() + i);
}

void TestAIFramework::comparesAndHashesRowsByAllFields()
{
    const ProcessRow row{.id = 7, .name = u"a"_s, .memory = 9};
    const QSet<ProcessRow> others{{8, u"a"_s, 9}, {7, u"b"_s, 9}, {7, u"a"_s, 8}, row, row};
    QCOMPARE(others.size(), 4);
    QVERIFY(others.contains(ProcessRow{7, u"a"_s, 9}));
}

void TestAIFramework::comparesAndHashesWorkloadsByAllFields()
{
    const AIWorkload workload{7, 7, u"a"_s, AIFramework::mlx, u"m"_s, 9};
    QSet<AIWorkload> all{workload};
    const auto differing = [&workload](auto AIWorkload::*field, auto value) {
        AIWorkload other = workload;
        other.*field = value;
        return other;
    };
    all.insert(differing(&AIWorkload::id, 8));
    all.insert(differing(&AIWorkload::pid, 8));
    all.insert(differing(&AIWorkload::processName, u"b"_s));
    all.insert(differing(&AIWorkload::framework, AIFramework::vllm));
    all.insert(differing(&AIWorkload::model, u"n"_s));
    all.insert(differing(&AIWorkload::model, std::nullopt));
    all.insert(differing(&AIWorkload::model, u""_s));
    all.insert(differing(&AIWorkload::memory, 8));
    all.insert(workload);
    QCOMPARE(all.size(), 9);
    QVERIFY(all.contains(workload));
}

QTEST_APPLESS_MAIN(TestAIFramework)
#include "tst_AIFramework.moc"
