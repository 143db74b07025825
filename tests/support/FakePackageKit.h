#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariantList>

namespace corvane::test {

/// PackageKit on a private bus, as far as a check can tell: each action is answered by the signals
/// that the test lays down for it.
class FakePackageKit : public QDBusVirtualObject {
public:
    struct Signal {
        QString name;
        QVariantList arguments;
    };
    using Signals = QList<Signal>;

    explicit FakePackageKit(const QString &address);
    ~FakePackageKit() override;

    QHash<QString, Signals> answers;   ///< By action; one without stays silent.
    QStringList refused;               ///< Methods that are answered with an error.
    QStringList hanging;               ///< Methods that are not answered.
    QVariant secondsSinceRefresh = 0U; ///< Answer of GetTimeSinceAction.
    QVariant transaction;              ///< Answer of CreateTransaction, if not a path.

    /// The methods called so far, those of transactions with the number of theirs: "1 Resolve".
    const QStringList &calls() const { return m_calls; }

    /// Arguments of the last call of that method.
    QVariantList arguments(const QString &method) const { return m_arguments.value(method); }

    /// From the newest transaction.
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
