#include "bus/LoopConnection.h"

#include "bus/BusOpening.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusUnixFileDescriptor>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr BusInterface interface {
    "/counter", "corvane.test.Counter"
};

/// What the connection exports: counts its calls.
struct Counter {
    int calls = 0;
    int readings = 0;
    QString said = {};
};

int say(sd_bus_message *call, void *object, sd_bus_error *)
{
    Counter &counter = *static_cast<Counter *>(object);
    ++counter.calls;
    counter.said = BusReader(call).text();
    return answerCall(call, [&counter](BusWriter &writer) { writer << counter.calls; });
}

void writeCalls(BusWriter &writer, Counter &counter)
{
    writer << counter.calls;
}

void writeLongText(BusWriter &writer, Counter &counter)
{
    ++counter.readings;
    writer << QString(200'000, u'x');
}

const sd_bus_vtable table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Say", "s", "i", say, 0),
    SD_BUS_PROPERTY("Calls", "i", (getProperty<Counter, writeCalls>), 0, 0),
    SD_BUS_SIGNAL("Changed", "s", 0),
    SD_BUS_VTABLE_END,
};

/// An interface whose property takes more room than its request.
constexpr BusInterface talker{"/counter", "corvane.test.Talker"};

const sd_bus_vtable talkerTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("LongText", "s", (getProperty<Counter, writeLongText>), 0, 0),
    SD_BUS_VTABLE_END,
};

} // namespace

/// The connection of an exported object, and a client of Qt's bus library.
class TestLoopConnection : public QObject {
    Q_OBJECT

public slots:
    void onChanged(const QString &text) { m_changed.append(text); }

private slots:
    void init();
    void cleanup();
    void opensNothingWithoutABus_data();
    void opensNothingWithoutABus();
    void doesNothingWithoutAHandle();
    void answersCallsAndProperties();
    void refusesWhatItDoesNotExport_data();
    void refusesWhatItDoesNotExport();
    void letsNobodyWriteAProperty();
    void answersAFloodInParts();
    void emitsSignals();
    void sendsMoreThanTheSocketTakes();
    void dropsSignalsThatTheBusDoesNotTake();
    void answersNoFasterThanTheBusTakes();
    void takesNoDescriptors();
    void callsAService_data();
    void callsAService();
    void dropsTheReplyToAnEarlierCall();
    void leavesTheBusWhenDeleted();
    void outlivesItsBus();

private:
    QDBusPendingCall callOf(const QString &method, const QVariantList &arguments) const;
    QDBusMessage reply(const QDBusPendingCall &call) const;

    std::unique_ptr<PrivateBus> m_daemon;
    Counter m_counter;
    std::unique_ptr<LoopConnection> m_connection;
    QDBusConnection m_client{QString()};
    QStringList m_changed;
};

void TestLoopConnection::init()
{
    m_daemon = std::make_unique<PrivateBus>();
    QVERIFY(m_daemon->start());
    m_counter = {};
    m_changed.clear();
    m_connection = std::make_unique<LoopConnection>(openBusHandle(m_daemon->address()));
    QVERIFY(!m_connection->name().isEmpty());
    m_connection->addObject(interface, table, &m_counter);
    m_client = openBus(m_daemon->address());
    QVERIFY(m_client.connect(m_connection->name(), QString(), QLatin1StringView(interface.name),
                             u"Changed"_s, this, SLOT(onChanged(QString))));
}

void TestLoopConnection::cleanup()
{
    m_connection.reset();
    m_client = QDBusConnection(QString());
    m_daemon.reset();
}

QDBusPendingCall TestLoopConnection::callOf(const QString &method,
                                            const QVariantList &arguments) const
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_connection->name(), QLatin1StringView(interface.path),
                                       QLatin1StringView(interface.name), method);
    call.setArguments(arguments);
    return m_client.asyncCall(call);
}

QDBusMessage TestLoopConnection::reply(const QDBusPendingCall &call) const
{
    return QTest::qWaitFor([&call] { return call.isFinished(); }, patience) ? call.reply()
                                                                            : QDBusMessage();
}

void TestLoopConnection::opensNothingWithoutABus_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("no address") << QString();
    QTest::newRow("a socket that does not exist") << u"unix:path=/nowhere/bus"_s;
    QTest::newRow("a disabled bus") << u"disabled:"_s;
    QTest::newRow("no address at all") << u"a;b=\nc"_s;
}

