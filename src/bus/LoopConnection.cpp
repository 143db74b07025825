#include "bus/LoopConnection.h"

#include "threads/MainThread.h"

#include <cstdint>
#include <poll.h>

namespace corvane {

namespace {

using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

/// For a reply: the tray's own patience bounds it. A time-out here would need a timer.
constexpr std::uint64_t noTimeout = UINT64_MAX;

bool write(sd_bus_message *message, const BusWriter::Write &writeValues)
{
    BusWriter writer(message);
    if (writeValues)
        writeValues(writer);
    return writer.result() >= 0;
}

} // namespace

void BusReferences::operator()(sd_bus *bus) const
{
    sd_bus_close_unref(bus);
}

void BusReferences::operator()(sd_bus_slot *slot) const
{
    sd_bus_slot_unref(slot);
}

BusHandle openBusHandle(const QString &address)
{
    sd_bus *created = nullptr;
    if (sd_bus_new(&created) < 0)
        return nullptr;
    BusHandle bus(created);
    const char *name = nullptr; // Known once the bus has answered.
    const bool isOpen = sd_bus_set_address(created, address.toUtf8().constData()) >= 0
        && sd_bus_set_bus_client(created, 1) >= 0
        && sd_bus_set_trusted(created, 1) >= 0   // Everybody on this bus is the user.
        && sd_bus_negotiate_fds(created, 0) >= 0 // No object takes descriptors.
        && sd_bus_start(created) >= 0 && sd_bus_get_unique_name(created, &name) >= 0;
    return isOpen ? std::move(bus) : nullptr;
}

LoopConnection::LoopConnection(BusHandle bus, QObject *parent)
    : QObject(parent),
      m_bus(std::move(bus))
{
    assertMainThread();
    const int descriptor = m_bus ? sd_bus_get_fd(m_bus.get()) : -1;
    if (descriptor < 0) {
        m_bus.reset();
        return;
    }
    m_readable.emplace(descriptor, QSocketNotifier::Read);
    m_writable.emplace(descriptor, QSocketNotifier::Write);
    connect(&*m_readable, &QSocketNotifier::activated, this, &LoopConnection::process);
    connect(&*m_writable, &QSocketNotifier::activated, this, &LoopConnection::process);
    awaitMessages();
}

LoopConnection::~LoopConnection() = default;

QString LoopConnection::name() const
{
    const char *name = nullptr;
    if (m_bus)
        sd_bus_get_unique_name(m_bus.get(), &name);
    return QString::fromLatin1(name);
}

void LoopConnection::addObject(const BusInterface &interface, const sd_bus_vtable *table,
                               void *object)
{
    if (m_bus)
        sd_bus_add_object_vtable(m_bus.get(), nullptr, interface.path, interface.name, table,
                                 object);
}

void LoopConnection::emitSignal(const BusInterface &interface, const char *member,
                                const BusWriter::Write &writeValues)
{
    if (isFull()) {
        m_hasDropped = true;
        return;
    }
    sd_bus_message *created = nullptr;
    if (!m_bus
        || sd_bus_message_new_signal(m_bus.get(), &created, interface.path, interface.name, member)
            < 0)
        return;
    const Message signal(created, &sd_bus_message_unref);
    if (write(created, writeValues))
        sd_bus_send(m_bus.get(), created, nullptr);
    awaitMessages();
}

void LoopConnection::call(const char *service, const BusInterface &interface, const char *member,
                          const BusWriter::Write &writeValues,
                          std::function<void(bool isReply)> onReply)
{
    sd_bus_message *created = nullptr;
    if (!m_bus
        || sd_bus_message_new_method_call(m_bus.get(), &created, service, interface.path,
                                          interface.name, member)
            < 0)
        return;
    const Message call(created, &sd_bus_message_unref);
    sd_bus_message_set_auto_start(created, 0);
    m_onReply = std::move(onReply);
    const auto onMessage = [](sd_bus_message *reply, void *connection, sd_bus_error *) {
        static_cast<LoopConnection *>(connection)
            ->m_onReply(sd_bus_message_is_method_error(reply, nullptr) == 0);
        return 0;
    };
    sd_bus_slot *slot = nullptr;
    if (write(created, writeValues))
        sd_bus_call_async(m_bus.get(), &slot, created, onMessage, this, noTimeout);
    m_call.reset(slot);
    awaitMessages();
}

/// Handles what has arrived, but not all of a flood at once: the notifier reports the rest again.
void LoopConnection::process()
{
    constexpr int mostAtOnce = 16;
    int result = 1;
    for (int count = 0; result > 0 && count < mostAtOnce && (count == 0 || !isFull()); ++count)
        result = m_bus ? sd_bus_process(m_bus.get(), nullptr) : 0;
    if (result < 0)
        stop();
    awaitMessages();
    if (m_hasDropped && m_bus && !m_writable->isEnabled()) {
        m_hasDropped = false;
        emit signalsWereDropped();
    }
}

void LoopConnection::awaitMessages()
{
    if (!m_bus)
        return;
    const int events = sd_bus_get_events(m_bus.get());
    if (events < 0) {
        stop();
        return;
    }
    m_readable->setEnabled(!isFull());
    m_writable->setEnabled((events & POLLOUT) != 0);
}

/// Whether more messages wait than an item needs that is asked often. The library itself would
/// keep hundreds of thousands.
bool LoopConnection::isFull() const
{
    constexpr std::uint64_t mostWaiting = 64;
    std::uint64_t waiting = 0;
    return m_bus && sd_bus_get_n_queued_write(m_bus.get(), &waiting) >= 0 && waiting >= mostWaiting;
}

/// The notifiers are in use until the event loop is reached, so they are not deleted.
void LoopConnection::stop()
{
    m_readable->setEnabled(false);
    m_writable->setEnabled(false);
    m_call.reset();
    m_bus.reset();
}

} // namespace corvane
