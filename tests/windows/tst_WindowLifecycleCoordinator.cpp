#include "windows/WindowLifecycleCoordinator.h"

#include "support/NativeWindows.h"

#include <QTest>
#include <QWidget>
#include <QWindow>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A platform that records the calls.
class RecordedPlatform {
public:
    WindowPlatform platform()
    {
        WindowPlatform recorded;
        recorded.allowFullScreen = [this](NativeWindow) { note(u"full screen"_s); };
        recorded.enableZoomButton = [this](NativeWindow) { note(u"zoom"_s); };
        recorded.activationPolicy = [this] { return policy; };
        recorded.setActivationPolicy = [this](ActivationPolicy wanted) {
            note(wanted == ActivationPolicy::regular ? u"regular"_s : u"accessory"_s);
            policy = wanted;
        };
        recorded.activate = [this](NativeWindow) { note(u"activate"_s); };
        recorded.observeClose = [this](NativeWindow window, const std::function<void()> &onClose) {
            return std::make_unique<Observer>(*this, window, onClose);
        };
        return recorded;
    }

    /// The calls since this was last called, in order.
    QStringList calls() { return std::exchange(m_calls, {}); }

    void close(NativeWindow window)
    {
        const auto found = m_observers.find(window);
        if (found != m_observers.end())
            std::function<void()>(found->second)();
    }

    ActivationPolicy policy = ActivationPolicy::accessory;

private:
    struct Observer : CloseObserver {
        Observer(RecordedPlatform &owner, NativeWindow observed,
                 const std::function<void()> &onClose)
            : recorder(owner),
              window(observed)
        {
            recorder.note(u"observe"_s);
            recorder.m_observers.emplace(window, onClose);
        }
        ~Observer() override
        {
            recorder.note(u"forget"_s);
            recorder.m_observers.erase(window);
        }
        RecordedPlatform &recorder;
        NativeWindow window;
    };

    void note(const QString &call) { m_calls.append(call); }

    QStringList m_calls;
    std::map<NativeWindow, std::function<void()>> m_observers;
};

/// Two windows' identities: addresses that are never read.
int firstPlace = 0;
int secondPlace = 0;
const auto first = reinterpret_cast<NativeWindow>(&firstPlace);
const auto second = reinterpret_cast<NativeWindow>(&secondPlace);

} // namespace

class TestWindowLifecycleCoordinator : public QObject {
    Q_OBJECT

private slots:
    void attachesInOrder();
    void isAnAccessoryAgainWhenTheWindowCloses();
    void attachingAgainReplacesTheObserver();
    void isAnAccessoryEvenIfAnotherWindowIsOpen();
    void ignoresTheEndOfAWindowThatIsNotAttached();
    void deletesItsObservers();
    void observesWindowsOfThisDesktop();
    void observesAWindowThatIsDeletedWhileOpen();
    void countsAMinimizedWindowAsOpen();
    void isSharedByTheProgram();
};

void TestWindowLifecycleCoordinator::attachesInOrder()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    QCOMPARE(desktop.calls(),
             QStringList({u"full screen"_s, u"zoom"_s, u"regular"_s, u"activate"_s, u"observe"_s}));
    QCOMPARE(coordinator.observerCount(), 1);
}

void TestWindowLifecycleCoordinator::isAnAccessoryAgainWhenTheWindowCloses()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    for (int cycle = 0; cycle < 100; ++cycle) {
        coordinator.attach(first);
        QCOMPARE(coordinator.observerCount(), 1);
        QCOMPARE(desktop.policy, ActivationPolicy::regular);
        desktop.calls();
        desktop.close(first);
        QCOMPARE(desktop.calls(), QStringList({u"accessory"_s, u"forget"_s}));
        QCOMPARE(coordinator.observerCount(), 0);
        QCOMPARE(desktop.policy, ActivationPolicy::accessory);
    }
}

void TestWindowLifecycleCoordinator::attachingAgainReplacesTheObserver()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    desktop.calls();
    coordinator.attach(first);
    QCOMPARE(desktop.calls().sliced(4), QStringList({u"forget"_s, u"observe"_s}));
    QCOMPARE(coordinator.observerCount(), 1);
    desktop.close(first);
    QCOMPARE(coordinator.observerCount(), 0);
}

void TestWindowLifecycleCoordinator::isAnAccessoryEvenIfAnotherWindowIsOpen()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    coordinator.attach(second);
    QCOMPARE(coordinator.observerCount(), 2);
    desktop.close(first);
    QCOMPARE(desktop.policy, ActivationPolicy::accessory);
    QCOMPARE(coordinator.observerCount(), 1);
    desktop.close(second);
    QCOMPARE(coordinator.observerCount(), 0);
}

void TestWindowLifecycleCoordinator::ignoresTheEndOfAWindowThatIsNotAttached()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    desktop.calls();
    desktop.close(second);
    QVERIFY(desktop.calls().isEmpty());
    QCOMPARE(desktop.policy, ActivationPolicy::regular);
    QCOMPARE(coordinator.observerCount(), 1);
}

void TestWindowLifecycleCoordinator::deletesItsObservers()
{
    RecordedPlatform desktop;
    {
        WindowLifecycleCoordinator coordinator(desktop.platform());
        coordinator.attach(first);
        desktop.calls();
    }
    QCOMPARE(desktop.calls(), QStringList({u"forget"_s}));
}

void TestWindowLifecycleCoordinator::observesWindowsOfThisDesktop()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    const WindowPlatform desktop = systemWindowPlatform();
    WindowLifecycleCoordinator coordinator;
    for (int cycle = 0; cycle < 100; ++cycle) {
        QWidget window;
        window.show();
        coordinator.attach(desktop.hostingWindow(window));
        QCOMPARE(coordinator.observerCount(), 1);
        QCOMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
        window.close();
        QCOMPARE(coordinator.observerCount(), 0);
        QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
    }
}

void TestWindowLifecycleCoordinator::observesAWindowThatIsDeletedWhileOpen()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    const WindowPlatform desktop = systemWindowPlatform();
    WindowLifecycleCoordinator coordinator;
    auto window = std::make_unique<QWidget>();
    window->show();
    coordinator.attach(desktop.hostingWindow(*window));
    window.reset();
    QCOMPARE(coordinator.observerCount(), 0);
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
}

void TestWindowLifecycleCoordinator::countsAMinimizedWindowAsOpen()
{
    CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS();
    const WindowPlatform desktop = systemWindowPlatform();
    WindowLifecycleCoordinator coordinator;
    QWidget window;
    window.show();
    coordinator.attach(desktop.hostingWindow(window));
    window.showMinimized();
    QCoreApplication::processEvents();
    QCOMPARE(coordinator.observerCount(), 1);
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::regular);
    window.close();
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
}

void TestWindowLifecycleCoordinator::isSharedByTheProgram()
{
    QCOMPARE(&WindowLifecycleCoordinator::shared(), &WindowLifecycleCoordinator::shared());
    QCOMPARE(WindowLifecycleCoordinator::shared().observerCount(), 0);
}

QTEST_MAIN(TestWindowLifecycleCoordinator)
#include "tst_WindowLifecycleCoordinator.moc"
