#include "simulated_mac/SimulatedMac.h"
#include "thermal/ThermalBridge_mac.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace corvane;
using namespace corvane::simulated;

using Temperatures = std::map<std::string, double>;

class TestThermalBridge : public QObject {
    Q_OBJECT

private slots:
    void init() { mac().boot(baseM1()); }
    void readsSensors_data();
    void readsSensors();
    void readsAnewEachTime();
    void hasNoSensorsWhenAskingFails_data();
    void hasNoSensorsWhenAskingFails();
    void listsItsSensorsAnew();
    void keepsItsSensorsWhenListingFails();
    void leavesOutWhatDoesNotAnswer();
    void releasesEverything();
};

void TestThermalBridge::readsSensors_data()
{
    QTest::addColumn<std::vector<Sensor>>("sensors");
    QTest::addColumn<Temperatures>("expected");
    using Sensors = std::vector<Sensor>;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("no sensor") << Sensors{} << Temperatures{};
    QTest::newRow("two sensors") << Sensors{{"PMU tdie1", 34.5}, {"PMU tdie2", 35.0}}
                                 << Temperatures{{"PMU tdie1", 34.5}, {"PMU tdie2", 35.0}};
    QTest::newRow("of the same name the last counts")
        << Sensors{{"PMU TP0s", 59.42}, {"PMU TP0s", 59.68}, {"PMU TP0s", 59.60}}
        << Temperatures{{"PMU TP0s", 59.60}};
    QTest::newRow("of the same name the last that answers counts")
        << Sensors{{"PMU TP0s", 59.42}, {"PMU TP0s", std::nullopt}, {"PMU TP0s", 200.0}}
        << Temperatures{{"PMU TP0s", 59.42}};
    QTest::newRow("just inside the bounds") << Sensors{{"low", 0.01}, {"high", 199.99}}
                                            << Temperatures{{"low", 0.01}, {"high", 199.99}};
    QTest::newRow("on the bounds and beyond")
        << Sensors{{"zero", 0.0}, {"cold", -21.5}, {"hot", 200.0}, {"hotter", 1e300}}
        << Temperatures{};
    QTest::newRow("no numbers") << Sensors{{"none", nan}, {"up", infinity}, {"down", -infinity}}
                                << Temperatures{};
    QTest::newRow("without a name") << Sensors{{std::nullopt, 30.0}, {"", 31.0}, {"named", 32.0}}
                                    << Temperatures{{"named", 32.0}};
    QTest::newRow("a name beyond ASCII")
        << Sensors{{"Fühler", 30.0}} << Temperatures{{"Fühler", 30.0}};
}

void TestThermalBridge::readsSensors()
{
    QFETCH(std::vector<Sensor>, sensors);
    mac().machine.sensors = sensors;
    QTEST(ThermalBridge().readAllTemperatures(), "expected");
}

void TestThermalBridge::readsAnewEachTime()
{
    mac().machine.sensors = {{"PMU tdie1", 34.0}};
    ThermalBridge bridge;
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"PMU tdie1", 34.0}}));
    mac().machine.sensors[0] = {"renamed later", 36.0};
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"PMU tdie1", 36.0}}));
}

void TestThermalBridge::hasNoSensorsWhenAskingFails_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    const auto row = [](const char *name, Call call, Way way) {
        QTest::newRow(name) << static_cast<int>(call) << static_cast<int>(way);
    };
    row("no client", Call::IOHIDEventSystemClientCreate, Way::null);
    row("no number to match", Call::CFNumberCreate, Way::null);
    row("no dictionary to match", Call::CFDictionaryCreate, Way::null);
    row("no list of services", Call::IOHIDEventSystemClientCopyServices, Way::null);
    row("an empty list of services", Call::IOHIDEventSystemClientCopyServices, Way::empty);
    row("no names", Call::IOHIDServiceClientCopyProperty, Way::null);
    row("names that are numbers", Call::IOHIDServiceClientCopyProperty, Way::wrongType);
    row("empty names", Call::IOHIDServiceClientCopyProperty, Way::empty);
}

