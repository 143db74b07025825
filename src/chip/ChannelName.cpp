#include "chip/ChannelName.h"

namespace corvane {

std::string_view withoutDie(std::string_view name)
{
    constexpr std::string_view die = "DIE_";
    const std::size_t end = name.find_first_not_of("0123456789", die.size());
    if (!name.starts_with(die) || end == die.size() || end >= name.size() - 1 || name[end] != '_')
        return name;
    return name.substr(end + 1);
}

} // namespace corvane
