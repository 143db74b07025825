#pragma once

#include "updates/PackageLine.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>
#include <QVariantList>

#include <chrono>
#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace corvane {

/// Result of one transaction with PackageKit.
struct PackageAnswer {
    bool isFinished = false;                ///< It succeeded; anything else is a failure.
    std::optional<unsigned int> error = {}; ///< PackageKit's number; absent if it sent none.
    QList<PackageLine> lines = {};          ///< Those of the requested package.
};

/// One transaction with PackageKit. Owned by the check; main thread. Emits `finished` once, from
/// the event loop: with the answer, or with a failure if the service ends, refuses, or is silent
/// for the length of the time-out. A transaction that is destroyed before is cancelled.
class PackageTransaction : public QObject {
    Q_OBJECT

public:
    /// Calls the method `action`. Of the listed packages, only those named `package` are kept.
    PackageTransaction(const QDBusConnection &bus, const QString &action,
                       const QVariantList &arguments, const QString &package,
                       std::chrono::milliseconds timeout);
    ~PackageTransaction() override;

    static QDBusMessage serviceCall(const QString &method);

signals:
    void finished(const corvane::PackageAnswer &answer);

private slots:
    void receive(const QDBusMessage &message);

private:
    void begin(const QDBusMessage &created);
    QDBusMessage transactionCall(const QString &method, const QVariantList &arguments) const;
    void cancel();
    void addPackage(unsigned int info, const QString &id);
    void addPackages(const QDBusMessage &message);
    void finish();

    QDBusConnection m_bus;
    const QString m_action;
    const QVariantList m_arguments;
    const QString m_package;
    QTimer m_timeout;  ///< Restarted by each message.
    QString m_service; ///< Unique bus name of the service.
    QString m_path;    ///< Path of the transaction; empty once it cannot be cancelled.
    std::unique_ptr<QDBusServiceWatcher> m_serviceWatcher;
    PackageAnswer m_answer;
    bool m_isFinished = false;
};

} // namespace corvane
