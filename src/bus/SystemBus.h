#pragma once

#include <QString>

namespace corvane {

/// Address of the system bus, whether it runs or not.
QString systemBusAddress();

} // namespace corvane
