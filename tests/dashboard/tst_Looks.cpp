#include "cards/MemoryCard.h"
#include "cards/UtilizationCard.h"
#include "dashboard/DashboardHeader.h"
#include "dashboard/MainWindow.h"
#include "devices/PowerCard.h"
#include "gallery/ScriptedSamples.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/FrameworkColor.h"
#include "lists/ProcessCard.h"
#include "panel/MenuBarContent.h"
#include "panel/PanelHeader.h"
#include "panel/PanelRow.h"
#include "support/Rendering.h"
#include "ui/Icon.h"
#include "ui/Theme.h"

#include <QTest>

#include <cmath>
#include <iterator>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const ChipInfo chip{.name = u"Apple M3 Max"_s, .cpuMaxW = 36, .gpuMaxW = 56, .aneMaxW = 8};

/// What is designed of a text besides its place.
struct Look {
    int size = 0; ///< In pixels at scale 1.
    QFont::Weight weight = QFont::Normal;
    QColor color = {};
    double letterSpacing = 0;
    Digits digits = Digits::fixedWidth;
    QString family = Theme::systemFont(10).family();
    bool isItalic = false;
    bool operator==(const Look &) const = default;
};

Look lookOf(const CardText &text)
{
    return {.size = text.font.pixelSize(),
            .weight = static_cast<QFont::Weight>(text.font.weight()),
            .color = text.color,
            .letterSpacing = std::round(text.font.letterSpacing() * 10) / 10, // Qt keeps 64ths.
            .digits = text.digits,
            .family = text.font.family(),
            .isItalic = text.font.italic()};
}

/// Whether a card has that icon of 16 points there, on a ground of one colour.
bool showsIcon(const Card &card, const QPointF &corner, const QString &symbol, const QColor &color)
{
    constexpr int scale = 2;
    constexpr int side = 16;
    QImage shown(QSize(side, side) * scale, QImage::Format_RGB32);
    shown.setDevicePixelRatio(scale);
    shown.fill(Qt::black);
    const_cast<Card &>(card).render(&shown, {}, QRect(corner.toPoint(), QSize(side, side)),
                                    QWidget::DrawChildren);
    QImage wanted = shown;
    wanted.fill(shown.pixel(0, 0));
    QPainter painter(&wanted);
    painter.setRenderHint(QPainter::Antialiasing);
    paintIcon(painter, symbol, QRectF(0, 0, side, side), color, SymbolWeight::semibold);
    painter.end();
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            if (!isClose(shown.pixelColor(x, y), wanted.pixelColor(x, y)))
                return false;
        }
    }
    return true;
}

template <typename Texts>
std::optional<Look> lookOf(const Texts &texts, const QString &words)
{
    const auto found = std::ranges::find(texts, words, &CardText::text);
    return found == texts.end() ? std::nullopt : std::optional(lookOf(*found));
}

} // namespace

/// The fonts and colours of the texts on a dashboard and a panel of scripted samples, and the icons
/// of cards and workloads.
class TestLooks : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void textsOfCards_data();
    void textsOfCards();
    void textsOfTheHeader_data();
    void textsOfTheHeader();
    void textsOfWorkloads_data();
    void textsOfWorkloads();
    void textsOfThePanel_data();
    void textsOfThePanel();
    void boxes_data();
    void boxes();
    void headings_data();
    void headings();
    void tiles_data();
    void tiles();

private:
    const Card *cardTitled(const QString &title) const;

    MainWindow m_filled{nullptr, chip};
    MainWindow m_empty{nullptr, chip};
    MenuBarContent m_panel{[] { return 0.0; }, nullptr, chip.name};
};

void TestLooks::initTestCase()
{
    m_filled.QWidget::show();
    m_filled.show(scriptedCurrent(), scriptedHistory());
    m_filled.showProcesses(scriptedProcesses());
    m_filled.showWorkloads(scriptedWorkloads());
    m_empty.QWidget::show();
    m_empty.show(historyWithoutChip().back(), historyWithoutChip());
    m_empty.showProcesses({});
    m_empty.showWorkloads({});
    m_panel.show(scriptedCurrent());
    m_panel.toggleAt({400, 10});
}

