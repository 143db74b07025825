#include "tray/DBusMenuObject_linux.h"

#include "bus/BusOpening.h"
#include "bus/LoopConnection.h"
#include "support/PrivateBus.h"
#include "support/TrayTypes.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

/// A menu on a private bus, and a desktop that draws it.
class TestDBusMenuObject : public QObject {
    Q_OBJECT

public slots:
    void onChange(const QDBusMessage &signal) { m_changes.append(signal); }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void hasTheProtocolsSignatures();
    void answersProperties_data();
    void answersProperties();
    void answersRequests_data();
    void answersRequests();
    void sendsTheLayoutWithItsChildren();
    void sendsTheNamedPropertiesOfAGroup();
    void passesEventsOn();
    void announcesChangesInTheProtocolsForm();

private:
    QVariantList call(const QString &method, const QVariantList &arguments = {},
                      const QString &interface = u"com.canonical.dbusmenu"_s) const;

    PrivateBus m_daemon;
    QDBusConnection m_desktop{QString()};
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<DBusMenuObject> m_object;
    std::unique_ptr<LoopConnection> m_bus;
    QAction *m_quit = nullptr; ///< Id 3.
    QList<QDBusMessage> m_changes;
};

void TestDBusMenuObject::initTestCase()
{
    QVERIFY(m_daemon.start());
    m_desktop = openBus(m_daemon.address());
    QVERIFY(m_desktop.isConnected());
}

void TestDBusMenuObject::init()
{
    m_menu = std::make_unique<QMenu>();
    m_menu->addAction(u"GPU: 41 %"_s)->setEnabled(false);
    m_menu->addSeparator();
    m_quit = m_menu->addAction(u"&Quit"_s);
    m_object = std::make_unique<DBusMenuObject>(*m_menu);
    m_bus = std::make_unique<LoopConnection>(openBusHandle(m_daemon.address()));
    m_object->exportOver(*m_bus);
    m_changes.clear();
    for (const QString &signal : {u"ItemsPropertiesUpdated"_s, u"LayoutUpdated"_s})
        QVERIFY(m_desktop.connect(m_bus->name(), u"/MenuBar"_s, u"com.canonical.dbusmenu"_s, signal,
                                  this, SLOT(onChange(QDBusMessage))));
}

void TestDBusMenuObject::cleanup()
{
    m_bus.reset();
    m_object.reset();
    m_menu.reset();
}

QVariantList TestDBusMenuObject::call(const QString &method, const QVariantList &arguments,
                                      const QString &interface) const
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(m_bus->name(), u"/MenuBar"_s, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall reply = m_desktop.asyncCall(message);
    if (!QTest::qWaitFor([&reply] { return reply.isFinished(); }, patience) || reply.isError())
        return {u"an error"_s};
    return reply.reply().arguments();
}

void TestDBusMenuObject::hasTheProtocolsSignatures()
{
    const QString description =
        call(u"Introspect"_s, {}, u"org.freedesktop.DBus.Introspectable"_s).value(0).toString();
    QStringList members; // Each with the types of its arguments.
    QXmlStreamReader xml(description);
    QString interface;
    while (xml.readNextStartElement() || !xml.atEnd()) {
        if (!xml.isStartElement())
            continue;
        const auto attribute = [&xml](const char *name) {
            return xml.attributes().value(QLatin1StringView(name)).toString();
        };
        if (xml.name() == "interface"_L1)
            interface = attribute("name");
        else if (interface != "com.canonical.dbusmenu"_L1)
            continue;
        else if (xml.name() == "arg"_L1)
            members.last() += attribute("type");
        else if (xml.name() != "annotation"_L1)
            members.append(attribute("name") + u' ' + attribute("type"));
    }
    members.sort();
    QCOMPARE(
        members,
        (QStringList{u"AboutToShow ib"_s, u"AboutToShowGroup aiaiai"_s, u"Event isvu"_s,
                     u"EventGroup a(isvu)ai"_s, u"GetGroupProperties aiasa(ia{sv})"_s,
                     u"GetLayout iiasu(ia{sv}av)"_s, u"GetProperty isv"_s, u"IconThemePath as"_s,
                     u"ItemActivationRequested iu"_s, u"ItemsPropertiesUpdated a(ia{sv})a(ias)"_s,
                     u"LayoutUpdated ui"_s, u"Status s"_s, u"TextDirection s"_s, u"Version u"_s}));
}

void TestDBusMenuObject::answersProperties_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("version of the protocol") << u"Version"_s << QVariant(3U);
    QTest::newRow("direction of texts") << u"TextDirection"_s << QVariant(u"ltr"_s);
    QTest::newRow("status") << u"Status"_s << QVariant(u"normal"_s);
    QTest::newRow("no themes of its own") << u"IconThemePath"_s << QVariant(QStringList());
}

void TestDBusMenuObject::answersProperties()
{
    QFETCH(QString, name);
    const QVariantList reply =
        call(u"Get"_s, {u"com.canonical.dbusmenu"_s, name}, u"org.freedesktop.DBus.Properties"_s);
    QTEST(reply.value(0).value<QDBusVariant>().variant(), "expected");
}

