// Prints what this machine tells of its chip, a second at a time: for looking at real hardware.

#include "chip/ChipIdentity.h"
#include "chip/FrequencyTables.h"
#include "chip/IOReportBridge.h"
#include "chip/ThermalBridge.h"

#include <chrono>
#include <cstdio>
#include <thread>

using namespace corvane;

namespace {

void printTable(const char *name, const std::vector<double> &table)
{
    std::printf("%s:", name);
    for (const double megahertz : table)
        std::printf(" %g", megahertz);
    std::printf("%s\n", table.empty() ? " not known" : " MHz");
}

void printChannel(const ReportingChannel &channel)
{
    const auto text = [](std::string_view view) { return std::string(view); };
    std::printf("  %s / %s / %s", text(channel.group).c_str(), text(channel.subgroup).c_str(),
                text(channel.name).c_str());
    if (channel.states.empty())
        std::printf(" = %lld %s\n", static_cast<long long>(channel.value),
                    text(channel.unit.value_or("(no unit)")).c_str());
    else
        std::printf("\n");
    for (const ChannelState &state : channel.states) {
        if (state.residency != 0)
            std::printf("    %-12s %lld\n", text(state.name).c_str(),
                        static_cast<long long>(state.residency));
    }
}

} // namespace

int main()
{
    constexpr int walks = 6;
    std::printf("chip: %s\n", readChipName().value_or("not known").c_str());
    const FrequencyTables tables = readFrequencyTables();
    printTable("performance cluster", tables.performance);
    printTable("efficiency cluster", tables.efficiency);

    const auto bridge = IOReportBridge::withChannelGroups(
        {{.group = "Energy Model"},
         {.group = "GPU Stats"},
         {.group = "CPU Stats", .subgroup = "CPU Complex Performance States"}});
    ThermalBridge temperatures;
    if (!bridge)
        std::printf("no channels\n");
    auto last = bridge ? bridge->takeSample() : nullptr;
    for (int walk = 1; walk <= walks; ++walk) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const auto began = std::chrono::steady_clock::now();
        auto sample = bridge ? bridge->takeSample() : nullptr;
        const std::chrono::duration<double, std::micro> took =
            std::chrono::steady_clock::now() - began;
        std::printf("walk %d, sampled in %.0f us\n", walk, took.count());
        if (bridge)
            bridge->iterate(bridge->delta(last.get(), sample.get()).get(), printChannel);
        last = std::move(sample);
        for (const auto &[name, degrees] : temperatures.readAllTemperatures())
            std::printf("  %s: %.1f C\n", name.c_str(), degrees);
        std::fflush(stdout);
    }
}
