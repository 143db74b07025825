#include "instance/InstanceMessage.h"
#include "platform/ActivationToken.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane;

namespace {

void expect(bool isSound)
{
    if (!isSound)
        std::abort();
}

} // namespace

/// Parses the bytes as a message from the socket, then sends them as a desktop's token.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    if (const auto message = parseInstanceMessage(text)) {
        expect(size <= longestInstanceMessage);
        expect(message->activationToken.empty() || isActivationToken(message->activationToken));
        expect(instanceMessageBytes(*message) == text);
    }
    const auto sent = parseInstanceMessage(instanceMessageBytes({.activationToken = text}));
    expect(sent && (sent->activationToken == text || sent->activationToken.empty()));
    return 0;
}
