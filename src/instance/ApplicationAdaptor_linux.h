#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

namespace corvane {

class ApplicationService;

/// Exports a service to the session bus as org.freedesktop.Application: each call emits a signal of
/// the service, which owns the adaptor. Main thread.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(ApplicationService &service);

public slots:
    // Names and types of the interface.
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameter,
                        const QVariantMap &platformData);

private:
    ApplicationService &m_service;
};

} // namespace corvane
