#include "instance/ApplicationService.h"

#include "instance/InstanceMessage.h"
#include "platform/ActivationToken.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The newer name first; only one of them is usual.
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

void ApplicationService::Activate(const QVariantMap &platformData)
{
    emit openRequested(activationToken(platformData));
}

/// There is nothing to open but the dashboard.
void ApplicationService::Open(const QStringList &, const QVariantMap &platformData)
{
    Activate(platformData);
}

void ApplicationService::ActivateAction(const QString &action, const QVariantList &,
                                        const QVariantMap &platformData)
{
    if (action == "open-window"_L1)
        Activate(platformData);
    else if (action == "quit"_L1)
        emit quitRequested();
}

} // namespace corvane
