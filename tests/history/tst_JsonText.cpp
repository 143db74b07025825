#include "history/JsonText.h"

#include <QTest>

#include <algorithm>

using namespace corvane;

using Count = std::optional<std::uint64_t>;
Q_DECLARE_METATYPE(Count)

class TestJsonText : public QObject {
    Q_OBJECT

private slots:
    void findsMembers_data();
    void findsMembers();
    void staysInsideDamagedText();
    void readsWholeNumbers_data();
    void readsWholeNumbers();
    void knowsTheGrammarOfNumbers_data();
    void knowsTheGrammarOfNumbers();
};

void TestJsonText::findsMembers_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char *name, const char *object, const char *expected) {
        QTest::newRow(name) << QByteArray(object) << QByteArray(expected);
    };
    row("the only member", R"({"key":12})", "12");
    row("between others", R"({"a":1,"key":2.50,"b":3})", "2.50");
    row("blanks are not part of it", " {\t\"key\" : \r 12 \n } ", "12");
    row("of several the last", R"({"key":1,"a":2,"key":3})", "3");
    row("not in the object", R"({"a":1})", "");
    row("an empty object", "{}", "");
    row("only the beginning of a name", R"({"keyring":1,"ke":2})", "");
    row("a name of the value of another", R"({"a":"key","b":"key:5"})", "");
    row("of a nested object it is not", R"({"a":{"key":1},"b":[{"key":2}]})", "");
    row("behind a nested object", R"({"a":{"b":[1,{"c":"}]"}]},"key":7})", "7");
    row("a quote in a text before it", R"({"a":"\",\"key\":1","key":2})", "2");
    row("a backslash ends a text before it", R"({"a":"\\","key":2})", "2");
    row("its name escaped", R"({"\u006bey":5})", "5");
    row("its name partly escaped, and last", R"({"key":1,"k\u0065y":5})", "5");
    row("another name escaped", R"({"\u006cey":5})", "");
    row("a text", R"({"key":"5, 6"})", R"("5, 6")");
    row("a list", R"({"key":[1,2] ,"a":1})", "[1,2]");
    row("an object", R"({"key":{"a":1,"b":[]}})", R"({"a":1,"b":[]})");
    row("a word", R"({"key":true})", "true");
    row("a byte order mark before it", "\xef\xbb\xbf{\"key\":1}", "1");
    row("a list is no object", R"(["key",1])", "");
}

void TestJsonText::findsMembers()
{
    QFETCH(QByteArray, object);
    const std::string text = object.toStdString();
    const std::string value(valueOf(members(text), "key"));
    QTEST(QByteArray::fromStdString(value), "expected");
}

void TestJsonText::staysInsideDamagedText()
{
    // Every cut of a line, and every byte of it replaced by each that has a meaning.
    const std::string line = R"({"a":"\"x\\","k\u0065y":[1,{"b":2}],"key":-1.5e3})";
    const auto inside = [](const std::string &text) {
        return std::ranges::all_of(members(text), [&text](const JsonMember &member) {
            return member.value.data() >= text.data()
                && member.value.data() + member.value.size() <= text.data() + text.size();
        });
    };
    for (std::size_t i = 0; i < line.size(); ++i) {
        QVERIFY(inside(line.substr(0, i)));
        QVERIFY(inside(line.substr(i)));
        for (const char c : std::string("{}[],:\"\\ \0", 10)) {
            std::string damaged = line;
            damaged[i] = c;
            QVERIFY(inside(damaged));
        }
    }
}

void TestJsonText::readsWholeNumbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Count>("expected");
    const auto row = [](const char *name, const QByteArray &text, const Count &expected) {
        QTest::newRow(name) << text << expected;
    };
    row("zero", "0", 0);
    row("a count", "17179869184", 17'179'869'184);
    row("a fraction of zero", "17179869184.0", 17'179'869'184);
    row("an exponent that uses up the fraction", "1.6e10", 16'000'000'000);
    row("a capital exponent", "1E3", 1000);
    row("an exponent with a plus", "2e+2", 200);
    row("an exponent of zeros", "2e000", 2);
    row("a shrinking exponent that leaves a whole", "1200e-2", 12);
    row("digits that a double would lose", "9007199254740993", 9'007'199'254'740'993);
    row("the same with a fraction of zero", "9007199254740993.000", 9'007'199'254'740'993);
    row("the largest signed", "9223372036854775807", 9'223'372'036'854'775'807U);
    row("one above it", "9223372036854775808", 9'223'372'036'854'775'808U);
    row("the largest", "18446744073709551615", 18'446'744'073'709'551'615U);
    row("the largest with an exponent", "1.8446744073709551615e19", 18'446'744'073'709'551'615U);
    row("one more than the largest", "18446744073709551616", {});
    row("the largest times ten", "184467440737095516150", {});
    row("twenty nines", "99999999999999999999", {});
    row("a huge exponent", "1e400", {});
    row("an exponent that no integer holds", "1e99999999999999999999999", {});
    row("a zero stays zero under any exponent", "0e99999999999999999999999", 0);
    row("many zeros cancelled by the exponent", "1" + QByteArray(500, '0') + "e-500", 1);
    row("a shrinking exponent that no integer holds", "1e-99999999999999999999999", {});
    row("a half", "0.5", {});
    row("just below one", "0.99999999999999999999999999", {});
    row("just above a large whole", "9007199254740993.5", {});
    row("negative", "-1", {});
    row("negative whole with an exponent", "-1e3", {});
    row("a zero with a sign", "-0", 0);
    row("a zero with sign, fraction and exponent", "-0.00e-5", 0);
    row("a text", "\"5\"", {});
    row("a word", "true", {});
    row("nothing", "", {});
}

void TestJsonText::readsWholeNumbers()
{
    QFETCH(QByteArray, text);
    QTEST(exactUnsigned(text.toStdString()), "expected");
}

void TestJsonText::knowsTheGrammarOfNumbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("expected");
    for (const char *number : {"0", "-0", "12", "-12.50", "0.5", "1e5", "1E-5", "1.5e+05", "1e400"})
        QTest::newRow(number) << QByteArray(number) << true;
    for (const char *other : {"", "-", "+1", "01", "-01", ".5", "1.", "1.e5", "1e", "1e+", "1e5.0",
                              "0x10", "1 2", "1f", "nan", "inf", "Infinity", "null", "--1"})
        QTest::addRow("not '%s'", other) << QByteArray(other) << false;
}

void TestJsonText::knowsTheGrammarOfNumbers()
{
    QFETCH(QByteArray, text);
    QTEST(isNumber(text.toStdString()), "expected");
}

QTEST_APPLESS_MAIN(TestJsonText)
#include "tst_JsonText.moc"
