// Renders the dashboard and the cards in all their states from scripted samples to PNG files:
//
//     corvane_gallery FOLDER [SCALE]
//
// Without a scale it runs itself at 1 and at 2, since Qt reads the scale when a program starts.

#include "app/AboutPanel.h"
#include "app/Commands.h"
#include "cards/InfoTexts.h"
#include "cards/MemoryCard.h"
#include "cards/UtilizationCard.h"
#include "charts/Sparkline.h"
#include "controls/ContextMenu.h"
#include "controls/InfoButton.h"
#include "controls/InfoPopover.h"
#include "dashboard/MainWindow.h"
#include "dashboard/WindowChoice.h"
#include "devices/PowerCard.h"
#include "devices/SmallPowerCard.h"
#include "figures/MetricsFile.h"
#include "gallery/ScriptedDay.h"
#include "gallery/ScriptedMachines.h"
#include "gallery/ScriptedSamples.h"
#include "gallery/ScriptedWorkloads.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/ProcessCard.h"
#include "lists/RowList.h"
#include "login/LaunchAtLoginManager.h"
#include "panel/MenuBarContent.h"
#include "sampler/SystemSampler.h"
#include "settings/SettingsWindow.h"
#include "support/ScriptedLoginItem.h"
#include "support/ScriptedUpdater.h"
#include "tray/TrayPicture.h"
#include "ui/Theme.h"
#include "updates/UpdaterManager.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QProcess>

#include <cstdio>
#include <functional>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const ChipInfo chip{.name = u"Apple M3 Max"_s, .cpuMaxW = 36, .gpuMaxW = 56, .aneMaxW = 8};

/// A window of that size with the dashboard's background.
class Backdrop : public QWidget {
public:
    explicit Backdrop(const QSize &size)
    {
        resize(size);
        setFocusPolicy(Qt::StrongFocus);
        setFocus();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(rect(), Theme::windowGradient(size()));
    }
};

class Gallery {
public:
    Gallery(const QDir &folder, const QString &scale) : m_folder(folder), m_scale(scale) { }

    bool save(QWidget &window, const QString &name) const
    {
        window.show();
        QCoreApplication::processEvents();
        const QString path = m_folder.filePath(u"%1@%2x.png"_s.arg(name).arg(m_scale));
        const bool saved = window.grab().save(path);
        std::printf("%s %s\n", saved ? "wrote" : "could not write", qPrintable(path));
        return saved;
    }

private:
    QDir m_folder;
    QString m_scale;
};

std::unique_ptr<MainWindow> dashboard(const QSize &size)
{
    auto window = std::make_unique<MainWindow>(nullptr, chip);
    window->resize(size);
    window->QWidget::show();
    window->show(scriptedCurrent(), scriptedHistory());
    window->showProcesses(scriptedProcesses());
    window->showWorkloads(scriptedWorkloads());
    return window;
}

