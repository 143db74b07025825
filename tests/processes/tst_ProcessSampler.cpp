#include "processes/ProcessSampler.h"

#include <QTest>

#include <limits>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;

using Records = std::vector<ProcessRecord>;
using Rows = std::vector<ProcessRow>;

Q_DECLARE_METATYPE(Records)
Q_DECLARE_METATYPE(Rows)

class TestProcessSampler : public QObject {
    Q_OBJECT

private slots:
    void makesRows_data();
    void makesRows();
    void listsAtMostSoMany();
    void stopsAtANumberBeyond32Bits_data();
    void stopsAtANumberBeyond32Bits();
};

void TestProcessSampler::makesRows_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<Rows>("expected");
    const auto name = QStringLiteral("ollama");
    QTest::newRow("none") << Records{} << Rows{};
    QTest::newRow("in the records' order")
        << Records{{9, "ollama", 30}, {7, "python3", 40}}
        << Rows{{9, name, 30}, {7, QStringLiteral("python3"), 40}};
    QTest::newRow("without a number")
        << Records{{{}, "a", 1}, {9, "ollama", 30}} << Rows{{9, name, 30}};
    QTest::newRow("without a name")
        << Records{{8, {}, 1}, {9, "ollama", 30}} << Rows{{9, name, 30}};
    QTest::newRow("without memory")
        << Records{{8, "a", {}}, {9, "ollama", 30}} << Rows{{9, name, 30}};
    QTest::newRow("the largest values")
        << Records{{std::numeric_limits<std::int32_t>::max(), "grün",
                    std::numeric_limits<std::uint64_t>::max()}}
        << Rows{{std::numeric_limits<std::int32_t>::max(), QStringLiteral("grün"),
                 std::numeric_limits<std::uint64_t>::max()}};
}

void TestProcessSampler::makesRows()
{
    QFETCH(Records, records);
    QTEST(ProcessSampler::rows(records), "expected");
}

void TestProcessSampler::listsAtMostSoMany()
{
    QCOMPARE(ProcessSampler::topByRAM(0), Rows());
    QCOMPARE(ProcessSampler::topByRAM(-5), Rows());
    QCOMPARE(ProcessSampler::topByRAM(1).size(), std::size_t(1));
}

void TestProcessSampler::stopsAtANumberBeyond32Bits_data()
{
    QTest::addColumn<qint64>("n");
    QTest::newRow("one too large") << qint64(1) + std::numeric_limits<std::int32_t>::max();
    QTest::newRow("one too small") << qint64(-1) + std::numeric_limits<std::int32_t>::min();
}

void TestProcessSampler::stopsAtANumberBeyond32Bits()
{
    QFETCH(qint64, n);
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCoreFile = {};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        signal(SIGABRT, SIG_DFL); // Without the test runner's report.
        ProcessSampler::topByRAM(n);
        _exit(0);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGABRT);
}

QTEST_APPLESS_MAIN(TestProcessSampler)
#include "tst_ProcessSampler.moc"
