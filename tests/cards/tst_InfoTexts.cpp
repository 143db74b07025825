#include "cards/InfoTexts.h"
#include "ui/Markdown.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestInfoTexts : public QObject {
    Q_OBJECT

private slots:
    void hasTheSameTitleOnBothSystems_data();
    void hasTheSameTitleOnBothSystems();
    void isWordForWordOnTheMac_data();
    void isWordForWordOnTheMac();
    void hasParagraphsOnLinux();
    void closesEveryMark();
    void namesItsSourcesOnLinux_data();
    void namesItsSourcesOnLinux();
    void namesNoServiceOfTheOtherSystem();
    void takesThisSystemByDefault();
};

void TestInfoTexts::hasTheSameTitleOnBothSystems_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<QString>("title");
    QTest::newRow("memory") << InfoTopic::memory << u"Unified Memory"_s;
    QTest::newRow("power") << InfoTopic::power << u"Package Power"_s;
    QTest::newRow("CPU") << InfoTopic::cpu << u"CPU — Utilization"_s;
    QTest::newRow("GPU") << InfoTopic::gpu << u"GPU — Utilization"_s;
    QTest::newRow("Neural Engine") << InfoTopic::ane << u"Neural Engine — Power-derived load"_s;
    QTest::newRow("workloads") << InfoTopic::workloads << u"AI Workloads"_s;
    QTest::newRow("processes") << InfoTopic::processes << u"Top Processes"_s;
}

void TestInfoTexts::hasTheSameTitleOnBothSystems()
{
    QFETCH(InfoTopic, topic);
    QTEST(infoText(topic, HostSystem::mac).title, "title");
    QTEST(infoText(topic, HostSystem::linuxDesktop).title, "title");
}

void TestInfoTexts::isWordForWordOnTheMac_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<QStringList>("paragraphs");
    QTest::newRow("memory")
        << InfoTopic::memory
        << QStringList{
               u"Single physical RAM pool shared between CPU and GPU on Apple Silicon — there is no separate VRAM."_s,
               u"**App** active memory of running processes.  **Wired** kernel memory, never paged out.  **Compressed** pages compressed in place to avoid hitting swap.  **Cached** pages the OS keeps around for performance but can drop on demand."_s,
               u"**Swap** memory offloaded to disk — if it grows, you're past the comfortable limit.  **Pressure** Normal / Warning / Critical (read from `kern.memorystatus_vm_pressure_level`)."_s};
    QTest::newRow("power")
        << InfoTopic::power
        << QStringList{
               u"Sum of **CPU + GPU + ANE** in watts. Computed as `ΔEnergy / Δtime` from the **IOReport Energy Model** channels (`CPU Energy`, `GPU Energy`, `ANE`)."_s,
               u"Each channel reports in its own unit — on M5 Max the CPU channel is mJ while GPU is nJ; we convert per channel via `IOReportChannelGetUnitLabel`."_s,
               u"**Excludes** DRAM, memory controller, display backlight and I/O rails — compute only. The `peak` in the header is the maximum within the currently visible window."_s};
    QTest::newRow("CPU")
        << InfoTopic::cpu
        << QStringList{
               u"**Active residency %**: fraction of the last second the CPU clusters spent in any non-idle P-state."_s,
               u"⚠️ **This is not throughput.** A cluster can sit 100% active in P1 (its lowest active state) while drawing milliwatts. The real load is told by the **watts** and the **MHz** below, not by the percentage."_s,
               u"**MHz** is the residency-weighted average active frequency across E-cores and P-cores. The frequency table is read from the IORegistry (`pmgr/voltage-states*-sram`)."_s};
    QTest::newRow("GPU")
        << InfoTopic::gpu
        << QStringList{
               u"**Active residency %**: fraction of time the GPU spent in any non-idle P-state. Same caveat as the CPU — the GPU can show 80% while sitting in P1 with very little real load."_s,
               u"**Dominant state** (P1, P2…) is the P-state the GPU spent the most time in this sample. P1 is the minimum; higher numbers mean higher voltage/frequency/load."_s,
               u"For real load look at the **watts** on the Power card. Idle is typically 0.05–0.5 W; under heavy MLX/Metal it can climb past 30 W on M-Max chips."_s};
    QTest::newRow("Neural Engine")
        << InfoTopic::ane
        << QStringList{
               u"The **Apple Neural Engine** runs Core ML models and int8 convolutions with very high efficiency. It powers dictation, Vision, Face ID, and on-device ML in many apps."_s,
               u"macOS **does not expose ANE residency or active frequency** — there is no `ANE Stats` group in IOReport, unlike CPU/GPU. Every monitor in the wild (asitop, macmon, iStat-style tools) hits the same wall."_s,
               u"What we *can* read is **ANE power** from the IOReport `Energy Model` channel (`ANE` on M1–M4; `ANE0`/`ANE1` per die on Ultra). The percentage shown is `aneWatts / aneMaxW` for the detected chip — a load proxy, not residency. For M5 Max the ceiling is ≈10 W (not documented by Apple; calibrate in `ChipInfo` if you saturate the ANE and see higher)."_s,
               u"MLX inference typically runs on GPU/Metal, so the ANE will stay idle even under heavy load."_s};
    QTest::newRow("workloads")
        << InfoTopic::workloads
        << QStringList{
               u"Processes that look like local AI inference, detected by **process name + argv pattern matching**."_s,
               u"Currently recognised: **Ollama, MLX, llama.cpp, LM Studio, KoboldCpp, whisper.cpp, vLLM, ComfyUI, SD WebUI, HuggingFace Transformers**, plus generic torch jobs that reference a `.gguf` / `.safetensors` / `.ckpt` model file."_s,
               u"The model name is parsed from common flags (`--model`, `-m`, `--ckpt`, `ollama run X`) and from any model-file path on the command line. When the framework loads the model via IPC (LM Studio, some Ollama setups) the model field will say \"model unknown\"."_s,
               u"Only processes the current user can inspect are visible — sampled every 3 s."_s};
    QTest::newRow("processes")
        << InfoTopic::processes
        << QStringList{
               u"Processes ranked by **phys_footprint**: the same metric Activity Monitor uses for its \"Memory\" column (sum of resident + compressed physical pages attributable to the process)."_s,
               u"Sampled every 3 s via `proc_listpids` + `proc_pid_rusage(RUSAGE_INFO_V4)`."_s,
               u"Processes from **other users or root** may not appear because the app runs without elevated privileges; full visibility would require a privileged helper or debug entitlements."_s};
}

