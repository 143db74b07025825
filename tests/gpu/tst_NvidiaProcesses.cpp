#include "gpu/NvidiaProcesses_linux.h"

#include "gpu/StandInNvidia.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;
using corvane::test::StandInNvidia;

namespace {

/// The processes of the first device of a library.
class Bench {
public:
    explicit Bench(const char *path = STAND_IN_NVML) { m_functions.load(path); }

    /// "100: 5000 bytes, 35 %" for each; what is not told is left out. "absent" without a list.
    QStringList read(double now = 1000)
    {
        const auto processes =
            m_processes.read(m_functions, reinterpret_cast<NvidiaDevice>(1UL), now);
        if (!processes)
            return {u"absent"_s};
        QStringList texts;
        for (const GPUProcessUse &process : *processes) {
            QString text = QString::number(process.pid) + u':';
            if (process.bytes)
                text += u" %1 bytes"_s.arg(*process.bytes);
            if (process.busyFraction)
                text += u" %1 %"_s.arg(*process.busyFraction * 100);
            if (process.isUnused)
                text += u" unused"_s;
            texts << text;
        }
        return texts;
    }

private:
    NvidiaFunctions m_functions = {};
    NvidiaProcesses m_processes = {};
};

const QByteArray compute = "nvmlDeviceGetComputeRunningProcesses_v3 ";
const QByteArray graphics = "nvmlDeviceGetGraphicsRunningProcesses_v3 ";
const QByteArray loads = "nvmlDeviceGetProcessUtilization ";
const QByteArray newLoads = "nvmlDeviceGetProcessesUtilizationInfo ";

} // namespace

class TestNvidiaProcesses : public QObject {
    Q_OBJECT

private slots:
    void readsEachVersion_data();
    void readsEachVersion();
    void listsMemory_data();
    void listsMemory();
    void asksAgainForALongList();
    void takesTheLoadFromEitherFunction_data();
    void takesTheLoadFromEitherFunction();
    void keepsALoadForSomeSeconds();
};

void TestNvidiaProcesses::readsEachVersion_data()
{
    QTest::addColumn<QByteArray>("library");
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<bool>("hasLoads");
    QTest::newRow("the third") << QByteArray(STAND_IN_NVML)
                               << QByteArray("nvmlDeviceGetComputeRunningProcesses_v3") << true;
    QTest::newRow("the second") << QByteArray(STAND_IN_NVML_MIDDLE)
                                << QByteArray("nvmlDeviceGetComputeRunningProcesses_v2") << true;
    QTest::newRow("the first, with a smaller structure")
        << QByteArray(STAND_IN_NVML_OLD) << QByteArray("nvmlDeviceGetComputeRunningProcesses")
        << false;
}

void TestNvidiaProcesses::readsEachVersion()
{
    QFETCH(QByteArray, library);
    QFETCH(QByteArray, function);
    QFETCH(bool, hasLoads);
    const StandInNvidia nvidia;
    QStringList texts = {u"100: 6100000000 bytes"_s, u"101: 2000000000 bytes"_s,
                         u"200: 300000000 bytes"_s};
    if (hasLoads) {
        texts[0] += u" 35 %"_s;
        texts[2] += u" 2 %"_s;
    }
    QCOMPARE(Bench(library.constData()).read(), texts);
    QCOMPARE(nvidia.calls(function), 1);
}

void TestNvidiaProcesses::listsMemory_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("none") << compute + "fails 6\n" + graphics + "fails 6\n"
                          << QStringList{u"absent"_s};
    QTest::newRow("compute alone") << compute + "7 70\n" + graphics + "fails 3\n"
                                   << QStringList{u"7: 70 bytes"_s};
    QTest::newRow("graphics alone") << compute + "fails 4\n" + graphics + "7 70\n"
                                    << QStringList{u"7: 70 bytes"_s};
    QTest::newRow("in both lists: the larger") << compute + "7 70\n" + graphics + "7 80\n"
                                               << QStringList{u"7: 80 bytes"_s};
    QTest::newRow("in both lists, one of which does not know") << compute + "7 70\n" + graphics
            + "7 none\n" << QStringList{u"7: 70 bytes"_s};
    QTest::newRow("not available") << compute + "7 none\n" + graphics + "fails 3\n"
                                   << QStringList{u"7:"_s};
    QTest::newRow("more bytes than any card has") << compute + "7 1125899906842625\n" + graphics
            + "fails 3\n" << QStringList{u"7:"_s};
    QTest::newRow("no process has number 0 or a negative one")
        << compute + "0 5 4294967295 6 7 70\n" + graphics + "fails 3\n"
        << QStringList{u"7: 70 bytes"_s};
}

