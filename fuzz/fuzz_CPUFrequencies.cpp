#include "cpu/CPUFrequencies.h"

#include "chip/ChipIdentity.h"
#include "platform/KernelText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace corvane;

namespace {

void expect(bool isSound)
{
    if (!isSound)
        std::abort();
}

bool isPlausible(std::uint64_t kHz)
{
    return kHz > 0 && kHz <= 20'000'000;
}

void expectTable(const std::vector<std::uint64_t> &states)
{
    expect(std::ranges::is_sorted(states) && std::ranges::all_of(states, isPlausible));
    for (const std::uint64_t kHz : {std::uint64_t(0), std::uint64_t(3'000'000), ~std::uint64_t(0)})
        expect(states.empty() || nearestFrequencyState(states, kHz) < states.size());
}

} // namespace

/// Any bytes as a list of frequencies, as both ends of a range, as times and as /proc/cpuinfo.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    expectTable(cpuFrequencyStates(std::vector<CPUFrequencyRange>{{.available = text}}));

    const std::size_t half = text.find(' ');
    const std::string first = text.substr(0, half);
    const std::string second = half == std::string::npos ? std::string() : text.substr(half + 1);
    const std::vector<CPUFrequencyRange> range = {{.minimum = first, .maximum = second}};
    expectTable(cpuFrequencyStates(range));
    expect(cpuFrequencyStates(range).size() <= 201);

    for (const CPUFrequencyTime &time : parseTimeInState(text))
        expect(isPlausible(time.kHz));
    for (const int cpu : {0, 1})
        expect(isPlausible(cpuInfoKHz(text, cpu).value_or(1)));

    const auto name = processorName(text);
    expect(!name || (trimmed(*name) == *name && name->find('\n') == std::string::npos));
    expect(!SystemInfo::shownChipName(name).trimmed().isEmpty());
    return 0;
}
