#include "sampler/AppSettings.h"

#include "threads/MainThread.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto historyWindowKey = "historyWindow"_L1;

} // namespace

AppSettings::AppSettings(QObject *parent) : QObject(parent)
{
    assertMainThread();
    m_historyWindow = corvane::historyWindow(m_store.value(historyWindowKey).toLongLong())
                          .value_or(HistoryWindow::oneMin);
}

void AppSettings::setHistoryWindow(HistoryWindow window)
{
    m_historyWindow = window;
    emit historyWindowChanged(window);
    m_store.setValue(historyWindowKey, seconds(window));
}

} // namespace corvane
