#include "lists/WorkloadText.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr std::uint64_t gib = std::uint64_t(1) << 30;

AIWorkload plain()
{
    return {.pid = 7,
            .processName = u"llama-server"_s,
            .framework = AIFramework::llamaCpp,
            .model = u"qwen3.gguf"_s,
            .memory = gib};
}

template <typename Change>
AIWorkload with(Change change)
{
    AIWorkload workload = plain();
    change(workload);
    return workload;
}

const QString ram = u"RAM: 1 GB, without files that are mapped"_s;

} // namespace

Q_DECLARE_METATYPE(AIWorkload)

class TestWorkloadText : public QObject {
    Q_OBJECT

private slots:
    void remarks_data();
    void remarks();
    void explains_data();
    void explains();
    void spans_data();
    void spans();
};

void TestWorkloadText::remarks_data()
{
    QTest::addColumn<AIWorkload>("workload");
    QTest::addColumn<QStringList>("remarks");
    const auto row = [](const char *name, auto change, const QStringList &remarks) {
        QTest::newRow(name) << with(change) << remarks;
    };
    row("nothing known", [](AIWorkload &) {}, {});
    row("a quantisation", [](AIWorkload &w) { w.details.quantisation = u"Q4_K_M"_s; },
        {u"Q4_K_M"_s});
    row("one that the name contains",
        [](AIWorkload &w) {
            w.model = u"qwen3-q4_k_m.gguf"_s;
            w.details.quantisation = u"Q4_K_M"_s;
        },
        {});
    row("a quantisation of an unknown model",
        [](AIWorkload &w) {
            w.model.reset();
            w.details.quantisation = u"Q8_0"_s;
        },
        {u"Q8_0"_s});
    row("a load", [](AIWorkload &w) { w.gpuFraction = 0.974; }, {u"97 % of GPU"_s});
    row("no load, not for long",
        [](AIWorkload &w) {
            w.gpuFraction = 0;
            w.details.idleSeconds = 59;
        },
        {u"0 % of GPU"_s});
    row("idle",
        [](AIWorkload &w) {
            w.gpuFraction = 0;
            w.details.idleSeconds = 12 * 60 + 59;
        },
        {u"idle for 12 min"_s});
    row("both: together, then each alone",
        [](AIWorkload &w) {
            w.details.quantisation = u"Q4_K_M"_s;
            w.gpuFraction = 0.5;
        },
        {u"Q4_K_M · 50 % of GPU"_s, u"50 % of GPU"_s, u"Q4_K_M"_s});
}

void TestWorkloadText::remarks()
{
    QFETCH(AIWorkload, workload);
    QTEST(modelRemarks(workload), "remarks");
}

void TestWorkloadText::explains_data()
{
    QTest::addColumn<AIWorkload>("workload");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, auto change, const QStringList &lines) {
        QTest::newRow(name) << with(change) << lines;
    };
    const auto named = [&row](const char *name, ModelOrigin origin, const QString &source) {
        row(name, [origin](AIWorkload &w) { w.details.origin = origin; },
            {u"qwen3.gguf: named by "_s + source, ram});
    };
    named("arguments", ModelOrigin::arguments, u"the command line"_s);
    named("a server", ModelOrigin::server, u"the command line of its server"_s);
    named("a store", ModelOrigin::ollamaStore, u"Ollama's store"_s);
    named("a header", ModelOrigin::fileHeader, u"the header of its file"_s);
    named("a used file", ModelOrigin::usedFile, u"a file that the process has open or mapped"_s);
    row("no model", [](AIWorkload &w) { w.model.reset(); },
        {u"model unknown: neither the command line nor a file in use names it"_s, ram});
    const QString first = u"qwen3.gguf: named by the command line"_s;
    row("details of the model",
        [](AIWorkload &w) {
            w.details.quantisation = u"Q4_K_M"_s;
            w.details.otherNames = {u"a:b"_s, u"c:d"_s};
            w.details.contextLength = 8192;
            w.details.trainedLength = 40960;
        },
        {first, u"Also stored as a:b, c:d"_s, u"Quantisation: Q4_K_M"_s,
         u"Context: 8192 tokens, as started; trained for 40960 tokens"_s, ram});
    row("memory",
        [](AIWorkload &w) {
            w.gpuMemory = 20 * gib;
            w.details.mappedBytes = 18 * gib;
        },
        {first, u"VRAM: 20 GB, as the GPU's driver tells it of each process"_s, ram,
         u"Weights mapped from files: 18 GB, shared with the system's cache and not added"_s});
    row("use",
        [](AIWorkload &w) {
            w.gpuFraction = 0;
            w.details.idleSeconds = 7200;
        },
        {first, ram, u"GPU load: 0 % of its time since the last look"_s,
         u"The model is loaded and has not used the GPU for 2 h at least"_s});
    row("parts",
        [](AIWorkload &w) {
            w.parts = {{.pid = 7, .name = u"a\nb"_s, .memory = gib, .gpuMemory = 2 * gib},
                       {.pid = 8, .name = u"worker"_s}};
        },
        {first, ram, u"Its processes:"_s, u"  a\uFFFDb: pid 7, 2 GB VRAM, 1 GB RAM"_s,
         u"  worker: pid 8"_s});
    QStringList many{first, ram, u"Its processes:"_s};
    for (int part = 0; part < 12; ++part)
        many.append(u"  w: pid %1"_s.arg(part));
    many.append(u"  and 8 more"_s);
    row(
        "many parts",
        [](AIWorkload &w) {
            for (int part = 0; part < 20; ++part)
                w.parts.push_back({.pid = part, .name = u"w"_s});
        },
        many);
}

void TestWorkloadText::explains()
{
    QFETCH(AIWorkload, workload);
    QFETCH(QStringList, lines);
    QCOMPARE(workloadExplanation(workload, u"VRAM"_s).split(u'\n'), lines);
    const QString apart = workloadExplanation(workload, QString());
    QVERIFY(!apart.contains(u"driver tells"_s)); // Where memory is not told apart.
}

void TestWorkloadText::spans_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("a minute") << qint64(60) << u"1 min"_s;
    QTest::newRow("rounded down") << qint64(3599) << u"59 min"_s;
    QTest::newRow("an hour") << qint64(3600) << u"1 h"_s;
    QTest::newRow("days") << qint64(200'000) << u"55 h"_s;
}

void TestWorkloadText::spans()
{
    QFETCH(qint64, seconds);
    QTEST(spanText(seconds), "text");
}

QTEST_GUILESS_MAIN(TestWorkloadText)
#include "tst_WorkloadText.moc"
