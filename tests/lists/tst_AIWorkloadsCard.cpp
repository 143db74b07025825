#include "gallery/ScriptedSamples.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/FrameworkColor.h"
#include "lists/RowList.h"
#include "support/Rendering.h"
#include "support/ShownCard.h"
#include "ui/Theme.h"

#include <QTest>

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
