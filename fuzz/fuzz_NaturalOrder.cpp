#include "chip/NaturalOrder.h"

#include "platform/KernelText.h"

#include <array>
#include <cstdint>
#include <cstdlib>

using namespace corvane;

namespace {

bool isEquivalent(std::string_view left, std::string_view right)
{
    return !naturallyLess(left, right) && !naturallyLess(right, left);
}

/// What sorting needs of any three texts: a strict weak order.
void check(std::string_view a, std::string_view b, std::string_view c)
{
    const bool isStrict = !naturallyLess(a, a) && !(naturallyLess(a, b) && naturallyLess(b, a));
    const bool isTransitive = !naturallyLess(a, b) || !naturallyLess(b, c) || naturallyLess(a, c);
    const bool groups = !isEquivalent(a, b) || !isEquivalent(b, c) || isEquivalent(a, c);
    if (!isStrict || !isTransitive || !groups)
        std::abort();
}

} // namespace

/// Three lines, in every order.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    std::array<std::string_view, 3> lines;
    for (std::string_view &line : lines)
        line = takeLine(text).value_or(std::string_view());
    const auto &[a, b, c] = lines;
    check(a, b, c);
    check(a, c, b);
    check(b, a, c);
    check(b, c, a);
    check(c, a, b);
    check(c, b, a);
    return 0;
}
