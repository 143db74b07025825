#include "tray/TrayLabel.h"

#include "gallery/ScriptedMachines.h"
#include "support/BusMonitor.h"
#include "support/FakeTray.h"
#include "support/NumberArgument.h"
#include "support/PrivateBus.h"
#include "support/TrayTypes.h"
#include "support/Waiting.h"
#include "ui/MetricText.h"

#include <QAction>
#include <QApplication>
#include <QDBusVirtualObject>
#include <QPoint>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// As short as possible with distinct steps. An item that the tray does not read is waited for as
/// long as in the program.
constexpr TrayWaits shortWaits{.tray = 50ms, .quiet = 10ms, .check = 50ms};

/// Long enough for what would follow one of these waits.
constexpr int settleTime = 400; ///< Milliseconds.

SystemMetrics sample(int memoryPercent, int gpuPercent = 41, double watts = 12)
{
    return {.memory = {.total = 1000, .used = static_cast<quint64>(memoryPercent) * 10 + 4},
            .chip = ChipReading{.cpuWatts = watts, .gpuActiveFraction = (gpuPercent + 0.5) / 100}};
}

/// Owns the tray's name and never answers.
class HangingTray : public QDBusVirtualObject {
public:
    explicit HangingTray(const QString &address)
        : m_bus(QDBusConnection::connectToBus(address, u"hanging-tray"_s))
    {
        m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
        m_bus.registerService(u"org.kde.StatusNotifierWatcher"_s);
    }
    ~HangingTray() override { QDBusConnection::disconnectFromBus(u"hanging-tray"_s); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &, const QDBusConnection &) override
    {
        wasAsked = true;
        return true;
    }

    bool wasAsked = false;

private:
    QDBusConnection m_bus;
};

/// In the order of registration.
const QStringList squareIds{u"corvane-1"_s, u"corvane-2"_s, u"corvane-3"_s};

} // namespace

/// The label beside a fake tray on a private bus.
class TestTrayLabel : public QObject {
    Q_OBJECT

public:
    explicit TestTrayLabel(int signalsOfTray) : m_signals(signalsOfTray) { }

private slots:
    void init();
    void cleanup();

    void takesTheFormOfTheHost_data();
    void takesTheFormOfTheHost();
    void showsATextBesideItsSign();
    void showsOneWidePicture();
    void showsOnePictureForEachNumber();
    void describesItselfAsHostsExpect();
    void exportsNothingWritable();
    void showsAllValuesInTheToolTip();
    void clicksOpenThePanelAndTheDashboard();
    void showsItsMenuWhereTheDesktopDrawsNone();
    void passesTheActivationTokenOn();
    void menuShowsLiveRowsAndCommands();
    void constantValuesSendNothing();
    void changingValuesSendWhatTheyNeed();
    void aChangingTextSendsTheText();
    void menuRowsAreSentOnlyWhileOpen();
    void menuRowsAreSentByTheItemsWhoseMenuIsOpen();
    void takesTheFormOfTheMachine_data();
    void takesTheFormOfTheMachine();
    void squaresComeAndGoAtTheEndOfTheBar_data();
    void squaresComeAndGoAtTheEndOfTheBar();
    void squaresThatLeaveWhileTheyRegisterHoldUpNothing();
    void textAndWidePictureFollowTheMachine();
    void menuRowsFollowTheMachine();
    void appearsInATrayThatStartsLate();
    void returnsToATrayThatRestarts();
    void takesAnotherFormForAnotherTray();
    void waitsForAHost();
    void returnsAfterTheBusRestarts();
    void appearsOnceAHangingBusGoesOn();
    void aTrayWithAllItemsGetsNoFurtherCalls_data();
    void aTrayWithAllItemsGetsNoFurtherCalls();
    void aTrayThatLosesAnItemGetsAllItemsAgain_data();
    void aTrayThatLosesAnItemGetsAllItemsAgain();
    void aTrayThatKeepsLosingItemsGetsThemThreeTimes();
    void registersInOrderAtATrayThatAnswersLate();
    void registersInOrderAtATrayThatRestartsInBetween();
    void appearsInATrayThatAnswersWithErrors();
    void aTrayThatReadsAllTheTimeGetsAllItems();
    void manySignalsOfATrayAreOneQuestion();
    void aBusThatHangsGetsTheNewestTextAfterwards();
    void aTrayThatHangsBlocksNothing();
    void reportsAMissingTrayOnce();
    void reportsNoMissingTrayWhereThereIsOne();

private:
    void startTray(const char *program);
    void makeLabel(const TrayWaits &waits);
    void waitForTheCheck();
    QStringList membersSince(BusMonitor &monitor);
    QStringList ids();
    QStringList titles();
    QString text(const QString &name, int item = 0);
    StatusNotifierPixmaps pictures(int item = 0);
    void callItem(const QString &method, const QVariantList &arguments);
    QVariantList callMenu(const QString &method, const QVariantList &arguments, int item = 0);
    void sendMenuEvent(int id, const QString &event, int item = 0);
    QStringList menuTexts();
    void changeSwap(int gigabytes);

