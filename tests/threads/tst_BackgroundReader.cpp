#include "threads/BackgroundReader.h"

#include "support/Waiting.h"

#include <QTest>

#include <atomic>

using namespace corvane;

namespace {

constexpr std::chrono::minutes untilRead(1);

} // namespace

class TestBackgroundReader : public QObject {
    Q_OBJECT

private slots:
    void readsWhenAsked();
    void anOldValueIsAbsent();
    void aReadThatNeverEndsDelaysNothing();
};

void TestBackgroundReader::readsWhenAsked()
{
    BackgroundReader<double> reader([](double now) { return now * 2; });
    QVERIFY(!reader.newest(1));
    reader.request(1, untilRead);
    QCOMPARE(reader.newest(1), std::optional(2.0));
    reader.request(2, untilRead);
    QCOMPARE(reader.newest(2), std::optional(4.0));
    reader.request(3); // Without waiting.
    TRY_COMPARE(reader.newest(3), std::optional(6.0));
}

void TestBackgroundReader::anOldValueIsAbsent()
{
    BackgroundReader<int> reader([](double) { return 7; });
    reader.request(10, untilRead);
    QCOMPARE(reader.newest(12.5), std::optional(7));
    QVERIFY(!reader.newest(12.6));
}

void TestBackgroundReader::aReadThatNeverEndsDelaysNothing()
{
    std::atomic<bool> hangs = false;
    std::atomic<int> reads = 0; // Outlive the reader.
    BackgroundReader<int> reader([&](double) {
        ++reads;
        while (hangs)
            std::this_thread::yield();
        return 7;
    });
    reader.request(1, untilRead);
    QCOMPARE(reader.newest(1), std::optional(7));

    hangs = true;
    reader.request(2);
    TRY_COMPARE(reads.load(), 2);
    for (double now = 3; now < 10; ++now)
        reader.request(now, untilRead); // Waits for nothing: an answer is due.
    QVERIFY(!reader.newest(10));

    hangs = false;
    TRY_COMPARE(reader.newest(10), std::optional(7)); // The newest request is answered next.
    QCOMPARE(reads.load(), 3);
}

QTEST_GUILESS_MAIN(TestBackgroundReader)
#include "tst_BackgroundReader.moc"
