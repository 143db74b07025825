#include "support/DrivenProgram.h"

#include <QFileInfo>
#include <QScreen>

using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr auto display = "wayland-corvane"_L1;
constexpr auto compositor = "Weston Compositor"_L1;

} // namespace

/// The program in a Wayland session: a compositor in a window of a virtual desktop, whose tray the
/// program uses. Each step goes on from the one before and leaves a picture in the working folder.
class TestWaylandSession : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void opensThePanelFromTheTray();
    void opensTheDashboard();
    void opensTheSettings();
    void quitsByItsKey();

private:
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
        QSKIP("A step before has failed");
}

void TestWaylandSession::cleanup()
{
    if (m_hasFailed)
        return;
    m_hasFailed = QTest::currentTestFailed();
    QTest::qWait(500); // The compositor shows it a little later.
    const auto picture = u"wayland-%1.png"_s.arg(QLatin1StringView(QTest::currentTestFunction()));
    QGuiApplication::primaryScreen()->grabWindow(0).save(picture);
    if (m_hasFailed)
        qInfo().noquote() << m_program.lookAtFailure();
}

void TestWaylandSession::cleanupTestCase()
{
    m_compositor.terminate();
    m_compositor.waitForFinished();
}

void TestWaylandSession::opensThePanelFromTheTray()
{
    WAIT_FOR(m_program.label());
    clickAt(*m_program.label());
    WAIT_FOR(m_program.panel());
    QVERIFY(m_program.find(*m_program.panel(), u"label"_s, u"Memory: "_s));
}

void TestWaylandSession::opensTheDashboard()
{
    WAIT_FOR(activeWindow().startsWith(compositor));
    press(u"Tab"_s);
    press(u"Return"_s);
    WAIT_FOR(m_program.dashboardShows());
    WAIT_FOR(!m_program.panel());
}

void TestWaylandSession::opensTheSettings()
{
    press(u"ctrl+comma"_s);
    WAIT_FOR(m_program.find(u"check box"_s, u"Launch Corvane at login"_s));
}

void TestWaylandSession::quitsByItsKey()
{
    press(u"ctrl+q"_s);
    WAIT_FOR(!m_program.isRunning());
    QCOMPARE(m_program.process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_program.process().exitCode(), 0);
    QCOMPARE(m_program.complaints(), QString());
}

QTEST_MAIN(TestWaylandSession)
#include "tst_WaylandSession.moc"
