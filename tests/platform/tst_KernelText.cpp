#include "platform/KernelText.h"

#include <QTest>

#include <limits>
#include <vector>

using namespace corvane;

Q_DECLARE_METATYPE(std::optional<std::uint64_t>)

class TestKernelText : public QObject {
    Q_OBJECT

private slots:
    void takesLines();
    void takesWords();
    void takesNumbers();
    void trims();
    void takesKeysAndValues_data();
    void takesKeysAndValues();
    void parsesUnsigned_data();
    void parsesUnsigned();
    void parsesSigned();
    void parsesDecimals();
    void refusesByteCountsOfNoMachine();
    void parsesKibibytes_data();
    void parsesKibibytes();
    void knowsUtf8_data();
    void knowsUtf8();
    void agreesWithAnotherDecoder();
    void walksCPULists_data();
    void walksCPULists();
    void readsTemperatures_data();
    void readsTemperatures();
};

void TestKernelText::takesLines()
{
    std::string_view text = "one\n\nlast without end";
    QCOMPARE(takeLine(text), std::optional<std::string_view>("one"));
    QCOMPARE(takeLine(text), std::optional<std::string_view>(""));
    QCOMPARE(takeLine(text), std::optional<std::string_view>("last without end"));
    QVERIFY(!takeLine(text));
}

void TestKernelText::takesWords()
{
    std::string_view text = "  cpu \t12  ";
    QCOMPARE(takeWord(text), std::optional<std::string_view>("cpu"));
    QCOMPARE(takeWord(text), std::optional<std::string_view>("12"));
    QVERIFY(!takeWord(text));
}

void TestKernelText::takesNumbers()
{
    using Number = std::optional<std::uint64_t>;
    std::string_view text = "  7 \t18446744073709551615 8x 9";
    QCOMPARE(takeUnsigned(text), Number(7));
    QCOMPARE(takeUnsigned(text), Number(std::numeric_limits<std::uint64_t>::max()));
    QCOMPARE(takeUnsigned(text), Number()); // What follows the digits belongs to the word.
    QVERIFY(text == " 8x 9");
    for (std::string_view none : {"", "  ", "-1", "18446744073709551616", "x"})
        QCOMPARE(takeUnsigned(none), Number());
}

void TestKernelText::trims()
{
    QVERIFY(trimmed(std::string_view(" a b\r\n\0", 7)) == "a b");
    QVERIFY(trimmed(" \n\t").empty());
    QVERIFY(trimmed("").empty());
}

void TestKernelText::takesKeysAndValues_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArrayList>("expected");
    QTest::newRow("aligned values") << QByteArray("MemTotal:  16 kB\nMemFree:    8 kB\n")
                                    << QByteArrayList{"MemTotal=16 kB", "MemFree=8 kB"};
    QTest::newRow("tabs before the colon, no last line end")
        << QByteArray("model name\t: A chip") << QByteArrayList{"model name=A chip"};
    QTest::newRow("only the first colon splits")
        << QByteArray("flags: a:b\n") << QByteArrayList{"flags=a:b"};
    QTest::newRow("lines without a colon are skipped")
        << QByteArray("garbage\n\nkey: value\nmore") << QByteArrayList{"key=value"};
    QTest::newRow("either side may be empty")
        << QByteArray("key:\n: value\n:") << QByteArrayList{"key=", "=value", "="};
    QTest::newRow("an empty text") << QByteArray() << QByteArrayList();
}

void TestKernelText::takesKeysAndValues()
{
    QFETCH(QByteArray, text);
    std::string_view rest(text.data(), static_cast<std::size_t>(text.size()));
    QByteArrayList taken;
    while (const auto line = takeKeyValue(rest))
        taken << QByteArray::fromStdString(std::string(line->key) + '=' + std::string(line->value));
    QTEST(taken, "expected");
}

