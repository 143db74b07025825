#include "updates/UpdaterManager.h"

#include "threads/MainThread.h"

#include <utility>

namespace corvane {

using namespace Qt::StringLiterals;

QString versionText(const BundleVersion &bundle)
{
    return u"%1 (%2)"_s.arg(bundle.version.value_or(u"0.0.0"_s), bundle.build.value_or(u"1"_s));
}

UpdaterManager::UpdaterManager(QObject *parent) : UpdaterManager(makeSystemUpdater(), parent) { }

UpdaterManager::UpdaterManager(std::unique_ptr<SystemUpdater> updater, QObject *parent)
    : QObject(parent),
      m_updater(std::move(updater)),
      m_automaticallyChecks(m_updater->automaticallyChecks()),
      m_canCheck(m_updater->canCheck()),
      m_availableVersion(m_updater->availableVersion())
{
    assertMainThread();
    connect(m_updater.get(), &SystemUpdater::canCheckChanged, this, [this] {
        if (m_canCheck == m_updater->canCheck())
            return;
        m_canCheck = !m_canCheck;
        emit canCheckChanged(m_canCheck);
    });
    connect(m_updater.get(), &SystemUpdater::findingChanged, this, [this] {
        const bool isChanged = m_availableVersion != m_updater->availableVersion();
        m_availableVersion = m_updater->availableVersion();
        if (isChanged)
            emit availableVersionChanged();
        emit findingChanged();
    });
}

void UpdaterManager::setAutomaticallyChecks(bool on)
{
    m_automaticallyChecks = on;
    emit automaticallyChecksChanged(on);
    m_updater->setAutomaticallyChecks(on);
}

void UpdaterManager::checkForUpdates()
{
    m_updater->check();
}

void UpdaterManager::refresh()
{
    m_updater->refresh();
}

} // namespace corvane
