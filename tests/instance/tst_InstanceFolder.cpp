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
    void closesItsFolderToOthers();
    void refusesALink();
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

void TestInstanceFolder::closesItsFolderToOthers()
{
    qunsetenv("XDG_RUNTIME_DIR");
    QVERIFY(QDir().mkpath(inTemporary()));
    const QByteArray folder = QFile::encodeName(inTemporary());
    for (const mode_t mode : {mode_t(0770), mode_t(0777)}) {
        QCOMPARE(chmod(folder.constData(), mode), 0);
        QCOMPARE(QString::fromStdString(instanceFolder()), inTemporary());
        struct stat status = {};
        QCOMPARE(stat(folder.constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0700));
    }
}

void TestInstanceFolder::refusesALink()
{
    qunsetenv("XDG_RUNTIME_DIR");
    QVERIFY(QFile::link(m_runtime->path(), inTemporary()));
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
