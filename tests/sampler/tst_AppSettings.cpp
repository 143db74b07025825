#include "sampler/AppSettings.h"
#include "support/HostileDisk.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestAppSettings : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void isInTheUsersConfiguration();
    void reads_data();
    void reads();
    void storesAnIntegerUnderItsKey();
    void notifiesObserversBeforeItStores();
    void notifiesObserversOfEveryWrite();
    void readsWhatItStored();
    void keepsOtherKeys();
    void remembersThatAdviceWasDeclined_data();
    void remembersThatAdviceWasDeclined();
    void survivesADiskThatTakesNothing_data();
    void survivesADiskThatTakesNothing();

private:
    /// Writes the settings file as an editor would.
    void writeFile(const QByteArray &contents) const;
    QByteArray fileContents() const;

    QTemporaryDir m_home;
    QString m_path; ///< The settings file.
};

void TestAppSettings::initTestCase()
{
    // A home of its own, before Qt looks for the folders for the first time.
    qputenv("HOME", m_home.path().toLocal8Bit());
    qunsetenv("XDG_CONFIG_HOME");
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"Corvane"_s);
    m_path = m_home.filePath(u".config/Corvane/Corvane.conf"_s);
}

void TestAppSettings::init()
{
    QFile::remove(m_path);
    QSettings().sync(); // Qt caches the contents of a file for all its settings objects.
}

void TestAppSettings::writeFile(const QByteArray &contents) const
{
    QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
    file.close();
    QSettings().sync();
}

QByteArray TestAppSettings::fileContents() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestAppSettings::isInTheUsersConfiguration()
{
    {
        AppSettings settings;
        QVERIFY(!QFile::exists(m_path)); // Reading writes nothing.
        settings.setHistoryWindow(HistoryWindow::oneMin);
    }
    QVERIFY(QFile::exists(m_path));
}

void TestAppSettings::reads_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<HistoryWindow>("window");
    QTest::newRow("ten minutes") << QByteArray("[General]\nhistoryWindow=600\n")
                                 << HistoryWindow::tenMin;
    QTest::newRow("an hour") << QByteArray("[General]\nhistoryWindow=3600\n")
                             << HistoryWindow::oneHour;
    QTest::newRow("a day") << QByteArray("[General]\nhistoryWindow=86400\n")
                           << HistoryWindow::oneDay;
    const auto oneMin = HistoryWindow::oneMin;
    QTest::newRow("no such key") << QByteArray("[General]\nother=1\n") << oneMin;
    QTest::newRow("an empty file") << QByteArray() << oneMin;
    QTest::newRow("one minute") << QByteArray("[General]\nhistoryWindow=60\n") << oneMin;
    QTest::newRow("a window that is not known")
        << QByteArray("[General]\nhistoryWindow=300\n") << oneMin;
    QTest::newRow("zero") << QByteArray("[General]\nhistoryWindow=0\n") << oneMin;
    QTest::newRow("negative") << QByteArray("[General]\nhistoryWindow=-60\n") << oneMin;
    QTest::newRow("a text") << QByteArray("[General]\nhistoryWindow=soon\n") << oneMin;
    QTest::newRow("a fraction") << QByteArray("[General]\nhistoryWindow=60.5\n") << oneMin;
    QTest::newRow("more than 64 bits")
        << QByteArray("[General]\nhistoryWindow=99999999999999999999\n") << oneMin;
    QTest::newRow("a list") << QByteArray("[General]\nhistoryWindow=300, 600\n") << oneMin;
    QTest::newRow("a value of some type")
        << QByteArray("[General]\nhistoryWindow=@Rect(1 2 3 4)\n") << oneMin;
    QTest::newRow("garbage") << QByteArray("\x00\xff[Gen\n=\n[[]]\nhistoryWindow", 27) << oneMin;
}

void TestAppSettings::reads()
{
    QFETCH(QByteArray, contents);
    writeFile(contents);
    QTEST(AppSettings().historyWindow(), "window");
    QCOMPARE(fileContents(), contents); // Reading repairs nothing.
}

void TestAppSettings::storesAnIntegerUnderItsKey()
{
    writeFile("[General]\nhistoryWindow=300\n");
    AppSettings().setHistoryWindow(HistoryWindow::oneMin);
    QCOMPARE(fileContents(), QByteArray("[General]\nhistoryWindow=60\n"));
}

void TestAppSettings::notifiesObserversBeforeItStores()
{
    writeFile("[General]\nhistoryWindow=300\n");
    AppSettings settings;
    QString storedWhenNotified;
    connect(&settings, &AppSettings::historyWindowChanged, this,
            [&storedWhenNotified, &settings](HistoryWindow window) {
                QVERIFY(settings.historyWindow() == window);
                storedWhenNotified = QSettings().value("historyWindow"_L1).toString();
            });
    settings.setHistoryWindow(HistoryWindow::oneMin);
    QCOMPARE(storedWhenNotified, u"300"_s);
    TRY_COMPARE(QSettings().value("historyWindow"_L1).toString(), u"60"_s);
}

