#include "app/CorvaneApp.h"

#include "app/AboutPanel.h"
#include "cards/MemoryCard.h"
#include "charts/Sparkline.h"
#include "controls/NoticeBar.h"
#include "controls/PanelButton.h"
#include "dashboard/MainWindow.h"
#include "dashboard/WindowChoice.h"
#include "settings/SettingsWindow.h"
#include "settings/UpdateSettings.h"
#include "support/DescriptorLimit.h"
#include "support/NativeWindows.h"
#include "tray/TrayAdvice.h"
#include "tray/TrayLabel.h"
#include "windows/WindowLifecycleCoordinator.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <unistd.h>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// All windows of a type, shown or not.
template <typename Window>
QList<Window *> windows()
{
    QList<Window *> found;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<Window *>(widget))
            found.append(window);
    }
    return found;
}

/// The panel's command with this text.
QAction *command(const QString &text)
{
    for (QAction *action : windows<MenuBarContent>().first()->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

/// The whole program, with this machine's readings, its own home folder and a desktop without a
/// tray.
class TestCorvaneApp : public QObject {
    Q_OBJECT

private slots:
    void init();

    void theDashboardSaysOnceWhatBringsTheLabel();
    void adviceThatWasDeclinedIsNotShownAgain();
    void runsWithoutAdviceWhereNoWindowCanBeOpened();
    void opensOneDashboard();
    void opensNothingByItselfInTheBackground();
    void aClosedDashboardIsDeletedAndCanBeOpenedAgain();
    void aDashboardThatWasJustClosedOpensAgain();
    void thePanelOpensTheDashboard();
    void thePanelQuits();
    void theProgramIsRegularWhileTheDashboardIsOpen();
    void theProgramIsRegularBeforeTheDashboardIsShown();
    void aDashboardThatIsClosedAtOnceLeavesAnAccessory();
    void theDashboardHasTheUsualKeys();
    void everyViewOffersTheCommands();
    void aKeyChoosesTheWindowOfTime();
    void opensTheSettingsOnce();
    void updatesAreFoundInTheSettings();
    void theSettingsDoNotChangeTheActivationPolicy();
    void keysOpenTheSettingsAndTheAboutPanel();
    void openWindowsAreDeletedWithTheProgram();
    void onlyTheLabelAndThePanelExistAtStart();
};

/// Without the choices of another test or run.
void TestCorvaneApp::init()
{
    QSettings settings;
    settings.clear();
    settings.sync();
}

/// It is not in the next dashboard of the same start.
void TestCorvaneApp::theDashboardSaysOnceWhatBringsTheLabel()
{
    if (hostSystem() == HostSystem::mac)
        QSKIP("A Mac always has a menu bar");
    CorvaneApp corvane;
    QTRY_COMPARE(windows<MainWindow>().size(), 1);
    const QPointer<MainWindow> window = windows<MainWindow>().first();
    const auto *bar = window->findChild<NoticeBar *>();
    QVERIFY(bar);
    QVERIFY(bar->isVisible());
    QCOMPARE(bar->accessibleTexts()[0].value, trayAdviceForSession());
    window->close();
    QTRY_VERIFY(!window);
    corvane.openMainWindow();
    QVERIFY(!windows<MainWindow>().first()->findChild<NoticeBar *>());
}

void TestCorvaneApp::adviceThatWasDeclinedIsNotShownAgain()
{
    if (hostSystem() == HostSystem::mac)
        QSKIP("A Mac always has a menu bar");
    {
        const CorvaneApp corvane;
        QTRY_COMPARE(windows<MainWindow>().size(), 1);
        const QPointer<NoticeBar> bar = windows<MainWindow>().first()->findChild<NoticeBar *>();
        for (PanelButton *button : bar->findChildren<PanelButton *>()) {
            if (button->text() == u"Don’t Show Again"_s)
                button->click();
        }
        QTRY_VERIFY(!bar);
    }
    const CorvaneApp corvane;
    QTRY_COMPARE(windows<MainWindow>().size(), 1);
    QVERIFY(!windows<MainWindow>().first()->findChild<NoticeBar *>());
}

void TestCorvaneApp::runsWithoutAdviceWhereNoWindowCanBeOpened()
{
    if (hostSystem() == HostSystem::mac)
        QSKIP("A Mac always has a menu bar");
    const CorvaneApp corvane;
    const TrayLabel later({}); // Misses the tray after the program's label did.
    QSignalSpy misses(&later, &TrayLabel::trayIsMissing);
    // A few for what watches this test, too few for a window.
    const int next = dup(STDOUT_FILENO);
    close(next);
    const test::DescriptorLimit few(static_cast<rlim_t>(next) + 8);
    QTRY_COMPARE(misses.count(), 1);
    QVERIFY(windows<MainWindow>().isEmpty());
}

void TestCorvaneApp::opensOneDashboard()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    windows<MainWindow>().first()->showMinimized();
    corvane.openMainWindow();
    QCOMPARE(windows<MainWindow>().size(), 1);
    QVERIFY(windows<MainWindow>().first()->isVisible());
    QVERIFY(!windows<MainWindow>().first()->isMinimized());
}

/// The other label notices later that there is no tray.
void TestCorvaneApp::opensNothingByItselfInTheBackground()
{
    const CorvaneApp corvane(true);
    const TrayLabel other({});
    if (other.isAvailable())
        QSKIP("This desktop has a tray.");
    QSignalSpy missing(&other, &TrayLabel::trayIsMissing);
    QVERIFY(missing.wait());
    QVERIFY(windows<MainWindow>().isEmpty());
}

void TestCorvaneApp::aClosedDashboardIsDeletedAndCanBeOpenedAgain()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    const QPointer<MainWindow> window = windows<MainWindow>().first();
    window->close();
    QTRY_VERIFY(!window);
    corvane.openMainWindow();
    QCOMPARE(windows<MainWindow>().size(), 1);
}