void hover(Sparkline *chart, double share)
{
    const QPointF place(chart->width() * share, chart->height() / 2.0);
    QMouseEvent move(QEvent::MouseMove, place, chart->mapToGlobal(place), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(chart, &move);
}

bool dashboards(const Gallery &gallery)
{
    constexpr QSize usual(1280, 900);
    bool good = gallery.save(*dashboard(usual), u"dashboard"_s);
    good &= gallery.save(*dashboard({920, 760}), u"dashboard-min"_s);

    const auto byPower = dashboard(usual);
    hover(byPower->findChild<PowerCard *>()->chart(), 0.635);
    good &= gallery.save(*byPower, u"dashboard-hover-power"_s);
    const auto byCPU = dashboard(usual);
    hover(byCPU->findChild<UtilizationCard *>()->chart(), 0.42);
    good &= gallery.save(*byCPU, u"dashboard-hover-cpu"_s);

    const ChipInfo unknown{.name = u"Apple Silicon"_s, .aneMaxW = 8};
    MainWindow empty(nullptr, unknown);
    empty.resize(usual);
    empty.QWidget::show();
    empty.show(historyWithoutChip().back(), historyWithoutChip());
    return gallery.save(empty, u"dashboard-empty"_s) && good;
}

/// The rings of a chart and a list, the menu of the dashboard and that of a chart.
bool focusRingsAndMenus(const Gallery &gallery)
{
    const auto window = dashboard({1280, 900});
    const Commands commands;
    window->addActions(commands.ofDashboard());
    Sparkline *chart = window->findChild<UtilizationCard *>()->chart();
    chart->setFocus();
    bool good = gallery.save(*window, u"focus-chart"_s);
    window->findChild<ProcessCard *>()->list()->setFocus();
    good &= gallery.save(*window, u"focus-list"_s);

    QMenu *menu = popUpActions(*window, {100, 100});
    menu->setActiveAction(commands.about());
    good &= gallery.save(*menu, u"menu-dashboard"_s);
    menu->close();
    menu = popUpCopy(*chart, u"text"_s, {100, 100});
    good &= gallery.save(*menu, u"menu-chart"_s);
    menu->close();
    return good;
}

std::unique_ptr<MainWindow> dashboard(const ScriptedMachine &machine, const QSize &size)
{
    auto window =
        std::make_unique<MainWindow>(nullptr, ChipInfo{.name = machine.chip}, machine.coverage());
    window->resize(size);
    window->QWidget::show();
    window->showWorkloads(machine.workloads, machine.holders);
    window->show(machine.current(), machine.history);
    window->showProcesses(machine.processes);
    return window;
}

bool linuxDashboards(const Gallery &gallery)
{
    bool good = true;
    for (const ScriptedMachine &machine : allScriptedMachines()) {
        good &= gallery.save(*dashboard(machine, {1280, 900}), machine.name);
        good &= gallery.save(*dashboard(machine, {920, 760}), machine.name + u"-min"_s);
        good &= gallery.save(*dashboard(machine, {2560, 1440}), machine.name + u"-large"_s);
    }
    return good;
}

/// The windows of time that are longer than a minute.
constexpr std::array longWindows{HistoryWindow::tenMin, HistoryWindow::oneHour,
                                 HistoryWindow::oneDay};

void showWindow(MainWindow &window, const SystemMetrics &current,
                const std::vector<SystemMetrics> &history, const Timeline &day,
                HistoryWindow length)
{
    window.setHistoryWindow(length);
    window.showEnergy(day.energy(current.timestamp));
    window.show(current,
                {history, day.window(static_cast<double>(seconds(length)), current.timestamp)});
}

/// The dashboards of a Mac and of a machine with a card over hours.
bool hours(const Gallery &gallery)
{
    bool good = true;
    const ScriptedMachine card = oneCardMinute();
    const Timeline macDay = scriptedDay(scriptedCurrent());
    const Timeline cardDay = scriptedDay(card.current());
    for (const HistoryWindow length : longWindows) {
        const QString name = windowName(length).remove(u' ');
        for (const QSize &size : {QSize(1280, 900), QSize(920, 760)}) {
            const QString end = size.width() < 1000 ? name + u"-min"_s : name;
            const auto mac = dashboard(size);
            showWindow(*mac, scriptedCurrent(), scriptedHistory(), macDay, length);
            good &= gallery.save(*mac, u"hours-"_s + end);
            const auto machine = dashboard(card, size);
            showWindow(*machine, card.current(), card.history, cardDay, length);
            good &= gallery.save(*machine, u"linux-hours-"_s + end);
        }
    }
    const ScriptedMachine apu = apuMinute();
    const auto hovered = dashboard(apu, {1280, 900});
    showWindow(*hovered, apu.current(), apu.history, scriptedDay(apu.current()),
               HistoryWindow::oneDay);
    hover(hovered->findChild<SmallPowerCard *>()->chart(), 0.9);
    good &= gallery.save(*hovered, u"linux-hours-hover"_s);

    const ScriptedMachine cards = fourCardsMinute();
    const auto several = dashboard(cards, {1280, 900});
    showWindow(*several, cards.current(), cards.history, scriptedDay(cards.current()),
               HistoryWindow::oneHour);
    good &= gallery.save(*several, u"linux-hours-cards"_s);

    const auto brief = dashboard({1280, 900});
    showWindow(*brief, scriptedCurrent(), scriptedHistory(),
               scriptedDay(scriptedCurrent(), DayShape::brief), HistoryWindow::tenMin);
    good &= gallery.save(*brief, u"hours-one-point"_s);
    const auto none = dashboard({1280, 900});
    showWindow(*none, scriptedCurrent(), scriptedHistory(), {}, HistoryWindow::oneDay);
    return gallery.save(*none, u"hours-no-point"_s) && good;
}

/// What was measured of energy, below the explanation.
bool energyPopover(const Gallery &gallery)
{
    Backdrop window({649, 560});
    PowerCard card(&window);
    card.setGeometry(16, 16, 617, 262);
    const ScriptedMachine machine = apuMinute();
    card.showEnergy(scriptedDay(machine.current()).energy(machine.current().timestamp));
    card.show(machine.current(), machine.history);
    window.show();
    card.findChild<InfoButton *>()->click();
    return gallery.save(window, u"linux-popover-energy"_s);
}

bool unreadableGPU(const Gallery &gallery)
{
    Backdrop window({1280, 258});
    int left = 16;
    for (const Coverage coverage : {Coverage::asleep, Coverage::newDriver, Coverage::noLibrary}) {
        ScriptedMachine machine = oneCardMinute().with([coverage](MachineCoverage &tells) {
            tells.gpus[0].load = coverage;
            if (coverage == Coverage::asleep)
                tells.gpus[0].name = u"NVIDIA GeForce RTX 3060"_s;
        });
        for (SystemMetrics &sample : machine.history)
            sample.chip->gpus.clear();
        auto *card = new UtilizationCard(ComputeUnit::gpu, &window, chip);
        card->setGeometry(left, 16, 407, 226);
        card->show(machine.current(), machine.history);
        left += 407 + 14;
    }
    return gallery.save(window, u"linux-gpu-unreadable"_s);
}

bool lockedPopover(const Gallery &gallery)
{
    Backdrop window({438, 392});
    SmallPowerCard card(&window);
    card.setGeometry(16, 16, 406, 226);
    card.show(oneCardMinute().current(), oneCardMinute().history);
    window.show();
    card.findChild<InfoButton *>()->click();
    return gallery.save(window, u"linux-popover-locked"_s);
}

bool memoryPressure(const Gallery &gallery)
{
    Backdrop window({1280, 294});
    int left = 16;
    for (const MemoryPressure pressure : {MemoryPressure::warning, MemoryPressure::critical}) {
        auto *card = new MemoryCard(&window);
        card->setGeometry(left, 16, 617, 262);
        card->show(historyUnderPressure(pressure).back(), historyUnderPressure(pressure));
        left += 617 + 14;
    }
    return gallery.save(window, u"memory-pressure"_s);
}

bool infoPopover(const Gallery &gallery)
{
    Backdrop window({649, 322});
    PowerCard card(&window);
    card.setGeometry(16, 16, 617, 262);
    card.show(scriptedCurrent(), scriptedHistory());
    window.show();
    card.findChild<InfoButton *>()->click();
    const bool good = gallery.save(window, u"info-popover"_s);
    card.findChild<InfoButton *>()->click();

    // The Mac's wording, on every system.
    const InfoText mac = infoText(InfoTopic::power, HostSystem::mac);
    InfoPopover popover(mac.title, mac.text, card.findChild<InfoButton *>(),
                        InfoButton::clickArea());
    return gallery.save(window, u"info-popover-mac"_s) && good;
}

/// Saves a picture of one card on the dashboard's background.
bool saveCard(const Gallery &gallery, const QString &name, const QSize &size,
              const std::function<QWidget *(QWidget *parent)> &make)
{
    Backdrop window(size + QSize(32, 32));
    QWidget *card = make(&window);
    card->setGeometry(QRect(QPoint(16, 16), size));
    return gallery.save(window, name);
}

bool cards(const Gallery &gallery)
{
    constexpr QSize wide(617, 262);
    constexpr QSize narrow(406, 226);
    constexpr QSize tall(617, 304);
    bool good = saveCard(gallery, u"card-memory"_s, wide, [](QWidget *parent) {
        auto *card = new MemoryCard(parent);
        card->show(scriptedCurrent(), scriptedHistory());
        return card;
    });
    good &= saveCard(gallery, u"card-power"_s, wide, [](QWidget *parent) {
        auto *card = new PowerCard(parent);
        card->show(scriptedCurrent(), scriptedHistory());
        return card;
    });
    const auto utilization = [&](ComputeUnit kind, const QString &name) {
        return saveCard(gallery, name, narrow, [kind](QWidget *parent) {
            auto *card = new UtilizationCard(kind, parent, chip);
            card->show(scriptedCurrent(), scriptedHistory());
            return card;
        });
    };
    good &= utilization(ComputeUnit::cpu, u"card-cpu"_s);
    good &= utilization(ComputeUnit::gpu, u"card-gpu"_s);
    good &= utilization(ComputeUnit::ane, u"card-ane"_s);
    good &= saveCard(gallery, u"card-workloads"_s, tall, [](QWidget *parent) {
        auto *card = new AIWorkloadsCard(parent);
        card->show(scriptedWorkloads());
        return card;
    });
    good &= saveCard(gallery, u"card-processes-vram"_s, tall, [](QWidget *parent) {
        auto *card = new ProcessCard(parent);
        card->setGPUMemoryLabel(u"VRAM"_s);
        std::vector<ProcessRow> processes = scriptedProcesses();
        processes[0].gpuMemory = gibibytes(19.42);
        processes[2].gpuMemory = gibibytes(1.02);
        processes[3].gpuMemory = gibibytes(0.21);
        card->show(processes, gibibytes(64));
        return card;
    });
    return saveCard(gallery, u"card-processes"_s, tall,
                    [](QWidget *parent) {
                        auto *card = new ProcessCard(parent);
                        card->show(scriptedProcesses(), gibibytes(64));
                        return card;
                    })
        && good;
}

/// The workload card of a machine with that many workloads.
bool saveWorkloads(const Gallery &gallery, const QString &name, const ScriptedMachine &machine)
{
    return saveCard(gallery, name, {617, 304}, [&machine](QWidget *parent) {
        auto *card = new AIWorkloadsCard(parent);
        card->setMachine(machine.coverage());
        card->show(machine.workloads);
        card->setRoom(modelRoom(machine.current()));
        card->setOtherGPUMemory(unattributedMemory(machine.current(), machine.holders).value_or(0));
        return card;
    });
}

bool workloadCards(const Gallery &gallery)
{
    bool good = true;
    for (const int count : {1, 3, 12}) {
        good &= saveWorkloads(gallery, u"workloads-mac-%1"_s.arg(count), busyMac(count));
        good &= saveWorkloads(gallery, u"workloads-card-%1"_s.arg(count), busyCard(count));
        good &= saveWorkloads(gallery, u"workloads-apu-%1"_s.arg(count), busyAPU(count));
    }
    return good;
}

bool settings(const Gallery &gallery)
{
    ScriptedLoginItem enabled{.isEnabled = true};
    ScriptedLoginItem refusing{
        .refusal = u"The operation couldn’t be completed. Operation not permitted"_s};
    LaunchAtLoginManager on(enabled.item());
    LaunchAtLoginManager refused(refusing.item());
    UpdaterManager updater(std::make_unique<ScriptedUpdater>());
    auto found = std::make_unique<ScriptedUpdater>();
    found->find(u"Corvane 0.2.0 is available. Your system's software updater installs it."_s);
    UpdaterManager withFinding(std::move(found));

    AppSettings settings;
    SystemSampler sampler(settings,
                          {.memory = [] { return MemorySnapshot{}; }, .chip = {}, .survey = {}},
                          keepsNoHistory);
    const MetricsFile metrics(sampler, {});
    SettingsWindow general(on, updater, settings, metrics);
    bool good = gallery.save(general, u"settings-general"_s);
    refused.setEnabled(true);
    SettingsWindow error(refused, updater, settings, metrics);
    good &= gallery.save(error, u"settings-general-error"_s);
    SettingsWindow updates(on, updater, settings, metrics);
    updates.showTab(SettingsTab::updates);
    good &= gallery.save(updates, u"settings-updates"_s);
    SettingsWindow finding(on, withFinding, settings, metrics);
    finding.showTab(SettingsTab::updates);
    return gallery.save(finding, u"settings-updates-finding"_s) && good;
}

bool about(const Gallery &gallery)
{
    AboutPanel panel;
    AboutPanel mac(AboutTexts::current(bundleVersion(), HostSystem::mac));
    const bool good = gallery.save(panel, u"about"_s);
    return gallery.save(mac, u"about-mac"_s) && good;
}

/// The panel on this machine, as it opens.
bool panel(const Gallery &gallery, const QString &name, const QString &chipName,
           const SystemMetrics &sample)
{
    MenuBarContent content(secondsSinceBoot, nullptr, chipName);
    content.show(sample);
    return gallery.save(content, name);
}

/// Those whose panel and label are shown.
QList<ScriptedMachine> panelMachines()
{
    return {oneCardMinute(),        apuMinute(),           fourCardsMinute(), sleepingCardMinute(),
            integratedOnlyMinute(), virtualMachineMinute()};
}

bool panels(const Gallery &gallery)
{
    bool good = panel(gallery, u"panel"_s, chip.name, scriptedCurrent());
    for (const ScriptedMachine &machine : panelMachines()) {
        QString name = machine.name;
        name.insert(u"linux-"_s.size(), u"panel-"_s);
        good &= panel(gallery, name, machine.chip, machine.current());
    }
    return good;
}

/// The label as a wide picture and as squares, on a dark and on a light bar, a row for each
/// machine.
class Labels : public QWidget {
public:
    explicit Labels(const QList<SystemMetrics> &samples) : m_samples(samples)
    {
        resize(760, 10 + rowHeight * static_cast<int>(samples.size()));
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(46, 56, 76));
        double top = 10;
        for (const SystemMetrics &sample : m_samples) {
            const LabelNumbers numbers = labelNumbers(sample);
            double left = 20;
            for (const QColor &bar : {QColor(28, 30, 36), QColor(236, 237, 241)}) {
                painter.fillRect(QRectF(left, top, 171, 30), bar);
                painter.fillRect(QRectF(left + 366, top, 171, 30), bar);
                paintWide(painter, numbers, QPointF(left + 161, top + 6));
                paintSquares(painter, numbers, QPointF(left + 366 + 161, top + 4));
                left += 183;
            }
            top += rowHeight;
        }
    }

private:
    static constexpr int rowHeight = 40;
    static constexpr int wideHeight = 18;
    static constexpr int side = 22;

    /// Paints it in device pixels, to the left of that corner.
    void paintRight(QPainter &painter, QImage picture, const QPointF &topRight) const
    {
        picture.setDevicePixelRatio(devicePixelRatio());
        painter.drawImage(topRight - QPointF(picture.deviceIndependentSize().width(), 0), picture);
    }

    void paintWide(QPainter &painter, const LabelNumbers &numbers, const QPointF &topRight) const
    {
        paintRight(painter, widePicture(numbers, qRound(wideHeight * devicePixelRatio())),
                   topRight);
    }

    void paintSquares(QPainter &painter, const LabelNumbers &numbers, QPointF topRight) const
    {
        for (std::size_t place = numbers.size(); place-- > 0;) {
            paintRight(painter,
                       trayPicture(numbers[place], {place, numbers.size()},
                                   qRound(side * devicePixelRatio())),
                       topRight);
            topRight.rx() -= side + 2;
        }
    }

    QList<SystemMetrics> m_samples;
};