const Card *TestLooks::cardTitled(const QString &title) const
{
    const bool isEmpty = title.startsWith(u"empty "_s);
    const QString wanted = isEmpty ? title.mid(6) : title;
    for (const Card *card : (isEmpty ? m_empty : m_filled).findChildren<Card *>()) {
        if (card->heading().title == wanted)
            return card;
    }
    return nullptr;
}

void TestLooks::textsOfCards_data()
{
    QTest::addColumn<QString>("card");
    QTest::addColumn<QString>("words");
    QTest::addColumn<Look>("look");
    const auto row = [](const char *name, const QString &card, const QString &words,
                        const Look &look) { QTest::newRow(name) << card << words << look; };
    constexpr Digits proportional = Digits::proportional;
    const QString memory = u"Unified Memory"_s;
    const QString workloads = u"AI Workloads"_s;
    const QString processes = u"Top Processes by RAM"_s;

    row("title of memory", memory, memory, {13, QFont::DemiBold, Theme::memory, 0, proportional});
    row("title of power", u"Package Power"_s, u"Package Power"_s,
        {13, QFont::DemiBold, Theme::power, 0, proportional});
    row("title of the CPU", u"CPU"_s, u"CPU"_s, {13, QFont::DemiBold, Theme::cpu, 0, proportional});
    row("title of the GPU", u"GPU"_s, u"GPU"_s, {13, QFont::DemiBold, Theme::gpu, 0, proportional});
    row("title of the Neural Engine", u"Neural Engine"_s, u"Neural Engine"_s,
        {13, QFont::DemiBold, Theme::ane, 0, proportional});
    row("title of the workloads", workloads, workloads,
        {13, QFont::DemiBold, Theme::textPrimary, 0, proportional});
    row("title of the processes", processes, processes,
        {13, QFont::DemiBold, Theme::textPrimary, 0, proportional});

    row("badge of the pressure", memory, u"NORMAL"_s, {10, QFont::DemiBold, Theme::memory, 0.3});
    row("large figure", memory, u"71"_s,
        {44, QFont::DemiBold, Theme::textPrimary, -1, proportional});
    row("its per cent sign", memory, u"%"_s, {22, QFont::Medium, Theme::textSecondary});
    row("label of a memory chip", memory, u"Wired"_s, {10, QFont::Normal, Theme::textSecondary});
    row("value of a memory chip", memory, u"6.41 GB"_s, {10, QFont::DemiBold, Theme::textPrimary});
    row("label of swap", memory, u"Swap"_s, {11, QFont::Normal, Theme::textTertiary});
    row("value of swap", memory, u"1.37 GB / 3 GB"_s, {11, QFont::Normal, Theme::textSecondary});

    row("entry of the legend", u"Package Power"_s, u"ANE"_s,
        {10, QFont::Medium, Theme::textSecondary});
    row("stat of power", u"Package Power"_s, u"peak 48.3 W · pkg 68°C"_s,
        {11, QFont::Normal, Theme::textSecondary});

    row("figure of the CPU", u"CPU"_s, u"48%"_s,
        {34, QFont::DemiBold, Theme::cpu, -0.8, proportional});
    row("figure without a reading", u"empty CPU"_s, u"0%"_s,
        {34, QFont::DemiBold, Theme::withOpacity(Theme::cpu, 0.65), -0.8, proportional});
    row("figure of the GPU", u"GPU"_s, u"90%"_s,
        {34, QFont::DemiBold, Theme::gpu, -0.8, proportional});
    row("figure of the Neural Engine", u"Neural Engine"_s, u"17%"_s,
        {34, QFont::DemiBold, Theme::ane, -0.8, proportional});
    row("subtitle", u"CPU"_s, u"3.27 GHz"_s, {11, QFont::Normal, Theme::textSecondary});
    row("stat of the CPU", u"CPU"_s, u"16.69 W · 74°C"_s,
        {11, QFont::Normal, Theme::textSecondary});

    row("tag of the count", workloads, u"3 active"_s, {10, QFont::DemiBold, Theme::textSecondary});
    row("line without workloads", u"empty AI Workloads"_s, u"No AI inference detected"_s,
        {12, QFont::Medium, Theme::textPrimary});
    row("line without processes", u"empty Top Processes by RAM"_s, u"No process data yet"_s,
        {11, QFont::Normal, Theme::textSecondary});
}

