#include "controls/PanelButton.h"
#include "controls/Switch.h"
#include "figures/MetricsFile.h"
#include "login/LaunchAtLoginManager.h"
#include "sampler/SystemSampler.h"
#include "settings/GeneralSettings.h"
#include "settings/SettingsNote.h"
#include "settings/SettingsTabs.h"
#include "settings/SettingsTexts.h"
#include "settings/SettingsWindow.h"
#include "settings/UpdateSettings.h"
#include "support/ScriptedLoginItem.h"
#include "support/ScriptedUpdater.h"
#include "updates/UpdaterManager.h"

#include <QTest>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// The settings window, shown.
struct Shown {
    explicit Shown(ScriptedUpdater *system = new ScriptedUpdater) : updates(system)
    {
        window.show();
    }

    /// The first switch of the visible page.
    Switch &visibleSwitch() const
    {
        const auto switches = window.findChildren<Switch *>();
        return **std::ranges::find_if(switches, &QWidget::isVisible);
    }

    /// The visible texts: headings and rows first, then the notes from top to bottom.
    QStringList texts() const
    {
        QStringList all;
        for (const AccessibleWidget *part : window.findChildren<AccessibleWidget *>()) {
            if (!part->isVisible())
                continue;
            for (const AccessibleText &text : part->accessibleTexts())
                all.append(text.name.isEmpty() ? text.value : text.name + u": "_s + text.value);
        }
        return all;
    }

    ScriptedLoginItem login;
    ScriptedUpdater *updates; ///< The manager's.
    LaunchAtLoginManager launch{login.item()};
    UpdaterManager updater{std::unique_ptr<SystemUpdater>(updates)};
    AppSettings settings;
    SystemSampler sampler{settings,
                          {.memory = [] { return MemorySnapshot{}; }, .chip = {}, .survey = {}},
                          keepsNoHistory};
    MetricsFile metrics{sampler, {}};
    SettingsWindow window{launch, updater, settings, metrics};
};

} // namespace

class TestSettingsWindow : public QObject {
    Q_OBJECT

private slots:
    void isFixedInSize();
    void hasATabForEachPage();
    void beginsWithTheGeneralTab();
    void toggleLaunchAtLogin();
    void aFailureIsUndoneAndExplained();
    void readsTheRealStateWhenItIsShown();
    void readsTheRealStateWhenTheUserComesBack();
    void showsVersionAndUpdates();
    void togglesAutomaticChecks();
    void disablesItsControlsIfNoUpdatesCanCome();
    void checksOnceAtATime();
    void showsTheFindingBesideTheButton();
    void aLongFindingKeepsAwayFromTheButton();
    void worksByKeyboardAlone();
    void closesOnAKey_data();
    void closesOnAKey();
};

void TestSettingsWindow::isFixedInSize()
{
    const Shown shown;
    QCOMPARE(shown.window.minimumSize(), QSize(520, 360));
    QCOMPARE(shown.window.maximumSize(), QSize(520, 360));
    QCOMPARE(shown.window.windowTitle(), u"Corvane Settings"_s);
}

void TestSettingsWindow::hasATabForEachPage()
{
    const Shown shown;
    const auto *tabs = shown.window.findChild<SettingsTabs *>();
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), u"General"_s);
    QCOMPARE(tabs->tabData(0).toString(), u"gearshape"_s);
    QCOMPARE(tabs->tabText(1), u"Updates"_s);
    QCOMPARE(tabs->tabData(1).toString(), u"arrow.down.circle"_s);
}

void TestSettingsWindow::beginsWithTheGeneralTab()
{
    const Shown shown;
    QVERIFY(shown.window.findChild<GeneralSettings *>()->isVisible());
    QVERIFY(!shown.window.findChild<UpdateSettings *>()->isVisible());
    const QStringList texts = shown.texts();
    QCOMPARE(texts.size(), 5);
    QCOMPARE(texts[0], u"Startup"_s);
    QVERIFY(texts[1].startsWith(u"Launch at login uses "_s));
    QCOMPARE(texts[2], u"Metrics"_s);
    QCOMPARE(shown.visibleSwitch().text(), u"Launch Corvane at login"_s);
}

void TestSettingsWindow::toggleLaunchAtLogin()
{
    Shown shown;
    QVERIFY(!shown.visibleSwitch().isChecked());
    shown.visibleSwitch().click();
    QVERIFY(shown.login.isEnabled);
    QVERIFY(shown.visibleSwitch().isChecked());
    shown.visibleSwitch().click();
    QVERIFY(!shown.login.isEnabled);
    QVERIFY(!shown.visibleSwitch().isChecked());
}

void TestSettingsWindow::aFailureIsUndoneAndExplained()
{
    Shown shown;
    const SettingsNote *note = shown.window.findChildren<SettingsNote *>()[1];
    const int place = note->y();
    shown.login.refusal = u"Operation not permitted"_s;
    shown.visibleSwitch().click();
    QVERIFY(!shown.visibleSwitch().isChecked());
    QCOMPARE(shown.texts().value(1), u"Operation not permitted"_s);
    QCOMPARE(note->y(), place + 8 + 15);

    shown.login.refusal = {};
    shown.visibleSwitch().click();
    QVERIFY(shown.visibleSwitch().isChecked());
    QCOMPARE(shown.texts().size(), 5);
    QCOMPARE(note->y(), place);
}

void TestSettingsWindow::readsTheRealStateWhenItIsShown()
{
    Shown shown;
    shown.window.hide();
    shown.login.isEnabled = true;
    const int reads = shown.login.reads;
    const int refreshes = shown.updates->refreshes;
    shown.window.show();
    QVERIFY(shown.login.reads > reads);
    QVERIFY(shown.updates->refreshes > refreshes);
    QVERIFY(shown.visibleSwitch().isChecked());
}

