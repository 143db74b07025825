#pragma once

#include "platform/Preferences.h"
#include "records/HistoryWindow.h"

#include <QObject>


namespace corvane {

/// The user's choices, kept in the system's store of preferences. Owned by the application state.
/// Main thread. An unknown stored value counts as the one-minute window.
class AppSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HistoryWindow historyWindow READ historyWindow WRITE setHistoryWindow NOTIFY
                   historyWindowChanged)

public:
    explicit AppSettings(QObject *parent = nullptr);

    HistoryWindow historyWindow() const { return m_historyWindow; }

    /// Notifies observers, then stores; also if the value is the present one.
    void setHistoryWindow(HistoryWindow window);

signals:
    void historyWindowChanged(corvane::HistoryWindow window);

private:
    Preferences m_store;
    HistoryWindow m_historyWindow = HistoryWindow::oneMin;
};

} // namespace corvane