    const int m_signals; ///< Sent by a tray that repeats itself.
    QAction m_openWindow{u"Open Window"_s};
    QAction m_quit{u"Quit"_s};
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeTray> m_tray;
    std::unique_ptr<TrayLabel> m_label;
};

void TestTrayLabel::init()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    makeLabel(shortWaits);
}

void TestTrayLabel::makeLabel(const TrayWaits &waits)
{
    m_label.reset();
    m_label = std::make_unique<TrayLabel>(QList{&m_openWindow, &m_quit}, nullptr, waits);
    m_label->show(sample(63));
}

void TestTrayLabel::cleanup()
{
    m_label.reset();
    m_tray.reset();
    m_bus.reset();
}

/// Returns once the label is in it.
void TestTrayLabel::startTray(const char *program)
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), program);
    const bool isText = qstrcmp(program, "gnome-shell") == 0;
    const bool isWide = qstrcmp(program, "waybar") == 0;
    TRY_COMPARE(m_tray->items().size(), isText || isWide ? 1 : 3);
}

/// Returns once the label has checked the tray's items, after which it sends nothing more.
void TestTrayLabel::waitForTheCheck()
{
    TRY_COMPARE(m_tray->listings(), 1);
}

/// In the order of their registration.
/// The members of all messages since the last call, including everything that the items have sent.
QStringList TestTrayLabel::membersSince(BusMonitor &monitor)
{
    const QString ping = u"Ping"_s; // Answered behind everything that was sent before.
    for (const QString &item : m_tray->items())
        m_tray->call(item, u"/"_s, u"org.freedesktop.DBus.Peer"_s, ping);
    QStringList members = monitor.membersSince({u"fake-tray"_s});
    members.removeAll(ping);
    return members;
}

QStringList TestTrayLabel::ids()
{
    QStringList ids;
    for (int item = 0; item < m_tray->items().size(); ++item)
        ids.append(text(u"Id"_s, item));
    return ids;
}

/// In the order of their registration.
QStringList TestTrayLabel::titles()
{
    QStringList titles;
    for (int item = 0; item < m_tray->items().size(); ++item)
        titles.append(text(u"Title"_s, item));
    return titles;
}

QString TestTrayLabel::text(const QString &name, int item)
{
    return m_tray->property(m_tray->items().value(item), name).toString();
}

StatusNotifierPixmaps TestTrayLabel::pictures(int item)
{
    return qdbus_cast<StatusNotifierPixmaps>(
        m_tray->property(m_tray->items().value(item), u"IconPixmap"_s));
}

void TestTrayLabel::callItem(const QString &method, const QVariantList &arguments)
{
    m_tray->call(m_tray->items().value(0), u"/StatusNotifierItem"_s,
                 QString::fromLatin1(FakeTray::itemInterface), method, arguments);
}

QVariantList TestTrayLabel::callMenu(const QString &method, const QVariantList &arguments, int item)
{
    const QString name = m_tray->items().value(item);
    const auto path = m_tray->property(name, u"Menu"_s).value<QDBusObjectPath>();
    return m_tray->call(name, path.path(), QString::fromLatin1(FakeTray::menuInterface), method,
                        arguments);
}

void TestTrayLabel::sendMenuEvent(int id, const QString &event, int item)
{
    callMenu(u"Event"_s, {id, event, QVariant::fromValue(QDBusVariant(0)), 0u}, item);
}

/// A change that the menu shows and the label does not.
void TestTrayLabel::changeSwap(int gigabytes)
{
    SystemMetrics current = sample(63);
    current.memory.swapUsed = static_cast<quint64>(gigabytes) << 30;
    m_label->show(current);
    QCoreApplication::processEvents();
}

QStringList TestTrayLabel::menuTexts()
{
    const QVariantList answer = callMenu(u"GetLayout"_s, {0, -1, QStringList()});
    QStringList texts;
    for (const auto &child : qdbus_cast<MenuLayout>(answer.value(1)).children)
        texts.append(child.properties.value(u"label"_s, u"-"_s).toString());
    return texts;
}

