#include "app/CorvaneApp.h"

#include "app/MainWindow.h"

#include <QApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;

namespace {

/// The windows of a type that there are, shown or not.
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

} // namespace

/// The whole program, on this machine's numbers, in a home of its own and on a desktop without a
/// tray.
class TestCorvaneApp : public QObject {
    Q_OBJECT

private slots:
    void opensOneDashboard();
    void bringsAMinimizedDashboardBack();
    void aClosedDashboardIsGoneAndCanBeOpenedAgain();
    void thePanelOpensTheDashboard();
    void thePanelQuits();
};

void TestCorvaneApp::opensOneDashboard()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    corvane.openMainWindow();
    QCOMPARE(windows<MainWindow>().size(), 1);
    QVERIFY(windows<MainWindow>().first()->isVisible());
    delete windows<MainWindow>().first();
}

void TestCorvaneApp::bringsAMinimizedDashboardBack()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    const QPointer<MainWindow> window = windows<MainWindow>().first();
    window->setWindowState(Qt::WindowMaximized);
    window->setWindowState(window->windowState() | Qt::WindowMinimized);
    QVERIFY(window->isMinimized());
    corvane.openMainWindow();
    QVERIFY(!window->isMinimized());
    QVERIFY2(window->isMaximized(), "it comes back as it was");
    delete window;
}

void TestCorvaneApp::aClosedDashboardIsGoneAndCanBeOpenedAgain()
{
    CorvaneApp corvane;
    corvane.openMainWindow();
    const QPointer<MainWindow> window = windows<MainWindow>().first();
    window->close();
    QTRY_VERIFY(!window);
    corvane.openMainWindow();
    QCOMPARE(windows<MainWindow>().size(), 1);
    delete windows<MainWindow>().first();
}

void TestCorvaneApp::thePanelOpensTheDashboard()
{
    const CorvaneApp corvane;
    qDeleteAll(windows<MainWindow>());
    QCOMPARE(windows<MenuBarContent>().size(), 1);
    emit windows<MenuBarContent>().first()->openWindowRequested();
    QCOMPARE(windows<MainWindow>().size(), 1);
    delete windows<MainWindow>().first();
}

void TestCorvaneApp::thePanelQuits()
{
    const CorvaneApp corvane;
    const QSignalSpy ended(qApp, &QCoreApplication::aboutToQuit);
    MenuBarContent *panel = windows<MenuBarContent>().first();
    QMetaObject::invokeMethod(panel, &MenuBarContent::quitRequested, Qt::QueuedConnection);
    QApplication::exec(); // Until it quits.
    QCOMPARE(ended.count(), 1);
    qDeleteAll(windows<MainWindow>());
}

QTEST_MAIN(TestCorvaneApp)
#include "tst_CorvaneApp.moc"
