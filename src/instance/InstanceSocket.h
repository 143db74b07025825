#pragma once

#include "platform/FileDescriptor.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

class QSocketNotifier;

namespace corvane {

/// The socket on which later starts of the program ask the running one to open its dashboard. Main
/// thread.
///
/// A connection that sends anything else, or no whole message in time, is closed without an answer.
/// If the socket cannot listen, nothing is emitted.
class InstanceSocket : public QObject {
    Q_OBJECT

public:
    /// Open connections; for one more, the oldest is closed.
    static constexpr qsizetype maxConnections = 16;

    struct Times {
        /// For a client to send its message, which it has ready when it connects.
        std::chrono::milliseconds message = std::chrono::seconds(2);
        /// Until connections are accepted again after no descriptor was left for one: a client that
        /// waits keeps the socket readable.
        std::chrono::milliseconds retry = std::chrono::seconds(1);
    };

    /// Listens at the path and replaces a socket that an earlier process left there; an empty path
    /// does not listen.
    explicit InstanceSocket(std::string path);
    InstanceSocket(std::string path, Times times);
    ~InstanceSocket() override;

signals:
    /// The dashboard is to be opened, with the desktop's activation token for its window; empty if
    /// there is none.
    void openRequested(const QByteArray &activationToken);

private:
    class Connection;
    void acceptConnection();

    const std::string m_path;
    const Times m_times;
    FileDescriptor m_socket;            ///< Empty if it does not listen.
    std::optional<FileIdentity> m_file; ///< The socket's place in the folder.
    std::unique_ptr<QSocketNotifier> m_notifier;
    QList<QPointer<QObject>> m_connections; ///< Oldest first; children of this.
};

} // namespace corvane
