#include "app/Commands.h"

#include "support/ScriptedUpdater.h"
#include "updates/UpdaterManager.h"

#include <QAction>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

QStringList texts(const QList<QAction *> &actions)
{
    QStringList list;
    for (const QAction *action : actions)
        list.append(action->isSeparator() ? u"-"_s : action->text());
    return list;
}

} // namespace

class TestCommands : public QObject {
    Q_OBJECT

private slots:
    void haveTheOrderOfAMenu();
    void haveTheirUsualShortcuts_data();
    void haveTheirUsualShortcuts();
    void haveTheirRolesInAMacsMenus();
    void updatesAreDisabledDuringACheck();
    void nameANewerVersion();
    void chooseAWindowOfTime();
};

void TestCommands::chooseAWindowOfTime()
{
    Commands commands;
    QCOMPARE(texts(commands.ofDashboard()).mid(0, 6),
             (QStringList{u"Charts of 1 min"_s, u"Charts of 10 min"_s, u"Charts of 1 hour"_s,
                          u"Charts of 1 day"_s, u"-"_s, u"About Corvane"_s}));
    QSignalSpy chosen(&commands, &Commands::historyWindowChosen);
    for (std::size_t i = 0; i < allHistoryWindows.size(); ++i) {
        QAction *action = commands.historyWindows()[qsizetype(i)];
        QCOMPARE(action->shortcut(), QKeySequence(Qt::Key_1 + int(i)));
        action->trigger();
        QVERIFY(action->isChecked());
        QVERIFY(chosen.takeFirst().front().value<HistoryWindow>() == allHistoryWindows[i]);
    }
    commands.setHistoryWindow(HistoryWindow::tenMin);
    QVERIFY(commands.historyWindows()[1]->isChecked());
    QVERIFY(!commands.historyWindows()[3]->isChecked()); // One at a time.
    QVERIFY(chosen.isEmpty());
}

void TestCommands::haveTheOrderOfAMenu()
{
    const Commands commands;
    QCOMPARE(texts(commands.inMenuOrder()),
             QStringList({u"Open Window"_s, u"-"_s, u"About Corvane"_s, u"Check for Updates…"_s,
                          u"Settings…"_s, u"-"_s, u"Quit"_s}));
}

void TestCommands::haveTheirUsualShortcuts_data()
{
    QTest::addColumn<HostSystem>("system");
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("Linux") << HostSystem::linuxDesktop
                           << QStringList{u""_s,       u""_s, u"F1"_s,    u""_s,
                                          u"Ctrl+,"_s, u""_s, u"Ctrl+Q"_s};
    QTest::newRow("a Mac has no key for its about panel")
        << HostSystem::mac
        << QStringList{u""_s, u""_s, u""_s, u""_s, u"Ctrl+,"_s, u""_s, u"Ctrl+Q"_s};
}

void TestCommands::haveTheirUsualShortcuts()
{
    QFETCH(HostSystem, system);
    const Commands commands(nullptr, system);
    QStringList keys;
    for (const QAction *action : commands.inMenuOrder())
        keys.append(action->shortcut().toString(QKeySequence::PortableText));
    QTEST(keys, "keys");
}

void TestCommands::haveTheirRolesInAMacsMenus()
{
    const Commands commands;
    QCOMPARE(commands.about()->menuRole(), QAction::AboutRole);
    QCOMPARE(commands.checkForUpdates()->menuRole(), QAction::ApplicationSpecificRole);
    QCOMPARE(commands.settings()->menuRole(), QAction::PreferencesRole);
    QCOMPARE(commands.quit()->menuRole(), QAction::QuitRole);
    QCOMPARE(commands.openWindow()->menuRole(), QAction::NoRole);
}

void TestCommands::updatesAreDisabledDuringACheck()
{
    auto *updates = new ScriptedUpdater;
    UpdaterManager updater{std::unique_ptr<SystemUpdater>(updates)};
    Commands commands;
    commands.connectUpdater(updater);
    for (const bool isChecking : {false, true, false}) {
        updates->setChecking(isChecking);
        QCOMPARE(commands.checkForUpdates()->isEnabled(), !isChecking);
    }
}

void TestCommands::nameANewerVersion()
{
    auto *updates = new ScriptedUpdater;
    UpdaterManager updater{std::unique_ptr<SystemUpdater>(updates)};
    updates->find({}, u"0.2.0"_s);
    Commands commands;
    commands.connectUpdater(updater);
    const QAction *command = commands.checkForUpdates();
    QCOMPARE(command->text(), u"Corvane 0.2.0 Is Available…"_s);
    QVERIFY(command->isEnabled());
    updates->find({}, u"1:0.3.0~rc1"_s);
    QCOMPARE(command->text(), u"Corvane 1:0.3.0~rc1 Is Available…"_s);
    updates->find({});
    QCOMPARE(command->text(), u"Check for Updates…"_s);
}

QTEST_MAIN(TestCommands)
#include "tst_Commands.moc"
