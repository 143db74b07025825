#pragma once

#include "bus/BusMessage.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace corvane {

struct BusReferences {
    void operator()(sd_bus *bus) const;       ///< Closes it; what was not yet sent is lost.
    void operator()(sd_bus_slot *slot) const; ///< Drops what was registered.
};

using BusHandle = std::unique_ptr<sd_bus, BusReferences>;

/// Opens a private connection to a bus; null if there is none. To be called on a background job,
/// after a BusProbe was answered: while a bus hangs this blocks its caller.
BusHandle openBusHandle(const QString &address);

/// Whose member a message names: an object's interface.
struct BusInterface {
    const char *path;
    const char *name;
};

/// A connection to a bus that the main thread's event loop reads by itself. Qt's bus library hands
/// each message over by a thread of its own, which wakes the processor twice; the items of a label
/// are asked every second. Owned by an item; main thread, which never waits for the bus.
///
/// Without a handle, and once the bus has ended, nothing is sent and nobody calls. Objects are
/// called from the event loop; they must not run an event loop within, nor delete the connection.
///
/// While the bus does not read, some messages wait here. Further signals are then dropped, and
/// calls are answered once those are sent.
class LoopConnection : public QObject {
    Q_OBJECT

public:
    explicit LoopConnection(BusHandle bus, QObject *parent = nullptr);
    ~LoopConnection() override;

    /// This connection's unique name on the bus; empty without one.
    QString name() const;

    /// Exports an object; `table` and `object`, which its handlers get, outlive the connection.
    void addObject(const BusInterface &interface, const sd_bus_vtable *table, void *object);

    void emitSignal(const BusInterface &interface, const char *member,
                    const BusWriter::Write &write = {});

    /// Calls a method of a service that runs. `onReply` gets whether the reply is no error. One
    /// call at a time: the reply to an earlier one is dropped.
    void call(const char *service, const BusInterface &interface, const char *member,
              const BusWriter::Write &write, std::function<void(bool isReply)> onReply);

signals:
    /// Emitted once the bus reads again after signals were dropped.
    void signalsWereDropped();

private:
    void process();
    void awaitMessages();
    bool isFull() const;
    void stop();

    BusHandle m_bus; ///< Null once the bus has ended.
    std::function<void(bool isReply)> m_onReply;
    std::unique_ptr<sd_bus_slot, BusReferences> m_call; ///< Null unless a reply is waited for.
    bool m_hasDropped = false;                          ///< Signals.
    std::optional<QSocketNotifier> m_readable;          ///< Disabled while too many messages wait.
    std::optional<QSocketNotifier> m_writable;          ///< Enabled while messages wait to be sent.
};

} // namespace corvane
