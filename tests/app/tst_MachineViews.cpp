#include "chip/ChipSource_linux.h"
#include "gpu/StandInNvidia.h"
#include "memory/MemoryFiles_linux.h"
#include "memory/MemorySampler.h"
#include "panel/MenuBarContent.h"
#include "panel/PanelHeader.h"
#include "panel/PanelRow.h"
#include "sampler/SystemSampler.h"
#include "support/FakeTray.h"
#include "support/MachineTree.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"
#include "tray/MetricMenu.h"
#include "tray/TrayLabel.h"

#include <QAction>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Change = std::function<void(const MachineTree &)>;

/// What a machine's views say; written by hand from its files and the answers of its library.
struct Said {
    QString label = {};
    QString toolTip = {};
    QString header = {}; ///< Of the panel.
    QStringList rows = {};
};

QByteArray contents(const MachineTree &tree, const QString &path)
{
    QFile file(QString::fromStdString(tree.root()) + u'/' + path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// Each CPU works for a quarter of a second.
void workAQuarter(const MachineTree &tree)
{
    const QString path = u"proc/stat"_s;
    QStringList lines = QString::fromUtf8(contents(tree, path)).split(u'\n');
    static const QRegularExpression times(u"^(cpu[0-9]+) ([0-9]+) ([0-9]+) ([0-9]+) ([0-9]+)"_s);
    for (QString &line : lines) {
        const auto match = times.match(line);
        if (!match.hasMatch())
            continue;
        line = u"%1 %2 %3 %4 %5"_s.arg(match.captured(1))
                   .arg(match.captured(2).toLongLong() + 25)
                   .arg(match.captured(3), match.captured(4))
                   .arg(match.captured(5).toLongLong() + 75)
            + line.sliced(match.capturedLength());
    }
    tree.write(path.toStdString(), lines.join(u'\n').toStdString());
}

/// Adds to a counter of the kernel.
void count(const MachineTree &tree, const QString &path, qint64 more)
{
    const qint64 before = contents(tree, path).trimmed().toLongLong();
    QVERIFY(before > 0);
    tree.write(path.toStdString(), std::to_string(before + more) + '\n');
}

const QString packageEnergy = u"sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj"_s;

/// The places of the cards on the bus, for the library's script.
QByteArray busesOf(const QList<int> &buses)
{
    QByteArray lines;
    for (int card = 0; card < buses.size(); ++card)
        lines += "nvmlDeviceGetPciInfo_v3@" + QByteArray::number(card) + ' '
            + QByteArray::number(buses[card]) + " 0\n";
    return lines;
}

/// The program's sources below the root of a machine, and the views that show them.
class Views {
public:
    Views(const std::string &machine, const QByteArray &nvidia) : m_tree(machine)
    {
        m_nvidia.script(nvidia);
        if (!m_bus.start())
            qFatal("no bus");
        m_tray = std::make_unique<FakeTray>(m_bus.address(), "gnome-shell");
        const auto memory = std::make_shared<MemoryFiles>(m_tree.root());
        m_sampler = std::make_unique<SystemSampler>(
            m_settings,
            SamplerSources{.memory = [memory] { return MemorySampler::snapshot(memory->read()); },
                           .chip = openChipSourceBelow(
                               m_tree.root(), [this] { return m_seconds; }, STAND_IN_NVML),
                           .survey = {}},
            m_home.path());
        m_label = std::make_unique<TrayLabel>(
            QList<QAction *>(), nullptr, TrayWaits{.tray = 50ms, .quiet = 10ms, .check = 50ms});
    }

    /// A second in which every CPU works for a quarter, and what else happens.
    void live(const Change &change)
    {
        workAQuarter(m_tree);
        if (change)
            change(m_tree);
        m_seconds += 1;
        m_sampler->tick();
        m_label->show(m_sampler->current());
    }

    Said said()
    {
        const SystemMetrics &current = m_sampler->current();
        if (!QTest::qWaitFor([this] { return m_tray->items().size() == 1; }, patience))
            return {};
        const QString item = m_tray->items().first();
        MenuBarContent panel(secondsSinceBoot, nullptr, u"Chip"_s);
        panel.show(current);
        panel.toggleAt({400, 10});
        Said said{.label = m_tray->property(item, u"XAyatanaLabel"_s).toString(),
                  .toolTip = m_tray->property(item, u"IconAccessibleDesc"_s).toString(),
                  .header = panel.findChild<PanelHeader *>()->accessibleTexts().front().value};
        for (const PanelRow *row : panel.findChildren<PanelRow *>())
            said.rows.append(row->accessibleTexts().front().value);
        return said;
    }

    QString label() const { return inOneLine(labelNumbers(m_sampler->current())); }

    QStringList menu() const
    {
        MetricMenu menu({});
        emit menu.aboutToShow();
        menu.show(m_sampler->current());
        QStringList texts;
        for (const QAction *action : menu.actions()) {
            if (!action->isSeparator())
                texts.append(action->text());
        }
        return texts;
    }

private:
    double m_seconds = 1000;
    StandInNvidia m_nvidia;
    const MachineTree m_tree;
    const QTemporaryDir m_home;
    AppSettings m_settings;
    PrivateBus m_bus;
    std::unique_ptr<FakeTray> m_tray;
    std::unique_ptr<SystemSampler> m_sampler;
    std::unique_ptr<TrayLabel> m_label;
};

} // namespace

/// Everything that label, tool tip, panel and menus say on each of the machines, read through their
/// accessible texts.
class TestMachineViews : public QObject {
    Q_OBJECT

private slots:
    void sayWhatIsTrueOfTheMachine_data();
    void sayWhatIsTrueOfTheMachine();
};

void TestMachineViews::sayWhatIsTrueOfTheMachine_data()
{
    QTest::addColumn<std::string>("machine");
    QTest::addColumn<QByteArray>("nvidia");
    QTest::addColumn<Change>("change");
    QTest::addColumn<Said>("expected");
    const Change nothing;
    const QByteArray noEnergy = "nvmlDeviceGetTotalEnergyConsumption fails 3\n"; // Not supported.

    QTest::newRow("an NVIDIA card, CPU watts locked")
        << std::string("nvidia-desktop") << noEnergy << nothing
        << Said{.label = u"17 37 40 76W"_s,
                .toolTip = u"Memory 17 %, VRAM 37 %, GPU 40 %, GPU power 76 W"_s,
                .header = u"Corvane on Chip: 75.5 W GPU only"_s,
                .rows = {u"Memory: 10.99 GB / 62.68 GB, 18 %"_s,
                         u"VRAM: 8.38 GB / 22.35 GB, 38 %"_s, u"GPU: 40 %, 75.50 W"_s,
                         u"CPU: 25 %, 3.90 GHz"_s, u"Swap: 0 MB, of 8 GB"_s}};
    QTest::newRow("two NVIDIA cards, CPU watts locked")
        << std::string("nvidia-workstation-2")
        << noEnergy + "nvmlDeviceGetCount_v2 2\n" + busesOf({1, 0x21})
            + "nvmlDeviceGetUtilizationRates@1 94\n"
              "nvmlDeviceGetPowerUsage@0 231000\nnvmlDeviceGetPowerUsage@1 224500\n"
        << nothing
        << Said{.label = u"16 37 67 456W"_s,
                .toolTip = u"Memory 16 %, VRAM 37 %, GPU 67 %, GPU power 456 W"_s,
                .header = u"Corvane on Chip: 455.5 W GPUs only"_s,
                .rows = {u"Memory: 41.5 GB / 251.7 GB, 16 %"_s, u"VRAM: 16.76 GB / 44.7 GB, 38 %"_s,
                         u"GPU: 67 %, 40 · 94 %"_s, u"CPU: 25 %, 3.20 GHz"_s, u"Swap: off"_s}};
    QTest::newRow("four NVIDIA cards, CPU watts opened")
        << std::string("nvidia-workstation-4")
        << noEnergy + "nvmlDeviceGetCount_v2 4\n" + busesOf({1, 0x21, 0x41, 0x61})
            + "nvmlDeviceGetUtilizationRates@0 94\nnvmlDeviceGetUtilizationRates@1 93\n"
              "nvmlDeviceGetUtilizationRates@2 61\nnvmlDeviceGetUtilizationRates@3 0\n"
              "nvmlDeviceGetPowerUsage@0 268000\nnvmlDeviceGetPowerUsage@1 261000\n"
              "nvmlDeviceGetPowerUsage@2 187100\nnvmlDeviceGetPowerUsage@3 23000\n"
        << Change([](const MachineTree &tree) { count(tree, packageEnergy, 96'400'000); })
        << Said{.label = u"16 37 62 836W"_s,
                .toolTip = u"Memory 16 %, VRAM 37 %, GPU 62 %, Power 836 W"_s,
                .header = u"Corvane on Chip: 835.5 W in all"_s,
                .rows = {u"Memory: 41.5 GB / 251.7 GB, 16 %"_s,
                         u"VRAM: 33.53 GB / 89.41 GB, 38 %"_s, u"GPU: 62 %, 94 · 93 · 61 · 0 %"_s,
                         u"CPU: 25 %, 96.40 W"_s, u"Swap: off"_s}};
    QTest::newRow("eight NVIDIA cards, CPU watts locked")
        << std::string("nvidia-workstation-8")
        << noEnergy + "nvmlDeviceGetCount_v2 8\n"
            + busesOf({1, 0x21, 0x41, 0x61, 0x81, 0xa1, 0xc1, 0xe1})
        << nothing
        << Said{.label = u"16 37 40 604W"_s,
                .toolTip = u"Memory 16 %, VRAM 37 %, GPU 40 %, GPU power 604 W"_s,
                .header = u"Corvane on Chip: 604.0 W GPUs only"_s,
                .rows = {u"Memory: 41.5 GB / 251.7 GB, 16 %"_s,
                         u"VRAM: 67.06 GB / 178.81 GB, 38 %"_s,
                         u"GPU: 40 %, 40 · 40 · 40 · 40 · 40 · 40 · 40 · 40 %"_s,
                         u"CPU: 25 %, 3.20 GHz"_s, u"Swap: off"_s}};
    QTest::newRow("an AMD card, CPU watts opened")
        << std::string("amd-desktop") << QByteArray()
        << Change([](const MachineTree &tree) { count(tree, packageEnergy, 65'000'000); })
        << Said{.label = u"17 75 64 208W"_s,
                .toolTip = u"Memory 17 %, VRAM 75 %, GPU 64 %, Power 208 W"_s,
                .header = u"Corvane on Chip: 208.0 W in all"_s,
                .rows = {u"Memory: 5.56 GB / 31.25 GB, 18 %"_s, u"VRAM: 9.1 GB / 11.98 GB, 76 %"_s,
                         u"GPU: 64 %, 143.00 W"_s, u"CPU: 25 %, 65.00 W"_s,
                         u"Swap: 0 MB, of 8 GB"_s}};
    QTest::newRow("an APU with NPU")
        << std::string("amd-apu-npu-laptop") << QByteArray() << nothing
        << Said{.label = u"62 88 41W"_s,
                .toolTip = u"Memory 62 %, GPU 88 %, Power 41 W"_s,
                .header = u"Corvane on Chip: 41.2 W in all"_s,
                .rows = {u"Memory: 19 GB / 30.62 GB, 62 %"_s,
                         u"GPU Memory: 10.86 GB / 15.81 GB, 69 %"_s, u"GPU: 88 %, 21.63 W"_s,
                         u"CPU: 25 %, 9.84 W"_s, u"NPU: 17 %, 1.35 W"_s,
                         u"Swap: 214.5 MB, of 8 GB"_s}};
    QTest::newRow("a laptop whose NVIDIA card and NPU sleep")
        << std::string("intel-npu-nvidia-laptop") << QByteArray()
        << Change([](const MachineTree &tree) {
               const QString card = u"sys/devices/pci0000:00/0000:00:02.0/drm/card1/"_s;
               for (const QString &counter :
                    {u"gt/gt0/rc6_residency_ms"_s, u"gt/gt1/rc6_residency_ms"_s,
                     u"power/rc6_residency_ms"_s})
                   count(tree, card + counter, 940);
           })
        << Said{.label = u"17 zz 6 –"_s,
                .toolTip = u"Memory 17 %, VRAM asleep, Integrated GPU 6 %, Power –"_s,
                .header = u"Corvane on Chip: – nothing to read"_s,
                .rows = {u"Memory: 5.55 GB / 30.99 GB, 18 %"_s, u"VRAM: asleep, left asleep"_s,
                         u"GPU: 6 %, 450 MHz · integrated"_s, u"CPU: 25 %, 1.40 GHz"_s,
                         u"NPU: 0 %"_s, u"Swap: 0 MB, of 8 GB"_s}};
    QTest::newRow("an Arc card, whose memory in use is not told")
        << std::string("intel-arc-desktop") << QByteArray() << Change([](const MachineTree &tree) {
               const QString card =
                   u"sys/devices/pci0000:00/0000:00:01.0/0000:01:00.0/0000:02:01.0/0000:03:00.0/"_s;
               count(tree, card + u"hwmon/hwmon3/energy1_input"_s, 120'000'000);
               count(tree, card + u"tile0/gt0/gtidle/idle_residency_ms"_s, 250);
               count(tree, card + u"tile0/gt1/gtidle/idle_residency_ms"_s, 1000);
           })
        << Said{.label = u"14 – 75 120W"_s,
                .toolTip = u"Memory 14 %, VRAM: not published, GPU 75 %, GPU power 120 W"_s,
                .header = u"Corvane on Chip: 120.0 W GPU only"_s,
                .rows = {u"Memory: 4.66 GB / 31.1 GB, 15 %"_s,
                         u"VRAM: – / 11.91 GB, not published"_s, u"GPU: 75 %, 120.00 W"_s,
                         u"CPU: 25 %, 2.50 GHz"_s, u"Swap: 0 MB, of 8 GB"_s}};
    QTest::newRow("a GPU that shares the machine's memory")
        << std::string("nvidia-gb10")
        << noEnergy
            + "nvmlDeviceGetPciInfo_v3 1 15\nnvmlDeviceGetMemoryInfo_v2 fails 3\n"
              "nvmlDeviceGetMemoryInfo fails 3\n"
        << nothing
        << Said{.label = u"40 40 25"_s, // No watts: an integrated GPU's are part of the chip's.
                .toolTip = u"Memory 40 %, GPU 40 %, CPU 25 %"_s,
                .header = u"Corvane on Chip"_s,
                .rows = {u"Memory: 48.01 GB / 119.7 GB, 40 %"_s,
                         u"GPU Memory: 7.82 GB / 119.7 GB, 7 %"_s, u"GPU: 40 %, 2.61 GHz"_s,
                         u"CPU: 25 %, 50 °C"_s, u"Swap: 0 MB, of 16 GB"_s}};
    QTest::newRow("a virtual machine")
        << std::string("virtual-machine-chip") << QByteArray() << nothing
        << Said{.label = u"1 25"_s,
                .toolTip = u"Memory 1 %, CPU 25 %"_s,
                .header = u"Corvane on Chip"_s,
                .rows = {u"Memory: 272.8 MB / 23.54 GB, 1 %"_s, u"CPU: 25 %, 2.60 GHz nominal"_s,
                         u"Swap: off"_s}};
}

void TestMachineViews::sayWhatIsTrueOfTheMachine()
{
    QFETCH(std::string, machine);
    QFETCH(QByteArray, nvidia);
    QFETCH(Change, change);
    QFETCH(Said, expected);
    Views views(machine, nvidia);
    // Counters need two seconds, and the thread that reads the library as long as it takes.
    const auto isComplete = [&] {
        views.live(change);
        return views.label() == expected.label;
    };
    if (!QTest::qWaitFor(isComplete, patience))
        qInfo("The label never became the expected one.");
    const Said said = views.said();
    QCOMPARE(said.label, expected.label);
    QCOMPARE(said.toolTip, expected.toolTip);
    QCOMPARE(said.header, expected.header);
    QCOMPARE(said.rows, expected.rows);
    QCOMPARE(views.menu(), expected.rows);
}

QTEST_MAIN(TestMachineViews)
#include "tst_MachineViews.moc"
