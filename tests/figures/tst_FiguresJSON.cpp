#include "figures/FiguresJSON.h"

#include "figures/KnownMachines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestFiguresJSON : public QObject {
    Q_OBJECT

private slots:
    void hasAKeyForEachKnownFigure();
    void hasNoKeyForWhatIsNotKnown();
    void hasEachGPU();
    void hasASurveyWhereThereIsOne();
    void quotesHostileNames();
    void leavesOutWhatIsNoNumber();
    void hasWhatABarShows();
};

void TestFiguresJSON::hasAKeyForEachKnownFigure()
{
    const QJsonObject object = figuresObject(figuresOf(wholeChip(), u"Chip"_s));
    QCOMPARE(object["version"_L1].toInt(), 1);
    QCOMPARE(object["time_seconds"_L1].toDouble(), 978307200.0);
    QCOMPARE(object["chip"_L1].toString(), u"Chip"_s);
    QCOMPARE(object["memory"_L1]["used_bytes"_L1].toInteger(), 16'000'000'000);
    QCOMPARE(object["memory"_L1]["pressure"_L1].toString(), u"normal"_s);
    QCOMPARE(object["cpu"_L1]["busy_ratio"_L1].toDouble(), 0.5);
    const QJsonObject watts{{"cpu"_L1, 10}, {"gpu"_L1, 30}, {"npu"_L1, 0}, {"sum"_L1, 40}};
    QCOMPARE(object["power_watts"_L1].toObject(), watts);
}

void TestFiguresJSON::hasNoKeyForWhatIsNotKnown()
{
    const QJsonObject object = figuresObject(figuresOf({}, {}));
    QCOMPARE(object.keys(), QStringList({u"gpus"_s, u"time_seconds"_s, u"version"_s}));
    const QJsonObject card = figuresObject(figuresOf(cardMachine(), {}));
    QVERIFY(!card["power_watts"_L1].toObject().contains("cpu"_L1));
    QVERIFY(!card.contains("npu"_L1));
    QVERIFY(!card.contains("processes"_L1));
}

void TestFiguresJSON::hasEachGPU()
{
    const QJsonArray gpus = figuresObject(figuresOf(cardMachine(), {}))["gpus"_L1].toArray();
    const QJsonObject awake{{"asleep"_L1, false},
                            {"busy_ratio"_L1, 0.97},
                            {"device"_L1, u"0000:01:00.0"_s},
                            {"frequency_hertz"_L1, 2.61e9},
                            {"integrated"_L1, false},
                            {"limited_by"_L1, u"power"_s},
                            {"memory_total_bytes"_L1, qint64(24'000'000'000)},
                            {"memory_used_bytes"_L1, qint64(21'000'000'000)},
                            {"name"_L1, u"Card \"A\""_s},
                            {"power_watts"_L1, 318},
                            {"state"_L1, u"P2"_s},
                            {"temperature_celsius"_L1, 66}};
    const QJsonObject asleep{{"asleep"_L1, true},
                             {"device"_L1, u"0000:02:00.0"_s},
                             {"integrated"_L1, false},
                             {"memory_total_bytes"_L1, qint64(8'000'000'000)},
                             {"name"_L1, u"Card B"_s}};
    QCOMPARE(gpus[0].toObject(), awake);
    QCOMPARE(gpus[1].toObject(), asleep);
}

void TestFiguresJSON::hasASurveyWhereThereIsOne()
{
    const SurveyFigures survey{.processes = {{.id = 7, .name = u"firefox"_s, .memory = 1000}},
                               .workloads = {{.id = 8,
                                              .pid = 8,
                                              .processName = u"llama-server"_s,
                                              .framework = AIFramework::llamaCpp,
                                              .model = u"q.gguf"_s,
                                              .memory = 2000,
                                              .gpuMemory = 3000}}};
    const QJsonObject object = figuresObject({}, survey);
    const QJsonObject process{{"pid"_L1, 7}, {"name"_L1, u"firefox"_s}, {"memory_bytes"_L1, 1000}};
    const QJsonObject workload{{"pid"_L1, 8},
                               {"name"_L1, u"llama-server"_s},
                               {"framework"_L1, u"llama.cpp"_s},
                               {"model"_L1, u"q.gguf"_s},
                               {"memory_bytes"_L1, 2000},
                               {"gpu_memory_bytes"_L1, 3000}};
    QCOMPARE(object["processes"_L1].toArray(), QJsonArray{process});
    QCOMPARE(object["workloads"_L1].toArray(), QJsonArray{workload});
}

/// One line of valid JSON and UTF-8, whatever the names are.
void TestFiguresJSON::quotesHostileNames()
{
    const QString name = QString::fromUtf8("a\"\\\n\x01\xff\xf0\x9f\x98\x80") + QChar(0);
    const QByteArray line =
        inOneLine(figuresObject({}, SurveyFigures{.processes = {{.id = 1, .name = name}}}));
    QCOMPARE(line.count('\n'), 1);
    QVERIFY(line.endsWith('\n'));
    const QJsonDocument read = QJsonDocument::fromJson(line);
    QCOMPARE(read["processes"_L1][0]["name"_L1].toString(), name);
}

void TestFiguresJSON::leavesOutWhatIsNoNumber()
{
    Figures figures;
    figures.cpu.watts = qInf();
    figures.cpu.busyRatio = qQNaN();
    const QJsonObject object = figuresObject(figures);
    QVERIFY(!object.contains("cpu"_L1));
    QVERIFY(!object.contains("power_watts"_L1));
}

void TestFiguresJSON::hasWhatABarShows()
{
    SystemMetrics sample = wholeChip();
    sample.memory.pressure = MemoryPressure::critical;
    const QJsonObject expected{{"text"_L1, u"25 75 40W"_s},
                               {"tooltip"_L1, u"Memory 25 %, GPU 75 %, Power 40 W"_s},
                               {"class"_L1, u"critical"_s},
                               {"alt"_L1, u"critical"_s},
                               {"percentage"_L1, 25}};
    QCOMPARE(barObject(sample), expected);
}

QTEST_GUILESS_MAIN(TestFiguresJSON)
#include "tst_FiguresJSON.moc"
