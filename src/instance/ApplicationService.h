#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <string>

namespace corvane {

/// The program as the desktop addresses it by its identifier (org.freedesktop.Application on the
/// session bus), so that a start from the desktop reaches the one that runs. Main thread. Without
/// such a bus nothing happens; one that comes later is used from then on. A Mac has its own event
/// for that, which carries no token.
class ApplicationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Where another program already has the identifier, it is asked to open its dashboard, with
    /// this token for its window.
    explicit ApplicationService(std::string activationToken, QObject *parent = nullptr);
    ~ApplicationService() override;

public slots:
    // Names and types of the interface.
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    Q_SCRIPTABLE void ActivateAction(const QString &action, const QVariantList &parameter,
                                     const QVariantMap &platformData);

signals:
    /// The dashboard is to open, with the desktop's token for its window; empty: none.
    void openRequested(const QByteArray &activationToken);
    void quitRequested();
    /// Another program of this user has opened its dashboard.
    void anotherAnswered();

private:
    struct Bus; ///< The system's side of it.
    std::unique_ptr<Bus> m_bus;
};

} // namespace corvane
