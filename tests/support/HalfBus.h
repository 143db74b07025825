#pragma once

#include "platform/FileDescriptor.h"

#include <QString>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace corvane::test {

/// A bus that authenticates its clients and then says nothing: their `Hello` gets no reply. A
/// thread of its own serves it until the object is destroyed, which closes all connections.
class HalfBus {
public:
    enum class Transport { unixSocket, tcp };

    /// Listens at `path`, or at a port of this machine. The first `wholeClients` get the first byte
    /// of a reply.
    explicit HalfBus(Transport transport, const std::string &path, int wholeClients = 0);
    ~HalfBus();
    HalfBus(const HalfBus &) = delete;
    HalfBus &operator=(const HalfBus &) = delete;

    /// Empty if it could not be started.
    const QString &address() const { return m_address; }

    /// How many clients have sent their `Hello`.
    int greetings() const { return m_greetings; }

private:
    void listenAtPort();
    void serve();
    bool answer(const FileDescriptor &client);

    FileDescriptor m_listener;
    QString m_address;
    const int m_wholeClients;
    std::atomic<int> m_greetings = 0;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

} // namespace corvane::test
