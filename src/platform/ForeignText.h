#pragma once

#include <QString>

#include <string_view>

namespace corvane {

/// The text of bytes that others chose, such as a process's name. Bytes that are not UTF-8 become
/// U+FFFD. A leading byte-order mark stays, so that two different names do not look alike.
QString foreignText(std::string_view bytes);

} // namespace corvane
