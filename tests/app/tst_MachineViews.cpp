#include "app/FiguresInWords.h"
#include "cards/Card.h"
#include "chip/ChipSource_linux.h"
#include "dashboard/DashboardHeader.h"
#include "dashboard/MainWindow.h"
#include "figures/FiguresOutput.h"
#include "gpu/StandInNvidia.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/ProcessCard.h"
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
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <algorithm>
#include <functional>
#include <utility>

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
    QStringList dashboard = {}; ///< Header and cards, but for the lists.
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
                           .survey = {.take = [](const RankingReport &) { return Survey{}; }}},
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
        if (m_window)
            m_window->show(m_sampler->current(), m_sampler->history());
    }

    const MachineTree &tree() const { return m_tree; }

    /// Opens the dashboard, which then follows each second.
    void openWindow()
    {
        m_window = std::make_unique<MainWindow>(nullptr, ChipInfo{.name = u"Chip"_s});
        m_window->QWidget::show();
        m_window->show(m_sampler->current(), m_sampler->history());
    }

    /// A text of the open dashboard: of the card with that title, or of the header without one.
    /// Null without such a card or text.
    QString shown(const QString &title, const QString &name) const
    {
        for (const auto *part : m_window->findChildren<AccessibleWidget *>()) {
            const auto *card = qobject_cast<const Card *>(part);
            const bool isWanted = title.isEmpty()
                ? qobject_cast<const DashboardHeader *>(part) != nullptr
                : card && card->heading().title == title;
            if (!part->isVisible() || !isWanted)
                continue;
            for (const AccessibleText &text : part->accessibleTexts()) {
                if (text.name == name)
                    return text.value;
            }
        }
        return {};
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

    /// What `--json=once` prints after another second.
    QJsonObject figures(const Change &change)
    {
        QTemporaryFile file;
        if (!file.open())
            qFatal("no file");
        const FiguresOutput output(*m_sampler, FiguresForm::once, u"Chip"_s, file.handle());
        live(change);
        file.seek(0);
        return QJsonDocument::fromJson(file.readAll()).object();
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

    /// The header and each card of the dashboard in one line, from top left to bottom right; the
    /// lists have no processes here.
    QStringList dashboard() const
    {
        MainWindow window(nullptr, {.name = u"Chip"_s});
        window.QWidget::show();
        window.show(m_sampler->current(), m_sampler->history());
        QList<AccessibleWidget *> parts;
        for (auto *part : window.findChildren<AccessibleWidget *>()) {
            const bool isList =
                qobject_cast<AIWorkloadsCard *>(part) || qobject_cast<ProcessCard *>(part);
            const bool isCard = qobject_cast<Card *>(part) && !isList;
            if (part->isVisible() && (isCard || qobject_cast<DashboardHeader *>(part)))
                parts.append(part);
        }
        std::ranges::sort(parts, {},
                          [](const QWidget *part) { return std::pair(part->y(), part->x()); });
        QStringList lines;
        for (const AccessibleWidget *part : parts) {
            QStringList texts;
            for (const AccessibleText &text : part->accessibleTexts())
                texts.append(text.name.isEmpty() ? text.value : text.name + u": "_s + text.value);
            lines.append(texts.join(u"; "_s));
        }
        return lines;
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
    std::unique_ptr<MainWindow> m_window; ///< Null until it is opened.
};

constexpr int untilTheNextScan = 61; ///< Seconds in which every change is found.

/// What a text of the open dashboard says in the coming seconds, each new value once.
QStringList valuesWhile(Views &views, int seconds, const QString &title, const QString &name,
                        const Change &change = {})
{
    QStringList values;
    for (int second = 0; second < seconds; ++second) {
        views.live(change);
        const QString now = views.shown(title, name);
        if (values.isEmpty() || values.last() != now)
            values.append(now);
    }
    return values;
}

const std::string amdSlot =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";

void countPackage(const MachineTree &tree)
{
    count(tree, packageEnergy, 65'000'000);
}

/// Compares printed figures with what the dashboard says of the same machine, both ways: each of
/// its cards says what they tell, and they tell each number that it says.
void compareFigures(const QJsonObject &figures, const QStringList &dashboard)
{
    QMap<QString, QStringList> told = figuresInWords(figures);
    for (const QString &card : dashboard) {
        QStringList texts = card.split(u"; "_s);
        const QString title = texts.takeFirst();
        QStringList said = figuresOfCard(texts);
        QStringList words = told.take(title);
        said.sort();
        words.sort();
        QCOMPARE(words, said);
    }
    for (const QStringList &words : std::as_const(told))
        QCOMPARE(words, QStringList()); // Of a card that the machine does not have.
}

} // namespace

/// Everything that label, tool tip, panel, menus and dashboard say on each of the machines, read
/// through their accessible texts.
class TestMachineViews : public QObject {
    Q_OBJECT

private slots:
    void sayWhatIsTrueOfTheMachine_data();
    void sayWhatIsTrueOfTheMachine();
    void followEnergyCountersThatAreOpenedAndClosed();
    void followACardThatIsPluggedInAndOut();
    void followADriverThatIsUnloadedAndLoaded();
    void followACardThatFallsAsleepAndWakes();
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
        << Said{
               .label = u"17 37 40 76W"_s,
               .toolTip = u"Memory 17 %, VRAM 37 %, GPU 40 %, GPU power 76 W"_s,
               .header = u"Corvane on Chip: 75.5 W GPU only"_s,
               .rows = {u"Memory: 10.99 GB / 62.68 GB, 18 %"_s, u"VRAM: 8.38 GB / 22.35 GB, 38 %"_s,
                        u"GPU: 40 %, 75.50 W"_s, u"CPU: 25 %, 3.90 GHz"_s,
                        u"Swap: 0 MB, of 8 GB"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 18%; VRAM: 38%; CPU: 25%; GPU: 40%; GPU power: 75.5W"_s,
                   u"Memory; Memory used in percent: 18; Used: 10.99 GB; Total: 62.68 GB; Swap: 0 MB / 8 GB; Memory pressure: NORMAL; App: 10.99 GB; Wired: 1.1 GB; Compressed: 0 MB; Cached: 7.69 GB"_s,
                   u"VRAM; GPU memory used in percent: 38; Used: 8.38 GB; Total: 22.35 GB; Graphics card: NVIDIA GeForce RTX 4090; In use: 8.38 GB; Free: 13.97 GB"_s,
                   u"CPU; Power and temperature: 52°C; Load: 25%; Frequency: 3.90 GHz"_s,
                   u"GPU; Power and temperature: 75.50 W · 61°C; Load: 40%; Dominant state: P2 · 2.61 GHz"_s,
                   u"Power; Peak: peak 75.5 W; Power in watts: 76; Sum of: GPU only; Power of GPU: 75.50; Power of CPU: locked"_s}};
    QTest::newRow("two NVIDIA cards, CPU watts locked")
        << std::string("nvidia-workstation-2")
        << noEnergy + "nvmlDeviceGetCount_v2 2\n" + busesOf({1, 0x21})
            + "nvmlDeviceGetUtilizationRates@1 94\n"
              "nvmlDeviceGetPowerUsage@0 231000\nnvmlDeviceGetPowerUsage@1 224500\n"
        << nothing
        << Said{
               .label = u"16 37 67 456W"_s,
               .toolTip = u"Memory 16 %, VRAM 37 %, GPU 67 %, GPU power 456 W"_s,
               .header = u"Corvane on Chip: 455.5 W GPUs only"_s,
               .rows = {u"Memory: 41.5 GB / 251.7 GB, 16 %"_s, u"VRAM: 16.76 GB / 44.7 GB, 38 %"_s,
                        u"GPU: 67 %, 40 · 94 %"_s, u"CPU: 25 %, 3.20 GHz"_s, u"Swap: off"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 16%; VRAM: 38%; CPU: 25%; GPU: 67%; GPU power: 455.5W"_s,
                   u"Memory; Memory used in percent: 16; Used: 41.5 GB; Total: 251.7 GB; Swap: off; Memory pressure: NORMAL; App: 41.5 GB; Wired: 4.12 GB; Compressed: 0 MB; Cached: 28.19 GB"_s,
                   u"VRAM; GPU memory used in percent: 38; Used: 16.76 GB; Total: 44.7 GB; Graphics card: 2 × NVIDIA GeForce RTX 4090; Memory in use on GPU 0: 8.38; Memory of GPU 0: 22.35 GB; Memory in use on GPU 1: 8.38; Memory of GPU 1: 22.35 GB; In use: 16.76 GB; Free: 27.94 GB"_s,
                   u"CPU; Power and temperature: 60°C; Load: 25%; Frequency: 3.20 GHz"_s,
                   u"Power; Peak: peak 455.5 W; Power in watts: 456; Sum of: GPUs only; Power of GPU: 455.50; Power of CPU: locked; System · power supply: 612.00"_s,
                   u"GPU; Power and temperature: 455.50 W · 61°C; Load of GPU 0: 40%; Power and temperature of GPU 0: GPU 0 · 231 W · 61°C; Load of GPU 1: 94%; Power and temperature of GPU 1: GPU 1 · 224 W · 61°C; GPUs: 2"_s}};
    QTest::newRow("four NVIDIA cards, CPU watts opened")
        << std::string("nvidia-workstation-4")
        << noEnergy + "nvmlDeviceGetCount_v2 4\n" + busesOf({1, 0x21, 0x41, 0x61})
            + "nvmlDeviceGetUtilizationRates@0 94\nnvmlDeviceGetUtilizationRates@1 93\n"
              "nvmlDeviceGetUtilizationRates@2 61\nnvmlDeviceGetUtilizationRates@3 0\n"
              "nvmlDeviceGetPowerUsage@0 268000\nnvmlDeviceGetPowerUsage@1 261000\n"
              "nvmlDeviceGetPowerUsage@2 187100\nnvmlDeviceGetPowerUsage@3 23000\n"
        << Change([](const MachineTree &tree) { count(tree, packageEnergy, 96'400'000); })
        << Said{
               .label = u"16 37 62 836W"_s,
               .toolTip = u"Memory 16 %, VRAM 37 %, GPU 62 %, Power 836 W"_s,
               .header = u"Corvane on Chip: 835.5 W in all"_s,
               .rows = {u"Memory: 41.5 GB / 251.7 GB, 16 %"_s, u"VRAM: 33.53 GB / 89.41 GB, 38 %"_s,
                        u"GPU: 62 %, 94 · 93 · 61 · 0 %"_s, u"CPU: 25 %, 96.40 W"_s,
                        u"Swap: off"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 16%; VRAM: 38%; CPU: 25%; GPU: 62%; Power: 835.5W"_s,
                   u"Memory; Memory used in percent: 16; Used: 41.5 GB; Total: 251.7 GB; Swap: off; Memory pressure: NORMAL; App: 41.5 GB; Wired: 4.12 GB; Compressed: 0 MB; Cached: 28.19 GB"_s,
                   u"VRAM; GPU memory used in percent: 38; Used: 33.53 GB; Total: 89.41 GB; Graphics card: 4 × NVIDIA GeForce RTX 4090; Memory in use on GPU 0: 8.38; Memory of GPU 0: 22.35 GB; Memory in use on GPU 1: 8.38; Memory of GPU 1: 22.35 GB; Memory in use on GPU 2: 8.38; Memory of GPU 2: 22.35 GB; Memory in use on GPU 3: 8.38; Memory of GPU 3: 22.35 GB"_s,
                   u"CPU; Power and temperature: 96.40 W · 60°C; Load: 25%; Frequency: 3.20 GHz"_s,
                   u"Power; Peak: peak 835.5 W; Power in watts: 836; Sum of: CPU and GPUs; Power of CPU: 96.40; Power of GPU: 739.10"_s,
                   u"GPU; Power and temperature: 739.10 W · 61°C; Load of GPU 0: 94%; Power and temperature of GPU 0: 268 W · 61°C; Load of GPU 1: 93%; Power and temperature of GPU 1: 261 W · 61°C; Load of GPU 2: 61%; Power and temperature of GPU 2: 187 W · 61°C; Load of GPU 3: 0%; Power and temperature of GPU 3: 23 W · 61°C; GPUs: 4"_s}};
    QTest::newRow("eight NVIDIA cards, CPU watts locked")
        << std::string("nvidia-workstation-8")
        << noEnergy + "nvmlDeviceGetCount_v2 8\n"
            + busesOf({1, 0x21, 0x41, 0x61, 0x81, 0xa1, 0xc1, 0xe1})
        << nothing
        << Said{
               .label = u"16 37 40 604W"_s,
               .toolTip = u"Memory 16 %, VRAM 37 %, GPU 40 %, GPU power 604 W"_s,
               .header = u"Corvane on Chip: 604.0 W GPUs only"_s,
               .rows = {u"Memory: 41.5 GB / 251.7 GB, 16 %"_s,
                        u"VRAM: 67.06 GB / 178.81 GB, 38 %"_s,
                        u"GPU: 40 %, 40 · 40 · 40 · 40 · 40 · 40 · 40 · 40 %"_s,
                        u"CPU: 25 %, 3.20 GHz"_s, u"Swap: off"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 16%; VRAM: 38%; CPU: 25%; GPU: 40%; GPU power: 604.0W"_s,
                   u"Memory; Memory used in percent: 16; Used: 41.5 GB; Total: 251.7 GB; Swap: off; Memory pressure: NORMAL; App: 41.5 GB; Wired: 4.12 GB; Compressed: 0 MB; Cached: 28.19 GB"_s,
                   u"VRAM; GPU memory used in percent: 38; Used: 67.06 GB; Total: 178.81 GB; Graphics card: 8 × NVIDIA GeForce RTX 4090; Memory in use on GPU 0: 8.38; Memory of GPU 0: 22.35 GB; Memory in use on GPU 1: 8.38; Memory of GPU 1: 22.35 GB; Memory in use on GPU 2: 8.38; Memory of GPU 2: 22.35 GB; Memory in use on GPU 3: 8.38; Memory of GPU 3: 22.35 GB; Memory in use on GPU 4: 8.38; Memory of GPU 4: 22.35 GB; Memory in use on GPU 5: 8.38; Memory of GPU 5: 22.35 GB; Memory in use on GPU 6: 8.38; Memory of GPU 6: 22.35 GB; Memory in use on GPU 7: 8.38; Memory of GPU 7: 22.35 GB"_s,
                   u"CPU; Power and temperature: 60°C; Load: 25%; Frequency: 3.20 GHz"_s,
                   u"Power; Peak: peak 604.0 W; Power in watts: 604; Sum of: GPUs only; Power of GPU: 604.00; Power of CPU: locked; System · ACPI power meter: 3120.00"_s,
                   u"GPU; Power and temperature: 604.00 W · 61°C; Load of GPU 0: 40%; Power and temperature of GPU 0: 76 W · 61°C; Load of GPU 1: 40%; Power and temperature of GPU 1: 76 W · 61°C; Load of GPU 2: 40%; Power and temperature of GPU 2: 76 W · 61°C; Load of GPU 3: 40%; Power and temperature of GPU 3: 76 W · 61°C; Load of GPU 4: 40%; Power and temperature of GPU 4: 76 W · 61°C; Load of GPU 5: 40%; Power and temperature of GPU 5: 76 W · 61°C; Load of GPU 6: 40%; Power and temperature of GPU 6: 76 W · 61°C; Load of GPU 7: 40%; Power and temperature of GPU 7: 76 W · 61°C; GPUs: 8"_s}};
    QTest::newRow("an AMD card, CPU watts opened")
        << std::string("amd-desktop") << QByteArray()
        << Change([](const MachineTree &tree) { count(tree, packageEnergy, 65'000'000); })
        << Said{
               .label = u"17 75 64 208W"_s,
               .toolTip = u"Memory 17 %, VRAM 75 %, GPU 64 %, Power 208 W"_s,
               .header = u"Corvane on Chip: 208.0 W in all"_s,
               .rows = {u"Memory: 5.56 GB / 31.25 GB, 18 %"_s, u"VRAM: 9.1 GB / 11.98 GB, 76 %"_s,
                        u"GPU: 64 %, 143.00 W"_s, u"CPU: 25 %, 65.00 W"_s,
                        u"Swap: 0 MB, of 8 GB"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 18%; VRAM: 76%; CPU: 25%; GPU: 64%; Power: 208.0W"_s,
                   u"Memory; Memory used in percent: 18; Used: 5.56 GB; Total: 31.25 GB; Swap: 0 MB / 8 GB; Memory pressure: NORMAL; App: 5.56 GB; Wired: 694.1 MB; Compressed: 0 MB; Cached: 7.69 GB"_s,
                   u"VRAM; GPU memory used in percent: 76; Used: 9.1 GB; Total: 11.98 GB; Graphics card: AMD Radeon RX 6700/6700 XT/6750 XT / 6800M…; In use: 9.1 GB; Free: 2.88 GB"_s,
                   u"CPU; Power and temperature: 65.00 W · 56°C; Load: 25%"_s,
                   u"GPU; Power and temperature: 143.00 W · 67°C; Load: 64%; Dominant state: 2.58 GHz"_s,
                   u"Power; Peak: peak 208.0 W; Power in watts: 208; Sum of: CPU and GPU; Power of CPU: 65.00; Power of GPU: 143.00"_s}};
    QTest::newRow("an APU with NPU")
        << std::string("amd-apu-npu-laptop") << QByteArray() << nothing
        << Said{
               .label = u"62 88 41W"_s,
               .toolTip = u"Memory 62 %, GPU 88 %, Power 41 W"_s,
               .header = u"Corvane on Chip: 41.2 W in all"_s,
               .rows = {u"Memory: 19 GB / 30.62 GB, 62 %"_s,
                        u"GPU Memory: 10.86 GB / 15.81 GB, 69 %"_s, u"GPU: 88 %, 21.63 W"_s,
                        u"CPU: 25 %, 9.84 W"_s, u"NPU: 17 %, 1.35 W"_s,
                        u"Swap: 214.5 MB, of 8 GB"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 62%; GPU memory: 69%; CPU: 25%; GPU: 88%; Power: 41.2W"_s,
                   u"Memory; Memory used in percent: 62; Used: 19 GB; Total: 30.62 GB; Swap: 214.5 MB / 8 GB; Memory pressure: NORMAL; App: 19 GB; Wired: 11.12 GB; Compressed: 0 MB; Cached: 7.12 GB"_s,
                   u"GPU Memory; GPU memory used in percent: 69; Used: 10.86 GB; Total: 15.81 GB; In RAM: 10.46 GB, part of Wired; Graphics card: 0.5 GB own + 15.31 GB of RAM; In use: 10.86 GB; Free: 4.95 GB"_s,
                   u"CPU; Power and temperature: 9.84 W · 74°C; Load: 25%; Frequency: 2.00 GHz"_s,
                   u"GPU; Power and temperature: 21.63 W · 71°C; Load: 88%; Dominant state: 2.90 GHz"_s,
                   u"NPU; Power and temperature: 1.35 W; Load: 17%; Clock: 1.80 GHz"_s,
                   u"Power; Peak: peak 41.2 W; Power in watts: 41; Sum of: whole package; Power of CPU: 9.84; Power of GPU: 21.63; Power of NPU: 1.35; Power of Rest: 8.38; System · battery: 52.30"_s}};
    QTest::newRow("a laptop whose NVIDIA card sleeps, and whose NPU rests")
        << std::string("intel-npu-nvidia-laptop") << QByteArray()
        << Change([](const MachineTree &tree) {
               const QString card = u"sys/devices/pci0000:00/0000:00:02.0/drm/card1/"_s;
               for (const QString &counter :
                    {u"gt/gt0/rc6_residency_ms"_s, u"gt/gt1/rc6_residency_ms"_s,
                     u"power/rc6_residency_ms"_s})
                   count(tree, card + counter, 940);
           })
        << Said{
               .label = u"17 zz 6 –"_s,
               .toolTip = u"Memory 17 %, VRAM asleep, Integrated GPU 6 %, Power –"_s,
               .header = u"Corvane on Chip: – nothing to read"_s,
               .rows = {u"Memory: 5.55 GB / 30.99 GB, 18 %"_s, u"VRAM: asleep, left asleep"_s,
                        u"GPU: 6 %, 0.45 GHz · integrated"_s, u"CPU: 25 %, 1.40 GHz"_s,
                        u"NPU: 0 %"_s, u"Swap: 0 MB, of 8 GB"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 18%; VRAM: zz; CPU: 25%; GPU: 6%; GPU power: –"_s,
                   u"Memory; Memory used in percent: 18; Used: 5.55 GB; Total: 30.99 GB; Swap: 0 MB / 8 GB; Memory pressure: NORMAL; App: 5.55 GB; Wired: 682.3 MB; Compressed: 0 MB; Cached: 7.44 GB"_s,
                   u"VRAM; GPU memory used in percent: Asleep; The card sleeps and is left asleep; it shows here when something wakes it.; Graphics card: NVIDIA GPU 0"_s,
                   u"CPU; Power and temperature: 50°C; Load: 25%; Frequency: 1.40 GHz"_s,
                   u"GPU; Load: 6%; Dominant state: 0.45 GHz · integrated"_s, u"NPU; Load: 0%"_s,
                   u"Power; Peak: peak –; Power in watts: –; Sum of: nothing to read; Power of GPU: asleep; Power of CPU: locked"_s}};
    QTest::newRow("an Arc card, whose memory in use is not told")
        << std::string("intel-arc-desktop") << QByteArray() << Change([](const MachineTree &tree) {
               const QString card =
                   u"sys/devices/pci0000:00/0000:00:01.0/0000:01:00.0/0000:02:01.0/0000:03:00.0/"_s;
               count(tree, card + u"hwmon/hwmon3/energy1_input"_s, 120'000'000);
               count(tree, card + u"tile0/gt0/gtidle/idle_residency_ms"_s, 250);
               count(tree, card + u"tile0/gt1/gtidle/idle_residency_ms"_s, 1000);
           })
        << Said{
               .label = u"14 – 75 120W"_s,
               .toolTip = u"Memory 14 %, VRAM: not published, GPU 75 %, GPU power 120 W"_s,
               .header = u"Corvane on Chip: 120.0 W GPU only"_s,
               .rows = {u"Memory: 4.66 GB / 31.1 GB, 15 %"_s,
                        u"VRAM: – / 11.91 GB, not published"_s, u"GPU: 75 %, 120.00 W"_s,
                        u"CPU: 25 %, 2.50 GHz"_s, u"Swap: 0 MB, of 8 GB"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 15%; VRAM: –; CPU: 25%; GPU: 75%; GPU power: 120.0W"_s,
                   u"Memory; Memory used in percent: 15; Used: 4.66 GB; Total: 31.1 GB; Swap: 0 MB / 8 GB; Memory pressure: NORMAL; App: 4.66 GB; Wired: 286.1 MB; Compressed: 0 MB; Cached: 6.44 GB"_s,
                   u"VRAM; GPU memory used in percent: –; Total: 11.91 GB; The driver does not tell how much is in use.; Graphics card: Intel Arc B580"_s,
                   u"CPU; Power and temperature: 46°C; Load: 25%; Frequency: 2.50 GHz"_s,
                   u"GPU; Power and temperature: 120.00 W · 60°C; Load: 75%; Dominant state: 2.40 GHz"_s,
                   u"Power; Peak: peak 120.0 W; Power in watts: 120; Sum of: GPU only; Power of GPU: 120.00; Power of CPU: locked"_s}};
    QTest::newRow("a GPU that shares the machine's memory")
        << std::string("nvidia-gb10")
        << noEnergy
            + "nvmlDeviceGetPciInfo_v3 1 15\nnvmlDeviceGetMemoryInfo_v2 fails 3\n"
              "nvmlDeviceGetMemoryInfo fails 3\n"
        << nothing
        << Said{
               .label = u"40 40 25"_s, // No watts: an integrated GPU's are part of the chip's.
               .toolTip = u"Memory 40 %, GPU 40 %, CPU 25 %"_s,
               .header = u"Corvane on Chip"_s,
               .rows = {u"Memory: 48.01 GB / 119.7 GB, 40 %"_s,
                        u"GPU Memory: 7.82 GB / 119.7 GB, 7 %"_s, u"GPU: 40 %, 2.61 GHz"_s,
                        u"CPU: 25 %, 50 °C"_s, u"Swap: 0 MB, of 16 GB"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Memory: 40%; GPU memory: 7%; CPU: 25%; GPU: 40%"_s,
                   u"Memory; Memory used in percent: 40; Used: 48.01 GB; Total: 119.7 GB; Swap: 0 MB / 16 GB; Memory pressure: NORMAL; App: 48.01 GB; Wired: 27.63 GB; Compressed: 0 MB; Cached: 25.69 GB"_s,
                   u"GPU Memory; GPU memory used in percent: 7; Used: 7.82 GB; Total: 119.7 GB; In RAM: 7.82 GB; Graphics card: 119.7 GB of RAM; In use: 7.82 GB; Free: 111.88 GB"_s,
                   u"CPU; Power and temperature: 50°C; Load: 25%"_s,
                   u"GPU; Power and temperature: 61°C; Load: 40%; Dominant state: P2 · 2.61 GHz"_s}};
    QTest::newRow("a virtual machine")
        << std::string("virtual-machine-chip") << QByteArray() << nothing
        << Said{
               .label = u"1 25"_s,
               .toolTip = u"Memory 1 %, CPU 25 %"_s,
               .header = u"Corvane on Chip"_s,
               .rows = {u"Memory: 272.8 MB / 23.54 GB, 1 %"_s, u"CPU: 25 %, 2.60 GHz nominal"_s,
                        u"Swap: off"_s},
               .dashboard = {
                   u"Corvane; Chip: Chip; Note: no GPU, watts or temperatures to read here; Memory: 1%; CPU: 25%"_s,
                   u"Memory; Memory used in percent: 1; Used: 272.8 MB; Total: 23.54 GB; Swap: off; Memory pressure: NORMAL; App: 272.8 MB; Wired: 133.4 MB; Compressed: 0 MB; Cached: 1.09 GB"_s,
                   u"CPU; Load: 25%; Frequency: 2.60 GHz nominal"_s}};
}

void TestMachineViews::sayWhatIsTrueOfTheMachine()
{
    QFETCH(std::string, machine);
    QFETCH(QByteArray, nvidia);
    QFETCH(Change, change);
    QFETCH(Said, expected);
    Views views(machine, nvidia);
    // Counters need two seconds, the thread that reads the library as long as it takes, and the
    // peak three equal samples.
    int equalSamples = 0;
    const auto isComplete = [&] {
        views.live(change);
        equalSamples = views.label() == expected.label ? equalSamples + 1 : 0;
        return equalSamples == 3;
    };
    if (!QTest::qWaitFor(isComplete, patience))
        qInfo("The label never became the expected one.");
    const Said said = views.said();
    QCOMPARE(said.label, expected.label);
    QCOMPARE(said.toolTip, expected.toolTip);
    QCOMPARE(said.header, expected.header);
    QCOMPARE(said.rows, expected.rows);
    QCOMPARE(views.menu(), expected.rows);
    QCOMPARE(views.dashboard(), expected.dashboard);
    compareFigures(views.figures(change), expected.dashboard);
}

void TestMachineViews::followEnergyCountersThatAreOpenedAndClosed()
{
    Views views("intel-arc-desktop", {});
    views.openWindow();
    const QString card = u"Power"_s;
    const QString cpu = u"Power of CPU"_s;
    QCOMPARE(valuesWhile(views, 3, card, cpu), QStringList{u"locked"_s});

    // An administrator opens the counter: neither its first value nor a 0 is taken for watts.
    views.tree().write(packageEnergy.toStdString(), "262000000000\n");
    const Change work = [](const MachineTree &tree) { count(tree, packageEnergy, 30'000'000); };
    QCOMPARE(valuesWhile(views, untilTheNextScan, card, cpu, work),
             (QStringList{u"locked"_s, u"30.00"_s}));
    QCOMPARE(views.shown(u"CPU"_s, u"Power and temperature"_s), u"30.00 W · 46°C"_s);
    QCOMPARE(views.shown(card, u"Peak"_s), u"peak 30.0 W"_s);
    QCOMPARE(views.shown(card, u"Sum of"_s), u"CPU and GPU"_s);

    // And closes it: it is neither read nor opened again.
    views.tree().write(packageEnergy.toStdString(), "");
    views.tree().remove(packageEnergy.toStdString());
    QCOMPARE(valuesWhile(views, untilTheNextScan + 15, card, cpu),
             (QStringList{u"–"_s, u"locked"_s}));
    QCOMPARE(views.shown(u"CPU"_s, u"Power and temperature"_s), u"46°C"_s);
    QCOMPARE(views.shown(card, u"Sum of"_s), u"GPU only"_s);
}

void TestMachineViews::followACardThatIsPluggedInAndOut()
{
    Views views("virtual-machine-chip", {});
    views.openWindow();
    const QString card = u"VRAM"_s;
    const QString used = u"GPU memory used in percent"_s;
    QCOMPARE(valuesWhile(views, 3, card, used), QStringList{QString()});
    QCOMPARE(views.label(), u"1 25"_s);

    const MachineTree &tree = views.tree();
    tree.write(amdSlot + "/gpu_busy_percent", "50\n");
    tree.write(amdSlot + "/mem_busy_percent", "5\n");
    tree.write(amdSlot + "/mem_info_vram_total", "8589934592\n");
    tree.write(amdSlot + "/mem_info_vram_used", "2147483648\n");
    tree.link(amdSlot + "/driver", "sys/bus/pci/drivers/amdgpu");
    tree.link("sys/class/drm/card0/device", amdSlot);
    QCOMPARE(valuesWhile(views, untilTheNextScan, card, used), (QStringList{QString(), u"25"_s}));
    QCOMPARE(views.shown(u"GPU"_s, u"Load"_s), u"50%"_s);
    QCOMPARE(views.shown({}, u"VRAM"_s), u"25%"_s);
    QCOMPARE(views.label(), u"1 25 50 25"_s);

    // What the kernel answers for a device that has gone.
    for (const char *file : {"gpu_busy_percent", "mem_info_vram_total", "mem_info_vram_used"})
        tree.write(amdSlot + '/' + file, "");
    tree.remove("sys/class/drm/card0");
    QCOMPARE(valuesWhile(views, untilTheNextScan, card, used), (QStringList{u"–"_s, QString()}));
    QCOMPARE(views.shown(u"GPU"_s, u"Load"_s), QString());
    QCOMPARE(views.shown({}, u"VRAM"_s), QString());
    QCOMPARE(views.label(), u"1 25"_s);
}

void TestMachineViews::followADriverThatIsUnloadedAndLoaded()
{
    Views views("amd-desktop", {});
    views.openWindow();
    const QString card = u"GPU"_s;
    const QString load = u"Load"_s;
    QCOMPARE(valuesWhile(views, 3, card, load, countPackage), QStringList{u"64%"_s});

    const MachineTree &tree = views.tree();
    tree.write(amdSlot + "/gpu_busy_percent", "");
    tree.remove(amdSlot + "/driver");
    QCOMPARE(valuesWhile(views, untilTheNextScan, card, load, countPackage),
             (QStringList{u"–"_s, QString()}));
    QCOMPARE(views.shown(u"VRAM"_s, u"Total"_s), QString());
    QCOMPARE(views.label(), u"17 65W"_s);

    tree.write(amdSlot + "/gpu_busy_percent", "64\n");
    tree.link(amdSlot + "/driver", "sys/bus/pci/drivers/amdgpu");
    QCOMPARE(valuesWhile(views, untilTheNextScan, card, load, countPackage),
             (QStringList{QString(), u"64%"_s}));
    QCOMPARE(views.shown(u"VRAM"_s, u"Total"_s), u"11.98 GB"_s);
    QCOMPARE(views.label(), u"17 75 64 208W"_s);
}

void TestMachineViews::followACardThatFallsAsleepAndWakes()
{
    Views views("amd-desktop", {});
    views.openWindow();
    const QString power = u"Power"_s;
    const QString gpu = u"Power of GPU"_s;
    QCOMPARE(valuesWhile(views, 3, power, gpu, countPackage), QStringList{u"143.00"_s});

    views.tree().write(amdSlot + "/power/runtime_status", "suspended\n");
    QCOMPARE(valuesWhile(views, 3, power, gpu, countPackage), QStringList{u"asleep"_s});
    QCOMPARE(views.shown(u"GPU"_s, u"Load"_s), u"Asleep"_s);
    QCOMPARE(views.shown(u"VRAM"_s, u"GPU memory used in percent"_s), u"Asleep"_s);
    QCOMPARE(views.shown(u"VRAM"_s, u"Total"_s), u"11.98 GB"_s);
    QCOMPARE(views.shown(power, u"Sum of"_s), u"CPU only"_s);
    QCOMPARE(views.shown({}, u"VRAM"_s), u"zz"_s);
    QCOMPARE(views.label(), u"17 zz zz 65W"_s);

    views.tree().write(amdSlot + "/power/runtime_status", "active\n");
    QCOMPARE(valuesWhile(views, 3, power, gpu, countPackage), QStringList{u"143.00"_s});
    QCOMPARE(views.shown(u"GPU"_s, u"Load"_s), u"64%"_s);
    QCOMPARE(views.shown(power, u"Peak"_s), u"peak 208.0 W"_s);
    QCOMPARE(views.label(), u"17 75 64 208W"_s);
}

QTEST_MAIN(TestMachineViews)
#include "tst_MachineViews.moc"
