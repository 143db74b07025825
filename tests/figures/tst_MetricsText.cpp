#include "figures/MetricsText.h"

#include "figures/KnownMachines.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// The series of a text, without its comments.
QByteArrayList series(const QByteArray &text)
{
    QByteArrayList lines;
    for (const QByteArray &line : text.split('\n')) {
        if (!line.isEmpty() && !line.startsWith('#'))
            lines.append(line);
    }
    return lines;
}

} // namespace

class TestMetricsText : public QObject {
    Q_OBJECT

private slots:
    void isEmptyWhereNothingIsKnown();
    void explainsEachMetric();
    void hasTheSeriesOfACardMachine();
    void addsUpWorkloadsOfOneModel();
    void quotesHostileNames_data();
    void quotesHostileNames();
};

void TestMetricsText::isEmptyWhereNothingIsKnown()
{
    QCOMPARE(metricsText({}, {}, {}), QByteArray());
}

void TestMetricsText::explainsEachMetric()
{
    const QByteArrayList lines = metricsText(figuresOf(wholeChip(), {}), {}, {}).split('\n');
    QByteArray type;
    for (const QByteArray &line : lines) {
        if (line.startsWith("# TYPE "))
            type = line.split(' ')[2];
        else if (!line.isEmpty() && !line.startsWith('#'))
            QVERIFY2(line.startsWith(type), line.constData());
    }
    QVERIFY(lines.contains("# TYPE corvane_memory_used_bytes gauge"));
    QVERIFY(lines.contains("# HELP corvane_memory_used_bytes Memory in use."));
}

void TestMetricsText::hasTheSeriesOfACardMachine()
{
    const Figures figures = figuresOf(cardMachine(), {});
    const QByteArrayList expected{
        "corvane_memory_used_bytes 16000000000",
        "corvane_memory_total_bytes 64000000000",
        "corvane_swap_used_bytes 1000000",
        R"(corvane_memory_pressure{state="normal"} 0)",
        R"(corvane_memory_pressure{state="warning"} 1)",
        R"(corvane_memory_pressure{state="critical"} 0)",
        "corvane_cpu_busy_ratio 0.25",
        R"(corvane_temperature_celsius{part="cpu"} 61)",
        R"(corvane_gpu_busy_ratio{gpu="0",name="Card \"A\""} 0.97)",
        R"(corvane_gpu_memory_used_bytes{gpu="0",name="Card \"A\""} 21000000000)",
        R"(corvane_gpu_memory_total_bytes{gpu="0",name="Card \"A\""} 24000000000)",
        R"(corvane_gpu_memory_total_bytes{gpu="1",name="Card B"} 8000000000)",
        R"(corvane_gpu_power_watts{gpu="0",name="Card \"A\""} 318)",
        R"(corvane_gpu_temperature_celsius{gpu="0",name="Card \"A\""} 66)",
        R"(corvane_power_watts{part="gpu"} 318)",
        R"(corvane_energy_joules_total{part="gpu"} 636)",
    };
    QCOMPARE(series(metricsText(figures, {.gpu = 636}, {})), expected);
}

void TestMetricsText::addsUpWorkloadsOfOneModel()
{
    const AIWorkload first{.id = 1,
                           .framework = AIFramework::llamaCpp,
                           .model = u"q.gguf"_s,
                           .memory = 10,
                           .gpuMemory = 100,
                           .gpuFraction = 0.25};
    AIWorkload second = first;
    second.id = 2;
    const AIWorkload other{.id = 3, .framework = AIFramework::ollama, .memory = 5};
    const QByteArrayList expected{
        R"(corvane_ai_workload_memory_bytes{framework="Ollama",model="",kind="ram"} 5)",
        R"(corvane_ai_workload_memory_bytes{framework="llama.cpp",model="q.gguf",kind="ram"} 20)",
        R"(corvane_ai_workload_memory_bytes{framework="llama.cpp",model="q.gguf",kind="gpu"} 200)",
        R"(corvane_ai_workload_gpu_ratio{framework="llama.cpp",model="q.gguf"} 0.5)",
    };
    QCOMPARE(series(metricsText({}, {}, {first, second, other})), expected);
}

void TestMetricsText::quotesHostileNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("value");

    QTest::newRow("a quote") << u"a\"b"_s << QByteArray(R"(a\"b)");
    QTest::newRow("a backslash") << u"a\\b"_s << QByteArray(R"(a\\b)");
    QTest::newRow("a line end") << u"a\nb"_s << QByteArray(R"(a\nb)");
    QTest::newRow("a zero byte") << u"a"_s + QChar(0) + u"b"_s << QByteArray("ab");
    QTest::newRow("another script") << u"模型"_s << QByteArray("模型");
}

void TestMetricsText::quotesHostileNames()
{
    QFETCH(QString, name);
    QTEST(labelValue(name), "value");
}

QTEST_GUILESS_MAIN(TestMetricsText)
#include "tst_MetricsText.moc"
