#include "tray/TrayProgram_linux.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestTrayProgram : public QObject {
    Q_OBJECT

private slots:
    void readsAProcessOfThisMachine();
    void readsTheShortNameWithoutItsLineEnd();
    void isEmptyForAProcessThatIsGone();
};

void TestTrayProgram::readsAProcessOfThisMachine()
{
    const TrayProgram program = trayProgram(static_cast<std::uint32_t>(getpid()));
    QCOMPARE(QString::fromStdString(program.executable), u"tst_TrayProgram"_s);
    QCOMPARE(QString::fromStdString(program.name), u"tst_TrayProgram"_s);
}

void TestTrayProgram::readsTheShortNameWithoutItsLineEnd()
{
    const QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkpath(u"proc/7"_s));
    QFile comm(root.filePath(u"proc/7/comm"_s));
    QVERIFY(comm.open(QFile::WriteOnly));
    comm.write("gnome-shell\n");
    comm.close();
    const TrayProgram program = trayProgram(7, root.path().toStdString() + "/");
    QCOMPARE(QString::fromStdString(program.name), u"gnome-shell"_s);
    QCOMPARE(QString::fromStdString(program.executable), QString());
}

void TestTrayProgram::isEmptyForAProcessThatIsGone()
{
    const TrayProgram program = trayProgram(0);
    QVERIFY(program.name.empty());
    QVERIFY(program.executable.empty());
}

QTEST_GUILESS_MAIN(TestTrayProgram)
#include "tst_TrayProgram.moc"
