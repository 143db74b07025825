#include "platform/SecretText_linux.h"

#include "support/OddFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestSecretText : public QObject {
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void isEmptyWhereNothingCanBeRead();
};

void TestSecretText::reads_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expected");
    QTest::newRow("an empty file") << 0 << 0;
    QTest::newRow("a short one") << 5 << 5;
    QTest::newRow("one of the limit's size") << 100'000 << 100'000;
    QTest::newRow("the first part of a longer one") << 100'001 << 100'000;
}

void TestSecretText::reads()
{
    QFETCH(int, size);
    QFETCH(int, expected);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(size, 'x'));
    file.close();
    const SecretText secret(file.fileName().toStdString(), 100'000);
    QCOMPARE(secret.text(), std::string(static_cast<std::size_t>(expected), 'x'));
}

void TestSecretText::isEmptyWhereNothingCanBeRead()
{
    const QTemporaryDir folder;
    QVERIFY(putFIFO(folder.filePath(u"fifo"_s)));
    for (const QString &path : {u"/nowhere"_s, folder.path(), folder.filePath(u"fifo"_s)})
        QVERIFY(SecretText(path.toStdString(), 100).text().empty());
}

QTEST_APPLESS_MAIN(TestSecretText)
#include "tst_SecretText.moc"
