#include "bus/BusAddress.h"

#include <QStringList>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The value of a key in "key=value,key=value"; empty without it.
std::string valueOf(const QString &key, const QStringList &pairs)
{
    for (const QString &pair : pairs) {
        if (pair.section(u'=', 0, 0) == key)
            return QByteArray::fromPercentEncoding(pair.section(u'=', 1).toUtf8()).toStdString();
    }
    return {};
}

bool isNumericHost(const std::string &host)
{
    return !host.empty() && host.find_first_not_of("0123456789abcdefABCDEF.:") == std::string::npos
        && host.find_first_of(".:") != std::string::npos;
}

/// Looking any other name up could block.
std::vector<std::string> numericHosts(const std::string &host)
{
    if (host.empty() || host == "localhost")
        return {"127.0.0.1", "::1"};
    return {isNumericHost(host) ? host : std::string()};
}

void addUnixSocket(std::vector<BusSocket> &sockets, const QStringList &pairs)
{
    const std::string name = valueOf(u"abstract"_s, pairs);
    sockets.push_back({.path = name.empty() ? valueOf(u"path"_s, pairs) : '\0' + name});
}

void addTCPSockets(std::vector<BusSocket> &sockets, const QStringList &pairs)
{
    const std::string port = valueOf(u"port"_s, pairs);
    for (const std::string &host : numericHosts(valueOf(u"host"_s, pairs)))
        sockets.push_back(host.empty() || port.empty() ? BusSocket()
                                                       : BusSocket{.host = host, .port = port});
}

} // namespace

std::vector<BusSocket> busSockets(const QString &address)
{
    std::vector<BusSocket> sockets;
    for (const QString &place : address.split(u';', Qt::SkipEmptyParts)) {
        const QString transport = place.section(u':', 0, 0);
        const QStringList pairs = place.section(u':', 1).split(u',');
        if (transport == "unix"_L1)
            addUnixSocket(sockets, pairs);
        else if (transport == "tcp"_L1)
            addTCPSockets(sockets, pairs);
        else
            sockets.push_back({});
    }
    return sockets;
}

} // namespace corvane
