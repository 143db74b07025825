#include "support/DrivenProgram.h"

#include <QFileInfo>
#include <QScreen>

using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr auto display = "wayland-corvane"_L1;
constexpr auto compositor = "Weston Compositor"_L1;

/// Presses the key and returns true, to be part of a condition that is waited for: on a loaded
/// machine the compositor may give no window the keyboard focus for a moment, so the press is
/// repeated.
bool pressed(const QString &key)
{
    press(key);
    QTest::qWait(400); // Usually enough for the effect to be visible.
    return true;
}

/// The same, holding the key: the compositor opens a menu only for a key that is down when the
/// request for the menu arrives.
bool held(const QString &key)
{
    outputOf(u"xdotool"_s, {u"keydown"_s, key});
    QTest::qWait(400);
    outputOf(u"xdotool"_s, {u"keyup"_s, key});
    return true;
}

} // namespace

/// The real program in a Wayland session: a compositor in a window of a virtual desktop, whose tray
/// the program uses. Each step continues from the one before and saves a screenshot in the working
/// folder.
class TestWaylandSession : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void opensThePanelFromTheTray();
    void opensTheAboutPanelFromThePanelsMenu();
    void opensTheDashboard();
    void opensTheSettings();
    void quitsByItsKey();

private:
    void openPanel();
    QString focusedName();

    QProcess m_compositor;
    DrivenProgram m_program;
    bool m_hasFailed = false;
};

void TestWaylandSession::initTestCase()
{
    m_compositor.start(u"weston"_s,
                       {u"--backend=x11-backend.so"_s, u"--use-pixman"_s, u"--no-config"_s,
                        u"--idle-time=0"_s, u"--width=1260"_s, u"--height=880"_s,
                        u"--socket="_s + display});
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/' + display;
    WAIT_FOR(QFileInfo::exists(socket));
    WAIT_FOR(activeWindow().startsWith(compositor));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
    environment.insert(u"WAYLAND_DISPLAY"_s, display);
    QVERIFY(m_program.start(environment));
}

void TestWaylandSession::init()
{
    if (m_hasFailed)
        QSKIP("An earlier step has failed");
}

void TestWaylandSession::cleanup()
{
    if (m_hasFailed)
        return;
    m_hasFailed = QTest::currentTestFailed();
    QTest::qWait(500); // The compositor draws with a delay.
    const auto picture = u"wayland-%1.png"_s.arg(QLatin1StringView(QTest::currentTestFunction()));
    QGuiApplication::primaryScreen()->grabWindow(0).save(picture);
    if (m_hasFailed)
        qInfo().noquote() << m_program.failureReport();
}

void TestWaylandSession::cleanupTestCase()
{
    m_compositor.terminate();
    m_compositor.waitForFinished();
}

/// The click takes the keyboard focus from the compositor for a moment.
void TestWaylandSession::openPanel()
{
    std::optional<QPoint> label;
    WAIT_FOR((label = m_program.label()));
    clickAt(*label);
    WAIT_FOR(m_program.panel());
    WAIT_FOR(activeWindow().startsWith(compositor));
}

QString TestWaylandSession::focusedName()
{
    const auto &focused = m_program.reader().focused();
    return focused ? m_program.reader().name(*focused) : QString();
}

void TestWaylandSession::opensThePanelFromTheTray()
{
    openPanel();
    QVERIFY(m_program.find(*m_program.panel(), u"label"_s, u"Memory: "_s));
}

/// Where the bar does not draw the item's menu, the program opens its panel instead.
void TestWaylandSession::opensTheAboutPanelFromThePanelsMenu()
{
    // An open menu ignores the menu key.
    WAIT_FOR(held(u"Menu"_s) && pressed(u"Down"_s) && focusedName() == "About Corvane"_L1);
    press(u"Return"_s);
    WAIT_FOR(m_program.find(u"label"_s, u"Version "_s));
}

void TestWaylandSession::opensTheDashboard()
{
    WAIT_FOR(pressed(u"Escape"_s) && !m_program.find(u"label"_s, u"Version "_s));
    openPanel();
    WAIT_FOR(pressed(u"Tab"_s) && focusedName() == "Open Window"_L1);
    WAIT_FOR(pressed(u"Return"_s) && m_program.isDashboardVisible());
    WAIT_FOR(!m_program.panel());
}

void TestWaylandSession::opensTheSettings()
{
    WAIT_FOR(pressed(u"ctrl+comma"_s)
             && m_program.find(u"check box"_s, u"Launch Corvane at login"_s));
}

void TestWaylandSession::quitsByItsKey()
{
    WAIT_FOR(pressed(u"ctrl+q"_s) && !m_program.run().isRunning());
    QCOMPARE(m_program.run().exitStatus(), 0);
    QCOMPARE(m_program.run().errors(), QByteArray());
}

QTEST_MAIN(TestWaylandSession)
#include "tst_WaylandSession.moc"
