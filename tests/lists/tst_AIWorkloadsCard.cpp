#include "gallery/ScriptedMachines.h"
#include "gallery/ScriptedSamples.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/FrameworkColor.h"
#include "lists/RowList.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"
#include "ui/Theme.h"

#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

struct Shown : ShownCard<AIWorkloadsCard> {
    Shown() : ShownCard(QSize(617, 304)) { }
};

AIWorkload workload(const QString &name, const std::optional<QString> &model)
{
    return {.id = 4711,
            .pid = 4711,
            .processName = name,
            .framework = AIFramework::generic,
            .model = model,
            .memory = std::uint64_t(1) << 30};
}

/// The lowest text on the card itself.
AccessibleText footOf(const AIWorkloadsCard &card)
{
    const auto texts = card.accessibleTexts();
    return *std::ranges::max_element(
        texts, {}, [](const AccessibleText &text) { return text.place.bottom(); });
}

/// The largest red component in the second line of the first row, a measure of the model's opacity.
int brightness(AIWorkloadsCard &card)
{
    const QImage image = rendered(card, 2);
    int most = 0;
    for (double y = 64; y < 78; y += 0.5) {
        for (double x = 56; x < 200; x += 0.5)
            most = std::max(most, pixelAt(image, x, y).red());
    }
    return most;
}

} // namespace

class TestAIWorkloadsCard : public QObject {
    Q_OBJECT

private slots:
    void showsAnEmptyState();
    void countsAndListsWorkloads();
    void showsAnUnknownModelFaintly();
    void paintsTilesInTheColorOfTheFramework_data();
    void paintsTilesInTheColorOfTheFramework();
    void elidesTextsBeforeTheMemory();
    void sanitizesHostileTexts();
    void namesMoreRunnersOnOtherMachines();
    void showsTheRoomForAModel();
    void rowsComeBeforeTheRoom();
    void explainsTheRoom();
    void putsRemarksBehindTheModelWhereThereIsRoom();
    void explainsRows();
    void hasARowForOtherProcesses();
    void repaintsOnlyChangedRows();
    void leavesNoStalePixels_data();
    void leavesNoStalePixels();
};

void TestAIWorkloadsCard::showsAnEmptyState()
{
    Shown shown;
    const QStringList empty{u"AI Workloads"_s, u"No AI inference detected"_s,
                            u"Launch Ollama, MLX, llama.cpp, LM Studio, ComfyUI, vLLM…"_s};
    QCOMPARE(shown.values(), empty);
    QVERIFY(!shown.card.list()->isVisible());
    shown.card.show(scriptedWorkloads());
    QCOMPARE(shown.values(), QStringList({u"AI Workloads"_s, u"3 active"_s}));
    QVERIFY(shown.card.list()->isVisible());
    shown.card.show({});
    QCOMPARE(shown.values(), empty);
    QVERIFY(!shown.card.list()->isVisible());
}

void TestAIWorkloadsCard::countsAndListsWorkloads()
{
    Shown shown;
    shown.card.show(scriptedWorkloads());
    QCOMPARE(shown.card.accessibleText(u"AI workloads"_s), u"3 active"_s);
    QCOMPARE(shown.card.list()->rowCount(), 3);
    QCOMPARE(shown.row(0).name, u"llama.cpp, llama-server"_s);
    QCOMPARE(shown.row(0).value, u"Qwen2.5-32B-Instruct-Q4_K_M.gguf, 20.94 GB, pid 48213"_s);
    QCOMPARE(shown.row(1).place, QRectF(16, 44, 585, 34));
}

void TestAIWorkloadsCard::showsAnUnknownModelFaintly()
{
    Shown shown;
    shown.card.show({workload(u"python"_s, u"model unkn"_s)});
    const int known = brightness(shown.card);
    for (const std::optional<QString> &model :
         {std::optional<QString>(), std::optional(QString())}) {
        shown.card.show({workload(u"python"_s, model)});
        QCOMPARE(shown.row(0).value, u"model unknown, 1 GB, pid 4711"_s);
        QVERIFY(brightness(shown.card) < known - 25);
    }
}

