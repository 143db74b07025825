#pragma once

#include <QString>

#include <string>
#include <vector>

namespace corvane {

/// A socket at which a bus may listen. Both names are empty for a place of any other kind, such as
/// a program to start or a host whose name would have to be looked up.
struct BusSocket {
    std::string path = {}; ///< Unix socket, as `connectTo` takes it.
    std::string host = {}; ///< Numeric IP address.
    std::string port = {};

    friend bool operator==(const BusSocket &, const BusSocket &) = default;
};

/// The places that a bus address lists, in the order in which clients try them.
std::vector<BusSocket> busSockets(const QString &address);

} // namespace corvane
