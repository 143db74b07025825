#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariantList>

namespace corvane::test {

/// A PackageKit service on a private bus, with the methods that a check uses. It answers each
/// action with the signals that the test sets for it.
class FakePackageKit : public QDBusVirtualObject {
public:
    struct Signal {
        QString name;
        QVariantList arguments;
    };
    using Signals = QList<Signal>;

    explicit FakePackageKit(const QString &address);
    ~FakePackageKit() override;

    QHash<QString, Signals> answers;   ///< By action; for others it sends no signal.
    QStringList refused;               ///< Methods that return an error.
    QStringList hanging;               ///< Methods without a reply.
    QVariant secondsSinceRefresh = 0U; ///< Reply to GetTimeSinceAction.
    QVariant transaction;              ///< Reply to CreateTransaction; invalid: a path.

    /// The methods called so far; those of transactions with its number, "1 Resolve".
    const QStringList &calls() const { return m_calls; }

    /// Arguments of the last call of that method.
    QVariantList arguments(const QString &method) const { return m_arguments.value(method); }

    /// Sends signals of the newest transaction.
    void send(const Signals &sent);

    /// Leaves the bus.
    void vanish();

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    static Signal package(unsigned int info, const QString &id);
    static Signal packages(const QList<Signal> &list);
    static Signal error(unsigned int code);
    static Signal finished(unsigned int exit = 1);

private:
    QVariantList answer(const QString &method);

    QDBusConnection m_bus;
    QStringList m_calls;
    QHash<QString, QVariantList> m_arguments;
    int m_transactions = 0;
};

} // namespace corvane::test
