#include "platform/PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestPrivateFolder : public QObject {
    Q_OBJECT

private slots:
    void init() { m_home.emplace(); }
    void createsAFolderForItsOwnerAlone();
    void repairsAnExistingFolder_data();
    void repairsAnExistingFolder();
    void refusesALinkAndLeavesItsTargetAlone();
    void refusesWhatIsNotAFolder();
    void refusesAFolderOfAnotherUser();

private:
    std::string path() const { return (m_home->path() + "/folder"_L1).toStdString(); }
    static mode_t mode(const std::string &path)
    {
        struct stat status = {};
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    std::optional<QTemporaryDir> m_home;
};

void TestPrivateFolder::createsAFolderForItsOwnerAlone()
{
    QVERIFY(makePrivateFolder(path()));
    QCOMPARE(mode(path()), mode_t(0700));
    QVERIFY(makePrivateFolder(path()));
    QVERIFY(!makePrivateFolder(path() + "/deeper/still"));
}

void TestPrivateFolder::repairsAnExistingFolder_data()
{
    QTest::addColumn<int>("before");
    QTest::newRow("readable by all") << 0755;
    QTest::newRow("open to a group") << 0770;
    QTest::newRow("open to all") << 0777;
    QTest::newRow("read-only for its owner") << 0500;
}

void TestPrivateFolder::repairsAnExistingFolder()
{
    QFETCH(const int, before);
    QCOMPARE(mkdir(path().c_str(), 0700), 0);
    QCOMPARE(chmod(path().c_str(), static_cast<mode_t>(before)), 0);
    QVERIFY(makePrivateFolder(path()));
    QCOMPARE(mode(path()), mode_t(0700));
}

void TestPrivateFolder::refusesALinkAndLeavesItsTargetAlone()
{
    const std::string target = path() + "-target";
    QCOMPARE(mkdir(target.c_str(), 0700), 0);
    QCOMPARE(chmod(target.c_str(), 0755), 0);
    QCOMPARE(symlink(target.c_str(), path().c_str()), 0);
    QVERIFY(!makePrivateFolder(path()));
    QCOMPARE(mode(target), mode_t(0755));
}

void TestPrivateFolder::refusesWhatIsNotAFolder()
{
    QFile file(QString::fromStdString(path()));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(!makePrivateFolder(path()));
    QVERIFY(file.remove());
    QCOMPARE(mkfifo(path().c_str(), 0600), 0);
    QVERIFY(!makePrivateFolder(path()));
}

void TestPrivateFolder::refusesAFolderOfAnotherUser()
{
    if (geteuid() != 0)
        QSKIP("only root can give a folder to another user");
    QCOMPARE(mkdir(path().c_str(), 0700), 0);
    QCOMPARE(chmod(path().c_str(), 0755), 0);
    QCOMPARE(chown(path().c_str(), 12345, 12345), 0);
    QVERIFY(!makePrivateFolder(path()));
    QCOMPARE(mode(path()), mode_t(0755));
}

QTEST_GUILESS_MAIN(TestPrivateFolder)
#include "tst_PrivateFolder.moc"