void TestKernelText::parsesUnsigned_data()
{
    using Expected = std::optional<std::uint64_t>;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Expected>("expected");
    QTest::newRow("a count") << QByteArray("4096") << Expected(4096);
    QTest::newRow("the largest") << QByteArray("18446744073709551615")
                                 << Expected(std::numeric_limits<std::uint64_t>::max());
    QTest::newRow("one more than the largest") << QByteArray("18446744073709551616") << Expected();
    QTest::newRow("negative") << QByteArray("-1") << Expected();
    QTest::newRow("trailing letters") << QByteArray("12kB") << Expected();
    QTest::newRow("a leading blank") << QByteArray(" 12") << Expected();
    QTest::newRow("empty") << QByteArray("") << Expected();
}

void TestKernelText::parsesUnsigned()
{
    QFETCH(QByteArray, text);
    QTEST(parseUnsigned(text.toStdString()), "expected");
}

void TestKernelText::parsesSigned()
{
    QCOMPARE(parseSigned("-21500"), std::optional<std::int64_t>(-21500));
    QCOMPARE(parseSigned("3"), std::optional<std::int64_t>(3));
    QVERIFY(!parseSigned("--3"));
}

void TestKernelText::parsesDecimals()
{
    QCOMPARE(parseDecimal("12.34"), std::optional<double>(12.34));
    QVERIFY(!parseDecimal("inf"));
    QVERIFY(!parseDecimal("nan"));
    QVERIFY(!parseDecimal("1.2.3"));
    QCOMPARE(parseDecimal("0.07"), std::optional<double>(0.07));
    QCOMPARE(parseDecimal("4800.000"), std::optional<double>(4800));
    QCOMPARE(parseDecimal("7"), std::optional<double>(7));
    QCOMPARE(parseDecimal("123456789012.345"), std::optional<double>(123456789012.345));
    QVERIFY(!parseDecimal("1234567890123.456")); // No kernel writes so many digits.
    QVERIFY(!parseDecimal("-1.5"));
    QVERIFY(!parseDecimal("1.-5"));
    QVERIFY(!parseDecimal("."));
    QVERIFY(!parseDecimal(""));
}

void TestKernelText::refusesByteCountsOfNoMachine()
{
    QCOMPARE(byteCount(1, 1024), std::optional<std::uint64_t>(1024));
    QCOMPARE(byteCount(std::uint64_t(1) << 40, 1024),
             std::optional<std::uint64_t>(std::uint64_t(1) << 50));
    QVERIFY(!byteCount((std::uint64_t(1) << 40) + 1, 1024));
    QVERIFY(!byteCount(std::numeric_limits<std::uint64_t>::max(), 1024));
}

void TestKernelText::parsesKibibytes_data()
{
    using Expected = std::optional<std::uint64_t>;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Expected>("expected");
    QTest::newRow("aligned") << QByteArray("  24684096 kB") << Expected(24684096);
    QTest::newRow("between tabs") << QByteArray("\t0\tkB") << Expected(0);
    QTest::newRow("2^50 bytes") << QByteArray("1099511627776 kB") << Expected(1ULL << 40);
    QTest::newRow("more than 64 bits of bytes")
        << QByteArray("18446744073709551615 kB") << Expected();
    QTest::newRow("negative") << QByteArray("-5 kB") << Expected();
    QTest::newRow("a fraction") << QByteArray("5.5 kB") << Expected();
    QTest::newRow("no number") << QByteArray("kB") << Expected();
    QTest::newRow("no unit") << QByteArray(" 12") << Expected();
    QTest::newRow("another unit") << QByteArray(" 12 MB") << Expected();
    QTest::newRow("no machine has so many") << QByteArray("1099511627777 kB") << Expected();
    QTest::newRow("empty") << QByteArray() << Expected();
}

void TestKernelText::parsesKibibytes()
{
    QFETCH(QByteArray, text);
    QTEST(parseKibibytes(text.toStdString()), "expected");
}

