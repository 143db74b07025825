#include "platform/ActivationToken.h"

#include <QTest>

using namespace corvane;

class TestActivationToken : public QObject {
    Q_OBJECT

private slots:
    void isPrintableAndShort_data();
    void isPrintableAndShort();
};

void TestActivationToken::isPrintableAndShort_data()
{
    constexpr auto longest = qsizetype(longestActivationToken);
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("expected");
    QTest::newRow("of a desktop") << QByteArray("panel-1234-host-waybar_TIME2") << true;
    QTest::newRow("the first and the last printable character") << QByteArray(" ~") << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("a line end") << QByteArray("token\n") << false;
    QTest::newRow("a NUL") << QByteArray("to\0ken", 6) << false;
    QTest::newRow("a control character behind the printable ones") << QByteArray("\x7f") << false;
    QTest::newRow("beyond ASCII") << QByteArray("caf\xc3\xa9") << false;
    QTest::newRow("the longest") << QByteArray(longest, 'x') << true;
    QTest::newRow("one byte too long") << QByteArray(longest + 1, 'x') << false;
}

void TestActivationToken::isPrintableAndShort()
{
    QFETCH(QByteArray, text);
    QTEST(isActivationToken({text.constData(), std::size_t(text.size())}), "expected");
}

QTEST_APPLESS_MAIN(TestActivationToken)
#include "tst_ActivationToken.moc"
