#include "windows/WindowTools.h"

#include "controls/Logo.h"

#include <QTest>
#include <QWindow>

#include <cstdlib>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestWindowTools : public QObject {
    Q_OBJECT

private slots:
    void aWindowThatWasClosedIsNotOpen();
    void restoresAMinimizedWindowAsItWas();
    void activatesTheProgramWithTheWindow_data();
    void activatesTheProgramWithTheWindow();
    void usesAValidToken_data();
    void usesAValidToken();
    void keepsOneTokenInMemory();
    void hasTheProgramsIcon();
    void closesOnItsShortcuts_data();
    void closesOnItsShortcuts();
};

void TestWindowTools::aWindowThatWasClosedIsNotOpen()
{
    QVERIFY(!isOpen(nullptr));
    QWidget window;
    QVERIFY(!isOpen(&window));
    window.show();
    QVERIFY(isOpen(&window));
    window.showMinimized();
    QVERIFY(isOpen(&window));
    window.close();
    QVERIFY(!isOpen(&window));
}

void TestWindowTools::restoresAMinimizedWindowAsItWas()
{
    QWidget window;
    window.showMaximized();
    window.setWindowState(window.windowState() | Qt::WindowMinimized);
    bringForward(window);
    QVERIFY(window.isMaximized());
    QVERIFY(!window.isMinimized());
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

void TestWindowTools::activatesTheProgramWithTheWindow_data()
{
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("a new window") << false;
    QTest::newRow("an open one, while another program is active") << true;
}

void TestWindowTools::activatesTheProgramWithTheWindow()
{
    QFETCH(bool, isOpen);
    QWidget window;
    if (isOpen)
        window.show();
    QList<NativeWindow> activated;
    WindowPlatform platform = systemWindowPlatform();
    platform.hostingWindow = [&window](const QWidget &view) {
        return view.isVisible() ? reinterpret_cast<NativeWindow>(&window) : nullptr;
    };
    platform.activate = [&activated](NativeWindow native) { activated.append(native); };
    bringForward(window, platform);
    QCOMPARE(activated, QList{reinterpret_cast<NativeWindow>(&window)});
}

void TestWindowTools::usesAValidToken_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("a desktop's token") << "panel-1_TIME2"_ba
                                       << "panel-1_TIME2"_ba;
    QTest::newRow("no token") << QByteArray() << "earlier"_ba;
    QTest::newRow("two lines") << "a\nb"_ba
                               << "earlier"_ba;
    QTest::newRow("too long") << QByteArray(10'000, 'x') << "earlier"_ba;
}

void TestWindowTools::usesAValidToken()
{
    QFETCH(QByteArray, token);
    qputenv("XDG_ACTIVATION_TOKEN", "earlier");
    useActivationToken(token);
    QTEST(qgetenv("XDG_ACTIVATION_TOKEN"), "expected");
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

void TestWindowTools::keepsOneTokenInMemory()
{
    useActivationToken("first");
    const char *place = std::getenv("XDG_ACTIVATION_TOKEN");
    for (int number = 0; number < 100'000; ++number) {
        useActivationToken(QByteArray::number(number));
        QVERIFY(std::getenv("XDG_ACTIVATION_TOKEN") == place);
    }
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "99999"_ba);
    qunsetenv("XDG_ACTIVATION_TOKEN");
    useActivationToken("again");
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "again"_ba);
    QVERIFY(std::getenv("XDG_ACTIVATION_TOKEN") == place);
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

void TestWindowTools::hasTheProgramsIcon()
{
    QWidget window;
    bringForward(window);
    const QIcon icon = window.windowHandle()->icon();
    for (const int pixels : {16, 32, 48, 64})
        QCOMPARE(icon.pixmap(pixels).toImage().convertToFormat(signPicture(pixels).format()),
                 signPicture(pixels));
    // Qt caches each icon, so all windows share one.
    QWidget other;
    bringForward(other);
    QCOMPARE(other.windowIcon().cacheKey(), window.windowIcon().cacheKey());
}

void TestWindowTools::closesOnItsShortcuts_data()
{
    QTest::addColumn<bool>("isSmall");
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("closes");
    const Qt::KeyboardModifiers none;
    const Qt::KeyboardModifiers control = Qt::ControlModifier;
    QTest::newRow("Control and W") << false << int(Qt::Key_W) << control << true;
    QTest::newRow("W alone") << false << int(Qt::Key_W) << none << false;
    QTest::newRow("Escape in a large window") << false << int(Qt::Key_Escape) << none << false;
    QTest::newRow("Escape in a small window") << true << int(Qt::Key_Escape) << none << true;
}

void TestWindowTools::closesOnItsShortcuts()
{
    QFETCH(bool, isSmall);
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(bool, closes);
    QWidget window;
    closeOnControlW(window);
    if (isSmall)
        closeOnEscape(window);
    bringForward(window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key(key), modifiers);
    QCOMPARE(isOpen(&window), !closes);
}

QTEST_MAIN(TestWindowTools)
#include "tst_WindowTools.moc"
