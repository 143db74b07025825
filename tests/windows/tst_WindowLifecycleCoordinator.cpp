#include "windows/WindowLifecycleCoordinator.h"

#include <QTest>
#include <QWidget>
#include <QWindow>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A desktop that writes down what is asked of it.
class RecordedPlatform {
public:
    WindowPlatform platform()
    {
        WindowPlatform recorded;
        recorded.collectionBehavior = [this](NativeWindow) { return behavior; };
        recorded.setCollectionBehavior = [this](NativeWindow, std::uint64_t flags) {
            note(u"behavior"_s);
            behavior = flags;
        };
        recorded.enableZoomButton = [this](NativeWindow) { note(u"zoom"_s); };
        recorded.activationPolicy = [this] { return policy; };
        recorded.setActivationPolicy = [this](ActivationPolicy wanted) {
            note(wanted == ActivationPolicy::regular ? u"regular"_s : u"accessory"_s);
            policy = wanted;
        };
        recorded.activate = [this](NativeWindow) { note(u"activate"_s); };
        recorded.observeClose = [this](NativeWindow window, const std::function<void()> &closing) {
            return std::make_unique<Observer>(*this, window, closing);
        };
        return recorded;
    }

    /// What was asked since the last call, in order.
    QStringList asked() { return std::exchange(m_asked, {}); }

    void close(NativeWindow window)
    {
        const auto found = m_observers.find(window);
        if (found != m_observers.end())
            std::function<void()>(found->second)();
    }

    std::uint64_t behavior = 0;
    ActivationPolicy policy = ActivationPolicy::accessory;

private:
    struct Observer : CloseObserver {
        Observer(RecordedPlatform &owner, NativeWindow observed,
                 const std::function<void()> &closing)
            : recorder(owner),
              window(observed)
        {
            recorder.note(u"observe"_s);
            recorder.m_observers.emplace(window, closing);
        }
        ~Observer() override
        {
            recorder.note(u"forget"_s);
            recorder.m_observers.erase(window);
        }
        RecordedPlatform &recorder;
        NativeWindow window;
    };

    void note(const QString &call) { m_asked.append(call); }

    QStringList m_asked;
    std::map<NativeWindow, std::function<void()>> m_observers;
};

/// Two windows' identities; nobody looks into them.
int firstPlace = 0;
int secondPlace = 0;
const NativeWindow first = &firstPlace;
const NativeWindow second = &secondPlace;

} // namespace

class TestWindowLifecycleCoordinator : public QObject {
    Q_OBJECT

private slots:
    void attachesInOrder();
    void changesTheFlagsOfFullScreenAlone_data();
    void changesTheFlagsOfFullScreenAlone();
    void isAnAccessoryAgainWhenTheWindowCloses();
    void attachingAgainReplacesTheObserver();
    void isAnAccessoryThoughAnotherWindowIsOpen();
    void staysTheSameWhenAWindowClosesThatIsNotAttached();
    void forgetsItsObserversWithItself();
    void followsWindowsOfThisDesktop();
    void followsAWindowThatIsDeletedWhileOpen();
    void aMinimizedWindowIsOpen();
    void thereIsOneForTheProgram();
};

void TestWindowLifecycleCoordinator::attachesInOrder()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    QCOMPARE(desktop.asked(),
             QStringList({u"behavior"_s, u"zoom"_s, u"regular"_s, u"activate"_s, u"observe"_s}));
    QCOMPARE(coordinator.observerCount(), 1);
}

void TestWindowLifecycleCoordinator::changesTheFlagsOfFullScreenAlone_data()
{
    QTest::addColumn<quint64>("before");
    QTest::addColumn<quint64>("after");
    QTest::newRow("no flags") << quint64(0) << quint64(1 << 7);
    QTest::newRow("an auxiliary window") << quint64(1 << 8) << quint64(1 << 7);
    QTest::newRow("a primary window") << quint64(1 << 7) << quint64(1 << 7);
    QTest::newRow("other flags are kept")
        << quint64(1 << 0 | 1 << 8 | 1 << 11) << quint64(1 << 0 | 1 << 7 | 1 << 11);
}

void TestWindowLifecycleCoordinator::changesTheFlagsOfFullScreenAlone()
{
    QFETCH(quint64, before);
    QFETCH(quint64, after);
    RecordedPlatform desktop;
    desktop.behavior = before;
    WindowLifecycleCoordinator(desktop.platform()).attach(first);
    QCOMPARE(desktop.behavior, after);
}

void TestWindowLifecycleCoordinator::isAnAccessoryAgainWhenTheWindowCloses()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    for (int cycle = 0; cycle < 100; ++cycle) {
        coordinator.attach(first);
        QCOMPARE(coordinator.observerCount(), 1);
        QCOMPARE(desktop.policy, ActivationPolicy::regular);
        desktop.asked();
        desktop.close(first);
        QCOMPARE(desktop.asked(), QStringList({u"accessory"_s, u"forget"_s}));
        QCOMPARE(coordinator.observerCount(), 0);
        QCOMPARE(desktop.policy, ActivationPolicy::accessory);
    }
}

void TestWindowLifecycleCoordinator::attachingAgainReplacesTheObserver()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    desktop.asked();
    coordinator.attach(first);
    QCOMPARE(desktop.asked().sliced(4), QStringList({u"forget"_s, u"observe"_s}));
    QCOMPARE(coordinator.observerCount(), 1);
    desktop.close(first);
    QCOMPARE(coordinator.observerCount(), 0);
}

void TestWindowLifecycleCoordinator::isAnAccessoryThoughAnotherWindowIsOpen()
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

void TestWindowLifecycleCoordinator::staysTheSameWhenAWindowClosesThatIsNotAttached()
{
    RecordedPlatform desktop;
    WindowLifecycleCoordinator coordinator(desktop.platform());
    coordinator.attach(first);
    desktop.asked();
    desktop.close(second);
    QVERIFY(desktop.asked().isEmpty());
    QCOMPARE(desktop.policy, ActivationPolicy::regular);
    QCOMPARE(coordinator.observerCount(), 1);
}

void TestWindowLifecycleCoordinator::forgetsItsObserversWithItself()
{
    RecordedPlatform desktop;
    {
        WindowLifecycleCoordinator coordinator(desktop.platform());
        coordinator.attach(first);
        desktop.asked();
    }
    QCOMPARE(desktop.asked(), QStringList({u"forget"_s}));
}

void TestWindowLifecycleCoordinator::followsWindowsOfThisDesktop()
{
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

void TestWindowLifecycleCoordinator::followsAWindowThatIsDeletedWhileOpen()
{
    const WindowPlatform desktop = systemWindowPlatform();
    WindowLifecycleCoordinator coordinator;
    auto window = std::make_unique<QWidget>();
    window->show();
    coordinator.attach(desktop.hostingWindow(*window));
    window.reset();
    QCOMPARE(coordinator.observerCount(), 0);
    QCOMPARE(desktop.activationPolicy(), ActivationPolicy::accessory);
}

void TestWindowLifecycleCoordinator::aMinimizedWindowIsOpen()
{
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

void TestWindowLifecycleCoordinator::thereIsOneForTheProgram()
{
    QCOMPARE(&WindowLifecycleCoordinator::shared(), &WindowLifecycleCoordinator::shared());
    QCOMPARE(WindowLifecycleCoordinator::shared().observerCount(), 0);
}

QTEST_MAIN(TestWindowLifecycleCoordinator)
#include "tst_WindowLifecycleCoordinator.moc"