void TestNvidiaProcesses::listsMemory()
{
    QFETCH(QByteArray, script);
    const StandInNvidia nvidia;
    nvidia.script(script);
    QTEST(Bench().read(), "texts");
}

void TestNvidiaProcesses::asksAgainForALongList()
{
    const StandInNvidia nvidia;
    QByteArray script = compute;
    for (int pid = 1; pid <= 300; ++pid)
        script += QByteArray::number(pid) + " 10 ";
    nvidia.script(script + '\n' + graphics + "fails 3\n");
    Bench bench;
    QCOMPARE(bench.read().size(), 300);
    QCOMPARE(nvidia.calls("nvmlDeviceGetComputeRunningProcesses_v3"), 2);

    nvidia.script(compute + "fails 7\n" + graphics + "fails 7\n");
    QCOMPARE(bench.read(), QStringList{u"absent"_s});
}

void TestNvidiaProcesses::takesTheLoadFromEitherFunction_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("texts");
    const QByteArray two = compute + "7 70 8 80\n" + graphics + "fails 3\n";
    const QStringList without = {u"7: 70 bytes"_s, u"8: 80 bytes"_s};
    QTest::newRow("the first") << two + loads + "7 5 41\n"
                               << QStringList{u"7: 70 bytes 41 %"_s, u"8: 80 bytes"_s};
    QTest::newRow("the other, where the first is not supported") << two + loads + "fails 3\n"
            + newLoads + "8 5 42\n" << QStringList{u"7: 70 bytes"_s, u"8: 80 bytes 42 %"_s};
    QTest::newRow("neither, as on a GPU that is split") << two + loads + "fails 3\n" + newLoads
            + "fails 3\n" << without;
    QTest::newRow("another error asks no other function") << two + loads + "fails 4\n" + newLoads
            + "8 5 42\n" << without;
    QTest::newRow("more than all of the time") << two + loads + "7 5 101\n" << without;
    QTest::newRow("the last of several samples") << two + loads
            + "7 5 41 7 6 43\n" << QStringList{u"7: 70 bytes 43 %"_s, u"8: 80 bytes"_s};
}

void TestNvidiaProcesses::takesTheLoadFromEitherFunction()
{
    QFETCH(QByteArray, script);
    const StandInNvidia nvidia;
    nvidia.script(script);
    QTEST(Bench().read(), "texts");
}

void TestNvidiaProcesses::keepsALoadForSomeSeconds()
{
    const StandInNvidia nvidia;
    const QByteArray one = compute + "7 70\n" + graphics + "fails 3\n";
    nvidia.script(one + loads + "7 5000 41\n");
    Bench bench;
    QCOMPARE(bench.read(1000), QStringList{u"7: 70 bytes 41 %"_s});
    QCOMPARE(bench.read(1003), QStringList{u"7: 70 bytes 41 %"_s}); // Nothing new.
    QCOMPARE(bench.read(1007), QStringList{u"7: 70 bytes unused"_s});
    nvidia.script(one + loads + "7 6000 0\n");
    QCOMPARE(bench.read(1010), QStringList{u"7: 70 bytes 0 %"_s});
    nvidia.script(one + loads + "fails 3\n" + newLoads + "fails 3\n");
    QCOMPARE(bench.read(1020), QStringList{u"7: 70 bytes"_s}); // Nobody knows.
    nvidia.script(one + loads + "fails 6\n");
    QCOMPARE(bench.read(1021), QStringList{u"7: 70 bytes"_s}); // It may have worked before.
    QCOMPARE(bench.read(1028), QStringList{u"7: 70 bytes unused"_s});
}

QTEST_GUILESS_MAIN(TestNvidiaProcesses)
#include "tst_NvidiaProcesses.moc"