void TestTrayLabel::takesTheFormOfTheHost_data()
{
    const QStringList one{u"corvane"_s};
    const QStringList fromTheLeft{u"Corvane 1 Memory"_s, u"Corvane 2 GPU"_s, u"Corvane 3 Power"_s};
    const QStringList fromTheRight{fromTheLeft[2], fromTheLeft[1], fromTheLeft[0]};
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<QStringList>("expectedIds");
    QTest::addColumn<QStringList>("expectedTitles");
    const QStringList name{u"Corvane"_s};
    QTest::newRow("GNOME: one item") << "gnome-shell"_ba << one << name;
    QTest::newRow("a bar that keeps proportions: one item") << "waybar"_ba << one << name;
    QTest::newRow("Plasma: three squares") << "kded6"_ba << squareIds << fromTheLeft;
    QTest::newRow("LXQt: three squares") << "lxqt-panel"_ba << squareIds << fromTheLeft;
    QTest::newRow("a tray that puts new items first")
        << "panel-6-systray"_ba << squareIds << fromTheRight;
    QTest::newRow("a tray that nobody knows") << "my-own-bar"_ba << squareIds << fromTheLeft;
}

void TestTrayLabel::takesTheFormOfTheHost()
{
    QFETCH(QByteArray, program);
    startTray(program.constData());
    QTEST(ids(), "expectedIds");
    QTEST(titles(), "expectedTitles");
    QVERIFY(m_label->isAvailable());
}

void TestTrayLabel::showsATextBesideItsSign()
{
    startTray("gnome-shell");
    QCOMPARE(text(u"XAyatanaLabel"_s), u"63 41 12W"_s);
    QCOMPARE(text(u"XAyatanaLabelGuide"_s), u"100 100 999W"_s);
    for (const StatusNotifierPixmap &picture : pictures())
        QCOMPARE(picture.width, picture.height);
    m_label->show(sample(64));
    QCOMPARE(text(u"XAyatanaLabel"_s), u"64 41 12W"_s);
}

void TestTrayLabel::showsOneWidePicture()
{
    startTray("waybar");
    const auto before = pictures();
    QVERIFY(!before.isEmpty());
    for (const StatusNotifierPixmap &picture : before)
        QVERIFY(picture.width > 3 * picture.height);
    QCOMPARE(text(u"XAyatanaLabel"_s), QString());
    m_label->show(sample(64));
    QVERIFY(pictures() != before);
}

void TestTrayLabel::showsOnePictureForEachNumber()
{
    startTray("kded6");
    QList<int> sizes;
    for (const StatusNotifierPixmap &picture : pictures(0)) {
        QCOMPARE(picture.width, picture.height);
        QCOMPARE(picture.bytes.size(), 4 * picture.width * picture.height);
        sizes.append(picture.width);
    }
    QCOMPARE(sizes.first(), 16);
    QCOMPARE(sizes.last(), 48);

    const auto memory = pictures(0);
    const auto gpu = pictures(1);
    m_label->show(sample(64));
    QVERIFY(pictures(0) != memory);
    QVERIFY(pictures(1) == gpu);
}

