#include "windows/WindowAccessor.h"

#include "support/NativeWindows.h"

#include <QTest>

using namespace corvane;

namespace {

/// A platform whose view gets its window at a certain attempt, or never.
struct LateWindow {
    WindowPlatform platform()
    {
        WindowPlatform late;
        late.hostingWindow = [this](const QWidget &) -> NativeWindow {
            return ++attempts == foundAt ? window() : nullptr;
        };
        return late;
    }

    /// An address that serves as the window's identity.
    NativeWindow window() { return reinterpret_cast<NativeWindow>(this); }

    int foundAt = 0; ///< 0: never.
    int attempts = 0;
};

/// More turns of the main loop than a view's attempts.
constexpr int manyTurns = 30;

} // namespace

class TestWindowAccessor : public QObject {
    Q_OBJECT

private slots:
    void looksInSuccessiveTurns_data();
    void looksInSuccessiveTurns();
    void aDeletedViewStopsLooking();
    void canBeDeletedByItsCallback();
    void findsItsHostingWindow();
    void findsNoWindowBeforeOneIsShown();
};

void TestWindowAccessor::looksInSuccessiveTurns_data()
{
    QTest::addColumn<int>("foundAt");
    QTest::addColumn<int>("attempts");
    QTest::addColumn<int>("configured");
    QTest::newRow("a window at once") << 1 << 1 << 1;
    QTest::newRow("a window later") << 4 << 4 << 1;
    QTest::newRow("a window at the ninth attempt") << 9 << 9 << 1;
    QTest::newRow("a window too late") << 10 << 9 << 0;
    QTest::newRow("never a window") << 0 << 9 << 0;
}

void TestWindowAccessor::looksInSuccessiveTurns()
{
    QFETCH(int, foundAt);
    QFETCH(int, attempts);
    LateWindow desktop{.foundAt = foundAt};
    int configured = 0;
    const WindowAccessor view(
        [&](NativeWindow window) {
            ++configured;
            QCOMPARE(window, desktop.window());
        },
        nullptr, desktop.platform());
    QCOMPARE(desktop.attempts, 0);
    for (int turn = 0; turn < manyTurns; ++turn) {
        const int before = desktop.attempts;
        QCoreApplication::processEvents();
        QVERIFY2(desktop.attempts <= before + 1, "one attempt a turn");
    }
    QCOMPARE(desktop.attempts, attempts);
    QTEST(configured, "configured");
}

void TestWindowAccessor::aDeletedViewStopsLooking()
{
    LateWindow desktop;
    auto view = std::make_unique<WindowAccessor>([](NativeWindow) { QFAIL("no window"); }, nullptr,
                                                 desktop.platform());
    QTRY_VERIFY(desktop.attempts > 0);
    view.reset();
    const int attempts = desktop.attempts;
    for (int turn = 0; turn < manyTurns; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(desktop.attempts, attempts);
}

void TestWindowAccessor::canBeDeletedByItsCallback()
{
    LateWindow desktop{.foundAt = 1};
    QPointer<WindowAccessor> view;
    view = new WindowAccessor([&view](NativeWindow) { view->deleteLater(); }, nullptr,
                              desktop.platform());
    QTRY_VERIFY(!view);
}

void TestWindowAccessor::findsItsHostingWindow()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    QWidget window;
    NativeWindow found = nullptr;
    int configured = 0;
    auto *part = new QWidget(&window);
    auto *view = new WindowAccessor(
        [&](NativeWindow hosting) {
            found = hosting;
            ++configured;
        },
        part);
    window.show();
    QTRY_VERIFY(found);
    QCOMPARE(found, systemWindowPlatform().hostingWindow(window));
    QVERIFY2(!view->isVisible(), "the view is invisible");
    window.close();
    window.show();
    for (int turn = 0; turn < manyTurns; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(configured, 1);
}

void TestWindowAccessor::findsNoWindowBeforeOneIsShown()
{
    QWidget neverShown;
    new WindowAccessor([](NativeWindow) { QFAIL("no window"); }, &neverShown);
    for (int turn = 0; turn < manyTurns; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(systemWindowPlatform().hostingWindow(neverShown), static_cast<NativeWindow>(nullptr));
}

QTEST_MAIN(TestWindowAccessor)
#include "tst_WindowAccessor.moc"