void TestSettingsWindow::readsTheRealStateWhenTheUserComesBack()
{
    Shown shown;
    shown.login.isEnabled = true;
    QEvent activation(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&shown.window, &activation);
    QVERIFY(shown.visibleSwitch().isChecked());
}

void TestSettingsWindow::showsVersionAndUpdates()
{
    Shown shown;
    shown.window.showTab(SettingsTab::updates);
    const QStringList texts = shown.texts();
    QCOMPARE(texts.size(), 3);
    QCOMPARE(texts[0], u"Auto-update"_s);
    QCOMPARE(texts[1], u"Current version: "_s + shown.updater.currentVersion());
    QVERIFY(texts[2].startsWith(u"Updates "_s));
    QCOMPARE(shown.visibleSwitch().text(), u"Check for updates automatically"_s);
    QVERIFY(shown.visibleSwitch().isEnabled());
}

void TestSettingsWindow::togglesAutomaticChecks()
{
    Shown shown;
    shown.window.showTab(SettingsTab::updates);
    shown.visibleSwitch().click();
    QVERIFY(!shown.updates->automatic);
    shown.updater.setAutomaticallyChecks(true);
    QVERIFY(shown.visibleSwitch().isChecked());
}

void TestSettingsWindow::disablesItsControlsIfNoUpdatesCanCome()
{
    auto *none = new ScriptedUpdater;
    none->offered = false;
    none->automatic = false;
    none->isChecking = true;
    Shown shown(none);
    shown.window.showTab(SettingsTab::updates);
    QVERIFY(!shown.visibleSwitch().isEnabled());
    shown.visibleSwitch().click();
    QVERIFY(!shown.visibleSwitch().isChecked());
    QVERIFY(!none->automatic);
    QVERIFY(!shown.window.findChild<UpdateSettings *>()->findChild<PanelButton *>()->isEnabled());
    QCOMPARE(shown.texts().value(2), updatesNote(false));
}

void TestSettingsWindow::checksOnceAtATime()
{
    Shown shown;
    shown.window.showTab(SettingsTab::updates);
    auto *checkNow = shown.window.findChild<UpdateSettings *>()->findChild<PanelButton *>();
    QCOMPARE(checkNow->text(), u"Check Now"_s);
    QVERIFY(checkNow->isEnabled());
    checkNow->click();
    QCOMPARE(shown.updates->checks, 1);
    QVERIFY(!checkNow->isEnabled());
    checkNow->click();
    QCOMPARE(shown.updates->checks, 1);
    shown.updates->setChecking(false);
    QVERIFY(checkNow->isEnabled());
}

void TestSettingsWindow::showsTheFindingBesideTheButton()
{
    Shown shown;
    shown.window.showTab(SettingsTab::updates);
    shown.updates->find(u"Corvane is up to date."_s);
    QCOMPARE(shown.texts().last(), u"Corvane is up to date."_s);
    const SettingsNote *finding =
        shown.window.findChild<UpdateSettings *>()->findChildren<SettingsNote *>().last();
    const QRect button =
        shown.window.findChild<UpdateSettings *>()->findChild<PanelButton *>()->geometry();
    QVERIFY2(std::abs(finding->geometry().center().y() - button.center().y()) <= 1,
             "one line is vertically centred on the button");
    QVERIFY(finding->geometry().right() < button.left());
}

void TestSettingsWindow::aLongFindingKeepsAwayFromTheButton()
{
    Shown shown;
    shown.window.showTab(SettingsTab::updates);
    shown.updates->find(u"word "_s.repeated(60));
    const SettingsNote *finding =
        shown.window.findChild<UpdateSettings *>()->findChildren<SettingsNote *>().last();
    const QRect button =
        shown.window.findChild<UpdateSettings *>()->findChild<PanelButton *>()->geometry();
    QVERIFY(finding->height() >= 3 * 15);
    QCOMPARE(finding->y(), button.y());
    QVERIFY(finding->geometry().right() < button.left());
    QVERIFY(finding->geometry().bottom() < finding->parentWidget()->height());
}

void TestSettingsWindow::worksByKeyboardAlone()
{
    Shown shown;
    QVERIFY(QTest::qWaitForWindowActive(&shown.window));
    QTest::keyClick(shown.window.focusWidget(), Qt::Key_Tab);
    QCOMPARE(shown.window.focusWidget(), shown.window.findChild<SettingsTabs *>());
    QTest::keyClick(shown.window.focusWidget(), Qt::Key_Right);
    QVERIFY(shown.window.findChild<UpdateSettings *>()->isVisible());
    QTest::keyClick(shown.window.focusWidget(), Qt::Key_Tab);
    QCOMPARE(shown.window.focusWidget(), &shown.visibleSwitch());
    QTest::keyClick(shown.window.focusWidget(), Qt::Key_Space);
    QVERIFY(!shown.updates->automatic);
    QTest::keyClick(shown.window.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(shown.window.focusWidget(), Qt::Key_Return);
    QCOMPARE(shown.updates->checks, 1);
}

void TestSettingsWindow::closesOnAKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << Qt::KeyboardModifiers();
    QTest::newRow("Control and W") << int(Qt::Key_W) << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void TestSettingsWindow::closesOnAKey()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Shown shown;
    QVERIFY(QTest::qWaitForWindowActive(&shown.window));
    QTest::keyClick(&shown.window, Qt::Key(key), modifiers);
    QVERIFY(!shown.window.isVisible());
}

QTEST_MAIN(TestSettingsWindow)
#include "tst_SettingsWindow.moc"
