#include "support/PrivateBus.h"
#include "tray/DBusMenuTypes_linux.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A bus object that returns the arguments of each call.
class Echo : public QDBusVirtualObject {
public:
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        return bus.send(message.createReply(message.arguments()));
    }
};

} // namespace

class TestDBusMenuTypes : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void haveTheProtocolsSignatures_data();
    void haveTheProtocolsSignatures();
    void layoutsArriveWithAllTheirChildren();
    void propertiesArrive();
    void namesOfLostPropertiesArrive();
    void eventsArrive();

private:
    /// The value as it arrives over the bus.
    template <typename Type>
    Type sent(const Type &value) const;

    PrivateBus m_bus;
    Echo m_echo;
};

void TestDBusMenuTypes::initTestCase()
{
    registerDBusMenuTypes();
    QVERIFY(m_bus.start());
    QDBusConnection server = QDBusConnection::connectToBus(m_bus.address(), u"echo"_s);
    QVERIFY(server.registerVirtualObject(u"/"_s, &m_echo));
    QVERIFY(QDBusConnection::connectToBus(m_bus.address(), u"client"_s).isConnected());
}

void TestDBusMenuTypes::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(u"client"_s);
    QDBusConnection::disconnectFromBus(u"echo"_s);
}

template <typename Type>
Type TestDBusMenuTypes::sent(const Type &value) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(QDBusConnection(u"echo"_s).baseService(),
                                                       u"/"_s, u"test.Echo"_s, u"Echo"_s);
    call << QVariant::fromValue(value);
    const QDBusPendingCall answer = QDBusConnection(u"client"_s).asyncCall(call);
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }, 60'000))
        return {};
    return qdbus_cast<Type>(answer.reply().arguments().value(0));
}

void TestDBusMenuTypes::haveTheProtocolsSignatures_data()
{
    QTest::addColumn<QMetaType>("type");
    QTest::addColumn<QString>("signature");
    QTest::newRow("a layout") << QMetaType::fromType<DBusMenuLayout>() << u"(ia{sv}av)"_s;
    QTest::newRow("properties of items")
        << QMetaType::fromType<QList<DBusMenuProperties>>() << u"a(ia{sv})"_s;
    QTest::newRow("lost properties")
        << QMetaType::fromType<QList<DBusMenuRemoved>>() << u"a(ias)"_s;
    QTest::newRow("events") << QMetaType::fromType<QList<DBusMenuEvent>>() << u"a(isvu)"_s;
}

void TestDBusMenuTypes::haveTheProtocolsSignatures()
{
    QFETCH(QMetaType, type);
    QFETCH(QString, signature);
    QCOMPARE(QString::fromLatin1(QDBusMetaType::typeToSignature(type)), signature);
}

void TestDBusMenuTypes::layoutsArriveWithAllTheirChildren()
{
    const DBusMenuLayout leaf{.id = 7, .properties = {{u"label"_s, u"Quit"_s}}};
    const DBusMenuLayout layout =
        sent(DBusMenuLayout{.id = 1, .children = {{.id = 2, .children = {leaf}}, {.id = 3}}});
    QCOMPARE(layout.id, 1);
    QCOMPARE(layout.children.size(), 2);
    QCOMPARE(layout.children[1].id, 3);
    QCOMPARE(layout.children[0].children.size(), 1);
    QCOMPARE(layout.children[0].children[0].id, 7);
    QCOMPARE(layout.children[0].children[0].properties, leaf.properties);
}

void TestDBusMenuTypes::propertiesArrive()
{
    const QVariantMap properties{{u"enabled"_s, false}, {u"label"_s, u"GPU: 41 %"_s}};
    const auto items = sent(QList<DBusMenuProperties>{{.id = 4, .properties = properties}, {}});
    QCOMPARE(items.size(), 2);
    QCOMPARE(items[0].id, 4);
    QCOMPARE(items[0].properties, properties);
}

void TestDBusMenuTypes::namesOfLostPropertiesArrive()
{
    const auto items = sent(QList<DBusMenuRemoved>{{.id = 5, .names = {u"icon-name"_s}}});
    QCOMPARE(items.size(), 1);
    QCOMPARE(items[0].id, 5);
    QCOMPARE(items[0].names, QStringList{u"icon-name"_s});
}

void TestDBusMenuTypes::eventsArrive()
{
    const auto events = sent(QList<DBusMenuEvent>{
        {.id = 6, .type = u"clicked"_s, .data = QDBusVariant(0), .time = 4'000'000'000}});
    QCOMPARE(events.size(), 1);
    QCOMPARE(events[0].id, 6);
    QCOMPARE(events[0].type, u"clicked"_s);
    QCOMPARE(events[0].data.variant(), QVariant(0));
    QCOMPARE(events[0].time, 4'000'000'000u);
}

QTEST_GUILESS_MAIN(TestDBusMenuTypes)
#include "tst_DBusMenuTypes.moc"
