#include "app/CorvaneApp.h"

#include "dashboard/MainWindow.h"
#include "settings/SettingsWindow.h"
#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"

#include <QAction>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include <algorithm>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

namespace {

const std::string hides = "NSApplication hide:nil";

template <typename Window>
Window *windowOf()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<Window *>(widget))
            return window;
    }
    return nullptr;
}

/// What was sent since the last call and begins like this, without its beginning.
QStringList sent(const QString &beginning)
{
    QStringList found;
    for (const std::string &message : takeMessages()) {
        const QString text = QString::fromStdString(message);
        if (text.startsWith(beginning))
            found.append(text.mid(beginning.size()));
    }
    return found;
}

bool wasSent(const std::string &message)
{
    return std::ranges::count(takeMessages(), message) > 0;
}

} // namespace

/// The whole program with the sources of a Mac's desktop. Qt's windows have none of the system's
/// here.
class TestCorvaneAppOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void holdsItsActivityForItsWholeLife();
    void theItemsMenuOffersAllCommands();
    void theSystemKnowsTheMenusOfTheBar();
    void isRegularWhileTheDashboardIsOpen();
    void aClickOnTheItemOpensAndClosesThePanel();
    void theLastWindowGivesTheFocusBack();
    void aWindowOfTheSystemGivesTheFocusBack();
    void aPanelThatWasClickedIntoGivesTheFocusBack();
};

void TestCorvaneAppOnMac::init()
{
    resetDesktop();
}

/// Without it the ticks would be eight seconds apart.
void TestCorvaneAppOnMac::holdsItsActivityForItsWholeLife()
{
    QVERIFY(heldActivities().empty());
    {
        CorvaneApp corvane;
        QCOMPARE(nappedInterval(1), 1.0);
        corvane.openMainWindow();
        windowOf<MainWindow>()->close();
        QTRY_VERIFY(!windowOf<MainWindow>());
        QCOMPARE(nappedInterval(1), 1.0);
    }
    QVERIFY(heldActivities().empty());
}

/// Qt would move those with a role out of it.
void TestCorvaneAppOnMac::theItemsMenuOffersAllCommands()
{
    const CorvaneApp corvane;
    takeMessages();
    QVERIFY(clickItem(ItemClick::right));
    const QStringList menus = sent(u"NSStatusItem setMenu:"_s);
    QCOMPARE(menus.size(), 2); // The menu, then none.
    QVERIFY2(menus[0].startsWith("Memory: "_L1), qPrintable(menus[0]));
    const QString commands =
        u"Open Window, -, About Corvane, Check for Updates…, Settings…, -, Quit"_s;
    QCOMPARE(menus[0].section(u"-, "_s, 1), commands);
    QCOMPARE(menus[1], u"nil"_s);
}

void TestCorvaneAppOnMac::theSystemKnowsTheMenusOfTheBar()
{
    const CorvaneApp corvane;
    const auto messages = takeMessages();
    const auto count = [&messages](const std::string &message) {
        return std::ranges::count(messages, message);
    };
    QCOMPARE(count("NSApplication setWindowsMenu:Minimize, Zoom, -, Open Window, -, "
                   "Bring All to Front"),
             1);
    QCOMPARE(count("NSApplication setHelpMenu:Corvane Help"), 1);
}

void TestCorvaneAppOnMac::isRegularWhileTheDashboardIsOpen()
{
    CorvaneApp corvane;
    takeMessages();
    corvane.openMainWindow();
    QCOMPARE(sent(u"NSApplication setActivationPolicy:"_s), QStringList{u"0"_s});
    windowOf<MainWindow>()->close();
    QTRY_VERIFY(!windowOf<MainWindow>());
    QCOMPARE(sent(u"NSApplication setActivationPolicy:"_s), QStringList{u"1"_s});
}

void TestCorvaneAppOnMac::aClickOnTheItemOpensAndClosesThePanel()
{
    const CorvaneApp corvane;
    const auto *panel = windowOf<MenuBarContent>();
    QVERIFY(clickItem(ItemClick::left));
    QVERIFY(panel->isVisible());
    QVERIFY(clickItem(ItemClick::left));
    QVERIFY(!panel->isVisible());
    // What closes it on newer systems is the loss of the focus to the item, before its action.
    QVERIFY(clickItem(ItemClick::left));
    QVERIFY(!panel->isVisible());
}

void TestCorvaneAppOnMac::theLastWindowGivesTheFocusBack()
{
    CorvaneApp corvane;
    corvane.openSettings();
    desktop().isActive = true;
    takeMessages();
    connect(windowOf<SettingsWindow>(), &QObject::destroyed, qApp, &QCoreApplication::quit,
            Qt::QueuedConnection);
    QTimer::singleShot(0, windowOf<SettingsWindow>(), &QWidget::close);
    QApplication::exec(); // Qt tells of the last window only in its event loop.
    QVERIFY(wasSent(hides));
    QVERIFY(!desktop().isActive);
}

/// As the about panel does.
void TestCorvaneAppOnMac::aWindowOfTheSystemGivesTheFocusBack()
{
    const CorvaneApp corvane;
    constexpr unsigned long titled = 1;
    void *window = addWindow({.styleMask = titled});
    desktop().isActive = true;
    takeMessages();
    post("NSWindowWillCloseNotification", window); // It is still visible.
    stateOf(window).isVisible = false;
    QVERIFY(!wasSent(hides));
    QCoreApplication::processEvents();
    QVERIFY(wasSent(hides));
}

void TestCorvaneAppOnMac::aPanelThatWasClickedIntoGivesTheFocusBack()
{
    const CorvaneApp corvane;
    auto *panel = windowOf<MenuBarContent>();
    panel->setVisible(true);
    desktop().isActive = true;
    takeMessages();
    panel->hide();
    QCoreApplication::processEvents();
    QVERIFY(wasSent(hides));
}

QTEST_MAIN(TestCorvaneAppOnMac)
#include "tst_CorvaneApp_mac.moc"
