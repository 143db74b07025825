#include "processes/ArgumentCache.h"

#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace corvane;
using namespace Qt::StringLiterals;

using Found = std::optional<QStringList>;

class TestArgumentCache : public QObject {
    Q_OBJECT

private slots:
    void remembers();
    void keepsTheLaterList();
    void forgetsAllButTheNamed();
    void isSafeFromManyThreads();
};

void TestArgumentCache::remembers()
{
    ArgumentCache cache;
    QCOMPARE(cache.find(7), Found());
    cache.remember(7, {u"ollama"_s, u"serve"_s});
    QCOMPARE(cache.find(7), Found({u"ollama"_s, u"serve"_s}));
    QCOMPARE(cache.find(8), Found());
    cache.remember(8, {});
    QCOMPARE(cache.find(8), Found(QStringList()));
}

void TestArgumentCache::keepsTheLaterList()
{
    ArgumentCache cache;
    cache.remember(7, {u"a"_s});
    cache.remember(7, {u"b"_s});
    QCOMPARE(cache.find(7), Found(QStringList{u"b"_s}));
}

void TestArgumentCache::forgetsAllButTheNamed()
{
    ArgumentCache cache;
    for (const std::int64_t pid : {1, 2, 3})
        cache.remember(pid, {QString::number(pid)});
    cache.keepOnly({2, 9});
    QCOMPARE(cache.find(1), Found());
    QCOMPARE(cache.find(2), Found(QStringList{u"2"_s}));
    QCOMPARE(cache.find(9), Found());
    cache.keepOnly({});
    QCOMPARE(cache.find(2), Found());
}

void TestArgumentCache::isSafeFromManyThreads()
{
    constexpr std::int64_t pids = 20;
    ArgumentCache cache;
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&cache, &wrong] {
            for (std::int64_t i = 0; i < 2000; ++i) {
                const std::int64_t pid = i % pids;
                if (const auto found = cache.find(pid)) {
                    if (*found != QStringList(3, QString::number(pid)))
                        ++wrong;
                }
                cache.remember(pid, QStringList(3, QString::number(pid)));
                if (i % 50 == 0)
                    cache.keepOnly({pid, pid / 2});
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_APPLESS_MAIN(TestArgumentCache)
#include "tst_ArgumentCache.moc"