void TestCorvaneApp::aDashboardThatWasJustClosedOpensAgain()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    const QPointer<MainWindow> closed = windows<MainWindow>().first();
    closed->close();
    corvane.openMainWindow();
    QTRY_VERIFY(!closed);
    QCOMPARE(windows<MainWindow>().size(), 1);
    QVERIFY(windows<MainWindow>().first()->isVisible());
}

void TestCorvaneApp::thePanelOpensTheDashboard()
{
    const CorvaneApp corvane;
    qDeleteAll(windows<MainWindow>());
    QCOMPARE(windows<MenuBarContent>().size(), 1);
    emit windows<MenuBarContent>().first()->openWindowRequested();
    QCOMPARE(windows<MainWindow>().size(), 1);
}

void TestCorvaneApp::thePanelQuits()
{
    const CorvaneApp corvane;
    const QSignalSpy ended(qApp, &QCoreApplication::aboutToQuit);
    MenuBarContent *panel = windows<MenuBarContent>().first();
    QMetaObject::invokeMethod(panel, &MenuBarContent::quitRequested, Qt::QueuedConnection);
    QApplication::exec(); // Until it quits.
    QCOMPARE(ended.count(), 1);
}

void TestCorvaneApp::theProgramIsRegularWhileTheDashboardIsOpen()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    const WindowPlatform desktop = systemWindowPlatform();
    const WindowLifecycleCoordinator &coordinator = WindowLifecycleCoordinator::shared();
    CorvaneApp corvane;
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
    for (int cycle = 0; cycle < 3; ++cycle) {
        corvane.openMainWindow();
        QTRY_COMPARE(coordinator.observerCount(), 1);
        QCOMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
        showAboutPanel();
        windows<AboutPanel>().first()->close();
        QTRY_VERIFY(windows<AboutPanel>().isEmpty());
        QCOMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
        windows<MainWindow>().first()->close();
        QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
        QCOMPARE(coordinator.observerCount(), 0);
        QTRY_VERIFY(windows<MainWindow>().isEmpty());
    }
}

void TestCorvaneApp::theProgramIsRegularBeforeTheDashboardIsShown()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    /// Notes the policy at the moment in which the dashboard is shown.
    struct ShowWatch : QObject {
        bool eventFilter(QObject *object, QEvent *event) override
        {
            if (event->type() == QEvent::Show && qobject_cast<MainWindow *>(object))
                policies.append(systemWindowPlatform().activationPolicy());
            return false;
        }
        QList<ActivationPolicy> policies = {};
    };
    ShowWatch watch;
    CorvaneApp corvane;
    qApp->installEventFilter(&watch);
    for (int cycle = 0; cycle < 2; ++cycle) {
        QCOMPARE(systemWindowPlatform().activationPolicy(), ActivationPolicy::accessory);
        corvane.openMainWindow();
        QCOMPARE(watch.policies, QList<ActivationPolicy>(cycle + 1, ActivationPolicy::regular));
        QTRY_COMPARE(WindowLifecycleCoordinator::shared().observerCount(), 1);
        windows<MainWindow>().first()->close();
        QTRY_VERIFY(windows<MainWindow>().isEmpty());
    }
}

void TestCorvaneApp::aDashboardThatIsClosedAtOnceLeavesAnAccessory()
{
    const WindowPlatform desktop = systemWindowPlatform();
    CorvaneApp corvane;
    corvane.openMainWindow();
    windows<MainWindow>().first()->close(); // Before its native window was found.
    QTRY_VERIFY(windows<MainWindow>().isEmpty());
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
    corvane.openMainWindow();
    windows<MainWindow>().first()->close();
    corvane.openMainWindow(); // While the first is not deleted yet.
    QTRY_COMPARE(windows<MainWindow>().size(), 1);
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
}

void TestCorvaneApp::theDashboardHasTheUsualKeys()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    const QPointer<MainWindow> window = windows<MainWindow>().first();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
    QTRY_VERIFY(!window);
}

