#include "platform/FolderLock.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;
using Holder = FolderLock::Holder;

class TestFolderLock : public QObject {
    Q_OBJECT

private slots:
    void isHeldByOneAtATime();
    void isFreeWhenItsOwnerIsGone();
    void isFreeWhenItsProcessIsKilled();
    void hasNoHolderWithoutAFolder();
    void canBeTakenOnceTheFolderExists();
    void doesNotCountOnAFolderThatWasReplaced();
    void leavesNoFileInTheFolder();

private:
    QTemporaryDir m_folder;
    const std::string m_path = m_folder.path().toStdString();
};

void TestFolderLock::isHeldByOneAtATime()
{
    FolderLock first(m_path);
    FolderLock second(m_path);
    QCOMPARE(first.take(), Holder::self);
    QCOMPARE(second.take(), Holder::other);
    QCOMPARE(first.take(), Holder::self); // It stays held.
}

void TestFolderLock::isFreeWhenItsOwnerIsGone()
{
    FolderLock second(m_path);
    {
        FolderLock first(m_path);
        QCOMPARE(first.take(), Holder::self);
        QCOMPARE(second.take(), Holder::other);
    }
    QCOMPARE(second.take(), Holder::self);
}

void TestFolderLock::isFreeWhenItsProcessIsKilled()
{
    int ends[2] = {};
    QCOMPARE(pipe(ends), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        FolderLock lock(m_path);
        const char held = lock.take() == Holder::self ? 1 : 0;
        if (write(ends[1], &held, 1) != 1)
            _exit(1);
        for (;;)
            pause();
    }
    char held = 0;
    QCOMPARE(read(ends[0], &held, 1), 1);
    QCOMPARE(held, 1);
    FolderLock lock(m_path);
    QCOMPARE(lock.take(), Holder::other);
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    QCOMPARE(lock.take(), Holder::self);
    close(ends[0]);
    close(ends[1]);
}

void TestFolderLock::hasNoHolderWithoutAFolder()
{
    QCOMPARE(FolderLock("").take(), Holder::nobody);
    QCOMPARE(FolderLock(m_path + "/missing").take(), Holder::nobody);
    QFile file(m_folder.filePath(u"file"_s));
    QVERIFY(file.open(QFile::WriteOnly));
    QCOMPARE(FolderLock(file.fileName().toStdString()).take(), Holder::nobody);
    QVERIFY(file.remove());
}

void TestFolderLock::canBeTakenOnceTheFolderExists()
{
    FolderLock lock(m_path + "/late");
    QCOMPARE(lock.take(), Holder::nobody);
    QVERIFY(QDir(m_folder.path()).mkdir(u"late"_s));
    QCOMPARE(lock.take(), Holder::self);
    QVERIFY(QDir(m_folder.path()).rmdir(u"late"_s));
}

void TestFolderLock::doesNotCountOnAFolderThatWasReplaced()
{
    const QString folder = m_folder.filePath(u"replaced"_s);
    QVERIFY(QDir().mkdir(folder));
    FolderLock first(folder.toStdString());
    QCOMPARE(first.take(), Holder::self);
    QVERIFY(QDir().rename(folder, folder + "-old"_L1));
    QCOMPARE(first.take(), Holder::nobody);
    QVERIFY(QDir().mkdir(folder));
    {
        FolderLock second(folder.toStdString());
        QCOMPARE(second.take(), Holder::self);
        QCOMPARE(first.take(), Holder::other);
    }
    QCOMPARE(first.take(), Holder::self);
    QVERIFY(QDir().rmdir(folder) && QDir().rmdir(folder + "-old"_L1));
}

void TestFolderLock::leavesNoFileInTheFolder()
{
    {
        FolderLock lock(m_path);
        QCOMPARE(lock.take(), Holder::self);
        QVERIFY(QDir(m_folder.path()).isEmpty());
    }
    QVERIFY(QDir(m_folder.path()).isEmpty());
}

QTEST_GUILESS_MAIN(TestFolderLock)
#include "tst_FolderLock.moc"
