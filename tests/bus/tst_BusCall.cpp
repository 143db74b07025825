#include "bus/BusCall.h"

#include "support/PrivateBus.h"

#include <QDBusContext>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// An object that replies, refuses or stays silent.
class Callee : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "corvane.test.Callee")

public slots:
    Q_SCRIPTABLE int reply() { return 42; }
    Q_SCRIPTABLE void refuse() { sendErrorReply(QDBusError::AccessDenied, u"no"_s); }
    Q_SCRIPTABLE void staySilent() { setDelayedReply(true); }
};

class TestBusCall : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void passesTheReplyOn_data();
    void passesTheReplyOn();
    void callsTheBusItself();
    void passesNothingToADeletedReceiver();

private:
    QDBusMessage callOf(const QString &method) const
    {
        return QDBusMessage::createMethodCall(m_calleeBus->baseService(), u"/"_s,
                                              u"corvane.test.Callee"_s, method);
    }

    PrivateBus m_daemon;
    Callee m_callee;
    std::unique_ptr<QDBusConnection> m_calleeBus;
    std::unique_ptr<QDBusConnection> m_bus; ///< The caller's.
};

void TestBusCall::initTestCase()
{
    QVERIFY(m_daemon.start());
    m_calleeBus = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_daemon.address(), u"callee"_s));
    QVERIFY(m_calleeBus->registerObject(u"/"_s, &m_callee, QDBusConnection::ExportScriptableSlots));
    m_bus = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_daemon.address(), u"caller"_s));
    QVERIFY(m_bus->isConnected());
}

void TestBusCall::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(u"caller"_s);
    QDBusConnection::disconnectFromBus(u"callee"_s);
}

void TestBusCall::passesTheReplyOn_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("isReply");
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("a reply") << u"reply"_s << true << QVariantList{42};
    QTest::newRow("an error, without its text") << u"refuse"_s << false << QVariantList{};
    QTest::newRow("a missing method") << u"missing"_s << false << QVariantList{};
    QTest::newRow("no reply in time") << u"staySilent"_s << false << QVariantList{};
}

void TestBusCall::passesTheReplyOn()
{
    QFETCH(QString, method);
    std::optional<QDBusMessage> received;
    BusCall::send(
        *m_bus, callOf(method), this, [&](const QDBusMessage &reply) { received = reply; },
        method == "staySilent"_L1 ? 1ms : 60s);
    QVERIFY(QTest::qWaitFor([&] { return received.has_value(); }, 60'000));
    QTEST(BusCall::isReply(*received), "isReply");
    QTEST(received->arguments(), "arguments");
}

void TestBusCall::callsTheBusItself()
{
    QString owner;
    BusCall::send(
        *m_bus, BusCall::toBus(u"GetNameOwner"_s, {m_bus->baseService()}), this,
        [&](const QDBusMessage &reply) { owner = reply.arguments().value(0).toString(); });
    QTRY_COMPARE_WITH_TIMEOUT(owner, m_bus->baseService(), 60'000);
}

void TestBusCall::passesNothingToADeletedReceiver()
{
    bool wasReceived = false;
    auto receiver = std::make_unique<QObject>();
    BusCall::send(*m_bus, callOf(u"reply"_s), receiver.get(),
                  [&](const QDBusMessage &) { wasReceived = true; });
    receiver.reset();
    // Replies arrive in the order of the calls.
    bool isNextReceived = false;
    BusCall::send(*m_bus, callOf(u"reply"_s), this,
                  [&](const QDBusMessage &) { isNextReceived = true; });
    QTRY_VERIFY_WITH_TIMEOUT(isNextReceived, 60'000);
    QVERIFY(!wasReceived);
}

QTEST_GUILESS_MAIN(TestBusCall)
#include "tst_BusCall.moc"