void TestTrayLabel::describesItselfAsHostsExpect()
{
    startTray("kded6");
    QCOMPARE(text(u"Title"_s, 0), u"Corvane 1 Memory"_s);
    QCOMPARE(text(u"Title"_s, 2), u"Corvane 3 Power"_s);
    QCOMPARE(text(u"Category"_s), u"Hardware"_s);
    QCOMPARE(text(u"Status"_s), u"Active"_s);
    QCOMPARE(text(u"IconName"_s), QString());
    QCOMPARE(m_tray->property(m_tray->items()[0], u"ItemIsMenu"_s), QVariant(false));
    const QVariantList description =
        m_tray->call(m_tray->items()[0], u"/StatusNotifierItem"_s,
                     u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
    QVERIFY(description.value(0).toString().contains("\"Activate\""_L1));
}

/// Any program on the bus could otherwise put text with markup into the desktop's panel.
void TestTrayLabel::exportsNothingWritable()
{
    startTray("kded6");
    const QString item = m_tray->items()[0];
    const auto menu = m_tray->property(item, u"Menu"_s).value<QDBusObjectPath>();
    for (const QString &path : {u"/StatusNotifierItem"_s, menu.path()}) {
        const QString description =
            m_tray->call(item, path, u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s)
                .value(0)
                .toString();
        QVERIFY(description.contains("access=\"read\""_L1));
        QVERIFY(!description.contains("access=\"readwrite\""_L1));
        QVERIFY(!description.contains("access=\"write\""_L1));
    }
}

void TestTrayLabel::showsAllValuesInTheToolTip()
{
    startTray("kded6");
    const auto toolTip = [this](int item) {
        return qdbus_cast<ToolTip>(m_tray->property(m_tray->items()[item], u"ToolTip"_s)).title;
    };
    const QString words = u"Memory 63 %, GPU 41 %, Power 12 W"_s;
    for (int item = 0; item < 3; ++item) {
        QCOMPARE(toolTip(item), words);
        QCOMPARE(text(u"IconAccessibleDesc"_s, item), words);
    }
    for (int used = 64; used < 67; ++used) { // Of three new ones only one is announced.
        m_label->show(sample(used, 41));
        QCOMPARE(toolTip(0), u"Memory %1 %, GPU 41 %, Power 12 W"_s.arg(used));
    }
}

void TestTrayLabel::clicksOpenThePanelAndTheDashboard()
{
    startTray("lxqt-panel");
    QSignalSpy activated(m_label.get(), &TrayLabel::activated);
    QSignalSpy openWindow(m_label.get(), &TrayLabel::openWindowRequested);
    callItem(u"Activate"_s, {120, 40});
    TRY_COMPARE(activated.count(), 1);
    QCOMPARE(activated[0][0].toPoint(), QPoint(120, 40));
    callItem(u"SecondaryActivate"_s, {120, 40});
    TRY_COMPARE(openWindow.count(), 1);
    callItem(u"XAyatanaSecondaryActivate"_s, {0u});
    TRY_COMPARE(openWindow.count(), 2);
    callItem(u"Scroll"_s, {120, u"vertical"_s});
    QCOMPARE(activated.count(), 1);
}

void TestTrayLabel::showsItsMenuWhereTheDesktopDrawsNone()
{
    startTray("kded6");
    callItem(u"ContextMenu"_s, {120, 40});
    TRY_VERIFY(QApplication::activePopupWidget());
    QWidget *menu = QApplication::activePopupWidget();
    QCOMPARE(menu->pos(), QPoint(120, 40));
    menu->close();
}

void TestTrayLabel::passesTheActivationTokenOn()
{
    startTray("kded6");
    callItem(u"ProvideXdgActivationToken"_s, {u"token-1"_s});
    QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "token-1"_ba);
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

void TestTrayLabel::menuShowsLiveRowsAndCommands()
{
    startTray("gnome-shell");
    QCOMPARE(menuTexts(),
             (QStringList{u"Memory: 0 MB / 0 MB, 63 %"_s, u"GPU: 42 %, 0.00 W"_s,
                          u"CPU: 0 %, 12.00 W"_s, u"ANE: 0.00 W, Neural Engine"_s,
                          u"Swap: 0 MB, of 0 MB"_s, u"-"_s, u"Open Window"_s, u"Quit"_s}));
    m_label->show(sample(64));
    QCOMPARE(menuTexts().value(0), u"Memory: 0 MB / 0 MB, 64 %"_s);

    const QSignalSpy openWindow(&m_openWindow, &QAction::triggered);
    const QSignalSpy quit(&m_quit, &QAction::triggered);
    for (const int id : {1, 7, 8}) // The first is a row, which does nothing.
        sendMenuEvent(id, u"clicked"_s);
    TRY_COMPARE(quit.count(), 1);
    QCOMPARE(openWindow.count(), 1);
}

void TestTrayLabel::constantValuesSendNothing()
{
    startTray("kded6");
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    for (int second = 0; second < 60; ++second) {
        SystemMetrics current = sample(63);
        current.memory.swapUsed = static_cast<quint64>(second) << 30; // Not in the label.
        m_label->show(current);
    }
    QCOMPARE(membersSince(monitor), QStringList());
}

void TestTrayLabel::changingValuesSendWhatTheyNeed()
{
    startTray("kded6");
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    for (int second = 0; second < 60; ++second)
        m_label->show(sample(10 + second, 20 + second / 2));
    const QStringList members = membersSince(monitor);
    const auto pictures = members.count("NewIcon"_L1);
    const auto toolTips = members.count("NewToolTip"_L1);
    QCOMPARE(pictures, 60 + 30);    // Memory each second, the GPU every other, power never.
    QCOMPARE(toolTips, 3 * 60 / 3); // Of each item, with every third sample.
    QCOMPARE(members.size(), pictures + toolTips);
}

void TestTrayLabel::aChangingTextSendsTheText()
{
    startTray("gnome-shell");
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    for (int second = 0; second < 60; ++second)
        m_label->show(sample(10 + second));
    const QStringList members = membersSince(monitor);
    QCOMPARE(members.count("XAyatanaNewLabel"_L1), 60);
    QCOMPARE(members.count("NewToolTip"_L1), 20);
    QCOMPARE(members.size(), 80);
}

void TestTrayLabel::menuRowsAreSentOnlyWhileOpen()
{
    startTray("gnome-shell");
    waitForTheCheck();
    sendMenuEvent(0, u"opened"_s);
    BusMonitor monitor(m_bus->address());
    changeSwap(1);
    changeSwap(2);
    changeSwap(2);
    const QString update = u"ItemsPropertiesUpdated"_s;
    QCOMPARE(membersSince(monitor), (QStringList{update, update}));

    sendMenuEvent(0, u"closed"_s);
    membersSince(monitor);
    changeSwap(3);
    QCOMPARE(membersSince(monitor), QStringList());
}

/// The items share one menu, but each sends its own updates.
void TestTrayLabel::menuRowsAreSentByTheItemsWhoseMenuIsOpen()
{
    startTray("kded6");
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    const auto updatesAfter = [&](int gigabytes) {
        membersSince(monitor);
        changeSwap(gigabytes);
        return membersSince(monitor);
    };
    const QString update = u"ItemsPropertiesUpdated"_s;
    sendMenuEvent(0, u"opened"_s, 0);
    QCOMPARE(updatesAfter(1), QStringList{update});
    sendMenuEvent(0, u"opened"_s, 2);
    QCOMPARE(updatesAfter(2), (QStringList{update, update}));
    sendMenuEvent(0, u"closed"_s, 0);
    QCOMPARE(updatesAfter(3), QStringList{update});
    sendMenuEvent(0, u"closed"_s, 2);
    QCOMPARE(updatesAfter(4), QStringList());
}

void TestTrayLabel::takesTheFormOfTheMachine_data()
{
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a graphics card: four numbers")
        << oneCardMinute().current()
        << QStringList{u"Corvane 1 Memory"_s, u"Corvane 2 VRAM"_s, u"Corvane 3 GPU"_s,
                       u"Corvane 4 Power"_s};
    QTest::newRow("an integrated GPU: three numbers")
        << integratedOnlyMinute().current()
        << QStringList{u"Corvane 1 Memory"_s, u"Corvane 2 GPU"_s, u"Corvane 3 CPU"_s};
    QTest::newRow("a virtual machine: two numbers")
        << virtualMachineMinute().current()
        << QStringList{u"Corvane 1 Memory"_s, u"Corvane 2 CPU"_s};
}

/// Only the items of the machine's own numbers are ever registered.
void TestTrayLabel::takesTheFormOfTheMachine()
{
    QFETCH(SystemMetrics, current);
    QFETCH(QStringList, expected);
    m_label->show(current);
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "kded6");
    TRY_COMPARE(m_tray->items().size(), expected.size());
    waitForTheCheck();
    QCOMPARE(titles(), expected);
    QCOMPARE(m_tray->registrations(), expected.size());
    QCOMPARE(text(u"IconAccessibleDesc"_s), inWords(labelNumbers(current)));
}