void TestCorvaneApp::everyViewOffersTheCommands()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    const QList<QAction *> commands = windows<MainWindow>().first()->actions();
    QVERIFY(!commands.isEmpty());
    QVERIFY(!commands.contains(command(u"Open Window"_s))); // It is this window.
    const QList<QAction *> ofThePanel = windows<MenuBarContent>().first()->actions();
    QCOMPARE(ofThePanel.first()->text(), u"Open Window"_s);
    QVERIFY(ofThePanel[1]->isSeparator());
    constexpr int ofTheCharts = 5; // And their separator, in the dashboard alone.
    QCOMPARE(ofThePanel.sliced(2), commands.sliced(ofTheCharts));

    QContextMenuEvent event(QContextMenuEvent::Mouse, {300, 300}, {300, 300});
    QCoreApplication::sendEvent(windows<MainWindow>().first()->findChild<MemoryCard *>(), &event);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions(), commands);
    menu->close();
}

void TestCorvaneApp::aKeyChoosesTheWindowOfTime()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    auto *window = windows<MainWindow>().first();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_3);
    const auto *choice = window->findChild<WindowChoice *>();
    QVERIFY(choice->chosen() == HistoryWindow::oneHour);
    const auto *chart = window->findChild<Sparkline *>();
    QTRY_VERIFY(chart->shown().showsMeans);
    QCOMPARE(chart->shown().xDomain.span(), 3'600.0);
    QVERIFY(AppSettings().historyWindow() == HistoryWindow::oneHour); // Remembered.
    QTest::keyClick(window, Qt::Key_1);
    QTRY_VERIFY(!chart->shown().showsMeans);
    QVERIFY(choice->chosen() == HistoryWindow::oneMin);
}

void TestCorvaneApp::opensTheSettingsOnce()
{
    CorvaneApp corvane;
    corvane.openSettings();
    const QPointer<SettingsWindow> settings = windows<SettingsWindow>().first();
    settings->showMinimized();
    corvane.openSettings();
    QCOMPARE(windows<SettingsWindow>().size(), 1);
    QVERIFY(!settings->isMinimized());
    settings->close();
    QTRY_VERIFY(!settings);
    corvane.openSettings();
    QCOMPARE(windows<SettingsWindow>().size(), 1);
}

/// On a Mac the updater shows its own windows instead.
void TestCorvaneApp::updatesAreFoundInTheSettings()
{
    const CorvaneApp corvane;
    QAction *check = command(u"Check for Updates…"_s);
    QVERIFY2(!check->isEnabled(), "a program out of its build folder has no updates");
    emit check->triggered();
    const bool isShown = !windows<SettingsWindow>().isEmpty();
    QCOMPARE(isShown, hostSystem() == HostSystem::linuxDesktop);
    if (isShown)
        QVERIFY(windows<SettingsWindow>().first()->findChild<UpdateSettings *>()->isVisible());
}

void TestCorvaneApp::theSettingsDoNotChangeTheActivationPolicy()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    const WindowPlatform desktop = systemWindowPlatform();
    CorvaneApp corvane;
    corvane.openSettings();
    QVERIFY(QTest::qWaitForWindowActive(windows<SettingsWindow>().first()));
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
    corvane.openMainWindow();
    QTRY_COMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
    windows<SettingsWindow>().first()->close();
    QTRY_VERIFY(windows<SettingsWindow>().isEmpty());
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
}

void TestCorvaneApp::keysOpenTheSettingsAndTheAboutPanel()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    MainWindow *window = windows<MainWindow>().first();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
    QCOMPARE(windows<SettingsWindow>().size(), 1);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_F1);
    QCOMPARE(windows<AboutPanel>().size(), hostSystem() == HostSystem::linuxDesktop ? 1 : 0);
    qDeleteAll(windows<AboutPanel>());
}

void TestCorvaneApp::openWindowsAreDeletedWithTheProgram()
{
    const std::size_t observed = test::hasNativeWindows() ? 1 : 0;
    {
        CorvaneApp corvane;
        corvane.openMainWindow();
        corvane.openSettings();
        QTRY_COMPARE(WindowLifecycleCoordinator::shared().observerCount(), observed);
    }
    QVERIFY(windows<MainWindow>().isEmpty());
    QVERIFY(windows<SettingsWindow>().isEmpty());
    QCOMPARE(WindowLifecycleCoordinator::shared().observerCount(), 0);
}

/// A window that is not open costs nothing.
void TestCorvaneApp::onlyTheLabelAndThePanelExistAtStart()
{
    QTRY_VERIFY(windows<QWidget>().isEmpty()); // Of earlier tests.
    const CorvaneApp corvane;
    QCOMPARE(windows<MenuBarContent>().size(), 1);
    for (const QWidget *window : windows<QWidget>()) {
        const bool isOfAMacsMenus = window->inherits("QMenuBar") || window->inherits("QMenu");
        const bool isPanel = qobject_cast<const MenuBarContent *>(window);
        QVERIFY2(isPanel || (isOfAMacsMenus && hostSystem() == HostSystem::mac),
                 window->metaObject()->className());
    }
}

QTEST_MAIN(TestCorvaneApp)
#include "tst_CorvaneApp.moc"
