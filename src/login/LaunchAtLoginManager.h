#pragma once

#include "login/LoginItem.h"

#include <QObject>

#include <optional>

namespace corvane {

/// Whether the program starts at login, and the switch for it. Owned by the application state; main
/// thread. The switch always shows what the system says, so a change that failed springs back.
class LaunchAtLoginManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setEnabled NOTIFY isEnabledChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)

public:
    explicit LaunchAtLoginManager(QObject *parent = nullptr);
    explicit LaunchAtLoginManager(LoginItem item, QObject *parent = nullptr);

    bool isEnabled() const { return m_isEnabled; }

    /// Why the last change failed; absent after a success.
    const std::optional<QString> &lastError() const { return m_lastError; }

    /// isEnabledChanged follows in any case, so that a switch shows the real state again.
    void setEnabled(bool on);

    /// Reads the state again; others change it too.
    void refresh();

signals:
    void isEnabledChanged(bool isEnabled);
    void lastErrorChanged();

private:
    const LoginItem m_item;
    bool m_isEnabled;
    std::optional<QString> m_lastError;
};

} // namespace corvane
