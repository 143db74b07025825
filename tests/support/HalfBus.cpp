#include "support/HalfBus.h"

#include "platform/UnixSocket.h"

#include <array>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace corvane::test {

using namespace Qt::StringLiterals;

HalfBus::HalfBus(Transport transport, const std::string &path, int wholeClients)
    : m_wholeClients(wholeClients)
{
    if (transport == Transport::tcp) {
        listenAtPort();
    } else {
        m_listener = openUnixSocket();
        if (listenAt(m_listener, path))
            m_address = u"unix:path="_s + QString::fromStdString(path);
    }
    m_thread = std::thread([this] { serve(); });
}

HalfBus::~HalfBus()
{
    m_isEnding = true;
    m_thread.join();
}

void HalfBus::listenAtPort()
{
    m_listener = FileDescriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *general = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    if (bind(m_listener.get(), general, size) == 0 && listen(m_listener.get(), 16) == 0
        && getsockname(m_listener.get(), general, &size) == 0)
        m_address = u"tcp:host=localhost,port=%1"_s.arg(ntohs(address.sin_port));
}

void HalfBus::serve()
{
    constexpr int interval = 10; // In milliseconds; how soon the end is noticed.
    std::vector<FileDescriptor> clients;
    while (!m_isEnding) {
        std::vector<pollfd> waiting{{.fd = m_listener.get(), .events = POLLIN, .revents = 0}};
        for (const FileDescriptor &client : clients)
            waiting.push_back({.fd = client.get(), .events = POLLIN, .revents = 0});
        poll(waiting.data(), waiting.size(), interval);
        for (std::size_t index = waiting.size() - 1; index > 0; --index) {
            if (waiting[index].revents != 0 && !answer(clients[index - 1]))
                clients.erase(clients.begin() + static_cast<std::ptrdiff_t>(index - 1));
        }
        if (waiting.front().revents != 0)
            clients.emplace_back(accept(m_listener.get(), nullptr, nullptr));
    }
}

/// False once the client is gone.
bool HalfBus::answer(const FileDescriptor &client)
{
    std::array<char, 1024> bytes = {};
    const ssize_t count = recv(client.get(), bytes.data(), bytes.size(), 0);
    if (count <= 0)
        return false;
    const std::string_view received(bytes.data(), static_cast<std::size_t>(count));
    std::string_view reply;
    if (received.find("AUTH") != received.npos)
        reply = "OK 0123456789abcdef0123456789abcdef\r\n";
    else if (received.find("NEGOTIATE") != received.npos)
        reply = "ERROR\r\n";
    if (received.find("Hello") != received.npos && ++m_greetings <= m_wholeClients)
        reply = "l";
    send(client.get(), reply.data(), reply.size(), MSG_NOSIGNAL);
    return true;
}

} // namespace corvane::test
