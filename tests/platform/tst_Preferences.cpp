#include "platform/Preferences.h"

#include "support/NoThreads.h"
#include "support/OddFiles.h"
#include "support/Waiting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Each test has a file of its own.
class TestPreferences : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void readsWhatAnotherObjectWrote();
    void showsWhatIsNotWrittenYet();
    void aForeignLockHoldsNothingUp();
    void leavesOddFilesAlone_data();
    void leavesOddFilesAlone();
    void keepsItsValuesWithoutThreads();

private:
    QString file() const { return QSettings().fileName(); }

    QTemporaryDir m_home;
    int m_number = 0;
};

void TestPreferences::initTestCase()
{
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path()));
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QVERIFY(QDir(m_home.path()).mkdir(u"Corvane"_s));
}

void TestPreferences::init()
{
    QCoreApplication::setApplicationName(QString::number(++m_number));
}

void TestPreferences::readsWhatAnotherObjectWrote()
{
    QVERIFY(!Preferences().value(u"color"_s).isValid());
    Preferences().setValue(u"color"_s, u"green"_s);
    Preferences().setValue(u"group/size"_s, 42);
    const Preferences preferences;
    QCOMPARE(preferences.value(u"color"_s).toString(), u"green"_s);
    QCOMPARE(preferences.value(u"group/size"_s).toInt(), 42);
    QVERIFY(!preferences.value(u"Color"_s).isValid());
}

void TestPreferences::showsWhatIsNotWrittenYet()
{
    Preferences preferences;
    for (int size = 0; size < 100; ++size) {
        preferences.setValue(u"size"_s, size);
        QCOMPARE(preferences.value(u"size"_s).toInt(), size);
    }
    TRY_COMPARE(QSettings().value(u"size"_s).toInt(), 99);
}

void TestPreferences::aForeignLockHoldsNothingUp()
{
    const QString path = file(); // Asking for it later would wait for the lock.
    QLockFile lock(path + u".lock"_s);
    lock.setStaleLockTime(0);
    QVERIFY(lock.lock());
    QElapsedTimer elapsed;
    elapsed.start();
    {
        Preferences preferences(100ms);
        preferences.setValue(u"size"_s, 42);
        QCOMPARE(preferences.value(u"size"_s).toInt(), 42);
    }
    QVERIFY(elapsed.elapsed() < 10'000); // The lock itself is waited for as long as it is fresh.
    QVERIFY(!QFile::exists(path));
    lock.unlock();
    TRY_COMPARE(QSettings().value(u"size"_s).toInt(), 42);
}

void TestPreferences::leavesOddFilesAlone_data()
{
    QTest::addColumn<PutOddFile>("put");
    QTest::newRow("a FIFO without a reader or writer") << &putFIFO;
    QTest::newRow("a file of half a gigabyte") << &putHugeFile;
    QTest::newRow("a file without an end") << &putEndlessFile;
}

/// A test that reads one of these hangs.
void TestPreferences::leavesOddFilesAlone()
{
    QFETCH(const PutOddFile, put);
    const QString path = file();
    QVERIFY(put(path));
    const qint64 size = QFileInfo(path).size();
    {
        Preferences preferences;
        QVERIFY(!preferences.value(u"size"_s).isValid());
        preferences.setValue(u"size"_s, 42);
        QCOMPARE(preferences.value(u"size"_s).toInt(), 42);
    }
    QCOMPARE(QFileInfo(path).size(), size);
    QVERIFY(QFile::remove(path));
    Preferences().setValue(u"size"_s, 43);
    QCOMPARE(Preferences().value(u"size"_s).toInt(), 43);
}

void TestPreferences::keepsItsValuesWithoutThreads()
{
    Preferences().setValue(u"size"_s, 42);
    std::optional<Preferences> preferences;
    {
        const NoThreads none;
        preferences.emplace();
        QVERIFY(!preferences->value(u"size"_s).isValid());
        preferences->setValue(u"size"_s, 43);
        QCOMPARE(preferences->value(u"size"_s).toInt(), 43);
    }
    preferences.reset(); // Writes what it could not write before.
    QCOMPARE(Preferences().value(u"size"_s).toInt(), 43);
}

QTEST_GUILESS_MAIN(TestPreferences)
#include "tst_Preferences.moc"
