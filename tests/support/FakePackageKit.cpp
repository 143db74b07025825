#include "support/FakePackageKit.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>

namespace corvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr auto connectionName = "fake-packagekit"_L1;
constexpr auto serviceName = "org.freedesktop.PackageKit"_L1;
constexpr auto transactionInterface = "org.freedesktop.PackageKit.Transaction"_L1;

/// One element of the signal "Packages".
struct Line {
    unsigned int info = 0;
    QString id = {};
    QString summary = {};
};

QDBusArgument &operator<<(QDBusArgument &argument, const Line &line)
{
    argument.beginStructure();
    argument << line.info << line.id << line.summary;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Line &line)
{
    argument.beginStructure();
    argument >> line.info >> line.id >> line.summary;
    argument.endStructure();
    return argument;
}

QString transactionPath(int number)
{
    return u"/%1_fake"_s.arg(number);
}

} // namespace

FakePackageKit::FakePackageKit(const QString &address)
    : m_bus(QDBusConnection::connectToBus(address, connectionName))
{
    qDBusRegisterMetaType<Line>();
    qDBusRegisterMetaType<QList<Line>>();
    m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
    if (!m_bus.registerService(serviceName))
        qFatal("The private bus already has a PackageKit");
}

FakePackageKit::~FakePackageKit()
{
    vanish();
}

void FakePackageKit::vanish()
{
    m_bus = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
}

void FakePackageKit::send(const Signals &sent)
{
    for (const Signal &signal : sent) {
        QDBusMessage message = QDBusMessage::createSignal(transactionPath(m_transactions),
                                                          transactionInterface, signal.name);
        message.setArguments(signal.arguments);
        m_bus.send(message);
    }
}

bool FakePackageKit::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QString method = message.member();
    const bool isOfTransaction = message.interface() == transactionInterface;
    m_calls += isOfTransaction ? u"%1 %2"_s.arg(QString::number(m_transactions), method) : method;
    m_arguments.insert(method, message.arguments());
    if (hanging.contains(method))
        return true;
    if (refused.contains(method)) {
        connection.send(message.createErrorReply(serviceName + ".Refused"_L1, u"No."_s));
        return true;
    }
    connection.send(message.createReply(answer(method)));
    send(answers.value(method));
    return true;
}

QVariantList FakePackageKit::answer(const QString &method)
{
    if (method == "GetTimeSinceAction"_L1)
        return {secondsSinceRefresh};
    if (method != "CreateTransaction"_L1)
        return {};
    const QDBusObjectPath path(transactionPath(++m_transactions));
    return {transaction.isValid() ? transaction : QVariant::fromValue(path)};
}

FakePackageKit::Signal FakePackageKit::package(unsigned int info, const QString &id)
{
    return {u"Package"_s, {info, id, u"System monitor"_s}};
}

FakePackageKit::Signal FakePackageKit::packages(const QList<Signal> &list)
{
    QList<Line> lines;
    for (const Signal &signal : list)
        lines += {.info = signal.arguments[0].toUInt(),
                  .id = signal.arguments[1].toString(),
                  .summary = signal.arguments[2].toString()};
    return {u"Packages"_s, {QVariant::fromValue(lines)}};
}

FakePackageKit::Signal FakePackageKit::error(unsigned int code)
{
    return {u"ErrorCode"_s, {code, u"In words"_s}};
}

FakePackageKit::Signal FakePackageKit::finished(unsigned int exit)
{
    return {u"Finished"_s, {exit, 7U}};
}

} // namespace corvane::test
