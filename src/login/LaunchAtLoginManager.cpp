#include "login/LaunchAtLoginManager.h"

#include "threads/MainThread.h"

#include <utility>

namespace corvane {

LaunchAtLoginManager::LaunchAtLoginManager(QObject *parent)
    : LaunchAtLoginManager(mainLoginItem(), parent)
{
}

LaunchAtLoginManager::LaunchAtLoginManager(LoginItem item, QObject *parent)
    : QObject(parent),
      m_item(std::move(item)),
      m_isEnabled(m_item.isEnabled())
{
    assertMainThread();
}

void LaunchAtLoginManager::setEnabled(bool on)
{
    auto error = on ? m_item.enable() : m_item.disable();
    m_isEnabled = m_item.isEnabled();
    if (error != m_lastError) {
        m_lastError = std::move(error);
        emit lastErrorChanged();
    }
    emit isEnabledChanged(m_isEnabled);
}

void LaunchAtLoginManager::refresh()
{
    const bool isEnabled = m_item.isEnabled();
    if (isEnabled == m_isEnabled)
        return;
    m_isEnabled = isEnabled;
    emit isEnabledChanged(isEnabled);
}

} // namespace corvane
