#include "gpuclients/GPUClients.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t second = 1'000'000'000;

Graphics::Client client(const std::string &creator, std::vector<std::int64_t> times)
{
    return {.creator = creator, .times = std::move(times)};
}

} // namespace

class TestGPUClientsOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void tellsTheTimeOfProcesses();
    void addsUpQueuesAndClients();
    void leavesOutWhatIsNoClient_data();
    void leavesOutWhatIsNoClient();
    void survivesFailingCalls_data();
    void survivesFailingCalls();

private:
    /// "7: 25 %" for each process that is listed, a second after the call before.
    QStringList used(const std::vector<std::int32_t> &pids)
    {
        m_now += 1;
        const Accounts before = accounts();
        QStringList texts;
        for (const GPUUse &use : m_clients->used(m_clients->told(), pids))
            texts.append(
                u"%1: %2 %"_s.arg(use.use.pid).arg(use.use.busyFraction.value_or(-1) * 100));
        if (accounts() != before)
            texts.append(u"an object is lost"_s);
        return texts;
    }
    std::vector<Graphics::Client> &clients() { return mac().machine.graphics->clients; }

    double m_now = 100;
    std::unique_ptr<GPUClients> m_clients;
};

void TestGPUClientsOnMac::init()
{
    mac().boot(baseM1());
    mac().machine.graphics = Graphics{};
    m_clients = std::make_unique<GPUClients>(nullptr, "/", [this] { return m_now; });
    QVERIFY(!m_clients->readsFiles());
}

void TestGPUClientsOnMac::tellsTheTimeOfProcesses()
{
    clients() = {client("pid 7, llama-server", {5 * second}), client("pid 8, game", {second})};
    QCOMPARE(used({7}), QStringList()); // What it did before is not known.
    clients()[0].times = {5 * second + second / 4};
    clients()[1].times = {2 * second};
    QCOMPARE(used({7}), QStringList{u"7: 25 %"_s});
    QCOMPARE(used({7}), QStringList{u"7: 0 %"_s});
    clients()[0].times = {9 * second}; // More than the second has.
    QCOMPARE(used({7}), QStringList{u"7: 100 %"_s});
    clients()[0].times = {0}; // Another client of the same process.
    QCOMPARE(used({7}), QStringList{u"7: 0 %"_s});
    clients().clear();
    QCOMPARE(used({7}), QStringList());
    mac().machine.graphics.reset();
    QCOMPARE(used({7}), QStringList());
}

void TestGPUClientsOnMac::addsUpQueuesAndClients()
{
    clients() = {client("pid 7, a", {0, 0}), client("pid 7, a", {0})};
    used({7, 9});
    clients() = {client("pid 7, a", {second / 8, second / 8}), client("pid 7, a", {second / 4})};
    QCOMPARE(used({7, 9}), QStringList{u"7: 50 %"_s});
}

void TestGPUClientsOnMac::leavesOutWhatIsNoClient_data()
{
    QTest::addColumn<QString>("creator");
    QTest::addColumn<QString>("className");
    const QString agx = u"AGXDeviceUserClient"_s;
    QTest::newRow("another class") << u"pid 7, a"_s << u"IOAccelMemoryInfoUserClient"_s;
    QTest::newRow("no number") << u"pid x, a"_s << agx;
    QTest::newRow("number 0") << u"pid 0, a"_s << agx;
    QTest::newRow("a negative number") << u"pid -7, a"_s << agx;
    QTest::newRow("a number beyond 31 bits") << u"pid 4294967303, a"_s << agx;
    QTest::newRow("another text") << u"process 7, a"_s << agx;
    QTest::newRow("no text") << QString() << agx;
}

void TestGPUClientsOnMac::leavesOutWhatIsNoClient()
{
    QFETCH(QString, creator);
    QFETCH(QString, className);
    Graphics::Client odd = client(creator.toStdString(), {0});
    odd.className = className.toStdString();
    if (creator.isNull())
        odd.creator.reset();
    clients() = {odd, client("pid 8, b", {0})};
    used({7, 8});
    QCOMPARE(used({7, 8}), QStringList{u"8: 0 %"_s});
}

void TestGPUClientsOnMac::survivesFailingCalls_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    const auto row = [](const char *name, Call call, Way way) {
        QTest::newRow(name) << static_cast<int>(call) << static_cast<int>(way);
    };
    row("no matching dictionary", Call::IOServiceMatching, Way::null);
    row("no accelerator", Call::IOServiceGetMatchingService, Way::null);
    row("no iterator", Call::IORegistryEntryGetChildIterator, Way::error);
    row("no clients", Call::IOIteratorNext, Way::null);
    row("no key", Call::CFStringCreateWithCString, Way::null);
    row("no property", Call::IORegistryEntryCreateCFProperty, Way::null);
    row("a text for every property", Call::IORegistryEntryCreateCFProperty, Way::wrongType);
    row("bytes for every property", Call::IORegistryEntryCreateCFProperty, Way::garbage);
    row("no numbers", Call::CFNumberGetValue, Way::error);
}

void TestGPUClientsOnMac::survivesFailingCalls()
{
    QFETCH(int, call);
    QFETCH(int, way);
    clients() = {client("pid 7, a", {0})};
    used({7});
    faults().failAlways(static_cast<Call>(call), static_cast<Way>(way));
    QCOMPARE(used({7}), QStringList());
    faults().clear();
    QCOMPARE(used({7}), QStringList{u"7: 0 %"_s});
}

QTEST_APPLESS_MAIN(TestGPUClientsOnMac)
#include "tst_GPUClients_mac.moc"