void TestLooks::textsOfCards()
{
    QFETCH(QString, card);
    QFETCH(QString, words);
    QFETCH(Look, look);
    QVERIFY(cardTitled(card));
    const std::optional<Look> actual = lookOf(cardTitled(card)->texts(), words);
    QVERIFY2(actual, "the text is shown");
    QCOMPARE(actual->size, look.size);
    QCOMPARE(actual->weight, look.weight);
    QCOMPARE(actual->color, look.color);
    QCOMPARE(actual->letterSpacing, look.letterSpacing);
    QVERIFY(actual->digits == look.digits);
}

void TestLooks::textsOfTheHeader_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<Look>("look");
    constexpr Digits proportional = Digits::proportional;
    QTest::newRow("name") << u"Corvane"_s
                          << Look{16, QFont::DemiBold, Theme::textPrimary, -0.1, proportional};
    QTest::newRow("chip") << u"Apple M3 Max"_s
                          << Look{11, QFont::Normal, Theme::textSecondary, 0, proportional};
    for (const char *label : {"MEM", "CPU", "GPU", "PWR"})
        QTest::addRow("label %s", label)
            << QString::fromLatin1(label) << Look{9, QFont::DemiBold, Theme::textTertiary, 0.5};
    QTest::newRow("memory") << u"71%"_s << Look{13, QFont::DemiBold, Theme::memory};
    QTest::newRow("CPU") << u"48%"_s << Look{13, QFont::DemiBold, Theme::cpu};
    QTest::newRow("GPU") << u"90%"_s << Look{13, QFont::DemiBold, Theme::gpu};
    QTest::newRow("power") << u"49.7W"_s << Look{13, QFont::DemiBold, Theme::power};
}

void TestLooks::textsOfTheHeader()
{
    QFETCH(QString, words);
    QFETCH(Look, look);
    const auto *header = m_filled.findChild<DashboardHeader *>();
    QVERIFY(lookOf(header->texts(), words) == look);
}

void TestLooks::textsOfWorkloads_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("words");
    QTest::addColumn<Look>("look");
    const QColor faint = Theme::withOpacity(Theme::textTertiary, 0.6);
    const Look model{.size = 10,
                     .color = Theme::textTertiary,
                     .digits = Digits::proportional,
                     .family = Theme::monospacedFont(10).family()};
    const Look unknown{
        .size = 10, .color = faint, .digits = Digits::proportional, .isItalic = true};
    QTest::newRow("framework in its colour")
        << 0 << u"llama.cpp"_s << Look{12, QFont::DemiBold, frameworkColor(AIFramework::llamaCpp)};
    QTest::newRow("another framework in another colour")
        << 1 << u"MLX"_s << Look{12, QFont::DemiBold, frameworkColor(AIFramework::mlx)};
    QTest::newRow("process") << 0 << u"llama-server"_s
                             << Look{11, QFont::Normal, Theme::textSecondary};
    QTest::newRow("model") << 0 << u"Qwen2.5-32B-Instruct-Q4_K_M.gguf"_s << model;
    QTest::newRow("unknown model") << 2 << u"model unknown"_s << unknown;
    QTest::newRow("memory") << 0 << u"20.94 GB"_s << Look{11, QFont::DemiBold, Theme::textPrimary};
    QTest::newRow("process number")
        << 0 << u"pid 48213"_s << Look{9, QFont::Normal, Theme::textTertiary};
}

void TestLooks::textsOfWorkloads()
{
    QFETCH(int, row);
    QFETCH(QString, words);
    QFETCH(Look, look);
    const auto *card = m_filled.findChild<AIWorkloadsCard *>();
    const std::optional<Look> actual = lookOf(card->rowTexts(row, {16, 0, 585, 34}), words);
    QVERIFY2(actual, "the text is shown");
    QVERIFY(*actual == look);
}