void TestAIWorkloadsCard::paintsTilesInTheColorOfTheFramework_data()
{
    QTest::addColumn<AIFramework>("framework");
    for (const AIFramework framework : allAIFrameworks)
        QTest::newRow(qPrintable(displayName(framework))) << framework;
}

void TestAIWorkloadsCard::paintsTilesInTheColorOfTheFramework()
{
    QFETCH(AIFramework, framework);
    Shown shown;
    AIWorkload shownWorkload = workload(u"x"_s, {});
    shownWorkload.framework = framework;
    shown.card.show({shownWorkload});
    QVERIFY(shown.row(0).name.startsWith(displayName(framework)));
    for (const double scale : {1.0, 2.0}) {
        // The tile is 30 × 30 at (16, 48); the colour at 0.18 over the card.
        const QImage image = rendered(shown.card, scale);
        const QColor ground = pixelAt(image, 50, 50);
        const QColor tile = pixelAt(image, 31, 50);
        const QColor color = Theme::withOpacity(frameworkColor(framework), 0.18);
        const auto over = [&](int above, int below) {
            return qRound(above * color.alphaF() + below * (1 - color.alphaF()));
        };
        QVERIFY(isClose(tile,
                        QColor(over(color.red(), ground.red()), over(color.green(), ground.green()),
                               over(color.blue(), ground.blue()))));
    }
}

void TestAIWorkloadsCard::elidesTextsBeforeTheMemory()
{
    Shown shown;
    shown.card.resize(437, 240);
    AIWorkload huge = workload(QString(4000, u'1'), QString(4000, u'm'));
    huge.memory = std::uint64_t(2048) << 30;
    huge.pid = 4194304;
    shown.card.show({huge});
    const QImage image = rendered(shown.card, 2);
    // "2048 GB" and "pid 4194304" are at most 64 wide; 12 before them stay empty.
    for (double y = 47; y < 79; y += 0.5)
        QVERIFY(pixelAt(image, 437 - 16 - 70, y).red() < 60);
}

void TestAIWorkloadsCard::sanitizesHostileTexts()
{
    Shown shown;
    shown.card.show({workload(u"a\u202Eb\nc"_s, u"<img src=x>\u2067*m*"_s)});
    QVERIFY(!shown.row(0).name.contains(QChar(0x202E)) && !shown.row(0).name.contains(u'\n'));
    QVERIFY(shown.row(0).value.startsWith(u"<img src=x>"_s));
    QVERIFY(!shown.row(0).value.contains(QChar(0x2067)));
    rendered(shown.card, 1);
}

void TestAIWorkloadsCard::namesMoreRunnersOnOtherMachines()
{
    Shown shown;
    shown.card.setMachine({.isWhole = false});
    QCOMPARE(shown.values().last(),
             u"Launch Ollama, llama.cpp, vLLM, SGLang, LM Studio, KoboldCpp, ComfyUI…"_s);
    shown.card.setMachine({});
    QCOMPARE(shown.values().last(), u"Launch Ollama, MLX, llama.cpp, LM Studio, ComfyUI, vLLM…"_s);
    shown.card.setMachine({.isWhole = false});
    shown.card.show(scriptedWorkloads());
    QCOMPARE(shown.values().size(), 2);
}

void TestAIWorkloadsCard::showsTheRoomForAModel()
{
    Shown shown;
    shown.card.show(scriptedWorkloads());
    const QRect whole = shown.card.list()->geometry();
    const auto change = [&] {
        shown.card.setRoom(ModelRoom{.bytes = gibibytes(13), .free = gibibytes(14)});
    };
    QCOMPARE(stalePixelsAfter(change, shown.card), QRect());
    QCOMPARE(footOf(shown.card).value, u"Room for a model of about 13 GB in memory"_s);
    QCOMPARE(shown.card.list()->geometry(), whole.adjusted(0, 0, 0, -30));
    const QRectF foot = footOf(shown.card).place;
    QVERIFY(foot.top() > shown.card.list()->geometry().bottom());
    QVERIFY(foot.bottom() <= shown.card.height() - 10);
    QCOMPARE(stalePixelsAfter([&] { shown.card.setRoom({}); }, shown.card), QRect());
    QCOMPARE(shown.card.list()->geometry(), whole);
    QCOMPARE(shown.values(), QStringList({u"AI Workloads"_s, u"3 active"_s}));
}

