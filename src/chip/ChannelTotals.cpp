#include "chip/ChannelTotals.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// For tests against ASCII patterns without regard to case: bytes of other characters match none.
QLatin1StringView bytesOf(std::string_view text)
{
    return QLatin1StringView(text.data(), static_cast<qsizetype>(text.size()));
}

bool isIdle(std::string_view stateName)
{
    const QLatin1StringView name = bytesOf(stateName);
    return name.startsWith("IDLE"_L1, Qt::CaseInsensitive)
        || name.compare("OFF"_L1, Qt::CaseInsensitive) == 0
        || name.compare("DOWN"_L1, Qt::CaseInsensitive) == 0;
}

/// The frequencies of the cluster that a channel is about; none for a channel of no known cluster.
std::span<const double> frequenciesFor(std::string_view channelName, const FrequencyTables &tables)
{
    const QLatin1StringView name = bytesOf(channelName);
    if (name.contains("ECPU"_L1, Qt::CaseInsensitive))
        return tables.efficiency;
    if (name.contains("PCPU"_L1, Qt::CaseInsensitive))
        return tables.performance;
    return {};
}

double watts(double joules, double seconds)
{
    return std::max(joules / seconds, 0.0);
}

} // namespace

double ChannelTotals::Residency::activeFraction() const
{
    return total > 0 ? std::clamp(1 - idle / total, 0.0, 1.0) : 0;
}

ChannelTotals::ChannelTotals(const FrequencyTables &tables) : m_tables(tables) { }

void ChannelTotals::add(const ReportingChannel &channel)
{
    if (channel.group == "Energy Model")
        addEnergy(channel);
    else if (channel.group == "GPU Stats")
        addGPUStates(channel);
    else if (channel.group == "CPU Stats" && channel.subgroup == "CPU Complex Performance States")
        addCPUStates(channel);
}

void ChannelTotals::addEnergy(const ReportingChannel &channel)
{
    const std::string_view name = channel.name;
    double *joules = nullptr;
    if (name == "CPU Energy")
        joules = &m_cpuJoules;
    else if (name == "GPU Energy")
        joules = &m_gpuJoules;
    else if (name == "ANE" || name == "ANE Energy" || name.starts_with("ANE0")
             || name.starts_with("ANE1")) // Numbered by die, so that two dies add up.
        joules = &m_aneJoules;
    if (joules)
        *joules += static_cast<double>(channel.value) * energyToJoules(channel.unit);
}

void ChannelTotals::addGPUStates(const ReportingChannel &channel)
{
    for (const ChannelState &state : channel.states) {
        if (state.residency < 0)
            continue;
        const auto residency = static_cast<double>(state.residency);
        m_gpu.total += residency;
        if (isIdle(state.name)) {
            m_gpu.idle += residency;
            continue;
        }
        m_gpuStates.add(state.name, residency);
    }
}

void ChannelTotals::addCPUStates(const ReportingChannel &channel)
{
    const std::span<const double> frequencies = frequenciesFor(channel.name, m_tables);
    std::size_t activeIndex = 0; // The n-th active state runs at the n-th frequency.
    for (const ChannelState &state : channel.states) {
        if (state.residency < 0)
            continue;
        const auto residency = static_cast<double>(state.residency);
        m_cpu.total += residency;
        if (isIdle(state.name)) {
            m_cpu.idle += residency;
            continue;
        }
        if (activeIndex < frequencies.size()) {
            m_weightedMHz += frequencies[activeIndex] * residency;
            m_weightedResidency += residency;
        }
        ++activeIndex;
    }
}

ChipReading ChannelTotals::reading(double seconds) const
{
    return {
        .cpuWatts = watts(m_cpuJoules, seconds),
        .gpuWatts = watts(m_gpuJoules, seconds),
        .aneWatts = watts(m_aneJoules, seconds),
        .cpuActiveFraction = m_cpu.activeFraction(),
        .gpuActiveFraction = m_gpu.activeFraction(),
        .cpuActiveMHz = m_weightedResidency > 0 ? m_weightedMHz / m_weightedResidency : 0,
        .gpuDominantState = QString::fromStdString(m_gpuStates.dominant()),
        .gpuStateResidency = m_gpuStates.shares(),
    };
}

double ChannelTotals::energyToJoules(std::optional<std::string_view> unitLabel)
{
    struct Unit {
        QStringView label;
        double joules;
    };
    static constexpr auto units = std::to_array<Unit>({
        {u"pj", 1e-12},
        {u"nj", 1e-9},
        {u"uj", 1e-6},
        {u"\u03BCj", 1e-6}, // The Greek letter mu.
        {u"mj", 1e-3},
        {u"j", 1},
    });
    constexpr double nanojoule = 1e-9;
    if (!unitLabel)
        return nanojoule;
    const QString label =
        QString::fromUtf8(unitLabel->data(), qsizetype(unitLabel->size())).trimmed().toLower();
    const auto unit = std::ranges::find(units, QStringView(label), &Unit::label);
    return unit != units.end() ? unit->joules : nanojoule;
}

} // namespace corvane
