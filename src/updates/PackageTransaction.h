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

/// What one transaction of PackageKit came to.
struct PackageAnswer {
    bool isFinished = false;                ///< With success; anything else is a failure.
    std::optional<unsigned int> error = {}; ///< PackageKit's number, if it gave one.
    QList<PackageLine> lines = {};          ///< Of the one package that was asked for.
};

/// One question to PackageKit. Owned by the check that asks; main thread. `finished` comes once and
/// from the event loop: with the answer, or without one if the service goes away, refuses, or says
/// nothing for as long as the patience lasts. One that is destroyed before is cancelled.
class PackageTransaction : public QObject {
    Q_OBJECT

public:
    /// `action` with its arguments; of the packages listed, only those of this name are kept.
    PackageTransaction(const QDBusConnection &bus, const QString &action,
                       const QVariantList &arguments, const QString &package,
                       std::chrono::milliseconds patience);
    ~PackageTransaction() override;

    static QDBusMessage serviceCall(const QString &method);

signals:
    void finished(const corvane::PackageAnswer &answer);

private slots:
    void take(const QDBusMessage &message);

private:
    void begin(const QDBusMessage &created);
    QDBusMessage transactionCall(const QString &method, const QVariantList &arguments) const;
    void cancel();
    void takePackage(unsigned int info, const QString &id);
    void takePackages(const QDBusMessage &message);
    void finish();

    QDBusConnection m_bus;
    const QString m_action;
    const QVariantList m_arguments;
    const QString m_package;
    QTimer m_silence;
    QString m_service; ///< Unique name of the one who made the transaction.
    QString m_path;    ///< Of the transaction while it can be cancelled.
    std::unique_ptr<QDBusServiceWatcher> m_serviceWatcher;
    PackageAnswer m_answer;
    bool m_isOver = false;
};

} // namespace corvane