void TestTrayLabel::squaresComeAndGoAtTheEndOfTheBar_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<bool>("newestIsLeft");
    QTest::newRow("a tray that puts new items last") << "lxqt-panel"_ba << false;
    QTest::newRow("a tray that puts new items first") << "panel-6-systray"_ba << true;
}

/// A card is plugged in and unplugged: the items that stay keep their places in the bar.
void TestTrayLabel::squaresComeAndGoAtTheEndOfTheBar()
{
    QFETCH(QByteArray, program);
    QFETCH(bool, newestIsLeft);
    const auto fromTheLeft = [&] {
        QStringList names;
        for (const QString &title : titles()) {
            const QString name = title.section(u' ', 2);
            newestIsLeft ? names.prepend(name) : names.append(name);
        }
        return names;
    };
    m_label->show(integratedOnlyMinute().current());
    m_tray = std::make_unique<FakeTray>(m_bus->address(), program.constData());
    TRY_COMPARE(m_tray->items().size(), 3);
    waitForTheCheck();
    const QStringList three = m_tray->items();
    QCOMPARE(fromTheLeft(), (QStringList{u"Memory"_s, u"GPU"_s, u"CPU"_s}));

    m_label->show(oneCardMinute().current());
    TRY_COMPARE(m_tray->items().size(), 4);
    TRY_COMPARE(m_tray->listings(), 2);
    QCOMPARE(m_tray->items().first(3), three);
    QCOMPARE(m_tray->registrations(), 4);
    QCOMPARE(fromTheLeft(), (QStringList{u"Memory"_s, u"VRAM"_s, u"GPU"_s, u"Power"_s}));

    m_label->show(integratedOnlyMinute().current());
    TRY_COMPARE(m_tray->items().size(), 3);
    QCOMPARE(m_tray->items(), three);
    QCOMPARE(fromTheLeft(), (QStringList{u"Memory"_s, u"GPU"_s, u"CPU"_s}));
    m_label->show(virtualMachineMinute().current());
    TRY_COMPARE(m_tray->items().size(), 2);
    QCOMPARE(m_tray->items(), three.first(2));
    QCOMPARE(fromTheLeft(), (QStringList{u"Memory"_s, u"CPU"_s}));
    QCOMPARE(m_tray->registrations(), 4);
}