void TestAIWorkloadsCard::rowsComeBeforeTheRoom()
{
    Shown shown;
    const auto rows = [](std::size_t count) {
        return std::vector<AIWorkload>(count, workload(u"ollama"_s, u"qwen3:8b"_s));
    };
    shown.card.show(rows(1));
    const QRect whole = shown.card.list()->geometry();
    shown.card.setRoom(ModelRoom{.bytes = gibibytes(13), .free = gibibytes(14)});
    QCOMPARE(stalePixelsAfter([&] { shown.card.show(rows(5)); }, shown.card), QRect());
    QCOMPARE(footOf(shown.card).value, u"Room for a model of about 13 GB in memory"_s);
    QCOMPARE(stalePixelsAfter([&] { shown.card.show(rows(6)); }, shown.card), QRect());
    QCOMPARE(shown.values(), QStringList({u"AI Workloads"_s, u"6 active"_s}));
    QCOMPARE(shown.card.list()->geometry(), whole);
    QCOMPARE(stalePixelsAfter([&] { shown.card.show({}); }, shown.card), QRect());
    QCOMPARE(footOf(shown.card).value, u"Room for a model of about 13 GB in memory"_s);
}

void TestAIWorkloadsCard::explainsTheRoom()
{
    Shown shown;
    shown.card.setRoom(ModelRoom{.bytes = gibibytes(13), .free = gibibytes(14)});
    const AccessibleText foot = footOf(shown.card);
    QVERIFY(foot.description.startsWith(u"Programs can take 14 GB"_s));
    const QPoint place = foot.place.center().toPoint();
    QHelpEvent help(QEvent::ToolTip, place, shown.card.mapToGlobal(place));
    QVERIFY(QCoreApplication::sendEvent(&shown.card, &help));
    QVERIFY(QToolTip::text().contains(u"Programs can take 14 GB"_s));
    QToolTip::hideText();
}

void TestAIWorkloadsCard::putsRemarksBehindTheModelWhereThereIsRoom()
{
    Shown shown;
    AIWorkload known = workload(u"llama-server"_s, u"Qwen3 8B"_s);
    known.details.quantisation = u"Q4_K_M"_s;
    known.gpuFraction = 0.97;
    shown.card.show({known});
    QCOMPARE(shown.row(0).value, u"Qwen3 8B, Q4_K_M · 97 % of GPU, 1 GB, pid 4711"_s);
    // How far the second line reaches to the right.
    const auto reach = [&shown] {
        const QImage image = rendered(shown.card, 2);
        double last = 0;
        for (double x = 56; x < 500; x += 0.5) {
            for (double y = 66; y < 78; y += 0.5)
                last = pixelAt(image, x, y).red() > 70 ? x : last;
        }
        return last;
    };
    const double withBoth = reach();
    known.gpuFraction.reset();
    shown.card.show({known});
    const double withOne = reach();
    known.details.quantisation.reset();
    shown.card.show({known});
    const double alone = reach();
    QVERIFY(alone + 20 < withOne && withOne + 20 < withBoth);

    known.model = QString(200, u'm');
    shown.card.show({known});
    const QImage before = rendered(shown.card, 1);
    known.details.quantisation = u"Q4_K_M"_s;
    shown.card.show({known});
    QCOMPARE(rendered(shown.card, 1), before); // No room.
}

