#include "chip/ChannelName.h"

namespace corvane {

namespace {

/// `name` without `prefix`, a number and `separator`, where something follows them.
std::string_view withoutNumbered(std::string_view name, std::string_view prefix, char separator)
{
    const std::size_t end = name.find_first_not_of("0123456789", prefix.size());
    if (!name.starts_with(prefix) || end == prefix.size() || end >= name.size() - 1
        || name[end] != separator)
        return name;
    return name.substr(end + 1);
}

} // namespace

std::string_view withoutDie(std::string_view name)
{
    const std::string_view plain = withoutNumbered(name, "DIE_", '_');
    return plain.size() < name.size() ? plain : withoutNumbered(name, "DIE", ' ');
}

} // namespace corvane
