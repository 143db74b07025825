#include "processes/FootprintRanking.h"

#include <QTest>

#include <algorithm>
#include <map>
#include <random>
#include <set>

using namespace corvane;

using Bounds = std::vector<FootprintBounds>;
using Ranking = std::vector<std::pair<std::int32_t, std::uint64_t>>; ///< Number and bytes.
using Exact = std::map<std::int32_t, std::uint64_t>;

Q_DECLARE_METATYPE(Bounds)
Q_DECLARE_METATYPE(Ranking)
Q_DECLARE_METATYPE(Exact)

namespace {

Ranking ranking(const Bounds &processes, std::size_t limit, const FootprintReader &read)
{
    Ranking ranking;
    for (const ProcessRecord &process : heaviestProcesses(processes, limit, read))
        ranking.emplace_back(process.pid.value(), process.memory.value());
    return ranking;
}

} // namespace

class TestFootprintRanking : public QObject {
    Q_OBJECT

private slots:
    void ranks_data();
    void ranks();
    void readsOnlyWhatCanBelongToTheRanking();
    void equalsTheRankingOfAllExactFootprints();
};

void TestFootprintRanking::ranks_data()
{
    QTest::addColumn<Bounds>("processes");
    QTest::addColumn<Exact>("exact");
    QTest::addColumn<int>("limit");
    QTest::addColumn<Ranking>("expected");

    const Bounds known{{1, 10, 10}, {2, 30, 30}, {3, 20, 20}};
    QTest::newRow("largest first") << known << Exact() << 2 << Ranking{{2, 30}, {3, 20}};
    QTest::newRow("more asked for than there are")
        << known << Exact() << 80 << Ranking{{2, 30}, {3, 20}, {1, 10}};
    QTest::newRow("none asked for") << known << Exact() << 0 << Ranking{};
    QTest::newRow("no processes") << Bounds{} << Exact() << 5 << Ranking{};
    QTest::newRow("equal ones in the order of their numbers")
        << Bounds{{7, 5, 5}, {3, 5, 5}, {5, 5, 5}} << Exact() << 2 << Ranking{{3, 5}, {5, 5}};
    QTest::newRow("a process that holds nothing is not ranked")
        << Bounds{{1, 0, 0}, {2, 0, 9}, {3, 1, 1}} << Exact{{2, 0}} << 5 << Ranking{{3, 1}};
    QTest::newRow("swapped memory moves a process up")
        << Bounds{{1, 10, 50}, {2, 30, 70}, {3, 20, 60}} << Exact{{1, 50}, {2, 30}, {3, 25}} << 2
        << Ranking{{1, 50}, {2, 30}};
    QTest::newRow("one that is swapped out whole counts")
        << Bounds{{1, 0, 40}, {2, 30, 70}} << Exact{{1, 40}, {2, 30}} << 1 << Ranking{{1, 40}};
    QTest::newRow("one that has ended makes room for the next")
        << Bounds{{1, 10, 50}, {2, 30, 70}} << Exact{{1, 12}} << 1 << Ranking{{1, 12}};
    QTest::newRow("of two equal ones at the limit the lower number counts")
        << Bounds{{9, 30, 30}, {1, 10, 30}} << Exact{{1, 30}} << 1 << Ranking{{1, 30}};
}

void TestFootprintRanking::ranks()
{
    QFETCH(Bounds, processes);
    QFETCH(Exact, exact);
    QFETCH(int, limit);
    const auto read = [&exact](const FootprintBounds &bounds) -> std::optional<std::uint64_t> {
        const auto found = exact.find(bounds.pid);
        return found == exact.end() ? std::nullopt : std::optional(found->second);
    };
    QTEST(ranking(processes, static_cast<std::size_t>(limit), read), "expected");
}

void TestFootprintRanking::readsOnlyWhatCanBelongToTheRanking()
{
    std::set<std::int32_t> read;
    const auto reader = [&read](const FootprintBounds &bounds) {
        read.insert(bounds.pid);
        return std::optional(bounds.least);
    };
    heaviestProcesses({{1, 90, 100}, {2, 80, 95}, {3, 10, 85}, {4, 79, 79}, {5, 1, 79}}, 2, reader);
    QCOMPARE(read, (std::set<std::int32_t>{1, 2, 3}));

    read.clear();
    heaviestProcesses({{1, 9, 9}, {2, 8, 8}, {3, 7, 7}}, 1, reader);
    QVERIFY(read.empty());
}

void TestFootprintRanking::equalsTheRankingOfAllExactFootprints()
{
    std::mt19937 random(7);
    const auto below = [&random](std::uint64_t end) { return random() % end; };
    for (int round = 0; round < 300; ++round) {
        Bounds processes;
        Ranking all;
        Exact exact;
        for (std::int32_t pid = 1; pid <= 60; ++pid) {
            const std::uint64_t least = below(50);
            const std::uint64_t most = least + below(40);
            const std::uint64_t memory = least + below(most - least + 1);
            processes.push_back({pid, least, most});
            exact[pid] = memory;
            if (memory > 0)
                all.push_back({pid, memory});
        }
        std::ranges::stable_sort(all, std::greater(), &Ranking::value_type::second);
        const auto limit = static_cast<std::size_t>(below(70));
        all.resize(std::min(all.size(), limit));
        const auto read = [&exact](const FootprintBounds &bounds) {
            return std::optional(exact[bounds.pid]);
        };
        QCOMPARE(ranking(processes, limit, read), all);
    }
}

QTEST_APPLESS_MAIN(TestFootprintRanking)
#include "tst_FootprintRanking.moc"
