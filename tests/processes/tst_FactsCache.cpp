#include "processes/FactsCache.h"

#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace corvane;
using namespace Qt::StringLiterals;

using Found = std::optional<ArgumentFacts>;

namespace {

ArgumentFacts facts(const QString &model)
{
    return {.model = model};
}

} // namespace

class TestFactsCache : public QObject {
    Q_OBJECT

private slots:
    void remembers();
    void keepsTheLaterFacts();
    void tellsProcessesOfTheSameNumberApart();
    void forgetsAllButTheNamed();
    void isSafeFromManyThreads();
};

void TestFactsCache::remembers()
{
    FactsCache cache;
    QVERIFY(cache.find({7}) == Found());
    cache.remember({7}, facts(u"a"_s));
    QVERIFY(cache.find({7}) == Found(facts(u"a"_s)));
    QVERIFY(cache.find({8}) == Found());
    cache.remember({8}, {});
    QVERIFY(cache.find({8}) == Found(ArgumentFacts()));
}

void TestFactsCache::keepsTheLaterFacts()
{
    FactsCache cache;
    cache.remember({7}, facts(u"a"_s));
    cache.remember({7}, facts(u"b"_s));
    QVERIFY(cache.find({7}) == Found(facts(u"b"_s)));
}

void TestFactsCache::tellsProcessesOfTheSameNumberApart()
{
    FactsCache cache;
    cache.remember({7, 100}, facts(u"a"_s));
    QVERIFY(cache.find({7, 101}) == Found());
    cache.remember({7, 101}, facts(u"b"_s));
    QVERIFY(cache.find({7, 100}) == Found());
    QVERIFY(cache.find({7, 101}) == Found(facts(u"b"_s)));
}

void TestFactsCache::forgetsAllButTheNamed()
{
    FactsCache cache;
    for (const std::int32_t pid : {1, 2, 3})
        cache.remember({pid}, facts(QString::number(pid)));
    cache.keepOnly({2, 9});
    QVERIFY(cache.find({1}) == Found());
    QVERIFY(cache.find({2}) == Found(facts(u"2"_s)));
    QVERIFY(cache.find({9}) == Found());
    cache.keepOnly({});
    QVERIFY(cache.find({2}) == Found());
}

void TestFactsCache::isSafeFromManyThreads()
{
    constexpr std::int32_t pids = 20;
    FactsCache cache;
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&cache, &wrong] {
            for (std::int32_t i = 0; i < 2000; ++i) {
                const std::int32_t pid = i % pids;
                if (const auto found = cache.find({pid})) {
                    if (*found != facts(QString::number(pid)))
                        ++wrong;
                }
                cache.remember({pid}, facts(QString::number(pid)));
                if (i % 50 == 0)
                    cache.keepOnly({pid, pid / 2});
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_APPLESS_MAIN(TestFactsCache)
#include "tst_FactsCache.moc"
