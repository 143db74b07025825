#pragma once

#include "platform/Preferences.h"
#include "records/HistoryWindow.h"

#include <QObject>

namespace corvane {

/// The user's choices, kept in the system's store of preferences. Owned by the application state.
/// Main thread. An unknown stored value counts as the one-minute window.
class AppSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString metricsFolder READ metricsFolder NOTIFY metricsChanged)
    Q_PROPERTY(bool writesMetrics READ writesMetrics NOTIFY metricsChanged)
    Q_PROPERTY(corvane::HistoryWindow historyWindow READ historyWindow WRITE setHistoryWindow NOTIFY
                   historyWindowChanged)

public:
    explicit AppSettings(QObject *parent = nullptr);

    HistoryWindow historyWindow() const { return m_historyWindow; }

    /// Notifies observers, then stores; also if the value is the present one.
    void setHistoryWindow(HistoryWindow window);

    /// Where the metrics file is written if that is wanted; empty: no folder was chosen.
    const QString &metricsFolder() const { return m_metricsFolder; }
    bool writesMetrics() const { return m_writesMetrics; }

    /// Store the choice, then notify observers if it is a new one.
    void setMetricsFolder(const QString &folder);
    void setWritesMetrics(bool writes);

    /// Whether the user wants to be told what brings the label to a desktop without a tray. True
    /// until it was declined.
    bool wantsTrayAdvice() const { return m_wantsTrayAdvice; }
    void declineTrayAdvice();

signals:
    void metricsChanged();
    void historyWindowChanged(corvane::HistoryWindow window);

private:
    Preferences m_store;
    HistoryWindow m_historyWindow = HistoryWindow::oneMin;
    QString m_metricsFolder = {};
    bool m_writesMetrics = false;
    bool m_wantsTrayAdvice = true;
};

} // namespace corvane
