#include "platform/ForeignText.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestForeignText : public QObject {
    Q_OBJECT

private slots:
    void keepsEachCharacter_data();
    void keepsEachCharacter();
};

void TestForeignText::keepsEachCharacter_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "bash"_ba << u"bash"_s;
    QTest::newRow("of any script") << "тест 😀"_ba << u"тест 😀"_s;
    QTest::newRow("a byte-order mark at the start") << "\xEF\xBB\xBF"
                                                       "bash"_ba
                                                    << u"\uFEFFbash"_s;
    QTest::newRow("a byte-order mark inside") << "ba\xEF\xBB\xBFsh"_ba << u"ba\uFEFFsh"_s;
    QTest::newRow("a byte that is not UTF-8") << "b\xFFsh"_ba << u"b\uFFFDsh"_s;
    QTest::newRow("half a character at the end") << "bas\xC3"_ba << u"bas\uFFFD"_s;
    QTest::newRow("a NUL") << QByteArray("a\0b", 3) << u"a\0b"_s;
    QTest::newRow("empty") << QByteArray() << QString();
}

void TestForeignText::keepsEachCharacter()
{
    QFETCH(const QByteArray, bytes);
    QTEST(foreignText({bytes.constData(), std::size_t(bytes.size())}), "text");
}

QTEST_APPLESS_MAIN(TestForeignText)
#include "tst_ForeignText.moc"
