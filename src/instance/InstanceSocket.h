#pragma once

#include "platform/FileDescriptor.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>
#include <string>

class QSocketNotifier;

namespace corvane {

/// Where later starts of the program ask the one that runs to open its dashboard. Main thread.
///
/// Whoever says anything else, or nothing, is hung up on after a while, and nothing else happens.
/// Where it cannot listen it stays silent.
class InstanceSocket : public QObject {
    Q_OBJECT

public:
    static constexpr qsizetype mostGuests = 16; ///< At a time; one more and the oldest has to go.

    /// Listens at the path, which an earlier process may have left; an empty one is no place.
    explicit InstanceSocket(std::string path, QObject *parent = nullptr);
    ~InstanceSocket() override;

signals:
    /// The dashboard is to open, with the desktop's token for its window; empty: none.
    void openRequested(const QByteArray &activationToken);

private:
    class Guest;
    void welcome();

    std::string m_path;
    FileDescriptor m_socket; ///< Empty: does not listen.
    std::unique_ptr<QSocketNotifier> m_notifier;
    QList<QPointer<QObject>> m_guests; ///< Oldest first; children of this.
};

} // namespace corvane