void TestAppSettings::notifiesObserversOfEveryWrite()
{
    AppSettings settings;
    const QSignalSpy spy(&settings, &AppSettings::historyWindowChanged);
    QVERIFY(spy.isValid());
    settings.setHistoryWindow(HistoryWindow::oneMin);
    settings.setHistoryWindow(HistoryWindow::oneMin);
    QVERIFY(settings.setProperty("historyWindow", QVariant::fromValue(HistoryWindow::oneMin)));
    QCOMPARE(spy.count(), 3);
    for (const QList<QVariant> &arguments : spy)
        QVERIFY(arguments.at(0).value<HistoryWindow>() == HistoryWindow::oneMin);
}

void TestAppSettings::readsWhatItStored()
{
    AppSettings().setHistoryWindow(HistoryWindow::oneMin);
    QVERIFY(AppSettings().historyWindow() == HistoryWindow::oneMin);
    QCOMPARE(QSettings().value("historyWindow"_L1).toLongLong(), 60);
}

void TestAppSettings::keepsOtherKeys()
{
    writeFile("[General]\nlater=42\n\n[window]\nx=7\n");
    AppSettings().setHistoryWindow(HistoryWindow::oneMin);
    QSettings().sync();
    const QSettings stored(m_path, QSettings::IniFormat);
    QCOMPARE(stored.value("later"_L1).toInt(), 42);
    QCOMPARE(stored.value("window/x"_L1).toInt(), 7);
    QCOMPARE(stored.value("historyWindow"_L1).toInt(), 60);
}

void TestAppSettings::remembersThatAdviceWasDeclined_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<bool>("wanted");
    QTest::newRow("no file") << QByteArray() << true;
    QTest::newRow("declined") << QByteArray("[General]\ntrayAdvice=false\n") << false;
    QTest::newRow("taken back by hand") << QByteArray("[General]\ntrayAdvice=true\n") << true;
    QTest::newRow("garbage") << QByteArray("[General]\ntrayAdvice=@Rect(1 2 3 4)\n") << true;
}

void TestAppSettings::remembersThatAdviceWasDeclined()
{
    QFETCH(QByteArray, contents);
    writeFile(contents);
    {
        AppSettings settings;
        QTEST(settings.wantsTrayAdvice(), "wanted");
        settings.declineTrayAdvice();
        QVERIFY(!settings.wantsTrayAdvice());
    }
    QVERIFY(!AppSettings().wantsTrayAdvice());
}

void TestAppSettings::survivesADiskThatTakesNothing_data()
{
    QTest::addColumn<bool>("isFull");
    QTest::addColumn<QByteArray>("before");
    for (const QByteArray &before : {QByteArray(), QByteArray("[General]\nhistoryWindow=300\n")}) {
        const char *file = before.isEmpty() ? "no settings yet" : "settings from before";
        QTest::addRow("a full disk, %s", file) << true << before;
        QTest::addRow("a read-only folder, %s", file) << false << before;
    }
}

/// A new choice holds while the program runs; the file keeps the old one until it can be written.
void TestAppSettings::survivesADiskThatTakesNothing()
{
    QFETCH(const bool, isFull);
    QFETCH(const QByteArray, before);
    const QByteArray folder = QFile::encodeName(QFileInfo(m_path).path());
    QVERIFY(QDir().mkpath(QFile::decodeName(folder)));
    QCOMPARE(chmod(QFile::encodeName(m_home.path()).constData(), 0755),
             0); // So that others can enter it.
    if (!before.isEmpty())
        writeFile(before);
    const QStringList files = QDir(QFile::decodeName(folder)).entryList(QDir::Files | QDir::Hidden);
    {
        QCOMPARE(chmod(folder.constData(), isFull ? 0755 : 0555), 0);
        const auto full = isFull ? std::make_unique<FullDisk>() : nullptr;
        const auto user = isFull ? nullptr : std::make_unique<OrdinaryUser>();
        AppSettings settings;
        const QSignalSpy spy(&settings, &AppSettings::historyWindowChanged);
        settings.setHistoryWindow(HistoryWindow::oneMin);
        QCOMPARE(spy.count(), 1);
        QVERIFY(settings.historyWindow() == HistoryWindow::oneMin);
    }
    QCOMPARE(chmod(folder.constData(), 0755), 0);
    QCOMPARE(fileContents(), before);
    QCOMPARE(QDir(QFile::decodeName(folder)).entryList(QDir::Files | QDir::Hidden), files);

    AppSettings().setHistoryWindow(HistoryWindow::oneMin);
    QCOMPARE(fileContents(), QByteArray("[General]\nhistoryWindow=60\n"));
}

QTEST_GUILESS_MAIN(TestAppSettings)
#include "tst_AppSettings.moc"
