#pragma once

#include "bus/BusCall.h"
#include "bus/BusConnection.h"
#include "instance/ApplicationService.h"

namespace corvane {

/// The program on the session bus, under its identifier. Main thread. If another process owns that
/// name, it is asked once to open its dashboard; this one then stays without the name.
class BusApplicationService : public ApplicationService {
    Q_OBJECT

public:
    /// Connects as `BusConnection` does, at that interval.
    explicit BusApplicationService(
        const std::string &activationToken,
        std::chrono::milliseconds retryInterval = std::chrono::seconds(3));

private:
    void requestName();
    void askOwnerToOpen();
    void call(const QDBusMessage &message, const BusCall::ReplyHandler &onReply);

    const QString m_activationToken;
    BusConnection m_connection;
};

} // namespace corvane