void TestDBusMenuObject::answersRequests_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QVariantList>("expected");
    const auto ids = [](const QList<int> &list) { return QVariant::fromValue(list); };
    QTest::newRow("a property") << u"GetProperty"_s << QVariantList{3, u"label"_s}
                                << QVariantList{u"_Quit"_s};
    QTest::newRow("a truth value")
        << u"GetProperty"_s << QVariantList{1, u"enabled"_s} << QVariantList{false};
    QTest::newRow("an unknown property")
        << u"GetProperty"_s << QVariantList{3, u"colour"_s} << QVariantList{QString()};
    QTest::newRow("an unchanged menu")
        << u"AboutToShow"_s << QVariantList{0} << QVariantList{false};
    QTest::newRow("a group with unknown ids")
        << u"AboutToShowGroup"_s << QVariantList{ids({0, 99, -1})}
        << QVariantList{ids({}), ids({99, -1})};
    QTest::newRow("events at unknown ids")
        << u"EventGroup"_s
        << QVariantList{menuEvents({{.id = 98, .type = u"clicked"_s}, {.id = 3}})}
        << QVariantList{ids({98})};
    QTest::newRow("no events") << u"EventGroup"_s << QVariantList{menuEvents({})}
                               << QVariantList{ids({})};
}

void TestDBusMenuObject::answersRequests()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QVariantList plain;
    for (const QVariant &value : call(method, arguments)) {
        if (value.metaType() == QMetaType::fromType<QDBusArgument>())
            plain.append(QVariant::fromValue(qdbus_cast<QList<int>>(value)));
        else if (value.metaType() == QMetaType::fromType<QDBusVariant>())
            plain.append(value.value<QDBusVariant>().variant());
        else
            plain.append(value);
    }
    QTEST(plain, "expected");
}

void TestDBusMenuObject::sendsTheLayoutWithItsChildren()
{
    const QVariantList reply = call(u"GetLayout"_s, {0, -1, QStringList()});
    QCOMPARE(reply.size(), 2);
    QCOMPARE(reply[0], QVariant(1U));
    const auto layout = qdbus_cast<MenuLayout>(reply[1]);
    QCOMPARE(layout.id, 0);
    QCOMPARE(layout.properties, (QVariantMap{{u"children-display"_s, u"submenu"_s}}));
    QCOMPARE(layout.children.size(), 3);
    QCOMPARE(layout.children[0].id, 1);
    QCOMPARE(layout.children[0].properties.value(u"label"_s), QVariant(u"GPU: 41 %"_s));
    QCOMPARE(layout.children[1].properties.value(u"type"_s), QVariant(u"separator"_s));
    QCOMPARE(layout.children[2].properties.value(u"enabled"_s), QVariant(true));
    QVERIFY(layout.children[2].children.isEmpty());
}

void TestDBusMenuObject::sendsTheNamedPropertiesOfAGroup()
{
    const QVariantList reply = call(
        u"GetGroupProperties"_s, {QVariant::fromValue(QList<int>{3, 1}), QStringList{u"label"_s}});
    const auto items = qdbus_cast<QList<MenuItem>>(reply.value(0));
    QCOMPARE(items.size(), 2);
    QCOMPARE(items[0].id, 3);
    QCOMPARE(items[0].properties, (QVariantMap{{u"label"_s, u"_Quit"_s}}));
    QCOMPARE(items[1].id, 1);
}

void TestDBusMenuObject::passesEventsOn()
{
    const QSignalSpy clicks(m_quit, &QAction::triggered);
    const MenuEvent click{.id = 3, .type = u"clicked"_s, .time = 4'000'000'000};
    QCOMPARE(call(u"Event"_s, {3, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U}),
             QVariantList());
    TRY_COMPARE(clicks.count(), 1);
    call(u"EventGroup"_s, {menuEvents({click, click})});
    TRY_COMPARE(clicks.count(), 3);
}

void TestDBusMenuObject::announcesChangesInTheProtocolsForm()
{
    call(u"Event"_s, {0, u"opened"_s, QVariant::fromValue(QDBusVariant(QString())), 0U});
    m_quit->setEnabled(false);
    TRY_COMPARE(m_changes.size(), 1);
    QCOMPARE(m_changes[0].signature(), u"a(ia{sv})a(ias)"_s);
    const auto updated = qdbus_cast<QList<MenuItem>>(m_changes[0].arguments()[0]);
    QCOMPARE(updated.size(), 1);
    QCOMPARE(updated[0].id, 3);
    QCOMPARE(updated[0].properties.value(u"enabled"_s), QVariant(false));

    m_menu->addAction(u"About Corvane"_s);
    TRY_COMPARE(m_changes.size(), 2);
    QCOMPARE(m_changes[1].arguments(), (QVariantList{2U, 0}));
}

QTEST_MAIN(TestDBusMenuObject)
#include "tst_DBusMenuObject.moc"
