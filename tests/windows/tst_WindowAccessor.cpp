#include "windows/WindowAccessor.h"

#include <QTest>

using namespace corvane;

namespace {

/// A desktop that gives a view its window at a certain look, or never.
struct LateWindow {
    WindowPlatform platform()
    {
        WindowPlatform late;
        late.hostingWindow = [this](const QWidget &) -> NativeWindow {
            return ++looks == foundAt ? this : nullptr;
        };
        return late;
    }

    int foundAt = 0; ///< 0: never.
    int looks = 0;
};

/// More turns of the main loop than any view looks.
constexpr int manyTurns = 30;

} // namespace

class TestWindowAccessor : public QObject {
    Q_OBJECT

private slots:
    void looksInSuccessiveTurns_data();
    void looksInSuccessiveTurns();
    void aViewThatIsGoneLooksNoMore();
    void mayBeDeletedByWhatItCalls();
    void findsTheWindowAroundIt();
    void findsNoneWhereNoneIs();
};

void TestWindowAccessor::looksInSuccessiveTurns_data()
{
    QTest::addColumn<int>("foundAt");
    QTest::addColumn<int>("looks");
    QTest::addColumn<int>("configured");
    QTest::newRow("a window at once") << 1 << 1 << 1;
    QTest::newRow("a window later") << 4 << 4 << 1;
    QTest::newRow("a window at the ninth look") << 9 << 9 << 1;
    QTest::newRow("a window too late") << 10 << 9 << 0;
    QTest::newRow("never a window") << 0 << 9 << 0;
}

void TestWindowAccessor::looksInSuccessiveTurns()
{
    QFETCH(int, foundAt);
    QFETCH(int, looks);
    LateWindow desktop{.foundAt = foundAt};
    int configured = 0;
    const WindowAccessor view(
        [&](NativeWindow window) {
            ++configured;
            QCOMPARE(window, static_cast<NativeWindow>(&desktop));
        },
        nullptr, desktop.platform());
    QCOMPARE(desktop.looks, 0);
    for (int turn = 0; turn < manyTurns; ++turn) {
        const int before = desktop.looks;
        QCoreApplication::processEvents();
        QVERIFY2(desktop.looks <= before + 1, "once a turn");
    }
    QCOMPARE(desktop.looks, looks);
    QTEST(configured, "configured");
}

void TestWindowAccessor::aViewThatIsGoneLooksNoMore()
{
    LateWindow desktop;
    auto view = std::make_unique<WindowAccessor>([](NativeWindow) { QFAIL("no window"); }, nullptr,
                                                 desktop.platform());
    QTRY_VERIFY(desktop.looks > 0);
    view.reset();
    const int looks = desktop.looks;
    for (int turn = 0; turn < manyTurns; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(desktop.looks, looks);
}

void TestWindowAccessor::mayBeDeletedByWhatItCalls()
{
    LateWindow desktop{.foundAt = 1};
    QPointer<WindowAccessor> view;
    view = new WindowAccessor([&view](NativeWindow) { view->deleteLater(); }, nullptr,
                              desktop.platform());
    QTRY_VERIFY(!view);
}

void TestWindowAccessor::findsTheWindowAroundIt()
{
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
    QVERIFY2(!view->isVisible(), "there is nothing to see of it");
    window.close();
    window.show();
    for (int turn = 0; turn < manyTurns; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(configured, 1);
}

void TestWindowAccessor::findsNoneWhereNoneIs()
{
    QWidget neverShown;
    new WindowAccessor([](NativeWindow) { QFAIL("no window"); }, &neverShown);
    for (int turn = 0; turn < manyTurns; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(systemWindowPlatform().hostingWindow(neverShown), static_cast<NativeWindow>(nullptr));
}

QTEST_MAIN(TestWindowAccessor)
#include "tst_WindowAccessor.moc"
