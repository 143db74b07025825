#pragma once

#include "login/LoginItem.h"

#include <QObject>

#include <optional>

namespace corvane {

/// Whether the program starts at login. Owned by the application state; main thread. The state is
/// always the one read from the system, so a change that failed is undone in every switch.
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

    /// Emits isEnabledChanged in any case, so that a switch shows the real state again.
    void setEnabled(bool on);

    /// Reads the state again: the user may have changed it elsewhere.
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
