#include "instance/InstanceMessage.h"

#include "platform/ActivationToken.h"

namespace corvane {

namespace {

constexpr std::string_view heading = "Corvane/1 open\n";

static_assert(heading.size() + longestActivationToken < longestInstanceMessage);

} // namespace

std::string instanceMessageBytes(const InstanceMessage &message)
{
    std::string bytes(heading);
    if (isActivationToken(message.activationToken))
        bytes += message.activationToken;
    return bytes + '\n';
}

std::optional<InstanceMessage> parseInstanceMessage(std::string_view bytes)
{
    if (!bytes.starts_with(heading) || bytes.back() != '\n')
        return std::nullopt;
    bytes.remove_prefix(heading.size());
    if (bytes == "\n")
        return InstanceMessage{};
    if (bytes.empty() || !isActivationToken(bytes.substr(0, bytes.size() - 1)))
        return std::nullopt;
    return InstanceMessage{.activationToken = std::string(bytes.substr(0, bytes.size() - 1))};
}

} // namespace corvane
