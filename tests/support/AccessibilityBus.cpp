#include "support/AccessibilityBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace corvane::test {

namespace {

using namespace Qt::StringLiterals;

constexpr auto connectionName = "screen-reader"_L1;
constexpr auto accessible = "org.a11y.atspi.Accessible"_L1;
constexpr auto properties = "org.freedesktop.DBus.Properties"_L1;

const AccessibilityBus::Object registry{u"org.a11y.atspi.Registry"_s,
                                        u"/org/a11y/atspi/accessible/root"_s};

/// Bit numbers in AT-SPI's set of states.
enum State { checkedState = 4, showingState = 25 };

QDBusMessage statusCall(const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, interface, method);
}

AccessibilityBus::Object readObject(const QDBusArgument &argument)
{
    AccessibilityBus::Object object;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> object.program >> path;
    argument.endStructure();
    object.path = path.path();
    return object;
}

QList<AccessibilityBus::Object> objects(const QVariant &value)
{
    QList<AccessibilityBus::Object> list;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentType() != QDBusArgument::ArrayType)
        return list;
    argument.beginArray();
    while (!argument.atEnd())
        list.append(readObject(argument));
    argument.endArray();
    return list;
}

} // namespace

AccessibilityBus::AccessibilityBus() : m_bus(QString())
{
    const QDBusConnection session = QDBusConnection::sessionBus();
    const QDBusMessage address = session.call(statusCall(u"org.a11y.Bus"_s, u"GetAddress"_s));
    m_bus = QDBusConnection::connectToBus(address.arguments().value(0).toString(), connectionName);
    for (const QString &name : {u"IsEnabled"_s, u"ScreenReaderEnabled"_s}) {
        session.call(statusCall(properties, u"Set"_s)
                     << u"org.a11y.Status"_s << name << QVariant::fromValue(QDBusVariant(true)));
    }
    call({registry.program, u"/org/a11y/atspi/registry"_s}, registry.program, u"RegisterEvent"_s,
         {u"object:state-changed:focused"_s});
    m_bus.connect(QString(), QString(), u"org.a11y.atspi.Event.Object"_s, u"StateChanged"_s, this,
                  SLOT(noteState(QDBusMessage)));
}

AccessibilityBus::~AccessibilityBus()
{
    QDBusConnection::disconnectFromBus(connectionName);
}

std::optional<AccessibilityBus::Object> AccessibilityBus::program(const QString &name) const
{
    for (const Object &program : children(registry)) {
        if (this->name(program) == name)
            return program;
    }
    return std::nullopt;
}

QString AccessibilityBus::name(const Object &object) const
{
    return property(object, accessible, u"Name"_s).toString();
}

QString AccessibilityBus::role(const Object &object) const
{
    return call(object, accessible, u"GetRoleName"_s).value(0).toString();
}

bool AccessibilityBus::isShowing(const Object &object) const
{
    return hasState(object, showingState);
}

bool AccessibilityBus::isChecked(const Object &object) const
{
    return hasState(object, checkedState);
}

QRect AccessibilityBus::place(const Object &object) const
{
    constexpr uint onScreen = 0;
    const QVariant answer =
        call(object, u"org.a11y.atspi.Component"_s, u"GetExtents"_s, {onScreen}).value(0);
    return answer.isValid() ? qdbus_cast<QRect>(answer) : QRect();
}

AccessibilityBus::Object AccessibilityBus::window(const Object &object) const
{
    Object window = object;
    while (true) {
        const QVariant answer = property(window, accessible, u"Parent"_s);
        if (!answer.isValid())
            return window;
        const auto argument = answer.value<QDBusArgument>();
        const Object parent = readObject(argument);
        if (role(parent) == "application"_L1 || parent == window)
            return window;
        window = parent;
    }
}

QList<AccessibilityBus::Object> AccessibilityBus::children(const Object &object) const
{
    return objects(call(object, accessible, u"GetChildren"_s).value(0));
}

std::optional<AccessibilityBus::Object> AccessibilityBus::find(const Object &root,
                                                               const Condition &condition) const
{
    if (condition(root))
        return root;
    for (const Object &child : children(root)) {
        if (const auto found = find(child, condition))
            return found;
    }
    return std::nullopt;
}

QString AccessibilityBus::description(const Object &root, int depth) const
{
    QString text = QString(2 * depth, u' ') + role(root) + " \""_L1 + name(root) + u'"'
        + (isShowing(root) ? u"\n"_s : u" (hidden)\n"_s);
    for (const Object &child : children(root))
        text += description(child, depth + 1);
    return text;
}

/// The arguments are the state's name, whether it is set, and others that are not used here.
void AccessibilityBus::noteState(const QDBusMessage &event)
{
    if (event.arguments().value(0) == u"focused"_s && event.arguments().value(1).toInt() == 1)
        m_focused = Object{event.service(), event.path()};
}

QVariant AccessibilityBus::property(const Object &object, const QString &interface,
                                    const QString &name) const
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(object.program, object.path, properties, u"Get"_s);
    message << interface << name;
    return m_bus.call(message).arguments().value(0).value<QDBusVariant>().variant();
}

QVariantList AccessibilityBus::call(const Object &object, const QString &interface,
                                    const QString &method, const QVariantList &arguments) const
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(object.program, object.path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_bus.call(message);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
}

bool AccessibilityBus::hasState(const Object &object, int state) const
{
    const auto words = qdbus_cast<QList<uint>>(call(object, accessible, u"GetState"_s).value(0));
    return words.size() > state / 32 && (words[state / 32] >> (state % 32) & 1) != 0;
}

} // namespace corvane::test
