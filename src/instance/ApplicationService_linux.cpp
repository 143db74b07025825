#include "bus/BusCall.h"
#include "bus/BusConnection.h"
#include "instance/ApplicationService.h"

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto name = CORVANE_IDENTIFIER ""_L1;
constexpr auto interface = "org.freedesktop.Application"_L1;

/// The name, or nothing: no waiting in a queue for it.
constexpr uint doNotQueue = 4;
constexpr uint anotherHasIt = 3;

/// The identifier as a path.
QString objectPath()
{
    return '/'_L1 + QString(name).replace('.'_L1, '/'_L1).replace('-'_L1, '_'_L1);
}

QDBusMessage requestForName()
{
    return BusCall::toBus(u"RequestName"_s, {QString(name), doNotQueue});
}

QDBusMessage requestToOpen(const std::string &activationToken)
{
    QVariantMap platformData;
    if (!activationToken.empty())
        platformData.insert(u"activation-token"_s, QString::fromStdString(activationToken));
    QDBusMessage call =
        QDBusMessage::createMethodCall(name, objectPath(), interface, u"Activate"_s);
    call.setAutoStartService(false);
    return call << platformData;
}

} // namespace

struct ApplicationService::Bus {
    Bus(ApplicationService &owner, std::string token)
        : service(owner),
          activationToken(std::move(token))
    {
        connect(&connection, &BusConnection::connected, &service, [this] { requestName(); });
    }

    void requestName();
    void ask(const QDBusMessage &call, const BusCall::Use &use)
    {
        BusCall::ask(connection.bus(), call, &service, use);
    }

    ApplicationService &service;
    const std::string activationToken;
    BusConnection connection{u"corvane-application"_s};
};

/// The object is there before the name is, so that whoever waits for the name finds it.
void ApplicationService::Bus::requestName()
{
    connection.bus().registerObject(objectPath(), &service, QDBusConnection::ExportScriptableSlots);
    ask(requestForName(), [this](const QDBusMessage &reply) {
        if (reply.arguments().value(0).toUInt() != anotherHasIt)
            return;
        ask(requestToOpen(activationToken), [this](const QDBusMessage &answer) {
            if (BusCall::isReply(answer))
                emit service.anotherAnswered();
        });
    });
}

ApplicationService::ApplicationService(std::string activationToken, QObject *parent)
    : QObject(parent),
      m_bus(std::make_unique<Bus>(*this, std::move(activationToken)))
{
}

ApplicationService::~ApplicationService() = default;

} // namespace corvane
