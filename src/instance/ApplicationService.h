#pragma once

#include <QObject>

#include <memory>
#include <string>

namespace corvane {

/// Receives what the desktop asks of the running program: a start from the desktop reaches the
/// process that runs. Main thread. Where the desktop offers no such service nothing is emitted; one
/// that appears later is used from then on.
class ApplicationService : public QObject {
    Q_OBJECT

signals:
    /// The dashboard is to be opened, with the desktop's activation token for its window; empty if
    /// there is none.
    void openRequested(const QByteArray &activationToken);
    void quitRequested();
    /// Another instance of this user is running and has opened its dashboard.
    void anotherAnswered();
};

/// Creates the service of this system. `token` is this start's activation token; a running
/// instance receives it for its window.
std::unique_ptr<ApplicationService> makeApplicationService(const std::string &token);

} // namespace corvane
