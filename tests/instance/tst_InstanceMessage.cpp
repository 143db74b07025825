#include "instance/InstanceMessage.h"
#include "platform/ActivationToken.h"

#include <QTest>

using namespace corvane;

class TestInstanceMessage : public QObject {
    Q_OBJECT

private slots:
    void isParsedFromItsBytes_data();
    void isParsedFromItsBytes();
    void omitsAnInvalidToken_data();
    void omitsAnInvalidToken();
    void rejectsOtherBytes_data();
    void rejectsOtherBytes();
    void rejectsAPartOfAMessage();
};

void TestInstanceMessage::isParsedFromItsBytes_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::newRow("without a token") << QByteArray();
    QTest::newRow("with a token of Wayland") << QByteArray("4d1e5a3c-8f6b-4f6e-9f5e-3f1b7a5d2c10");
    QTest::newRow("with a token of X11") << QByteArray("xfce4-panel-4242-desk-0_TIME31415926");
    QTest::newRow("with the longest token") << QByteArray(1024, 'x');
}

void TestInstanceMessage::isParsedFromItsBytes()
{
    QFETCH(const QByteArray, token);
    const InstanceMessage message{.activationToken = token.toStdString()};
    const std::string bytes = instanceMessageBytes(message);
    QVERIFY(bytes.size() <= longestInstanceMessage);
    QCOMPARE(parseInstanceMessage(bytes), message);
}

void TestInstanceMessage::omitsAnInvalidToken_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::newRow("two lines") << QByteArray("one\ntwo");
    QTest::newRow("a zero byte") << QByteArray("a\0b", 3);
    QTest::newRow("not plain text") << QByteArray("\xff\xfe");
    QTest::newRow("too long") << QByteArray(1025, 'x');
}

void TestInstanceMessage::omitsAnInvalidToken()
{
    QFETCH(const QByteArray, token);
    QVERIFY(!isActivationToken(token.toStdString()));
    const auto bytes = instanceMessageBytes({.activationToken = token.toStdString()});
    QCOMPARE(parseInstanceMessage(bytes), InstanceMessage{});
}

void TestInstanceMessage::rejectsOtherBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("no bytes") << QByteArray();
    QTest::newRow("a line feed") << QByteArray("\n");
    QTest::newRow("another protocol") << QByteArray("GET / HTTP/1.1\r\n\r\n");
    QTest::newRow("another version") << QByteArray("Corvane/2 open\n\n");
    QTest::newRow("another request") << QByteArray("Corvane/1 quit\n\n");
    QTest::newRow("more bytes after it") << QByteArray("Corvane/1 open\n\n\n");
    QTest::newRow("a zero in the token") << QByteArray("Corvane/1 open\na\0b\n", 19);
    QTest::newRow("a control character in the token") << QByteArray("Corvane/1 open\n\x1b[2J\n");
    QTest::newRow("a token that is too long")
        << QByteArray("Corvane/1 open\n" + QByteArray(1025, 'x') + '\n');
}

void TestInstanceMessage::rejectsOtherBytes()
{
    QFETCH(const QByteArray, bytes);
    QVERIFY(!parseInstanceMessage(bytes.toStdString()));
}

void TestInstanceMessage::rejectsAPartOfAMessage()
{
    const std::string bytes = instanceMessageBytes({.activationToken = "token"});
    for (std::size_t length = 0; length < bytes.size(); ++length)
        QVERIFY(!parseInstanceMessage(std::string_view(bytes).substr(0, length)));
}

QTEST_APPLESS_MAIN(TestInstanceMessage)
#include "tst_InstanceMessage.moc"
