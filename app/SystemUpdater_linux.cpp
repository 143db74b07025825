#include "app/SystemUpdater.h"

#include <QSettings>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto automaticKey = "automaticallyChecksForUpdates"_L1;

/// Keeps the user's choice; no updates come yet.
class PackageUpdater : public SystemUpdater {
public:
    bool automaticallyChecks() const override { return m_store.value(automaticKey).toBool(); }
    void setAutomaticallyChecks(bool on) override { m_store.setValue(automaticKey, on); }
    bool canCheck() const override { return false; }
    void check() override { }

private:
    QSettings m_store;
};

} // namespace

std::unique_ptr<SystemUpdater> makeSystemUpdater()
{
    return std::make_unique<PackageUpdater>();
}

} // namespace corvane