void TestKernelText::knowsUtf8_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("expected");
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("ASCII with control characters") << QByteArray("a\n\x1b\x7f") << true;
    QTest::newRow("the lowest of two, three and four bytes")
        << QByteArray("\xc2\x80\xe0\xa0\x80\xf0\x90\x80\x80") << true;
    QTest::newRow("the highest of two, three and four bytes")
        << QByteArray("\xdf\xbf\xef\xbf\xbf\xf4\x8f\xbf\xbf") << true;
    QTest::newRow("a surrogate") << QByteArray("\xed\xa0\x80") << false;
    QTest::newRow("cut") << QByteArray("a\xe2\x82") << false;
}

void TestKernelText::knowsUtf8()
{
    QFETCH(QByteArray, text);
    QTEST(isUtf8(text.toStdString()), "expected");
}

void TestKernelText::agreesWithAnotherDecoder()
{
    // Bytes near the limits of each form, in all combinations of four.
    constexpr unsigned char bytes[] = {'a',  0x7f, 0x80, 0x8f, 0x90, 0x9f, 0xa0, 0xbf,
                                       0xc1, 0xc2, 0xdf, 0xe0, 0xe1, 0xec, 0xed, 0xee,
                                       0xef, 0xf0, 0xf1, 0xf4, 0xf5, 0xff};
    int valid = 0;
    for (const char first : bytes) {
        for (const char second : bytes) {
            for (const char third : bytes) {
                for (const char fourth : bytes) {
                    const char text[] = {first, second, third, fourth};
                    const bool expected = QUtf8StringView(text, sizeof(text)).isValidUtf8();
                    QCOMPARE(isUtf8({text, sizeof(text)}), expected);
                    valid += expected;
                }
            }
        }
    }
    QVERIFY(valid > 100);
}

void TestKernelText::walksCPULists_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("a range") << QByteArray("0-3\n") << QList<int>{0, 1, 2, 3};
    QTest::newRow("ranges and single CPUs")
        << QByteArray("0-1,4,6-7\n") << QList<int>{0, 1, 4, 6, 7};
    QTest::newRow("an empty line is no CPU") << QByteArray("\n") << QList<int>{};
    QTest::newRow("garbage ends the iteration") << QByteArray("2,x,5\n") << QList<int>{2};
    QTest::newRow("a reversed range is empty") << QByteArray("5-2,7\n") << QList<int>{7};
    QTest::newRow("a repeated number ends the iteration")
        << QByteArray("0-3,3,5\n") << QList<int>{0, 1, 2, 3};
    QTest::newRow("a lower number behind a reversed range ends the iteration")
        << QByteArray("2-3,9-0,1\n") << QList<int>{2, 3};
    QTest::newRow("the last that a kernel can have") << QByteArray("8191\n") << QList<int>{8191};
    QTest::newRow("no kernel has so many") << QByteArray("3,0-8192\n") << QList<int>{3};
}

void TestKernelText::walksCPULists()
{
    QFETCH(QByteArray, list);
    QList<int> visited;
    forEachCPU(list.toStdString(), [&visited](int cpu) { visited.append(cpu); });
    QTEST(visited, "expected");
}

void TestKernelText::readsTemperatures_data()
{
    using Number = std::optional<double>;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Number>("degrees");
    QTest::newRow("millidegrees") << QByteArray("54125\n") << Number(54.125);
    QTest::newRow("exactly 0 is a sensor that is off") << QByteArray("0\n") << Number();
    QTest::newRow("below 0") << QByteArray("-128000\n") << Number();
    QTest::newRow("nothing connected") << QByteArray("127000\n") << Number();
    QTest::newRow("just below the limit") << QByteArray("149999\n") << Number(149.999);
    QTest::newRow("at the limit") << QByteArray("150000\n") << Number();
}

void TestKernelText::readsTemperatures()
{
    QFETCH(QByteArray, text);
    QTEST(parseMillidegrees(text.toStdString()), "degrees");
}

QTEST_APPLESS_MAIN(TestKernelText)
#include "tst_KernelText.moc"
