#include "login/Autostart_linux.h"

#include "login/DesktopEntry.h"
#include "login/LaunchAtLoginManager.h"
#include "support/HostileDisk.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The login item in the test's own autostart folders, with this test as the program.
class TestAutostart : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isDisabledWithoutAnEntry();
    void isEnabledAndDisabled();
    void createsTheFolderForTheUserAlone();
    void entryNamesThisProgram();
    void followsTheEntry_data();
    void followsTheEntry();
    void needsTheProgramOfTryExec();
    void isDisabledForAnotherBuild();
    void isEnabledForALinkToThisProgram();
    void isEnabledForANameInThePath();
    void replacesTheEntryOfAnotherBuild();
    void systemWideEntryCountsWithoutTheUsers();
    void overridesASystemWideEntryToDisableIt();
    void invalidUserEntryOverridesTheSystemWideOne();
    void unusableFileIsDisabled_data();
    void unusableFileIsDisabled();
    void folderInPlaceOfTheEntry();
    void fileInPlaceOfTheFolder();
    void readOnlyFolder();
    void fullDisk();
    void refusesAProgramThatIsGone();
    void refusesAnEqualsSignInThePath();
    void entryNamesTheAppImage();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString program() const { return QCoreApplication::applicationFilePath(); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_entry;      ///< The user's.
    QString m_systemWide; ///< Does not exist at first.
};

void TestAutostart::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(u"config"_s)));
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(path(u"xdg"_s)));
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    const QString name = u"/autostart/"_s + QStringLiteral(CORVANE_IDENTIFIER) + u".desktop"_s;
    m_entry = path(u"config"_s) + name;
    m_systemWide = path(u"xdg"_s) + name;
}

void TestAutostart::cleanup()
{
    qunsetenv("APPDIR");
    qunsetenv("APPIMAGE");
}

void TestAutostart::isDisabledWithoutAnEntry()
{
    QVERIFY(!LaunchAtLoginManager().isEnabled());
    QVERIFY(!QFileInfo::exists(path(u"config"_s)));
}

void TestAutostart::isEnabledAndDisabled()
{
    LaunchAtLoginManager manager;
    manager.setEnabled(true);
    QVERIFY(manager.isEnabled());
    QVERIFY(!manager.lastError());
    QVERIFY(QFileInfo::exists(m_entry));
    QVERIFY(LaunchAtLoginManager().isEnabled());

    manager.setEnabled(false);
    QVERIFY(!manager.isEnabled());
    QVERIFY(!manager.lastError());
    QVERIFY(!QFileInfo::exists(m_entry));

    manager.setEnabled(false);
    QVERIFY(!manager.lastError());
}

void TestAutostart::createsTheFolderForTheUserAlone()
{
    QVERIFY(!autostartItem(program()).enable());
    for (const QString &folder : {path(u"config"_s), path(u"config/autostart"_s)})
        QCOMPARE(QFile::permissions(folder)
                     & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
                        | QFile::WriteOther | QFile::ExeOther),
                 QFile::Permissions());
    // No temporary file is left.
    QCOMPARE(QDir(path(u"config/autostart"_s)).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void TestAutostart::entryNamesThisProgram()
{
    const QString strange = path(u"a $b `c` \"d\" 'e' 100% \\"_s);
    QVERIFY(QFile::copy(program(), strange));
    const LoginItem item = autostartItem(strange);
    QVERIFY(!item.enable());
    QVERIFY(item.isEnabled());
    QVERIFY(!autostartItem(program()).isEnabled());
}

void TestAutostart::followsTheEntry_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<bool>("isOn");
    QTest::newRow("as written") << QByteArray() << true;
    QTest::newRow("hidden") << QByteArray("Hidden=true\n") << false;
    QTest::newRow("for another desktop") << QByteArray("OnlyShowIn=KDE;\n") << false;
}

void TestAutostart::followsTheEntry()
{
    QFETCH(const QByteArray, lines);
    LaunchAtLoginManager manager;
    manager.setEnabled(true);
    writeFile(m_entry, readFile(m_entry) + lines);
    manager.refresh();
    QTEST(manager.isEnabled(), "isOn");
    // Enabling overrides whatever disabled it.
    manager.setEnabled(true);
    QVERIFY(manager.isEnabled());
}

