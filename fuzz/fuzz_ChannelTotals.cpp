#include "chip/ChannelName.h"
#include "chip/ChannelTotals.h"
#include "platform/KernelText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace corvane;

namespace {

/// The next field of a line, up to a semicolon.
std::string_view takeField(std::string_view &line)
{
    const std::string_view field = line.substr(0, line.find(';'));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
}

/// What is taken off a name is a die, and a name is left.
std::string_view plainName(std::string_view name)
{
    const std::string_view plain = withoutDie(name);
    const bool isSound = plain.size() == name.size()
        ? plain == name
        : name.starts_with("DIE") && name.ends_with(plain) && !plain.empty();
    if (!isSound)
        std::abort();
    return plain;
}

bool isFraction(double value)
{
    return value >= 0 && value <= 1;
}

void check(const ChipReading &reading)
{
    const bool isSound = isFraction(reading.cpuActiveFraction)
        && isFraction(reading.gpuActiveFraction) && std::isfinite(totalWatts(reading))
        && totalWatts(reading) >= 0 && std::isfinite(reading.cpuActiveMHz)
        && reading.gpuStateResidency.size() <= 10;
    if (!isSound)
        std::abort();
    for (const GPUStateShare &share : reading.gpuStateResidency) {
        if (!isFraction(share.fraction))
            std::abort();
    }
}

} // namespace

/// One channel a line: group;subgroup;name;unit;value;state;residency;state;residency…
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FrequencyTables tables{.efficiency = {600, 2064}, .performance = {600, 3204}};
    ChannelTotals totals(tables);
    std::string_view text(reinterpret_cast<const char *>(data), size);
    while (auto line = takeLine(text)) {
        ReportingChannel channel;
        channel.group = takeField(*line);
        channel.subgroup = takeField(*line);
        channel.name = plainName(takeField(*line));
        channel.unit = takeField(*line);
        channel.value = parseSigned(takeField(*line)).value_or(0);
        std::vector<ChannelState> states;
        while (!line->empty()) {
            const std::string_view name = takeField(*line);
            states.push_back({name, parseSigned(takeField(*line)).value_or(-1)});
        }
        channel.states = states;
        totals.add(channel);
    }
    check(totals.reading(1));
    return 0;
}
