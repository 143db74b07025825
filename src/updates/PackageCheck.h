#pragma once

#include "bus/BusCall.h"
#include "bus/BusProbe.h"
#include "updates/PackageTransaction.h"
#include "updates/UpdateReport.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace corvane {

class SystemBusLink;

/// One check for updates of this program's package: asks PackageKit over the system bus and
/// installs nothing. Made for each check; main thread, waits for nobody. It has a connection of its
/// own, so that nothing of it is left between two checks. `finished` comes once.
class PackageCheck : public QObject {
    Q_OBJECT

public:
    /// Whether the package lists are brought up to date first, or used as they are.
    enum class Lists { refreshed, asTheyAre };

    PackageCheck(Lists lists, std::chrono::milliseconds patience);
    ~PackageCheck() override;

    Lists lists() const { return m_lists; }

signals:
    void finished(const corvane::UpdateReport &report);

private:
    using Use = std::function<void(const PackageAnswer &)>;

    void link();
    void findService();
    void refreshLists();
    void askForAge();
    void resolve();
    void askForUpdates(const QList<PackageLine> &resolved);
    void conclude(UpdateReport::Outcome outcome);

    void call(const QDBusMessage &message, const BusCall::Use &use);
    void transact(const QString &action, const QVariantList &arguments, const Use &use);

    const Lists m_lists;
    const std::chrono::milliseconds m_patience;
    const BusProbe m_knock;
    std::shared_ptr<SystemBusLink> m_link;
    std::unique_ptr<PackageTransaction> m_transaction;
    UpdateReport m_report;
    bool m_isOver = false;
};

} // namespace corvane
