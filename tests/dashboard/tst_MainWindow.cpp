#include "cards/MemoryCard.h"
#include "cards/UtilizationCard.h"
#include "charts/CoreBars.h"
#include "charts/Sparkline.h"
#include "controls/InfoButton.h"
#include "dashboard/DashboardHeader.h"
#include "dashboard/MainWindow.h"
#include "dashboard/WindowChoice.h"
#include "devices/PowerCard.h"
#include "gallery/ScriptedDay.h"
#include "gallery/ScriptedSamples.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/ProcessCard.h"
#include "lists/RowList.h"
#include "support/Rendering.h"

#include <QAccessible>
#include <QExposeEvent>
#include <QFocusFrame>
#include <QPointer>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const ChipInfo chip{.name = u"Apple M3 Max"_s, .aneMaxW = 8};

/// The dashboard on the screen.
struct Shown {
    explicit Shown(const QSize &size = {1280, 900}, const ChipInfo &info = chip)
        : window(nullptr, info)
    {
        window.resize(size);
        window.QWidget::show();
    }

    void showAll()
    {
        window.show(scriptedCurrent(), scriptedHistory());
        window.showProcesses(scriptedProcesses());
        window.showWorkloads(scriptedWorkloads());
    }

    QStringList quickNumbers() const
    {
        QStringList values;
        for (const AccessibleText &text : window.findChild<DashboardHeader *>()->accessibleTexts())
            values.append(text.value);
        return values.sliced(2);
    }

    template <typename Part>
    Part *part() const
    {
        return window.findChild<Part *>();
    }

    MainWindow window;
};

/// Every name below an accessible object, depth first.
void collectNames(QAccessibleInterface *object, QStringList &names)
{
    names.append(object->text(QAccessible::Name));
    names.append(object->text(QAccessible::Value));
    for (int i = 0; i < object->childCount(); ++i)
        collectNames(object->child(i), names);
}

/// Shows the largest values of the records and the longest texts of a hostile process.
void showExtremes(MainWindow &window)
{
    constexpr std::uint64_t tebibytes = std::uint64_t(2) << 40;
    std::vector<SystemMetrics> history;
    for (int second = 0; second < 60; ++second) {
        history.push_back({.timestamp = second * 1e3,
                           .memory = {.total = tebibytes,
                                      .used = tebibytes - 1,
                                      .wired = tebibytes,
                                      .compressed = tebibytes,
                                      .cached = tebibytes,
                                      .appMemory = tebibytes,
                                      .swapTotal = tebibytes,
                                      .swapUsed = tebibytes - 12345,
                                      .pressure = MemoryPressure::critical},
                           .chip = ChipReading{.cpuWatts = 400,
                                               .gpuWatts = 1400,
                                               .aneWatts = 400,
                                               .cpuActiveFraction = 1,
                                               .gpuActiveFraction = 1,
                                               .cpuActiveMHz = 12345,
                                               .gpuDominantState = QString(300, u'W'),
                                               .cpuCoreUtilizations = std::vector<double>(192, 1),
                                               .cpuTempC = 149,
                                               .packageTempC = 149}});
    }
    window.show(history.back(), history);
    const QString marks = QString(4000, u'W') + u"\u202E\u2066\n<b>x</b>"_s;
    std::vector<ProcessRow> processes;
    std::vector<AIWorkload> workloads;
    for (int i = 0; i < 20; ++i) {
        processes.push_back({4194304 - i, marks, tebibytes});
        workloads.push_back(
            {4194304 - i, 4194304 - i, marks, AIFramework::transformers, marks, tebibytes});
    }
    window.showProcesses(processes);
    window.showWorkloads(workloads);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private slots:
    void hasAMinimumSize();
    void aNoticeTakesNothingFromTheGrid();
    void aNoticeReplacesTheOneBefore();
    void showsQuickNumbers();
    void showsZerosWithoutAReading();
    void reducesTheHistory();
    void takesNothingWhileHidden();
    void asksForTheNewestWhenShownAgain();
    void tellsWhenItIsNoLongerSeen();
    void keepsTheScaleOfASpikeWhileHidden();
    void everythingIsAccessible();
    void startsWithoutAFocusRing();
    void theHeaderChoosesTheWindowOfTime();
    void theChartsShowTheMeansOfAWindow();
    void stepsThroughItsPartsByTab();
    void repaintsOnlyWhatChanged();
    void leavesNoStalePixels();
    void fitsExtremeValues_data();
    void fitsExtremeValues();
    void barsAndRingsFit_data();
    void barsAndRingsFit();
    void showsEmptyRecords_data();
    void showsEmptyRecords();
};