void TestLoopConnection::opensNothingWithoutABus()
{
    QFETCH(QString, address);
    QVERIFY(!openBusHandle(address));
}

void TestLoopConnection::doesNothingWithoutAHandle()
{
    LoopConnection none(nullptr);
    QCOMPARE(none.name(), QString());
    none.addObject(interface, table, &m_counter);
    none.emitSignal(interface, "Changed");
    bool isCalled = false;
    none.call("org.freedesktop.DBus", interface, "Say", {}, [&isCalled](bool) { isCalled = true; });
    QCoreApplication::processEvents();
    QVERIFY(!isCalled);
}

void TestLoopConnection::answersCallsAndProperties()
{
    QCOMPARE(reply(callOf(u"Say"_s, {u"Größe"_s})).arguments(), QVariantList{1});
    QCOMPARE(m_counter.said, u"Größe"_s);
    QDBusMessage get =
        QDBusMessage::createMethodCall(m_connection->name(), QLatin1StringView(interface.path),
                                       u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s);
    get << QString::fromLatin1(interface.name);
    const QVariantMap all =
        qdbus_cast<QVariantMap>(reply(m_client.asyncCall(get)).arguments().value(0));
    QCOMPARE(all, (QVariantMap{{u"Calls"_s, 1}}));
}

void TestLoopConnection::refusesWhatItDoesNotExport_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("an unknown method") << u"Shout"_s << QVariantList{u"text"_s};
    QTest::newRow("too few arguments") << u"Say"_s << QVariantList();
    QTest::newRow("arguments of another type") << u"Say"_s << QVariantList{1};
}

void TestLoopConnection::refusesWhatItDoesNotExport()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QCOMPARE(reply(callOf(method, arguments)).type(), QDBusMessage::ErrorMessage);
    QCOMPARE(m_counter.calls, 0);
}

void TestLoopConnection::letsNobodyWriteAProperty()
{
    QDBusMessage set =
        QDBusMessage::createMethodCall(m_connection->name(), QLatin1StringView(interface.path),
                                       u"org.freedesktop.DBus.Properties"_s, u"Set"_s);
    set << QString::fromLatin1(interface.name) << u"Calls"_s
        << QVariant::fromValue(QDBusVariant(7));
    QCOMPARE(reply(m_client.asyncCall(set)).type(), QDBusMessage::ErrorMessage);
    QCOMPARE(m_counter.calls, 0);
}

/// More than one round of the event loop handles, and than the bus hands over at a time.
void TestLoopConnection::answersAFloodInParts()
{
    constexpr int many = 1'000;
    std::vector<QDBusPendingCall> calls;
    calls.reserve(many);
    for (int number = 0; number < many; ++number)
        calls.push_back(callOf(u"Say"_s, {QString::number(number)}));
    for (int number = 0; number < many; ++number)
        QCOMPARE(reply(calls[static_cast<std::size_t>(number)]).arguments().value(0), number + 1);
    QCOMPARE(m_counter.said, QString::number(many - 1));
}

void TestLoopConnection::emitsSignals()
{
    for (const QString &text : {u"one"_s, u"two"_s})
        m_connection->emitSignal(interface, "Changed", [&](BusWriter &writer) { writer << text; });
    TRY_COMPARE(m_changed, (QStringList{u"one"_s, u"two"_s}));
}

