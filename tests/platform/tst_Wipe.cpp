#include "platform/Wipe.h"

#include <QTest>

#include <span>
#include <string>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestWipe : public QObject {
    Q_OBJECT

private slots:
    void overwritesStrings();
    void overwritesBytes();
    void leavesCopiesAlone();
};

void TestWipe::overwritesStrings()
{
    std::string text = "secret";
    wipe(text);
    QCOMPARE(text, std::string(6, '\0'));
    QString wide = QString(40, u'x');
    const QChar *place = wide.constData();
    wipe(wide);
    QCOMPARE(wide, QString(40, QChar(0)));
    QCOMPARE(wide.constData(), place);
    std::string empty;
    wipe(empty);
    QVERIFY(empty.empty());
}

void TestWipe::overwritesBytes()
{
    char bytes[] = "secret";
    std::span first(bytes, 3);
    wipe(first);
    QCOMPARE(QByteArray(bytes, 6), QByteArray("\0\0\0ret", 6));
}

void TestWipe::leavesCopiesAlone()
{
    const QString kept(40, u'x');
    QString copy = kept;
    wipe(copy);
    QCOMPARE(kept, QString(40, u'x'));
}

QTEST_APPLESS_MAIN(TestWipe)
#include "tst_Wipe.moc"
