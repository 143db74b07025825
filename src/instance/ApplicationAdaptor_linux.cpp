#include "instance/ApplicationAdaptor_linux.h"

#include "instance/ApplicationService.h"
#include "platform/ActivationToken.h"
#include "threads/MainThread.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Desktops send one of the two; the newer name comes first.
QByteArray activationToken(const QVariantMap &platformData)
{
    for (const auto key : {"activation-token"_L1, "desktop-startup-id"_L1}) {
        const QByteArray token = platformData.value(key).toString().toUtf8();
        if (isActivationToken({token.constData(), static_cast<std::size_t>(token.size())}))
            return token;
    }
    return {};
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(ApplicationService &service)
    : QDBusAbstractAdaptor(&service),
      m_service(service)
{
    assertMainThread();
}

void ApplicationAdaptor::Activate(const QVariantMap &platformData)
{
    emit m_service.openRequested(activationToken(platformData));
}

/// Corvane opens no files: this opens the dashboard.
void ApplicationAdaptor::Open(const QStringList &, const QVariantMap &platformData)
{
    Activate(platformData);
}

void ApplicationAdaptor::ActivateAction(const QString &action, const QVariantList &,
                                        const QVariantMap &platformData)
{
    if (action == "open-window"_L1)
        Activate(platformData);
    else if (action == "quit"_L1)
        emit m_service.quitRequested();
}

} // namespace corvane