void TestAIWorkloadsCard::explainsRows()
{
    Shown shown;
    AIWorkload known = workload(u"ollama"_s, u"qwen3:8b"_s);
    known.details = {.origin = ModelOrigin::ollamaStore, .otherNames = {u"<b>a\u202E"_s}};
    shown.card.show({known});
    QVERIFY(shown.row(0).description.startsWith(u"qwen3:8b: named by Ollama's store\n"_s));
    const QPoint place = shown.row(0).place.center().toPoint();
    QHelpEvent help(QEvent::ToolTip, place, shown.card.list()->mapToGlobal(place));
    QVERIFY(QCoreApplication::sendEvent(shown.card.list(), &help));
    QVERIFY(QToolTip::text().contains(u"Also stored as &lt;b&gt;a\uFFFD"_s));
    QToolTip::hideText();
}

void TestAIWorkloadsCard::hasARowForOtherProcesses()
{
    Shown shown;
    const ScriptedMachine machine = oneCardMinute();
    shown.card.setMachine(machine.coverage());
    shown.card.setOtherGPUMemory(gibibytes(1.5));
    QCOMPARE(shown.card.list()->rowCount(), 0);
    shown.card.show(machine.workloads);
    QCOMPARE(shown.card.list()->rowCount(), 3);
    QCOMPARE(shown.card.accessibleText(u"AI workloads"_s), u"2 active"_s);
    QCOMPARE(shown.row(2).name, u"Other processes"_s);
    QCOMPARE(shown.row(2).value, u"1.5 GB VRAM"_s);
    QVERIFY(shown.row(2).description.contains(u"driver"_s));
    const auto change = [&](double gib) {
        return stalePixelsAfter([&] { shown.card.setOtherGPUMemory(gibibytes(gib)); }, shown.card);
    };
    QCOMPARE(change(2), QRect());
    QCOMPARE(change(0.19), QRect()); // Less than a workload needs to be listed.
    QCOMPARE(shown.card.list()->rowCount(), 2);
    QCOMPARE(change(3), QRect());
    shown.card.show(scriptedWorkloads()); // None of them tells its GPU memory.
    QCOMPARE(shown.card.list()->rowCount(), 3);
    shown.card.show({});
    QVERIFY(!shown.card.list()->isVisible());
}

void TestAIWorkloadsCard::repaintsOnlyChangedRows()
{
    Shown shown;
    std::vector<AIWorkload> workloads = scriptedWorkloads();
    shown.card.show(workloads);
    QCoreApplication::processEvents();
    PaintWatch list(*shown.card.list());
    PaintWatch card(shown.card);
    shown.card.show(workloads);
    QCoreApplication::processEvents();
    QCOMPARE(list.region() + card.region(), QRegion());
    workloads[1].memory += 64 << 20;
    shown.card.show(workloads);
    QCoreApplication::processEvents();
    QCOMPARE(list.region().boundingRect(), QRect(16, 44, 585, 34));
}

void TestAIWorkloadsCard::leavesNoStalePixels_data()
{
    using Workloads = std::vector<AIWorkload>;
    Workloads grown = scriptedWorkloads();
    grown[1].memory *= 2;
    Workloads unknown = scriptedWorkloads();
    unknown[0].model = std::nullopt;
    Workloads fewer = scriptedWorkloads();
    fewer.resize(1);
    QTest::addColumn<Workloads>("after");
    QTest::newRow("another byte count") << grown;
    QTest::newRow("a model that is no longer known") << unknown;
    QTest::newRow("fewer rows") << fewer;
    QTest::newRow("no rows") << Workloads();
}

void TestAIWorkloadsCard::leavesNoStalePixels()
{
    QFETCH(std::vector<AIWorkload>, after);
    Shown shown;
    for (const bool back : {false, true}) {
        shown.card.show(back ? after : scriptedWorkloads());
        const auto change = [&] { shown.card.show(back ? scriptedWorkloads() : after); };
        QCOMPARE(stalePixelsAfter(change, shown.card), QRect());
    }
}

QTEST_MAIN(TestAIWorkloadsCard)
#include "tst_AIWorkloadsCard.moc"