void TestTrayLabel::squaresThatLeaveWhileTheyRegisterHoldUpNothing()
{
    m_label->show(oneCardMinute().current());
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
    m_tray->setDelay(200ms);
    TRY_COMPARE(m_tray->registrations(), 3);
    m_label->show(virtualMachineMinute().current()); // While the desktop has not read the third.
    waitForTheCheck();
    TRY_COMPARE(m_tray->items().size(), 2);
    m_tray->setDelay(0ms);
    m_label->show(oneCardMinute().current());
    TRY_COMPARE(m_tray->items().size(), 4);
    QCOMPARE(titles().last(), u"Corvane 4 Power"_s);
}

void TestTrayLabel::textAndWidePictureFollowTheMachine()
{
    startTray("gnome-shell");
    const QString item = m_tray->items().first();
    m_label->show(oneCardMinute().current());
    QCOMPARE(text(u"XAyatanaLabel"_s), u"19 90 97 318W"_s);
    QCOMPARE(text(u"XAyatanaLabelGuide"_s), u"100 100 100 999W"_s);
    m_label->show(sleepingCardMinute().current());
    QCOMPARE(text(u"XAyatanaLabel"_s), u"25 zz 6 –"_s);
    QCOMPARE(text(u"IconAccessibleDesc"_s),
             u"Memory 25 %, VRAM asleep, Integrated GPU 6 %, Power –"_s);
    m_label->show(virtualMachineMinute().current());
    QCOMPARE(text(u"XAyatanaLabel"_s), u"20 57"_s);
    QCOMPARE(text(u"XAyatanaLabelGuide"_s), u"100 100"_s);
    QCOMPARE(m_tray->items(), QStringList{item});

    m_tray.reset();
    startTray("waybar");
    const int two = pictures().last().width;
    m_label->show(oneCardMinute().current());
    QVERIFY(pictures().last().width > two);
}

void TestTrayLabel::menuRowsFollowTheMachine()
{
    startTray("gnome-shell");
    waitForTheCheck();
    const QStringList commands{u"-"_s, u"Open Window"_s, u"Quit"_s};
    sendMenuEvent(0, u"opened"_s);
    BusMonitor monitor(m_bus->address());
    m_label->show(virtualMachineMinute().current());
    QVERIFY(membersSince(monitor).contains(u"LayoutUpdated"_s));
    QCOMPARE(menuTexts(),
             (QStringList{u"Memory: 4.71 GB / 23.54 GB, 20 %"_s, u"CPU: 58 %, 2.30 GHz nominal"_s,
                          u"Swap: off"_s}
              + commands));
    sendMenuEvent(0, u"closed"_s);

    m_label->show(apuMinute().current());
    QCOMPARE(callMenu(u"AboutToShow"_s, {0}).value(0), QVariant(true));
    QCOMPARE(menuTexts().size(), 6 + commands.size());
    QCOMPARE(menuTexts().value(4), u"NPU: 17 %, 1.35 W"_s);
    const QSignalSpy quit(&m_quit, &QAction::triggered);
    const auto answer = callMenu(u"GetLayout"_s, {0, -1, QStringList()});
    sendMenuEvent(qdbus_cast<MenuLayout>(answer.value(1)).children.last().id, u"clicked"_s);
    TRY_COMPARE(quit.count(), 1);
}