void TestThermalBridge::hasNoSensorsWhenAskingFails()
{
    QFETCH(int, call);
    QFETCH(int, way);
    const Accounts before = accounts();
    faults().failAlways(static_cast<Call>(call), static_cast<Way>(way));
    QVERIFY(ThermalBridge().readAllTemperatures().empty());
    QVERIFY(accounts() == before);
}

/// At the first and every 60th read.
void TestThermalBridge::listsItsSensorsAnew()
{
    mac().machine.sensors = {{"old", 34.0}, {"kept", 35.0}};
    const Accounts before = accounts();
    {
        ThermalBridge bridge;
        QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"old", 34.0}, {"kept", 35.0}}));
        mac().machine.sensors = {{"kept", 35.0}, {"new", 36.0}, {"newer", 37.0}};
        for (int read = 1; read < 60; ++read)
            QVERIFY(!bridge.readAllTemperatures().contains("new"));
        QCOMPARE(bridge.readAllTemperatures(),
                 (Temperatures{{"kept", 35.0}, {"new", 36.0}, {"newer", 37.0}}));
        mac().machine.sensors = {{"kept", 35.0}};
        QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"kept", 35.0}}));
    }
    QVERIFY(accounts() == before);
}

void TestThermalBridge::keepsItsSensorsWhenListingFails()
{
    mac().machine.sensors = {{"a", 34.0}};
    ThermalBridge bridge;
    QVERIFY(!bridge.readAllTemperatures().empty());
    faults().failAlways(Call::IOHIDEventSystemClientCopyServices, Way::null);
    for (int read = 0; read < 120; ++read)
        QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"a", 34.0}}));
}

void TestThermalBridge::leavesOutWhatDoesNotAnswer()
{
    mac().machine.sensors = {{"a", 31.0}, {"b", 32.0}, {"c", 33.0}};
    ThermalBridge bridge;
    faults().failOnce(Call::IOHIDServiceClientCopyEvent, Way::null, 2);
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"a", 31.0}, {"c", 33.0}}));
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"a", 31.0}, {"b", 32.0}, {"c", 33.0}}));
    faults().failAlways(Call::IOHIDEventGetFloatValue, Way::garbage);
    QCOMPARE(bridge.readAllTemperatures(), Temperatures{});
    faults().clear();

    faults().failOnce(Call::IOHIDServiceClientCopyProperty, Way::wrongType, 3);
    QCOMPARE(ThermalBridge().readAllTemperatures(), (Temperatures{{"a", 31.0}, {"b", 32.0}}));

    // A name that CF can hand out in no way is no name; one that it must copy is.
    mac().machine.sensors = {{"Fühler", 31.0}, {"plain", 32.0}};
    faults().failOnce(Call::CFStringGetCString, Way::error);
    QCOMPARE(ThermalBridge().readAllTemperatures(), (Temperatures{{"plain", 32.0}}));
    faults().failAlways(Call::CFStringGetCStringPtr, Way::null);
    QCOMPARE(ThermalBridge().readAllTemperatures(),
             (Temperatures{{"Fühler", 31.0}, {"plain", 32.0}}));

    // Services that were not narrowed down answer all the same.
    faults().clear();
    faults().failAlways(Call::IOHIDEventSystemClientSetMatching, Way::error);
    QCOMPARE(ThermalBridge().readAllTemperatures().size(), 2U);
}

void TestThermalBridge::releasesEverything()
{
    const Accounts before = accounts();
    {
        ThermalBridge bridge;
        QVERIFY(!bridge.readAllTemperatures().empty());
        const Accounts held = accounts();
        QVERIFY(held.objects > before.objects);
        for (int tick = 0; tick < 10; ++tick)
            QVERIFY(!bridge.readAllTemperatures().empty());
        QVERIFY(accounts() == held);
    }
    QVERIFY(accounts() == before);
}

QTEST_APPLESS_MAIN(TestThermalBridge)
#include "tst_ThermalBridge_mac.moc"
