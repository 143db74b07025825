#include "cpu/CPUCoreSampler.h"

#include <QTest>

#include <limits>

using namespace corvane;

namespace {

using Ticks = std::vector<CoreTicks>;

constexpr std::uint32_t nearWrap = 4'294'967'290;

/// A sampler whose counters the test sets between samples.
struct Stepped {
    std::optional<Ticks> ticks = {};
    CPUCoreSampler sampler{[this] { return ticks; }};

    std::vector<double> sampleAt(std::optional<Ticks> counters)
    {
        ticks = std::move(counters);
        return sampler.sample();
    }
};

using Fractions = std::vector<double>;

} // namespace

class TestCPUCoreSampler : public QObject {
    Q_OBJECT

private slots:
    void theFirstSampleIsZeros();
    void laterSamplesCoverTheTimeBetween_data();
    void laterSamplesCoverTheTimeBetween();
    void everySampleStartsWhereTheLastEnded();
    void newProcessorsReadZeroOnce();
    void missingProcessorsAreForgotten();
    void unreadableCountersKeepTheOldOnes();
    void noProcessorsAreAnEmptyList();
};

void TestCPUCoreSampler::theFirstSampleIsZeros()
{
    Stepped stepped;
    const Ticks ticks{{.user = 5, .idle = 5}, {.idle = 9}, {.nice = 1}};
    QCOMPARE(stepped.sampleAt(ticks), Fractions({0, 0, 0}));
}

void TestCPUCoreSampler::laterSamplesCoverTheTimeBetween_data()
{
    QTest::addColumn<Ticks>("before");
    QTest::addColumn<Ticks>("after");
    QTest::addColumn<Fractions>("expected");
    QTest::newRow("three quarters busy")
        << Ticks{{100, 100, 100, 0}} << Ticks{{150, 125, 125, 0}} << Fractions{0.75};
    QTest::newRow("nice time is busy time")
        << Ticks{{0, 0, 0, 0}} << Ticks{{0, 0, 50, 50}} << Fractions{0.5};
    QTest::newRow("all idle") << Ticks{{7, 7, 7, 7}} << Ticks{{7, 7, 107, 7}} << Fractions{0};
    QTest::newRow("all busy") << Ticks{{7, 7, 7, 7}} << Ticks{{57, 57, 7, 7}} << Fractions{1};
    QTest::newRow("counters that stood still")
        << Ticks{{7, 7, 7, 7}} << Ticks{{7, 7, 7, 7}} << Fractions{0};
    // 4294967290 to 5 are 11 ticks: 1 - 11 / (11 + 33).
    QTest::newRow("idle wraps") << Ticks{{0, 0, nearWrap, 0}} << Ticks{{33, 0, 5, 0}}
                                << Fractions{0.75};
    // Busy 11 of 44.
    QTest::newRow("user wraps") << Ticks{{nearWrap, 0, 0, 0}} << Ticks{{5, 0, 33, 0}}
                                << Fractions{0.25};
    QTest::newRow("all four wrap") << Ticks{{nearWrap, nearWrap, nearWrap, nearWrap}}
                                   << Ticks{{5, 5, 5, 5}} << Fractions{0.75};
    // The sum of the steps does not fit 32 bits; 1 - (2^32 - 1) / (2 × (2^32 - 1)).
    QTest::newRow("steps as large as they can be")
        << Ticks{{0, 0, 0, 0}}
        << Ticks{{std::numeric_limits<std::uint32_t>::max(), 0,
                  std::numeric_limits<std::uint32_t>::max(), 0}}
        << Fractions{0.5};
    QTest::newRow("processors keep their order")
        << Ticks{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}
        << Ticks{{1, 0, 3, 0}, {0, 1, 1, 0}, {0, 0, 1, 3}} << Fractions{0.25, 0.5, 0.75};
}

void TestCPUCoreSampler::laterSamplesCoverTheTimeBetween()
{
    QFETCH(Ticks, before);
    QFETCH(Ticks, after);
    Stepped stepped;
    stepped.sampleAt(before);
    QTEST(stepped.sampleAt(after), "expected");
}

void TestCPUCoreSampler::everySampleStartsWhereTheLastEnded()
{
    Stepped stepped;
    stepped.sampleAt(Ticks{{0, 0, 0, 0}});
    QCOMPARE(stepped.sampleAt(Ticks{{100, 0, 0, 0}}), Fractions{1});
    QCOMPARE(stepped.sampleAt(Ticks{{100, 0, 100, 0}}), Fractions{0});
    QCOMPARE(stepped.sampleAt(Ticks{{150, 0, 150, 0}}), Fractions{0.5});
}

void TestCPUCoreSampler::newProcessorsReadZeroOnce()
{
    Stepped stepped;
    stepped.sampleAt(Ticks{{0, 0, 0, 0}});
    QCOMPARE(stepped.sampleAt(Ticks{{1, 0, 1, 0}, {500, 0, 500, 0}}), Fractions({0.5, 0}));
    QCOMPARE(stepped.sampleAt(Ticks{{2, 0, 2, 0}, {503, 0, 501, 0}}), Fractions({0.5, 0.75}));
}

void TestCPUCoreSampler::missingProcessorsAreForgotten()
{
    Stepped stepped;
    stepped.sampleAt(Ticks{{0, 0, 0, 0}, {0, 0, 0, 0}});
    QCOMPARE(stepped.sampleAt(Ticks{{1, 0, 1, 0}}), Fractions{0.5});
    QCOMPARE(stepped.sampleAt(Ticks{{2, 0, 2, 0}, {9, 0, 0, 0}}), Fractions({0.5, 0}));
}

void TestCPUCoreSampler::unreadableCountersKeepTheOldOnes()
{
    Stepped stepped;
    QCOMPARE(stepped.sampleAt(std::nullopt), Fractions());
    QCOMPARE(stepped.sampleAt(Ticks{{0, 0, 0, 0}}), Fractions{0});
    QCOMPARE(stepped.sampleAt(std::nullopt), Fractions());
    QCOMPARE(stepped.sampleAt(Ticks{{1, 0, 3, 0}}), Fractions{0.25});
}

void TestCPUCoreSampler::noProcessorsAreAnEmptyList()
{
    Stepped stepped;
    QCOMPARE(stepped.sampleAt(Ticks()), Fractions());
    QCOMPARE(stepped.sampleAt(Ticks{{1, 0, 3, 0}}), Fractions{0});
}

QTEST_APPLESS_MAIN(TestCPUCoreSampler)
#include "tst_CPUCoreSampler.moc"