void TestAutostart::needsTheProgramOfTryExec()
{
    const QByteArray command = "[Desktop Entry]\nExec=" + QFile::encodeName(program()) + '\n';
    writeFile(m_entry, command + "TryExec=/nowhere/corvane\n");
    QVERIFY(!autostartItem(program()).isEnabled());
    writeFile(m_entry, command + "TryExec=sh\n");
    QVERIFY(autostartItem(program()).isEnabled());
}

void TestAutostart::isDisabledForAnotherBuild()
{
    const QString other = path(u"corvane"_s);
    QVERIFY(QFile::copy(program(), other));
    QVERIFY(!autostartItem(other).enable());
    QVERIFY(!autostartItem(program()).isEnabled());
}

void TestAutostart::isEnabledForALinkToThisProgram()
{
    const QString link = path(u"link"_s);
    QVERIFY(QFile::link(program(), link));
    QVERIFY(!autostartItem(link).enable());
    QVERIFY(autostartItem(program()).isEnabled());
}

void TestAutostart::isEnabledForANameInThePath()
{
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(QFileInfo(program()).path()));
    writeFile(m_entry,
              "[Desktop Entry]\nExec=" + QFile::encodeName(QFileInfo(program()).fileName()));
    const bool isOn = autostartItem(program()).isEnabled();
    qputenv("PATH", before);
    QVERIFY(isOn);
}

void TestAutostart::replacesTheEntryOfAnotherBuild()
{
    writeFile(m_entry, "[Desktop Entry]\nType=Application\nExec=/opt/old/corvane\nHidden=true\n");
    LaunchAtLoginManager manager;
    QVERIFY(!manager.isEnabled());
    manager.setEnabled(true);
    QVERIFY(manager.isEnabled());
    QVERIFY(!readFile(m_entry).contains("/opt/old"));
}

void TestAutostart::systemWideEntryCountsWithoutTheUsers()
{
    QVERIFY(!autostartItem(program()).enable());
    QVERIFY(QDir().mkpath(QFileInfo(m_systemWide).path()));
    QVERIFY(QFile::rename(m_entry, m_systemWide));
    QVERIFY(autostartItem(program()).isEnabled());
}

void TestAutostart::overridesASystemWideEntryToDisableIt()
{
    QVERIFY(!autostartItem(program()).enable());
    QVERIFY(QDir().mkpath(QFileInfo(m_systemWide).path()));
    QVERIFY(QFile::copy(m_entry, m_systemWide));

    LaunchAtLoginManager manager;
    manager.setEnabled(false);
    QVERIFY(!manager.isEnabled());
    QVERIFY(!manager.lastError());
    QVERIFY(readFile(m_entry).contains("Hidden=true\n"));

    manager.setEnabled(true);
    QVERIFY(manager.isEnabled());
}

void TestAutostart::invalidUserEntryOverridesTheSystemWideOne()
{
    QVERIFY(!autostartItem(program()).enable());
    QVERIFY(QDir().mkpath(QFileInfo(m_systemWide).path()));
    QVERIFY(QFile::rename(m_entry, m_systemWide));
    writeFile(m_entry, "no entry at all");
    QVERIFY(!autostartItem(program()).isEnabled());
    QVERIFY(QFile::remove(m_entry));
    QVERIFY(QFile::link(u"/nowhere"_s, m_entry));
    QVERIFY(!autostartItem(program()).isEnabled());
}

void TestAutostart::unusableFileIsDisabled_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray entry = autostartEntry(QCoreApplication::applicationFilePath());
    QTest::newRow("bytes") << QByteArray("\x7f"
                                         "ELF\0\1\2\3",
                                         8);
    QTest::newRow("ten megabytes") << entry + QByteArray(10'000'000, '#');
    QTest::newRow("a FIFO") << QByteArray("fifo");
    QTest::newRow("a loop of links") << QByteArray("loop");
}

void TestAutostart::unusableFileIsDisabled()
{
    QFETCH(const QByteArray, content);
    QVERIFY(QDir().mkpath(QFileInfo(m_entry).path()));
    if (content == "fifo")
        QCOMPARE(mkfifo(QFile::encodeName(m_entry).constData(), 0600), 0);
    else if (content == "loop")
        QVERIFY(QFile::link(m_entry, m_entry));
    else
        writeFile(m_entry, content);

    LaunchAtLoginManager manager;
    QVERIFY(!manager.isEnabled());
    // Enabling replaces it, unless the system cannot.
    manager.setEnabled(true);
    QCOMPARE(manager.isEnabled(), !manager.lastError());
    manager.setEnabled(false);
    QVERIFY(!manager.isEnabled());
    QVERIFY(!manager.lastError());
    QVERIFY(!QFileInfo(m_entry).isSymLink() && !QFileInfo::exists(m_entry));
}

