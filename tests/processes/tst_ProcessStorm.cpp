// Surveys a process table that changes meanwhile: thousands of processes come and go.

#include "processes/LiveProcess.h"
#include "processes/ProcessBridge.h"
#include "processes/Surveyor.h"
#include "support/ProcessState.h"

#include <QMap>
#include <QProcess>
#include <QSet>
#include <QTest>

#include <algorithm>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestProcessStorm : public QObject {
    Q_OBJECT

private slots:
    void surveysAChangingProcessTable();

private:
    void checkRows(const std::vector<ProcessRow> &rows);

    QMap<qint64, QString> m_known; ///< Names of the processes that are there during every listing.
    QSet<qint64> m_lasting;        ///< Those of them that are still there afterwards.
};

void TestProcessStorm::checkRows(const std::vector<ProcessRow> &rows)
{
    QVERIFY(!rows.empty() && rows.size() <= 20);
    QVERIFY(std::ranges::is_sorted(rows, std::greater(), &ProcessRow::memory));
    QSet<qint64> pids;
    for (const ProcessRow &row : rows) {
        pids.insert(row.id);
        QVERIFY(row.id > 0 && row.memory > 0 && !row.name.isEmpty());
        QCOMPARE(m_known.value(row.id, row.name), row.name);
        const bool isReadable =
            ProcessBridge::processArgsForPID(static_cast<std::int32_t>(row.id)).has_value();
        QVERIFY(isReadable || !m_lasting.contains(row.id));
    }
    QCOMPARE(static_cast<std::size_t>(pids.size()), rows.size());
}

void TestProcessStorm::surveysAChangingProcessTable()
{
    LiveProcess rock(u"ollama"_s, {u"run"_s, u"llama3"_s}, 250);
    QVERIFY(rock.isReady());
    const bool rockIsAmongTheHeaviest = heavierProcesses(240 * 1024 * 1024) < 20;
    QProcess storm;
    storm.start(QStringLiteral(FORK_STORM), QStringList());
    QVERIFY(storm.waitForStarted(-1));
    m_known = {{rock.pid(), u"ollama"_s},
               {storm.processId(), u"fork_storm"_s},
               {getpid(), u"tst_ProcessStorm"_s}};
    m_lasting = {rock.pid(), getpid()};
    const qsizetype descriptors = openDescriptors();
    Surveyor surveyor;
    int passes = 0;
    for (; storm.state() != QProcess::NotRunning; ++passes) {
        const Survey survey = surveyor.take();
        checkRows(survey.processes);
        if (QTest::currentTestFailed())
            break;
        const bool rockIsFound = std::ranges::any_of(
            survey.workloads, [&rock](const AIWorkload &w) { return w.pid == rock.pid(); });
        QVERIFY(rockIsFound || !rockIsAmongTheHeaviest);
        QCoreApplication::processEvents();
    }
    QVERIFY(openDescriptors() > descriptors);
    surveyor.rest();
    storm.waitForFinished(-1);
    QVERIFY(openDescriptors() <= descriptors); // Those to the storm are closed.
    QCOMPARE(storm.exitCode(), 0);
    QVERIFY(passes > 0);
}

QTEST_GUILESS_MAIN(TestProcessStorm)
#include "tst_ProcessStorm.moc"