void TestMainWindow::theHeaderChoosesTheWindowOfTime()
{
    Shown shown;
    QSignalSpy chosen(&shown.window, &MainWindow::historyWindowChosen);
    auto *choice = shown.part<WindowChoice>();
    QTest::mouseClick(choice->findChildren<QAbstractButton *>().back(), Qt::LeftButton);
    QCOMPARE(chosen.count(), 1);
    QVERIFY(chosen.front().front().value<HistoryWindow>() == HistoryWindow::oneDay);
    shown.window.setHistoryWindow(HistoryWindow::tenMin);
    QVERIFY(choice->chosen() == HistoryWindow::tenMin);
    QCOMPARE(chosen.count(), 1);
}

void TestMainWindow::theChartsShowTheMeansOfAWindow()
{
    Shown shown;
    shown.showAll();
    const Timeline day = scriptedDay(scriptedCurrent());
    const double now = scriptedCurrent().timestamp;
    shown.window.show(scriptedCurrent(), {scriptedHistory(), day.window(3'600, now)});
    const QList<Sparkline *> charts = shown.window.findChildren<Sparkline *>();
    QCOMPARE(charts.size(), 5);
    for (const Sparkline *chart : charts) {
        QVERIFY(chart->shown().showsMeans);
        QVERIFY(chart->shown().timestamps.size() > 300);
        QCOMPARE(chart->shown().band.size(), chart->shown().timestamps.size());
        QVERIFY2(chart->accessibleValue().contains(u'–'), qPrintable(chart->accessibleValue()));
    }
    shown.showAll();
    for (const Sparkline *chart : charts)
        QVERIFY(!chart->shown().showsMeans);
}

void TestMainWindow::hasAMinimumSize()
{
    Shown shown({100, 100});
    QCOMPARE(shown.window.size(), QSize(920, 760));
}

void TestMainWindow::aNoticeTakesNothingFromTheGrid()
{
    const int room = QGuiApplication::primaryScreen()->availableSize().height();
    Shown shown({920, 760});
    QVERIFY(room >= 760 + 40);
    const auto places = [&shown] {
        QList<QRect> all;
        for (const Card *card : shown.window.findChildren<Card *>())
            all.append(card->geometry());
        return all;
    };
    const QList<QRect> before = places();
    auto *bar = new QWidget;
    bar->setFixedHeight(40);
    shown.window.showNotice(bar);
    QCOMPARE(shown.window.size(), QSize(920, 800));
    QCOMPARE(shown.window.minimumSize(), QSize(920, 800));
    QCOMPARE(bar->geometry(), QRect(0, 760, 920, 40));
    QVERIFY(bar->isVisible());
    QCOMPARE(places(), before);
    shown.window.resize(1000, 790 + 40);
    QCOMPARE(bar->geometry(), QRect(0, 790, 1000, 40));

    delete bar;
    QCOMPARE(shown.window.minimumSize(), QSize(920, 760));
    QCOMPARE(shown.window.size(), QSize(1000, 790));
    shown.window.resize(920, 760);
    QCOMPARE(places(), before);
}

/// A second notice replaces the first, and one that is still open ends with the window.
void TestMainWindow::aNoticeReplacesTheOneBefore()
{
    const QPointer<QWidget> first = new QWidget;
    const QPointer<QWidget> second = new QWidget;
    {
        Shown shown;
        shown.window.showNotice(first);
        shown.window.showNotice(second);
        QVERIFY(!first);
        QCOMPARE(second->parentWidget(), &shown.window);
    }
    QVERIFY(!second);
}

void TestMainWindow::showsQuickNumbers()
{
    Shown shown;
    shown.showAll();
    QCOMPARE(shown.quickNumbers(), QStringList({u"71%"_s, u"48%"_s, u"90%"_s, u"49.7W"_s}));
    const std::vector<AccessibleText> texts = shown.part<DashboardHeader>()->accessibleTexts();
    QCOMPARE(texts[0].value, u"Corvane"_s);
    QCOMPARE(texts[1].value, u"Apple M3 Max"_s);
    // The last one ends on the cards' right edge; bounds are 2 wider than the text.
    QCOMPARE(qRound(texts[5].place.right()), 1280 - 32 + 2);
}

void TestMainWindow::showsZerosWithoutAReading()
{
    Shown shown;
    shown.window.show({}, std::vector<SystemMetrics>());
    QCOMPARE(shown.quickNumbers(), QStringList({u"0%"_s, u"0%"_s, u"0%"_s, u"0.0W"_s}));
    QCOMPARE(shown.part<PowerCard>()->accessibleText(u"Power"_s), u"peak 0.0 W"_s);
}

void TestMainWindow::reducesTheHistory()
{
    Shown shown;
    std::vector<SystemMetrics> history(500, scriptedCurrent());
    for (std::size_t i = 0; i < history.size(); ++i)
        history[i].timestamp = static_cast<double>(i);
    shown.window.show(history.back(), history);
    for (const Sparkline *chart : shown.window.findChildren<Sparkline *>()) {
        QCOMPARE(chart->shown().timestamps.size(), std::size_t(180));
        QCOMPARE(chart->shown().xDomain, (ChartRange{0, 499}));
    }
}

void TestMainWindow::takesNothingWhileHidden()
{
    Shown shown;
    shown.showAll();
    QCoreApplication::processEvents();
    shown.window.hide();
    SystemMetrics other = scriptedCurrent();
    other.memory.used = 0;
    shown.window.show(other, std::vector<SystemMetrics>{other});
    shown.window.showProcesses({});
    shown.window.showWorkloads({});
    QCOMPARE(shown.quickNumbers().first(), u"71%"_s);
    QCOMPARE(shown.part<ProcessCard>()->list()->rowCount(), 20);
    QCOMPARE(shown.part<AIWorkloadsCard>()->list()->rowCount(), 3);
}

void TestMainWindow::asksForTheNewestWhenShownAgain()
{
    MainWindow window(nullptr, chip);
    int requests = 0;
    connect(&window, &MainWindow::contentsNeeded, this, [&window, &requests] {
        ++requests;
        window.show(scriptedCurrent(), scriptedHistory());
        window.showProcesses(scriptedProcesses());
        window.showWorkloads(scriptedWorkloads());
    });
    window.show({}, std::vector<SystemMetrics>());
    QCOMPARE(requests, 0);
    window.QWidget::show();
    QCOMPARE(requests, 1);
    window.update(); // Nothing is missing while it is seen.
    QCoreApplication::processEvents();
    QCOMPARE(requests, 1);
    for (const bool minimized : {false, true}) {
        minimized ? window.showMinimized() : window.hide();
        window.show({}, std::vector<SystemMetrics>());
        window.showProcesses({});
        window.showWorkloads({});
        const int before = requests;
        window.showNormal();
        QCOMPARE(requests, before + 1);
        QCOMPARE(window.findChild<ProcessCard *>()->list()->rowCount(), 20);
        QCOMPARE(window.findChild<AIWorkloadsCard *>()->list()->rowCount(), 3);
    }
}

void TestMainWindow::tellsWhenItIsNoLongerSeen()
{
    MainWindow window(nullptr, chip);
    QStringList order;
    connect(&window, &MainWindow::contentsNeeded, this, [&order] { order.append(u"seen"_s); });
    connect(&window, &MainWindow::noLongerSeen, this, [&order] { order.append(u"unseen"_s); });
    window.QWidget::show();
    QCoreApplication::processEvents();
    window.showMinimized();
    window.hide(); // It was not seen before either.
    QCOMPARE(order, (QStringList{u"seen"_s, u"unseen"_s}));
    window.showNormal();
    window.close();
    QCOMPARE(order, (QStringList{u"seen"_s, u"unseen"_s, u"seen"_s, u"unseen"_s}));
}

void TestMainWindow::keepsTheScaleOfASpikeWhileHidden()
{
    Shown shown;
    shown.window.hide();
    SystemMetrics spike = scriptedCurrent();
    spike.chip->cpuWatts = 390;
    shown.window.show(spike, std::vector<SystemMetrics>{spike});
    shown.window.show(scriptedCurrent(), scriptedHistory());
    shown.window.QWidget::show();
    QVERIFY(shown.part<PowerCard>()->stableYMax() >= 423);
}

void TestMainWindow::everythingIsAccessible()
{
    Shown shown;
    shown.showAll();
    QStringList names;
    collectNames(QAccessible::queryAccessibleInterface(&shown.window), names);
    for (const QString &expected :
         {u"Memory: 71%"_s, u"Power: 49.7W"_s, u"Chip: Apple M3 Max"_s,
          u"Memory pressure: NORMAL"_s, u"App: 38.94 GB"_s, u"Swap: 1.37 GB / 3 GB"_s,
          u"Memory used in percent: 71"_s, u"Power and temperature: 16.69 W · 74°C"_s,
          u"Load: 17%"_s, u"Frequency: 3.27 GHz"_s, u"Dominant state: P12"_s,
          u"Load of the cores"_s, u"CPU load over time"_s, u"Package Power"_s,
          u"llama-server: 20.94 GB, 32.7%"_s,
          u"LM Studio, LM Studio Helper (Renderer): model unknown, 2.47 GB, pid 1864"_s})
        QVERIFY2(names.contains(expected), qPrintable(expected));
    QVERIFY(!names.filter(u"0: 71%"_s).isEmpty()); // The first core.
}

void TestMainWindow::startsWithoutAFocusRing()
{
    Shown shown;
    shown.window.activateWindow();
    QCoreApplication::processEvents();
    QVERIFY(!qobject_cast<InfoButton *>(QApplication::focusWidget()));
}

void TestMainWindow::stepsThroughItsPartsByTab()
{
    Shown shown;
    shown.showAll();
    // In reading order: the choice of the window of time, each card's info button, then its chart
    // or list.
    QList<QWidget *> expected;
    for (QAbstractButton *button : shown.part<WindowChoice>()->findChildren<QAbstractButton *>())
        expected.append(button);
    for (Card *card : shown.window.findChildren<Card *>()) {
        expected.append(card->findChild<InfoButton *>());
        if (auto *chart = card->findChild<Sparkline *>())
            expected.append(chart);
        if (auto *list = card->findChild<RowList *>())
            expected.append(list);
    }
    QCOMPARE(expected.size(), qsizetype(18));
    QList<QWidget *> stepped;
    for (QWidget *next = shown.window.nextInFocusChain(); next != &shown.window;
         next = next->nextInFocusChain()) {
        if (next->focusPolicy() & Qt::TabFocus)
            stepped.append(next);
    }
    QCOMPARE(stepped, expected);
    QVERIFY(!(shown.window.focusPolicy() & Qt::TabFocus)); // It would show no ring.
}

void TestMainWindow::repaintsOnlyWhatChanged()
{
    Shown shown;
    shown.showAll();
    QCoreApplication::processEvents();
    PaintWatch window(shown.window);
    PaintWatch header(*shown.part<DashboardHeader>());
    shown.showAll();
    QCoreApplication::processEvents();
    QCOMPARE(window.region() + header.region(), QRegion());

    SystemMetrics other = scriptedCurrent();
    other.chip->gpuActiveFraction = 0.5;
    shown.window.show(other, scriptedHistory());
    QCoreApplication::processEvents();
    QCOMPARE(window.region(), QRegion()); // Nothing below the opaque cards.
    QVERIFY(!header.region().isEmpty());
    QVERIFY(header.region().boundingRect().width() < 60);
}

/// Over a minute in which all numbers change, and without a chip reading.
void TestMainWindow::leavesNoStalePixels()
{
    Shown shown;
    const std::vector<SystemMetrics> minute = scriptedHistory();
    const std::vector<SystemMetrics> without = historyWithoutChip();
    std::vector<ProcessRow> processes = scriptedProcesses();
    QImage screen = onScreen(shown.window);
    for (std::size_t second = 1; second < minute.size(); second += 7) {
        const auto &samples = second < 50 ? minute : without;
        const auto end = samples.begin() + static_cast<std::ptrdiff_t>(second);
        shown.window.show(*end, std::vector<SystemMetrics>(samples.begin(), end));
        processes[second % processes.size()].memory = second << 28;
        shown.window.showProcesses(processes);
        if (second % 2 == 0)
            shown.window.showWorkloads(scriptedWorkloads());
        const QImage next = onScreen(shown.window);
        QVERIFY(next != screen);
        screen = next;
        QCOMPARE(stalePixels(shown.window), QRect());
    }
    shown.window.resize(1031, 777);
    QCOMPARE(stalePixels(shown.window), QRect());
}

void TestMainWindow::fitsExtremeValues_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("in the smallest window") << QSize(920, 760);
    QTest::newRow("in a large window") << QSize(2560, 1440);
}

void TestMainWindow::fitsExtremeValues()
{
    QFETCH(QSize, size);
    Shown shown(size, {.name = QString(4000, u'W') + u"\u202E"_s, .aneMaxW = 8});
    showExtremes(shown.window);
    for (const double scale : {1.0, 2.0})
        QVERIFY(!rendered(shown.window, scale).isNull());
    // No text leaves its card, and none of a header line runs into its neighbour.
    for (const AccessibleWidget *part : shown.window.findChildren<AccessibleWidget *>()) {
        if (qobject_cast<const RowList *>(part))
            continue;
        QRectF previous;
        for (const AccessibleText &text : part->accessibleTexts()) {
            QVERIFY2(text.place.left() >= -2 && text.place.right() <= part->width() + 2,
                     qPrintable(text.value.left(40)));
            if (qobject_cast<const DashboardHeader *>(part) && previous.bottom() > 0)
                QVERIFY(text.place.left() >= previous.left());
            previous = text.place;
        }
    }
}

void TestMainWindow::barsAndRingsFit_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("cpus");
    for (const QSize &size : {QSize(920, 760), QSize(1280, 900), QSize(2560, 1440)}) {
        for (const int cpus : {2, 4, 8, 16, 128, 1024})
            QTest::addRow("%d CPUs at %d x %d", cpus, size.width(), size.height()) << size << cpus;
    }
}

void TestMainWindow::barsAndRingsFit()
{
    QFETCH(QSize, size);
    QFETCH(int, cpus);
    Shown shown(size);
    shown.showAll();
    SystemMetrics sample = scriptedCurrent();
    sample.chip->cpuCoreUtilizations.assign(static_cast<std::size_t>(cpus), 0.5);
    shown.window.show(sample, std::vector<SystemMetrics>{sample});
    QVERIFY(QTest::qWaitForWindowActive(&shown.window));

    const auto *bars = shown.part<CoreBars>();
    const std::size_t count = barLoads(bars->shown()).size();
    const QRectF strip = stripPlace(bars->shown(), bars->rect());
    const std::vector<QRectF> places = evenRow(count, strip, bars->shown().spacing);
    QVERIFY(count <= static_cast<std::size_t>(cpus));
    QVERIFY(places.front().left() >= 0);
    QVERIFY(qAbs(places.back().right() - bars->width()) < 0.01); // The content's right edge.
    QVERIFY(places.front().width() >= 2);
    QVERIFY(cpus >= 8 || places.front().width() <= 32);
    QCOMPARE(bars->geometry().right() + 1, bars->parentWidget()->width() - 16);

    int rings = 0;
    for (const Card *card : shown.window.findChildren<Card *>()) {
        for (QWidget *part : card->findChildren<QWidget *>()) {
            if (part->focusPolicy() == Qt::NoFocus || !part->isVisible())
                continue;
            part->setFocus();
            for (const auto *ring : card->findChildren<QFocusFrame *>()) {
                if (!ring->isVisible())
                    continue;
                ++rings;
                QVERIFY(card->rect().contains(ring->geometry()));
            }
        }
    }
    QCOMPARE(rings, 7); // Of five charts and two lists.
}

void TestMainWindow::showsEmptyRecords_data()
{
    fitsExtremeValues_data();
}

void TestMainWindow::showsEmptyRecords()
{
    QFETCH(QSize, size);
    Shown shown(size, {});
    shown.window.show({}, std::vector<SystemMetrics>());
    shown.window.showProcesses({});
    shown.window.showWorkloads({});
    QVERIFY(!rendered(shown.window, 1).isNull());
    shown.window.showProcesses({{0, QString(), 0}});
    shown.window.showWorkloads({{}});
    QVERIFY(!rendered(shown.window, 2).isNull());
}

QTEST_MAIN(TestMainWindow)
#include "tst_MainWindow.moc"