void TestTrayLabel::appearsInATrayThatStartsLate()
{
    QSignalSpy missing(m_label.get(), &TrayLabel::trayIsMissing);
    TRY_COMPARE(missing.count(), 1);
    startTray("lxqt-panel");
    QCOMPARE(ids(), squareIds);
}

void TestTrayLabel::returnsToATrayThatRestarts()
{
    startTray("lxqt-panel");
    m_tray.reset();
    TRY_VERIFY(!m_label->isAvailable());
    m_label->show(sample(77));
    startTray("lxqt-panel");
    QCOMPARE(ids(), squareIds);
    QCOMPARE(text(u"IconAccessibleDesc"_s), u"Memory 77 %, GPU 41 %, Power 12 W"_s);
}

void TestTrayLabel::takesAnotherFormForAnotherTray()
{
    startTray("lxqt-panel");
    m_tray.reset();
    startTray("gnome-shell");
    QCOMPARE(ids(), QStringList{u"corvane"_s});
}

void TestTrayLabel::waitsForAHost()
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "kded6");
    m_tray->setHost(false);
    QSignalSpy missing(m_label.get(), &TrayLabel::trayIsMissing);
    TRY_COMPARE(missing.count(), 1);
    QVERIFY(m_tray->items().isEmpty());
    m_tray->setHost(true);
    TRY_COMPARE(m_tray->items().size(), 3);
    m_tray->setHost(false);
    TRY_VERIFY(!m_label->isAvailable());
}

void TestTrayLabel::returnsAfterTheBusRestarts()
{
    startTray("lxqt-panel");
    m_tray.reset();
    m_bus->kill();
    TRY_VERIFY(!m_label->isAvailable());
    m_label->show(sample(77));
    QVERIFY(m_bus->start());
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
    TRY_COMPARE(m_tray->items().size(), 3);
    QCOMPARE(text(u"IconAccessibleDesc"_s), u"Memory 77 %, GPU 41 %, Power 12 W"_s);
}

void TestTrayLabel::appearsOnceAHangingBusGoesOn()
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
    m_bus->hang();
    QSignalSpy missing(m_label.get(), &TrayLabel::trayIsMissing);
    int seconds = 0;
    QTimer ticks;
    connect(&ticks, &QTimer::timeout, this, [&] { m_label->show(sample(++seconds)); });
    ticks.start(10);
    TRY_COMPARE(missing.count(), 1);
    const int before = seconds;
    TRY_VERIFY(seconds > before + 20);
    QVERIFY(!m_label->isAvailable());
    m_bus->goOn();
    TRY_COMPARE(m_tray->items().size(), 3);
    QCOMPARE(ids(), squareIds);
    QVERIFY(m_label->isAvailable());
}

void TestTrayLabel::aTrayWithAllItemsGetsNoFurtherCalls_data()
{
    QTest::addColumn<QString>("separator");
    QTest::newRow("lists name and path") << QString();
    QTest::newRow("lists name, @ and path") << u"@"_s;
}

void TestTrayLabel::aTrayWithAllItemsGetsNoFurtherCalls()
{
    QFETCH(QString, separator);
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
    m_tray->setSeparator(separator);
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    QTest::qWait(settleTime);
    QCOMPARE(membersSince(monitor), QStringList());
    QCOMPARE(m_tray->registrations(), 3);
}

void TestTrayLabel::aTrayThatLosesAnItemGetsAllItemsAgain_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<int>("lost");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("one of three") << "lxqt-panel"_ba << 2 << squareIds;
    QTest::newRow("in a tray that puts new ones first") << "panel-6-systray"_ba << 2 << squareIds;
    QTest::newRow("the only one") << "gnome-shell"_ba << 1 << QStringList{u"corvane"_s};
}

void TestTrayLabel::aTrayThatLosesAnItemGetsAllItemsAgain()
{
    QFETCH(QByteArray, program);
    QFETCH(int, lost);
    QFETCH(QStringList, expected);
    m_tray = std::make_unique<FakeTray>(m_bus->address(), program.constData());
    m_tray->loseRegistrations(lost);
    const int count = static_cast<int>(expected.size());
    TRY_COMPARE(m_tray->registrations(), 2 * count);
    TRY_COMPARE(m_tray->items().size(), count);
    QCOMPARE(ids(), expected);
}

void TestTrayLabel::aTrayThatKeepsLosingItemsGetsThemThreeTimes()
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "gnome-shell");
    m_tray->loseRegistrations(1, 100);
    TRY_COMPARE(m_tray->listings(), 3);
    QTest::qWait(settleTime);
    QCOMPARE(m_tray->registrations(), 3);
}

