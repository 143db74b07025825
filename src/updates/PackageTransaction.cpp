#include "updates/PackageTransaction.h"

#include "bus/BusCall.h"

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

/// Nothing may be asked of the user, and lists of today are good enough.
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
                                       std::chrono::milliseconds patience)
    : m_bus(bus),
      m_action(action),
      m_arguments(arguments),
      m_package(package)
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(patience);
    connect(&m_silence, &QTimer::timeout, this, &PackageTransaction::finish);
    m_silence.start();

    BusCall::ask(
        m_bus, serviceCall(u"CreateTransaction"_s), this,
        [this](const QDBusMessage &created) { begin(created); }, patience);
}

PackageTransaction::~PackageTransaction()
{
    cancel();
}

void PackageTransaction::begin(const QDBusMessage &created)
{
    if (m_isOver)
        return;
    m_path = created.arguments().value(0).value<QDBusObjectPath>().path();
    m_service = created.service();
    if (m_path.isEmpty() || m_service.isEmpty()) {
        finish();
        return;
    }
    // By path and before the action, so that not even the first signal is missed.
    for (const QString &interface :
         {QString(transactionInterface), u"org.freedesktop.DBus.Properties"_s})
        m_bus.connect(QString(), m_path, interface, QString(), this, SLOT(take(QDBusMessage)));
    m_serviceWatcher = std::make_unique<QDBusServiceWatcher>(
        m_service, m_bus, QDBusServiceWatcher::WatchForUnregistration);
    connect(m_serviceWatcher.get(), &QDBusServiceWatcher::serviceUnregistered, this,
            &PackageTransaction::finish);
    m_silence.start();
    m_bus.send(transactionCall(u"SetHints"_s, {hints()}));
    BusCall::ask(
        m_bus, transactionCall(m_action, m_arguments), this,
        [this](const QDBusMessage &started) {
            if (!BusCall::isReply(started))
                finish();
        },
        m_silence.intervalAsDuration());
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

void PackageTransaction::take(const QDBusMessage &message)
{
    // Anybody on the bus may send a signal; only the maker of the transaction knows its state.
    if (m_isOver || message.service() != m_service)
        return;
    m_silence.start();
    const QString member =
        message.interface() == transactionInterface ? message.member() : QString();
    const QString signature = message.signature();
    const QVariantList arguments = message.arguments();
    if (member == "Package"_L1 && signature == "uss"_L1) {
        takePackage(arguments[0].toUInt(), arguments[1].toString());
    } else if (member == "Packages"_L1 && signature == "a(uss)"_L1) {
        takePackages(message);
    } else if (member == "ErrorCode"_L1 && signature == "us"_L1) {
        m_answer.error = arguments[0].toUInt();
    } else if (member == "Finished"_L1 && signature == "uu"_L1) {
        m_answer.isFinished = arguments[0].toUInt() == exitSuccess && !m_answer.error;
        m_path.clear(); // Nothing is left to be cancelled.
        finish();
    }
}

void PackageTransaction::takePackage(unsigned int info, const QString &id)
{
    const auto line = packageLine(info, id);
    // Versions are often listed twice.
    if (line && line->name == m_package && !m_answer.lines.contains(*line))
        m_answer.lines += *line;
}

void PackageTransaction::takePackages(const QDBusMessage &message)
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
        takePackage(info, id);
    }
    list.endArray();
}

void PackageTransaction::finish()
{
    if (m_isOver)
        return;
    cancel();
    m_isOver = true;
    m_silence.stop();
    emit finished(m_answer);
}

} // namespace corvane
