#include "instance/BusApplicationService_linux.h"

#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString name = u"io.github.corvane.Corvane"_s;
const QString path = u"/io/github/corvane/Corvane"_s;
const QString interface = u"org.freedesktop.Application"_s;

} // namespace

/// Another Corvane that owns the name.
class OtherCorvane : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    QVariantMap platformData; ///< Of the last call.
    bool wasAsked = false;
    bool hangs = false;

public slots:
    Q_SCRIPTABLE void Activate(const QVariantMap &data)
    {
        platformData = data;
        wasAsked = true;
        setDelayedReply(hangs);
    }
};

/// The service on a private bus, and a desktop that calls it.
class TestBusApplicationService : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void opensWithTheDesktopsToken_data();
    void opensWithTheDesktopsToken();
    void opensTheDashboardForFiles();
    void carriesOutItsActions();
    void refusesOtherCalls();
    void ownsItsNameAgainAfterTheBusEnded();
    void asksTheOwnerOfTheName_data();
    void asksTheOwnerOfTheName();

private:
    QDBusConnection desktop() const
    {
        return QDBusConnection::connectToBus(m_bus->address(), u"desktop"_s);
    }
    bool isOwned() const;
    QDBusMessage call(const QString &method, const QVariantList &arguments) const;

    std::unique_ptr<PrivateBus> m_bus;
};

void TestBusApplicationService::init()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
}

void TestBusApplicationService::cleanup()
{
    QDBusConnection::disconnectFromBus(u"desktop"_s);
    m_bus.reset();
}

bool TestBusApplicationService::isOwned() const
{
    return desktop().interface() && desktop().interface()->isServiceRegistered(name).value();
}

/// Waits for the reply in the event loop, since the callee is in this process.
QDBusMessage TestBusApplicationService::call(const QString &method,
                                             const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(name, path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall answer = desktop().asyncCall(message);
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }, 60'000))
        return {};
    return answer.reply();
}

void TestBusApplicationService::opensWithTheDesktopsToken_data()
{
    QTest::addColumn<QVariantMap>("platformData");
    QTest::addColumn<QByteArray>("token");
    QTest::newRow("no token") << QVariantMap() << QByteArray();
    QTest::newRow("a token of Wayland")
        << QVariantMap{{u"activation-token"_s, u"uuid"_s}} << QByteArray("uuid");
    QTest::newRow("a token of X11")
        << QVariantMap{{u"desktop-startup-id"_s, u"panel_TIME1"_s}} << QByteArray("panel_TIME1");
    QTest::newRow("not a text") << QVariantMap{{u"activation-token"_s, QVariantList{1, 2}}}
                                << QByteArray();
    QTest::newRow("two lines") << QVariantMap{{u"activation-token"_s, u"a\nb"_s}} << QByteArray();
    QTest::newRow("too long") << QVariantMap{{u"activation-token"_s, QString(10'000, u'x')}}
                              << QByteArray();
}

void TestBusApplicationService::opensWithTheDesktopsToken()
{
    QFETCH(const QVariantMap, platformData);
    QFETCH(const QByteArray, token);
    const BusApplicationService service("");
    QSignalSpy requests(&service, &ApplicationService::openRequested);
    QTRY_VERIFY(isOwned());
    QCOMPARE(call(u"Activate"_s, {platformData}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.first().first().toByteArray(), token);
}

void TestBusApplicationService::opensTheDashboardForFiles()
{
    const BusApplicationService service("");
    const QSignalSpy requests(&service, &ApplicationService::openRequested);
    QTRY_VERIFY(isOwned());
    const QStringList files{u"file:///etc/passwd"_s};
    QCOMPARE(call(u"Open"_s, {files, QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(requests.count(), 1);
}

void TestBusApplicationService::carriesOutItsActions()
{
    const BusApplicationService service("");
    const QSignalSpy opens(&service, &ApplicationService::openRequested);
    const QSignalSpy quits(&service, &ApplicationService::quitRequested);
    QTRY_VERIFY(isOwned());
    const auto act = [this](const QString &action) {
        return call(u"ActivateAction"_s, {action, QVariantList(), QVariantMap()}).type();
    };
    QCOMPARE(act(u"open-window"_s), QDBusMessage::ReplyMessage);
    QCOMPARE(opens.count(), 1);
    QCOMPARE(act(u"format-disk"_s), QDBusMessage::ReplyMessage);
    QCOMPARE(opens.count() + quits.count(), 1);
    QCOMPARE(act(u"quit"_s), QDBusMessage::ReplyMessage);
    QCOMPARE(quits.count(), 1);
}

void TestBusApplicationService::refusesOtherCalls()
{
    const BusApplicationService service("");
    const QSignalSpy requests(&service, &ApplicationService::openRequested);
    QTRY_VERIFY(isOwned());
    QCOMPARE(call(u"Activate"_s, {42}).type(), QDBusMessage::ErrorMessage);
    QCOMPARE(call(u"openRequested"_s, {QByteArray("x")}).type(), QDBusMessage::ErrorMessage);
    QCOMPARE(call(u"deleteLater"_s, {}).type(), QDBusMessage::ErrorMessage);
    QCOMPARE(requests.count(), 0);
}

void TestBusApplicationService::ownsItsNameAgainAfterTheBusEnded()
{
    m_bus->kill();
    const BusApplicationService service("", 20ms);
    QTest::qWait(0);
    for (int round = 0; round < 2; ++round) {
        QDBusConnection::disconnectFromBus(u"desktop"_s);
        QVERIFY(m_bus->start());
        QTRY_VERIFY_WITH_TIMEOUT(isOwned(), 60'000);
        m_bus->kill();
    }
}

void TestBusApplicationService::asksTheOwnerOfTheName_data()
{
    QTest::addColumn<bool>("hangs");
    QTest::newRow("the owner opens its dashboard") << false;
    QTest::newRow("the owner does not answer") << true;
}

void TestBusApplicationService::asksTheOwnerOfTheName()
{
    QFETCH(const bool, hangs);
    OtherCorvane other;
    other.hangs = hangs;
    desktop().registerObject(path, &other, QDBusConnection::ExportScriptableSlots);
    QVERIFY(desktop().registerService(name));
    const BusApplicationService service("token");
    const QSignalSpy answers(&service, &ApplicationService::anotherAnswered);
    QTRY_VERIFY(other.wasAsked);
    QCOMPARE(other.platformData.value(u"activation-token"_s).toString(), u"token"_s);
    if (!hangs)
        QTRY_COMPARE(answers.count(), 1);
    QCOMPARE(answers.count(), hangs ? 0 : 1);
}

QTEST_GUILESS_MAIN(TestBusApplicationService)
#include "tst_BusApplicationService.moc"