void TestAutostart::folderInPlaceOfTheEntry()
{
    QVERIFY(QDir().mkpath(m_entry));
    LaunchAtLoginManager manager;
    QVERIFY(!manager.isEnabled());
    manager.setEnabled(true);
    QVERIFY(!manager.isEnabled());
    QVERIFY(manager.lastError().value_or(QString()).contains(m_entry));
    manager.setEnabled(false);
    QVERIFY(manager.lastError().value_or(QString()).contains(m_entry));
    QVERIFY(QFileInfo(m_entry).isDir());
}

void TestAutostart::fileInPlaceOfTheFolder()
{
    writeFile(path(u"config/autostart"_s), "");
    LaunchAtLoginManager manager;
    manager.setEnabled(true);
    QVERIFY(!manager.isEnabled());
    QVERIFY(manager.lastError().value_or(QString()).contains(path(u"config/autostart"_s)));

    QVERIFY(QFile::remove(path(u"config/autostart"_s)));
    manager.setEnabled(true);
    QVERIFY(manager.isEnabled());
    QVERIFY(!manager.lastError());
}

void TestAutostart::readOnlyFolder()
{
    const QString readable = path(u"corvane"_s); // For the ordinary user, too.
    QVERIFY(QFile::copy(program(), readable));
    const LoginItem item = autostartItem(readable);
    QVERIFY(!item.enable());
    const QString folder = QFileInfo(m_entry).path();
    for (const QString &open : {m_folder->path(), path(u"config"_s), folder})
        QCOMPARE(chmod(QFile::encodeName(open).constData(), 0555), 0);

    std::optional<QString> onError;
    std::optional<QString> offError;
    {
        const OrdinaryUser user;
        onError = item.enable();
        offError = item.disable();
    }
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(path(u"config"_s)).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(folder).constData(), 0755), 0);

    QVERIFY(onError && onError->contains(m_entry));
    QVERIFY(offError && offError->contains(m_entry));
    QVERIFY(item.isEnabled());
}

void TestAutostart::fullDisk()
{
    LaunchAtLoginManager manager;
    {
        const FullDisk disk;
        manager.setEnabled(true);
    }
    QVERIFY(!manager.isEnabled());
    QVERIFY(manager.lastError().value_or(QString()).contains(m_entry));
    QCOMPARE(QDir(QFileInfo(m_entry).path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestAutostart::refusesAProgramThatIsGone()
{
    const QString gone = path(u"corvane"_s);
    QVERIFY(QFile::copy(program(), gone));
    const LoginItem item = autostartItem(gone);
    QVERIFY(!item.enable());
    QVERIFY(QFile::remove(gone));
    QVERIFY(!item.isEnabled());
    QVERIFY(item.enable());
    QVERIFY(autostartItem(QString()).enable());
    QVERIFY(!autostartItem(QString()).isEnabled());
    QVERIFY(!item.disable());
}

void TestAutostart::refusesAnEqualsSignInThePath()
{
    const QString strange = path(u"a=b"_s);
    QVERIFY(QFile::copy(program(), strange));
    const auto error = autostartItem(strange).enable();
    QVERIFY(error && error->contains(strange));
    QVERIFY(!QFileInfo::exists(m_entry));
}

void TestAutostart::entryNamesTheAppImage()
{
    const QString image = path(u"Corvane.AppImage"_s);
    QVERIFY(QFile::copy(program(), image));
    qputenv("APPIMAGE", QFile::encodeName(image));

    // Started by an AppImage, but not inside it.
    qputenv("APPDIR", QFile::encodeName(path(u"mount"_s)));
    QVERIFY(!mainLoginItem().enable());
    QVERIFY(autostartItem(program()).isEnabled());

    qputenv("APPDIR", QFile::encodeName(QFileInfo(program()).path()));
    QVERIFY(!mainLoginItem().isEnabled());
    QVERIFY(!mainLoginItem().enable());
    QVERIFY(mainLoginItem().isEnabled());
    QVERIFY(autostartItem(image).isEnabled());
}

QTEST_GUILESS_MAIN(TestAutostart)
#include "tst_Autostart.moc"