void TestLooks::textsOfThePanel_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<Look>("look");
    const auto row = [](const char *name, const QString &words, const Look &look) {
        QTest::newRow(name) << words << look;
    };
    row("name", u"Corvane"_s, {13, QFont::DemiBold, Theme::textPrimary});
    row("watts", u"49.7 W"_s, {13, QFont::DemiBold, Theme::power});
    row("chip", u"Apple M3 Max"_s, {10, QFont::Normal, Theme::textTertiary});
    const std::array<std::array<QString, 3>, 5> rows{
        {{u"Memory"_s, u"45.44 GB / 64 GB"_s, u"71 %"_s},
         {u"GPU"_s, u"90 %"_s, u"31.62 W"_s},
         {u"CPU"_s, u"48 %"_s, u"16.69 W"_s},
         {u"ANE"_s, u"1.35 W"_s, u"Neural Engine"_s},
         {u"Swap"_s, u"1.37 GB"_s, u"of 3 GB"_s}}};
    for (const auto &[title, value, detail] : rows) {
        row(qPrintable(u"title of "_s + title), title, {12, QFont::Medium, Theme::textPrimary});
        row(qPrintable(u"value of "_s + title), value, {12, QFont::DemiBold, Theme::textPrimary});
        row(qPrintable(u"detail of "_s + title), detail, {10, QFont::Normal, Theme::textTertiary});
    }
}

void TestLooks::textsOfThePanel()
{
    QFETCH(QString, words);
    QFETCH(Look, look);
    std::vector<CardText> texts = m_panel.findChild<PanelHeader *>()->texts();
    for (const PanelRow *row : m_panel.findChildren<PanelRow *>())
        std::ranges::copy(row->texts(), std::back_inserter(texts));
    const std::optional<Look> actual = lookOf(texts, words);
    QVERIFY2(actual, "the text is shown");
    QVERIFY(*actual == look);
}

void TestLooks::boxes_data()
{
    QTest::addColumn<QString>("card");
    QTest::addColumn<QRectF>("box");
    QTest::addColumn<double>("radius");
    QTest::addColumn<QColor>("color");
    const auto row = [](const char *name, const QString &card, const QRectF &box, double radius,
                        const QColor &color) {
        QTest::newRow(name) << card << box << radius << color;
    };
    const QString workloads = u"AI Workloads"_s;
    const auto textOf = [this](const QString &card, const QString &words) {
        return *std::ranges::find(cardTitled(card)->texts(), words, &CardText::text);
    };
    const CardText tag = textOf(workloads, u"3 active"_s);
    row("tag of the count", workloads, {tag.baseline.x() - 6, 17, tag.width() + 12, 16}, 5,
        Theme::tag);

    const std::array tiles{AIFramework::llamaCpp, AIFramework::mlx, AIFramework::lmStudio};
    for (std::size_t i = 0; i < tiles.size(); ++i)
        row(qPrintable(u"tile of "_s + displayName(tiles[i])), workloads,
            QRectF(16, 48 + 44 * static_cast<double>(i), 30, 30), 8,
            Theme::withOpacity(frameworkColor(tiles[i]), 0.18));

    const QString power = u"Package Power"_s;
    for (const auto &[part, color] :
         {std::pair{u"CPU"_s, Theme::cpu}, {u"GPU"_s, Theme::gpu}, {u"ANE"_s, Theme::ane}})
        row(qPrintable(u"dot of the legend: "_s + part), power,
            {textOf(power, part).baseline.x() - 11, 50, 6, 6}, 3, color);

    const QString memory = u"Unified Memory"_s;
    const QColor wired = Theme::withOpacity(Theme::memory, 0.9);
    const QColor compressed = Theme::withOpacity(Theme::cpu, 0.9);
    for (const auto &[label, dot] : {std::pair{u"App"_s, QColor(Theme::white(0.85))},
                                     {u"Wired"_s, wired},
                                     {u"Compressed"_s, compressed},
                                     {u"Cached"_s, QColor(Theme::textTertiary)}})
        row(qPrintable(u"dot of a chip: "_s + label), memory,
            {textOf(memory, label).baseline.x() - 10, 120, 6, 6}, 3, dot);
}

