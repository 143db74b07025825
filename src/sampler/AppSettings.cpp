#include "sampler/AppSettings.h"

#include "threads/MainThread.h"

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto historyWindowKey = "historyWindow"_L1;
constexpr auto metricsFolderKey = "metricsFolder"_L1;
constexpr auto writesMetricsKey = "writeMetrics"_L1;
constexpr auto trayAdviceKey = "trayAdvice"_L1;

} // namespace

AppSettings::AppSettings(QObject *parent) : QObject(parent)
{
    assertMainThread();
    m_historyWindow = corvane::historyWindow(m_store.value(historyWindowKey).toLongLong())
                          .value_or(HistoryWindow::oneMin);
    m_metricsFolder = m_store.value(metricsFolderKey).toString();
    m_writesMetrics = m_store.value(writesMetricsKey).toBool();
    m_wantsTrayAdvice = m_store.value(trayAdviceKey).toString() != "false"_L1;
}

void AppSettings::setHistoryWindow(HistoryWindow window)
{
    m_historyWindow = window;
    emit historyWindowChanged(window);
    m_store.setValue(historyWindowKey, seconds(window));
}

void AppSettings::setMetricsFolder(const QString &folder)
{
    m_store.setValue(metricsFolderKey, folder);
    if (std::exchange(m_metricsFolder, folder) != folder)
        emit metricsChanged();
}

void AppSettings::setWritesMetrics(bool writes)
{
    m_store.setValue(writesMetricsKey, writes);
    if (std::exchange(m_writesMetrics, writes) != writes)
        emit metricsChanged();
}

void AppSettings::declineTrayAdvice()
{
    m_wantsTrayAdvice = false;
    m_store.setValue(trayAdviceKey, false);
}

} // namespace corvane
