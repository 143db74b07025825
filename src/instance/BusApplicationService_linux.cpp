#include "instance/BusApplicationService_linux.h"

#include "instance/ApplicationAdaptor_linux.h"
#include "threads/MainThread.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto busName = CORVANE_IDENTIFIER ""_L1;
constexpr auto interface = "org.freedesktop.Application"_L1;

/// The flag for RequestName, and its answer when another process owns the name.
constexpr uint doNotQueue = 4;
constexpr uint nameHasOwner = 3;

/// The identifier as a path.
QString objectPath()
{
    return '/'_L1 + QString(busName).replace('.'_L1, '/'_L1).replace('-'_L1, '_'_L1);
}

} // namespace

BusApplicationService::BusApplicationService(const std::string &activationToken,
                                             std::chrono::milliseconds retryInterval)
    : m_activationToken(QString::fromStdString(activationToken)),
      m_connection(retryInterval)
{
    assertMainThread();
    new ApplicationAdaptor(*this);
    connect(&m_connection, &BusConnection::connected, this, &BusApplicationService::requestName);
}

/// The object is registered before the name is requested: a caller that waits for the name finds
/// the object.
void BusApplicationService::requestName()
{
    m_connection.bus().registerObject(objectPath(), this, QDBusConnection::ExportAdaptors);
    call(BusCall::toBus(u"RequestName"_s, {QString(busName), doNotQueue}),
         [this](const QDBusMessage &reply) {
             if (reply.arguments().value(0).toUInt() == nameHasOwner)
                 askOwnerToOpen();
         });
}

void BusApplicationService::askOwnerToOpen()
{
    QVariantMap platformData;
    if (!m_activationToken.isEmpty())
        platformData.insert(u"activation-token"_s, m_activationToken);
    QDBusMessage message =
        QDBusMessage::createMethodCall(busName, objectPath(), interface, u"Activate"_s);
    message.setAutoStartService(false);
    message << platformData;
    call(message, [this](const QDBusMessage &reply) {
        if (BusCall::isReply(reply))
            emit anotherAnswered();
    });
}

void BusApplicationService::call(const QDBusMessage &message, const BusCall::ReplyHandler &onReply)
{
    BusCall::send(m_connection.bus(), message, this, onReply);
}

std::unique_ptr<ApplicationService> makeApplicationService(const std::string &token)
{
    return std::make_unique<BusApplicationService>(token);
}

} // namespace corvane
