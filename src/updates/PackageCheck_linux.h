#pragma once

#include "bus/BusCall.h"
#include "bus/BusProbe.h"
#include "updates/PackageTransaction_linux.h"
#include "updates/UpdateReport.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// How long a check waits.
struct PackageCheckTimes {
    std::chrono::milliseconds silence; ///< Of the service at a time.
    std::chrono::milliseconds whole;   ///< A service that says something all the time ends too.
};

/// One check for updates of this program's package: queries PackageKit over the system bus and
/// installs nothing. One object for each check; main thread, which it never blocks. It has its own
/// connection, so that none remains between two checks. Emits `finished` once.
class PackageCheck : public QObject {
    Q_OBJECT

public:
    /// Whether the service first refreshes the package lists, or uses those that it has.
    enum class Lists { refreshed, cached };

    PackageCheck(Lists lists, const PackageCheckTimes &times);
    ~PackageCheck() override;

    Lists lists() const { return m_lists; }

signals:
    void finished(const corvane::UpdateReport &report);

private:
    using AnswerHandler = std::function<void(const PackageAnswer &)>;

    void openConnection();
    void findService();
    void refreshLists();
    void readListAge();
    void resolve();
    void listUpdates(const QList<PackageLine> &resolved);
    void finish(UpdateReport::Outcome outcome);

    void call(const QDBusMessage &message, const BusCall::ReplyHandler &onReply);
    void transact(const QString &action, const QVariantList &arguments,
                  const AnswerHandler &onAnswer);

    const Lists m_lists;
    const PackageCheckTimes m_times;
    const BusProbe m_probe;
    std::optional<QDBusConnection> m_bus; ///< Absent until it was tried.
    std::unique_ptr<PackageTransaction> m_transaction;
    UpdateReport m_report;
    bool m_isFinished = false;
};

} // namespace corvane
