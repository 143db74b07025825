#include "app/Commands.h"

#include "settings/UpdateSettings.h"
#include "support/ScriptedUpdater.h"
#include "ui/ContextMenu.h"
#include "ui/PanelButton.h"
#include "updates/UpdaterManager.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
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
    void standInOneOrder();
    void haveTheirUsualKeys_data();
    void haveTheirUsualKeys();
    void takeTheirPlacesInAMacsMenus();
    void nothingMakesANewWindow();
    void updatesAreCheckedForOnceAtATime();
    void tellOfANewerVersion();
    void aMenuOfThemClosesByItself();
    void aWidgetWithoutActionsHasNoMenu();
};

void TestCommands::standInOneOrder()
{
    const Commands commands;
    QCOMPARE(texts(commands.inMenuOrder()),
             QStringList({u"Open Window"_s, u"-"_s, u"About Corvane"_s, u"Check for Updates…"_s,
                          u"Settings…"_s, u"-"_s, u"Quit"_s}));
}

void TestCommands::haveTheirUsualKeys_data()
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

void TestCommands::haveTheirUsualKeys()
{
    QFETCH(HostSystem, system);
    const Commands commands(nullptr, system);
    QStringList keys;
    for (const QAction *action : commands.inMenuOrder())
        keys.append(action->shortcut().toString(QKeySequence::PortableText));
    QTEST(keys, "keys");
}

void TestCommands::takeTheirPlacesInAMacsMenus()
{
    const Commands commands;
    QCOMPARE(commands.about()->menuRole(), QAction::AboutRole);
    QCOMPARE(commands.checkForUpdates()->menuRole(), QAction::ApplicationSpecificRole);
    QCOMPARE(commands.settings()->menuRole(), QAction::PreferencesRole);
    QCOMPARE(commands.quit()->menuRole(), QAction::QuitRole);
    QCOMPARE(commands.openWindow()->menuRole(), QAction::NoRole);
}

void TestCommands::nothingMakesANewWindow()
{
    const Commands commands;
    const auto bar = commands.makeMenuBar();
    QStringList all;
    for (const QAction *menu : bar->actions())
        all += texts(menu->menu()->actions());
    QCOMPARE(all,
             QStringList({u"About Corvane"_s, u"Check for Updates…"_s, u"Settings…"_s, u"Quit"_s,
                          u"Open Window"_s}));
}

void TestCommands::updatesAreCheckedForOnceAtATime()
{
    auto *updates = new ScriptedUpdater;
    UpdaterManager updater{std::unique_ptr<SystemUpdater>(updates)};
    Commands commands;
    commands.follow(updater);
    UpdateSettings settings(updater);
    const auto *checkNow = settings.findChild<PanelButton *>();
    for (const bool isChecking : {false, true, false}) {
        updates->setChecking(isChecking);
        QCOMPARE(commands.checkForUpdates()->isEnabled(), !isChecking);
        QCOMPARE(checkNow->isEnabled(), !isChecking);
    }
}

void TestCommands::tellOfANewerVersion()
{
    auto *updates = new ScriptedUpdater;
    UpdaterManager updater{std::unique_ptr<SystemUpdater>(updates)};
    updates->find({}, u"0.2.0"_s);
    Commands commands;
    commands.follow(updater);
    const QAction *command = commands.checkForUpdates();
    QCOMPARE(command->text(), u"Corvane 0.2.0 Is Available…"_s);
    QVERIFY(command->isEnabled());
    updates->find({}, u"1:0.3.0~rc1"_s);
    QCOMPARE(command->text(), u"Corvane 1:0.3.0~rc1 Is Available…"_s);
    updates->find({});
    QCOMPARE(command->text(), u"Check for Updates…"_s);
}

void TestCommands::aMenuOfThemClosesByItself()
{
    const Commands commands;
    QWidget widget;
    widget.addActions(commands.inMenuOrder());
    widget.show();
    const QPointer<QMenu> menu = popUpActions(widget, {20, 30});
    QVERIFY(menu);
    QCOMPARE(menu->pos(), QPoint(20, 30));
    QCOMPARE(menu->actions(), commands.inMenuOrder());

    const QSignalSpy settings(commands.settings(), &QAction::triggered);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(commands.settings()).center());
    QCOMPARE(settings.count(), 1);
    QTRY_VERIFY(!menu);
}

void TestCommands::aWidgetWithoutActionsHasNoMenu()
{
    QWidget widget;
    QCOMPARE(popUpActions(widget, {}), nullptr);
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
}

QTEST_MAIN(TestCommands)
#include "tst_Commands.moc"
