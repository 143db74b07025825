#include "cards/MemoryCard.h"
#include "cards/UtilizationCard.h"
#include "dashboard/DashboardHeader.h"
#include "dashboard/MainWindow.h"
#include "devices/PowerCard.h"
#include "gallery/ScriptedSamples.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/ProcessCard.h"
#include "ui/Theme.h"

#include <QTest>

#include <cmath>

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
    bool operator==(const Look &) const = default;
};

Look lookOf(const CardText &text)
{
    return {.size = text.font.pixelSize(),
            .weight = static_cast<QFont::Weight>(text.font.weight()),
            .color = text.color,
            .letterSpacing = std::round(text.font.letterSpacing() * 10) / 10, // Qt keeps 64ths.
            .digits = text.digits};
}

template <typename Texts>
std::optional<Look> lookOf(const Texts &texts, const QString &words)
{
    const auto found = std::ranges::find(texts, words, &CardText::text);
    return found == texts.end() ? std::nullopt : std::optional(lookOf(*found));
}

} // namespace

/// The fonts and colours of the texts on a dashboard of scripted samples, and the icons of its
/// cards.
class TestLooks : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void textsOfCards_data();
    void textsOfCards();
    void textsOfTheHeader_data();
    void textsOfTheHeader();
    void headings_data();
    void headings();

private:
    const Card *cardTitled(const QString &title) const;

    MainWindow m_filled{nullptr, chip};
    MainWindow m_empty{nullptr, chip};
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
    const Card *card = cardTitled(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(card);
    QTEST(card->heading().symbol, "symbol");
    QCOMPARE(card->heading().color, card->texts().front().color);
}

QTEST_MAIN(TestLooks)
#include "tst_Looks.moc"