/// A box of that colour with round corners, beyond whose edges there is the card.
void TestLooks::boxes()
{
    QFETCH(QString, card);
    QFETCH(QRectF, box);
    QFETCH(double, radius);
    QFETCH(QColor, color);
    constexpr int scale = 8;
    const Card *shown = cardTitled(card);
    const QRect around = box.toAlignedRect().adjusted(-2, -2, 2, 2);
    QImage image(around.size() * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    const_cast<Card *>(shown)->render(&image, {}, around, QWidget::DrawChildren);
    const auto at = [&](double x, double y) {
        return pixelAt(image, x - around.left(), y - around.top());
    };
    const QColor ground = at(box.left() - 1, box.center().y());
    QImage mixed(1, 1, QImage::Format_RGB32);
    mixed.setPixelColor(0, 0, ground);
    QPainter(&mixed).fillRect(0, 0, 1, 1, color);
    const QColor filled = mixed.pixelColor(0, 0);
    QVERIFY(!isClose(filled, ground));

    constexpr double edge = 0.4; // From an edge, in points.
    const QPointF middle = box.center();
    QVERIFY(isClose(at(box.left() + edge, middle.y()), filled));
    QVERIFY(isClose(at(box.right() - edge, middle.y()), filled));
    QVERIFY(isClose(at(middle.x(), box.top() + edge), filled));
    QVERIFY(isClose(at(middle.x(), box.bottom() - edge), filled));
    QVERIFY(isClose(at(box.left() - edge, middle.y()), ground));
    QVERIFY(isClose(at(box.right() + edge, middle.y()), ground));
    QVERIFY(isClose(at(middle.x(), box.top() - edge), ground));
    QVERIFY(isClose(at(middle.x(), box.bottom() + edge), ground));
    // On the diagonal of a corner the circle begins at 0.293 radii.
    const QPointF outside = box.topLeft() + QPointF(0.2, 0.2) * radius;
    const QPointF inside = box.topLeft() + QPointF(0.4, 0.4) * radius;
    QVERIFY(isClose(at(outside.x(), outside.y()), ground));
    QVERIFY(isClose(at(inside.x(), inside.y()), filled));
}

void TestLooks::headings_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::newRow("Unified Memory") << u"memorychip"_s;
    QTest::newRow("Package Power") << u"bolt.fill"_s;
    QTest::newRow("CPU") << u"cpu"_s;
    QTest::newRow("GPU") << u"memorychip.fill"_s;
    QTest::newRow("Neural Engine") << u"brain.head.profile"_s;
    QTest::newRow("AI Workloads") << u"brain"_s;
    QTest::newRow("Top Processes by RAM") << u"list.bullet.rectangle.portrait"_s;
}

/// A card's icon, and that it has the title's colour.
void TestLooks::headings()
{
    QFETCH(QString, symbol);
    const Card *card = cardTitled(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(card);
    QCOMPARE(card->heading().symbol, symbol);
    QVERIFY(showsIcon(*card, {16, 17}, symbol, card->texts().front().color));
}

void TestLooks::tiles_data()
{
    QTest::addColumn<double>("top");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QColor>("color");
    QTest::newRow("llama.cpp") << 48.0 << u"cpu.fill"_s << frameworkColor(AIFramework::llamaCpp);
    QTest::newRow("MLX") << 92.0 << u"sparkle"_s << frameworkColor(AIFramework::mlx);
    QTest::newRow("LM Studio") << 136.0 << u"studentdesk"_s
                               << frameworkColor(AIFramework::lmStudio);
}

/// In the middle of a tile of 30 points, in the framework's colour.
void TestLooks::tiles()
{
    QFETCH(double, top);
    QFETCH(QString, symbol);
    QFETCH(QColor, color);
    QVERIFY(showsIcon(*cardTitled(u"AI Workloads"_s), {16 + 7, top + 7}, symbol, color));
}

QTEST_MAIN(TestLooks)
#include "tst_Looks.moc"