void TestTrayLabel::registersInOrderAtATrayThatAnswersLate()
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "panel-6-systray");
    m_tray->setDelay(200ms);
    TRY_COMPARE(m_tray->items().size(), 3);
    QCOMPARE(m_tray->mostPending(), 1);
    QCOMPARE(ids(), squareIds);
}

void TestTrayLabel::registersInOrderAtATrayThatRestartsInBetween()
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
    m_tray->setDelay(1h); // It ends before it answers the first.
    TRY_COMPARE(m_tray->registrations(), 1);
    m_tray.reset();
    startTray("lxqt-panel");
    QCOMPARE(ids(), squareIds);
    waitForTheCheck();
    QCOMPARE(m_tray->registrations(), 3);
}

void TestTrayLabel::appearsInATrayThatAnswersWithErrors()
{
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "lxqt-panel");
    m_tray->refuseRegistrations();
    TRY_COMPARE(m_tray->items().size(), 3);
    QCOMPARE(ids(), squareIds);
}

/// The desktop reads the picture of each item more often than an item counts as read.
void TestTrayLabel::aTrayThatReadsAllTheTimeGetsAllItems()
{
    makeLabel({.tray = 50ms, .read = 500ms, .quiet = 200ms, .check = 50ms});
    QTimer reader;
    connect(&reader, &QTimer::timeout, this, [this] { m_tray->readPictures(); });
    reader.start(20ms);
    m_tray = std::make_unique<FakeTray>(m_bus->address(), "kded6");
    TRY_COMPARE(ids(), squareIds);
}

void TestTrayLabel::manySignalsOfATrayAreOneQuestion()
{
    const int many = m_signals;
    startTray("kded6");
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    for (int number = 0; number < many; ++number)
        m_tray->setHost(true);
    const QStringList members = membersSince(monitor);
    QCOMPARE(members.count("StatusNotifierHostRegistered"_L1), many);
    const auto questions = members.count("Get"_L1);
    QVERIFY2(questions < many / 10, qPrintable(QString::number(questions)));
    // The last signal counts.
    m_tray->setHost(false);
    TRY_VERIFY(m_tray->items().isEmpty());
}

/// Most texts were dropped in the meantime.
void TestTrayLabel::aBusThatHangsGetsTheNewestTextAfterwards()
{
    constexpr int many = 40'000; // More than the socket takes.
    startTray("gnome-shell");
    waitForTheCheck();
    BusMonitor monitor(m_bus->address());
    m_bus->hang();
    for (int number = 0; number < many; ++number) {
        m_label->show(sample(number % 90));
    }
    m_bus->goOn();
    QStringList members;
    // Sent only because the desktop may have missed something.
    TRY_VERIFY((members += membersSince(monitor)).contains("LayoutUpdated"_L1));
    members += membersSince(monitor);
    QVERIFY(members.lastIndexOf("XAyatanaNewLabel"_L1) > members.indexOf("LayoutUpdated"_L1));
    QVERIFY(members.contains("NewToolTip"_L1));
    const auto texts = members.count("XAyatanaNewLabel"_L1);
    QVERIFY2(texts < many * 3 / 4, qPrintable(QString::number(texts)));
}

void TestTrayLabel::aTrayThatHangsBlocksNothing()
{
    const HangingTray tray(m_bus->address());
    QSignalSpy missing(m_label.get(), &TrayLabel::trayIsMissing);
    TRY_COMPARE(missing.count(), 1);
    TRY_VERIFY(tray.wasAsked);
    m_label->show(sample(64));
    QVERIFY(!m_label->isAvailable());
}

void TestTrayLabel::reportsAMissingTrayOnce()
{
    QSignalSpy missing(m_label.get(), &TrayLabel::trayIsMissing);
    TRY_COMPARE(missing.count(), 1);
    m_bus->kill();
    QVERIFY(!missing.wait(settleTime));
}

void TestTrayLabel::reportsNoMissingTrayWhereThereIsOne()
{
    makeLabel({});
    QSignalSpy missing(m_label.get(), &TrayLabel::trayIsMissing);
    startTray("gnome-shell");
    QVERIFY(!missing.wait(static_cast<int>(TrayWaits().tray.count()) + 100));
}

/// "--signals N" sends N signals of a tray instead of some thousands.
int main(int argc, char **argv)
{
    const int signalsOfTray = takeNumber("--signals", 5000, argc, argv);
    QApplication application(argc, argv);
    TestTrayLabel test(signalsOfTray);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TrayLabel.moc"
