#include "instance/InstanceFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestInstanceFolder : public QObject {
    Q_OBJECT

private slots:
    void init();
    void isInTheRuntimeFolder();
    void isATemporaryFolderWithoutARuntimeFolder_data();
    void isATemporaryFolderWithoutARuntimeFolder();
    void isATemporaryFolderIfThePathIsTooLongForASocket();
    void refusesAFolderThatOthersCanReach_data();
    void refusesAFolderThatOthersCanReach();
    void refusesAFolderOfAnotherUser();

private:
    QString inSession() const { return m_runtime->filePath(u"io.github.corvane.Corvane"_s); }
    QString inTemporary() const
    {
        return m_temporary->filePath(u"io.github.corvane.Corvane-%1"_s.arg(geteuid()));
    }

    std::unique_ptr<QTemporaryDir> m_runtime;
    std::unique_ptr<QTemporaryDir> m_temporary;
};

void TestInstanceFolder::init()
{
    // A socket's path is limited to some 100 bytes.
    m_runtime = std::make_unique<QTemporaryDir>(u"/tmp/corvane-XXXXXX"_s);
    m_temporary = std::make_unique<QTemporaryDir>(u"/tmp/corvane-XXXXXX"_s);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->path()));
    qputenv("TMPDIR", QFile::encodeName(m_temporary->path()));
}

void TestInstanceFolder::isInTheRuntimeFolder()
{
    for (int start = 0; start < 2; ++start)
        QCOMPARE(QString::fromStdString(instanceFolder()), inSession());
    QCOMPARE(QFile::permissions(inSession()) & ~QFile::Permissions(0x7000),
             QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
    QCOMPARE(instanceSocket("/folder"), std::string("/folder/socket"));
}

void TestInstanceFolder::isATemporaryFolderWithoutARuntimeFolder_data()
{
    QTest::addColumn<QByteArray>("runtime");
    QTest::newRow("not set") << QByteArray();
    QTest::newRow("missing") << QByteArray("/nonexistent/folder");
    QTest::newRow("a relative path") << QByteArray(".");
}

void TestInstanceFolder::isATemporaryFolderWithoutARuntimeFolder()
{
    QFETCH(const QByteArray, runtime);
    qputenv("XDG_RUNTIME_DIR", runtime);
    QCOMPARE(QString::fromStdString(instanceFolder()), inTemporary());
}

void TestInstanceFolder::isATemporaryFolderIfThePathIsTooLongForASocket()
{
    const QString longName(80, u'x');
    QVERIFY(QDir(m_runtime->path()).mkdir(longName));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->filePath(longName)));
    QCOMPARE(QString::fromStdString(instanceFolder()), inTemporary());
}

void TestInstanceFolder::refusesAFolderThatOthersCanReach_data()
{
    QTest::addColumn<bool>("isLink");
    QTest::addColumn<int>("mode");
    QTest::newRow("open to a group") << false << 0770;
    QTest::newRow("open to all") << false << 0777;
    QTest::newRow("a link") << true << 0700;
}

void TestInstanceFolder::refusesAFolderThatOthersCanReach()
{
    QFETCH(const bool, isLink);
    QFETCH(const int, mode);
    qunsetenv("XDG_RUNTIME_DIR");
    const QString real = isLink ? m_runtime->path() : inTemporary();
    QVERIFY(QDir().mkpath(real));
    QCOMPARE(chmod(QFile::encodeName(real).constData(), static_cast<mode_t>(mode)), 0);
    if (isLink)
        QVERIFY(QFile::link(real, inTemporary()));
    QCOMPARE(QString::fromStdString(instanceFolder()), QString());
}

void TestInstanceFolder::refusesAFolderOfAnotherUser()
{
    if (geteuid() != 0)
        QSKIP("only root can give a folder to another user");
    const QByteArray session = QFile::encodeName(m_runtime->path());
    QCOMPARE(chown(session.constData(), 12345, 12345), 0);
    QCOMPARE(QString::fromStdString(instanceFolder()), inTemporary());
    QCOMPARE(chown(QFile::encodeName(inTemporary()).constData(), 12345, 12345), 0);
    QCOMPARE(QString::fromStdString(instanceFolder()), QString());
}

QTEST_GUILESS_MAIN(TestInstanceFolder)
#include "tst_InstanceFolder.moc"
