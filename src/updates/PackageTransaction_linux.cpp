#include "updates/PackageTransaction_linux.h"

#include "bus/BusCall.h"
#include "threads/MainThread.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QLocale>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto serviceName = "org.freedesktop.PackageKit"_L1;
constexpr auto servicePath = "/org/freedesktop/PackageKit"_L1;
constexpr auto transactionInterface = "org.freedesktop.PackageKit.Transaction"_L1;

constexpr unsigned int exitSuccess = 1;

/// No dialogs for the user, and lists up to a day old.
QStringList hints()
{
    return {u"locale=%1.UTF-8"_s.arg(QLocale::system().name()), u"background=true"_s,
            u"interactive=false"_s, u"cache-age=86400"_s};
}

} // namespace

QDBusMessage PackageTransaction::serviceCall(const QString &method)
{
    return QDBusMessage::createMethodCall(serviceName, servicePath, serviceName, method);
}

PackageTransaction::PackageTransaction(const QDBusConnection &bus, const QString &action,
                                       const QVariantList &arguments, const QString &package,
                                       std::chrono::milliseconds timeout)
    : m_bus(bus),
      m_action(action),
      m_arguments(arguments),
      m_package(package)
{
    assertMainThread();
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeout);
    connect(&m_timeout, &QTimer::timeout, this, &PackageTransaction::finish);
    m_timeout.start();

    BusCall::send(
        m_bus, serviceCall(u"CreateTransaction"_s), this,
        [this](const QDBusMessage &created) { begin(created); }, timeout);
}

PackageTransaction::~PackageTransaction()
{
    cancel();
}

void PackageTransaction::begin(const QDBusMessage &created)
{
    if (m_isFinished)
        return;
    m_path = created.arguments().value(0).value<QDBusObjectPath>().path();
    m_service = created.service();
    if (m_path.isEmpty() || m_service.isEmpty()) {
        finish();
        return;
    }
    // By path and before the action, so that no signal is missed.
    for (const QString &interface :
         {QString(transactionInterface), u"org.freedesktop.DBus.Properties"_s})
        m_bus.connect(QString(), m_path, interface, QString(), this, SLOT(receive(QDBusMessage)));
    m_serviceWatcher = std::make_unique<QDBusServiceWatcher>(
        m_service, m_bus, QDBusServiceWatcher::WatchForUnregistration);
    connect(m_serviceWatcher.get(), &QDBusServiceWatcher::serviceUnregistered, this,
            &PackageTransaction::finish);
    m_timeout.start();
    m_bus.send(transactionCall(u"SetHints"_s, {hints()}));
    BusCall::send(
        m_bus, transactionCall(m_action, m_arguments), this,
        [this](const QDBusMessage &started) {
            if (!BusCall::isReply(started))
                finish();
        },
        m_timeout.intervalAsDuration());
}

QDBusMessage PackageTransaction::transactionCall(const QString &method,
                                                 const QVariantList &arguments) const
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_service, m_path, transactionInterface, method);
    call.setArguments(arguments);
    return call;
}

void PackageTransaction::cancel()
{
    if (!m_path.isEmpty())
        m_bus.send(transactionCall(u"Cancel"_s, {}));
    m_path.clear();
}

void PackageTransaction::receive(const QDBusMessage &message)
{
    // Any client of the bus may send signals; only the service's own count.
    if (m_isFinished || message.service() != m_service)
        return;
    m_timeout.start();
    const QString member =
        message.interface() == transactionInterface ? message.member() : QString();
    const QString signature = message.signature();
    const QVariantList arguments = message.arguments();
    if (member == "Package"_L1 && signature == "uss"_L1) {
        addPackage(arguments[0].toUInt(), arguments[1].toString());
    } else if (member == "Packages"_L1 && signature == "a(uss)"_L1) {
        addPackages(message);
    } else if (member == "ErrorCode"_L1 && signature == "us"_L1) {
        m_answer.error = arguments[0].toUInt();
    } else if (member == "Finished"_L1 && signature == "uu"_L1) {
        m_answer.isFinished = arguments[0].toUInt() == exitSuccess && !m_answer.error;
        m_path.clear(); // It cannot be cancelled any more.
        finish();
    }
}

void PackageTransaction::addPackage(unsigned int info, const QString &id)
{
    const auto line = packageLine(info, id);
    // PackageKit often lists a version twice.
    if (line && line->name == m_package && !m_answer.lines.contains(*line))
        m_answer.lines += *line;
}

void PackageTransaction::addPackages(const QDBusMessage &message)
{
    const auto list = message.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        unsigned int info = 0;
        QString id;
        QString summary;
        list.beginStructure();
        list >> info >> id >> summary;
        list.endStructure();
        addPackage(info, id);
    }
    list.endArray();
}

void PackageTransaction::finish()
{
    if (m_isFinished)
        return;
    cancel();
    m_isFinished = true;
    m_timeout.stop();
    emit finished(m_answer);
}

} // namespace corvane