void TestInfoTexts::isWordForWordOnTheMac()
{
    QFETCH(InfoTopic, topic);
    QFETCH(QStringList, paragraphs);
    QCOMPARE(infoText(topic, HostSystem::mac).text, paragraphs.join(u"\n\n"_s));
}

void TestInfoTexts::hasParagraphsOnLinux()
{
    for (const InfoTopic topic : allInfoTopics) {
        const QString text = infoText(topic, HostSystem::linuxDesktop).text;
        QVERIFY2(text.split(u"\n\n"_s).size() >= 3, qPrintable(text));
    }
}

void TestInfoTexts::closesEveryMark()
{
    for (const InfoTopic topic : allInfoTopics) {
        for (const HostSystem system : {HostSystem::mac, HostSystem::linuxDesktop}) {
            for (const MarkdownRun &run : markdownRuns(infoText(topic, system).text)) {
                if (run.emphasis == Emphasis::code)
                    continue; // A pattern may hold an asterisk.
                QVERIFY2(!run.text.contains(u'*') && !run.text.contains(u'`'),
                         qPrintable(run.text));
            }
        }
    }
}

void TestInfoTexts::namesItsSourcesOnLinux_data()
{
    QTest::addColumn<InfoTopic>("topic");
    QTest::addColumn<QString>("source");
    QTest::newRow("memory") << InfoTopic::memory << u"/proc/meminfo"_s;
    QTest::newRow("pressure") << InfoTopic::memory << u"/proc/pressure/memory"_s;
    QTest::newRow("relation to free") << InfoTopic::memory << u"`free`"_s;
    QTest::newRow("energy") << InfoTopic::power << u"/sys/class/powercap"_s;
    QTest::newRow("opening the counters") << InfoTopic::power << u"energy_uj"_s;
    QTest::newRow("ticks") << InfoTopic::cpu << u"/proc/stat"_s;
    QTest::newRow("relation to top") << InfoTopic::cpu << u"`top`"_s;
    QTest::newRow("frequency") << InfoTopic::cpu << u"scaling_cur_freq"_s;
    QTest::newRow("GPU load") << InfoTopic::gpu << u"gpu_busy_percent"_s;
    QTest::newRow("NPU") << InfoTopic::ane << u"npu_busy_time_us"_s;
    QTest::newRow("arguments") << InfoTopic::workloads << u"cmdline"_s;
    QTest::newRow("footprint") << InfoTopic::processes << u"RssAnon + VmSwap"_s;
    QTest::newRow("hidden processes") << InfoTopic::processes << u"hidepid"_s;
}

void TestInfoTexts::namesItsSourcesOnLinux()
{
    QFETCH(InfoTopic, topic);
    QFETCH(QString, source);
    QVERIFY(infoText(topic, HostSystem::linuxDesktop).text.contains(source));
}

void TestInfoTexts::namesNoServiceOfTheOtherSystem()
{
    for (const InfoTopic topic : allInfoTopics) {
        const QString linuxText = infoText(topic, HostSystem::linuxDesktop).text;
        for (const QString &service :
             {u"Apple"_s, u"macOS"_s, u"IOReport"_s, u"IORegistry"_s, u"Metal"_s, u"kern."_s,
              u"Activity Monitor"_s, u"proc_"_s, u"Core ML"_s, u"P1"_s})
            QVERIFY2(!linuxText.contains(service), qPrintable(service));
        const QString macText = infoText(topic, HostSystem::mac).text;
        QVERIFY(!macText.contains(u"/proc"_s) && !macText.contains(u"/sys"_s));
        QVERIFY(macText != linuxText);
    }
}

void TestInfoTexts::takesThisSystemByDefault()
{
    QCOMPARE(infoText(InfoTopic::gpu).text, infoText(InfoTopic::gpu, hostSystem()).text);
}

QTEST_APPLESS_MAIN(TestInfoTexts)
#include "tst_InfoTexts.moc"