/// The rest is sent once the bus reads again.
void TestLoopConnection::sendsMoreThanTheSocketTakes()
{
    const QString longText(200'000, u'x');
    m_daemon->hang();
    constexpr int many = 20;
    for (int count = 0; count < many; ++count)
        m_connection->emitSignal(interface, "Changed",
                                 [&](BusWriter &writer) { writer << longText; });
    QCoreApplication::processEvents();
    m_daemon->goOn();
    TRY_COMPARE(m_changed.size(), many);
    QCOMPARE(m_changed.last(), longText);
}

/// The socket and the connection together take the same number after a second and after a day.
void TestLoopConnection::dropsSignalsThatTheBusDoesNotTake()
{
    constexpr int many = 100'000;
    const auto say = [this](const QString &text) {
        m_connection->emitSignal(interface, "Changed", [&](BusWriter &writer) { writer << text; });
    };
    QSignalSpy dropped(m_connection.get(), &LoopConnection::signalsWereDropped);
    m_daemon->hang();
    for (int number = 0; number < many; ++number)
        say(QString::number(number));
    QCoreApplication::processEvents();
    QCOMPARE(dropped.count(), 0);
    m_daemon->goOn();
    TRY_COMPARE(dropped.count(), 1);
    say(u"again"_s);
    TRY_VERIFY(!m_changed.isEmpty() && m_changed.last() == u"again"_s);
    QVERIFY2(m_changed.size() < many / 2, qPrintable(QString::number(m_changed.size())));
    QCOMPARE(dropped.count(), 1);
}

void TestLoopConnection::answersNoFasterThanTheBusTakes()
{
    constexpr int many = 200;
    m_connection->addObject(talker, talkerTable, &m_counter);
    QDBusMessage get =
        QDBusMessage::createMethodCall(m_connection->name(), QLatin1StringView(talker.path),
                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    get << QString::fromLatin1(talker.name) << u"LongText"_s;
    std::vector<QDBusPendingCall> calls;
    for (int number = 0; number < many; ++number)
        calls.push_back(m_client.asyncCall(get));
    QVERIFY(m_client.interface()->isServiceRegistered(m_connection->name())); // The calls arrived.
    m_daemon->hang();
    TRY_VERIFY(m_counter.readings > 60);
    for (int round = 0; round < many; ++round)
        QCoreApplication::processEvents();
    QVERIFY2(m_counter.readings < many * 3 / 4, qPrintable(QString::number(m_counter.readings)));
    m_daemon->goOn();
    for (const QDBusPendingCall &call : calls)
        QCOMPARE(reply(call).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(m_counter.readings, many);
}

void TestLoopConnection::takesNoDescriptors()
{
    const QDBusMessage refusal =
        reply(callOf(u"Say"_s, {QVariant::fromValue(QDBusUnixFileDescriptor(0))}));
    QCOMPARE(refusal.errorName(), u"org.freedesktop.DBus.Error.NotSupported"_s);
}

void TestLoopConnection::callsAService_data()
{
    QTest::addColumn<QByteArray>("service");
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<bool>("isReply");
    QTest::newRow("a reply") << "org.freedesktop.DBus"_ba
                             << "GetId"_ba << true;
    QTest::newRow("an error") << "org.freedesktop.DBus"_ba
                              << "Missing"_ba << false;
    QTest::newRow("a service that does not run") << "corvane.test.Nobody"_ba
                                                 << "GetId"_ba << false;
}

void TestLoopConnection::callsAService()
{
    QFETCH(QByteArray, service);
    QFETCH(QByteArray, method);
    QList<bool> replies;
    m_connection->call(service.constData(), {"/org/freedesktop/DBus", "org.freedesktop.DBus"},
                       method.constData(), {}, [&replies](bool isReply) { replies += isReply; });
    TRY_COMPARE(replies.size(), 1);
    QTEST(replies[0], "isReply");
}

void TestLoopConnection::dropsTheReplyToAnEarlierCall()
{
    QStringList replies;
    for (const QString &name : {u"first"_s, u"second"_s}) {
        m_connection->call("org.freedesktop.DBus",
                           {"/org/freedesktop/DBus", "org.freedesktop.DBus"}, "GetId", {},
                           [&replies, name](bool) { replies += name; });
    }
    TRY_COMPARE(replies, QStringList{u"second"_s});
    reply(callOf(u"Say"_s, {u"after both"_s}));
    QCOMPARE(replies, QStringList{u"second"_s});
}

void TestLoopConnection::leavesTheBusWhenDeleted()
{
    const QString name = m_connection->name();
    QVERIFY(m_client.interface()->isServiceRegistered(name));
    m_connection.reset();
    TRY_VERIFY(!m_client.interface()->isServiceRegistered(name));
}

void TestLoopConnection::outlivesItsBus()
{
    m_daemon->kill();
    TRY_COMPARE(m_connection->name(), QString());
    m_connection->emitSignal(interface, "Changed", [](BusWriter &writer) { writer << u"late"_s; });
}

QTEST_GUILESS_MAIN(TestLoopConnection)
#include "tst_LoopConnection.moc"
