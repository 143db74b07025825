#include "bus/BusCall.h"

#include "support/PrivateBus.h"

#include <QDBusContext>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Answers, refuses or keeps silent.
class Oracle : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "corvane.test.Oracle")

public slots:
    Q_SCRIPTABLE int answer() { return 42; }
    Q_SCRIPTABLE void refuse() { sendErrorReply(QDBusError::AccessDenied, u"no"_s); }
    Q_SCRIPTABLE void keepSilent() { setDelayedReply(true); }
};

class TestBusCall : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void handsOverWhatComes_data();
    void handsOverWhatComes();
    void asksTheBusItself();
    void isForgottenWithItsReceiver();

private:
    QDBusMessage callOf(const QString &method) const
    {
        return QDBusMessage::createMethodCall(m_oraclesBus->baseService(), u"/"_s,
                                              u"corvane.test.Oracle"_s, method);
    }

    PrivateBus m_daemon;
    Oracle m_oracle;
    std::unique_ptr<QDBusConnection> m_oraclesBus;
    std::unique_ptr<QDBusConnection> m_bus; ///< Of the one who asks.
};

void TestBusCall::initTestCase()
{
    QVERIFY(m_daemon.start());
    m_oraclesBus = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_daemon.address(), u"oracle"_s));
    QVERIFY(
        m_oraclesBus->registerObject(u"/"_s, &m_oracle, QDBusConnection::ExportScriptableSlots));
    m_bus = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_daemon.address(), u"asking"_s));
    QVERIFY(m_bus->isConnected());
}

void TestBusCall::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(u"asking"_s);
    QDBusConnection::disconnectFromBus(u"oracle"_s);
}

void TestBusCall::handsOverWhatComes_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("isReply");
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("an answer") << u"answer"_s << true << QVariantList{42};
    QTest::newRow("a refusal, without its text") << u"refuse"_s << false << QVariantList{};
    QTest::newRow("a method that is not there") << u"dance"_s << false << QVariantList{};
    QTest::newRow("silence") << u"keepSilent"_s << false << QVariantList{};
}

void TestBusCall::handsOverWhatComes()
{
    QFETCH(QString, method);
    std::optional<QDBusMessage> told;
    BusCall::ask(
        *m_bus, callOf(method), this, [&](const QDBusMessage &reply) { told = reply; },
        method == "keepSilent"_L1 ? 1ms : 60s);
    QVERIFY(QTest::qWaitFor([&] { return told.has_value(); }, 60'000));
    QTEST(BusCall::isReply(*told), "isReply");
    QTEST(told->arguments(), "arguments");
}

void TestBusCall::asksTheBusItself()
{
    QString owner;
    BusCall::ask(*m_bus, BusCall::toBus(u"GetNameOwner"_s, {m_bus->baseService()}), this,
                 [&](const QDBusMessage &reply) { owner = reply.arguments().value(0).toString(); });
    QTRY_COMPARE_WITH_TIMEOUT(owner, m_bus->baseService(), 60'000);
}

void TestBusCall::isForgottenWithItsReceiver()
{
    bool wasTold = false;
    auto receiver = std::make_unique<QObject>();
    BusCall::ask(*m_bus, callOf(u"answer"_s), receiver.get(),
                 [&](const QDBusMessage &) { wasTold = true; });
    receiver.reset();
    // Answers come in the order of the questions.
    bool isLater = false;
    BusCall::ask(*m_bus, callOf(u"answer"_s), this, [&](const QDBusMessage &) { isLater = true; });
    QTRY_VERIFY_WITH_TIMEOUT(isLater, 60'000);
    QVERIFY(!wasTold);
}

QTEST_GUILESS_MAIN(TestBusCall)
#include "tst_BusCall.moc"