bool labels(const Gallery &gallery)
{
    Labels mac({scriptedCurrent()});
    QList<SystemMetrics> samples;
    for (const ScriptedMachine &machine : panelMachines())
        samples.append(machine.current());
    Labels linuxMachines(samples);
    const bool good = gallery.save(mac, u"labels"_s);
    return gallery.save(linuxMachines, u"linux-labels"_s) && good;
}

int renderAll(const QDir &folder, const QString &scale)
{
    const Gallery gallery(folder, scale);
    bool good = dashboards(gallery);
    good &= focusRingsAndMenus(gallery);
    good &= memoryPressure(gallery);
    good &= infoPopover(gallery);
    good &= cards(gallery);
    good &= workloadCards(gallery);
    good &= settings(gallery);
    good &= about(gallery);
    good &= panels(gallery);
    good &= labels(gallery);
    good &= linuxDashboards(gallery);
    good &= unreadableGPU(gallery);
    good &= hours(gallery);
    good &= energyPopover(gallery);
    good &= lockedPopover(gallery);
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: corvane_gallery FOLDER [SCALE]\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    if (!QDir().mkpath(folder))
        return 1;
    if (argc == 2) {
        const QString self = QString::fromLocal8Bit(argv[0]);
        return QProcess::execute(self, {folder, u"1"_s})
            | QProcess::execute(self, {folder, u"2"_s});
    }
    qputenv("QT_SCALE_FACTOR", argv[2]);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    const QApplication application(argc, argv);
    return renderAll(QDir(folder), QString::fromLocal8Bit(argv[2]));
}
