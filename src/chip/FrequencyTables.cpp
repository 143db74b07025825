#include "chip/FrequencyTables.h"

#include <algorithm>
#include <cstdint>

namespace corvane {

namespace {

constexpr std::size_t recordBytes = 8; // 32 bits of frequency, 32 bits of voltage.

/// No chip tops out below this; a table that does when taken for hertz counts in kHz.
constexpr double slowestTopMHz = 100;

std::uint32_t littleEndianWord(std::span<const std::byte> bytes)
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= std::to_integer<std::uint32_t>(bytes[i]) << (8 * i);
    return word;
}

std::vector<double> parseRecords(std::span<const std::byte> table, double unitsPerMHz)
{
    std::vector<double> frequencies;
    frequencies.reserve(table.size() / recordBytes);
    for (; table.size() >= recordBytes; table = table.subspan(recordBytes)) {
        if (const std::uint32_t word = littleEndianWord(table))
            frequencies.push_back(word / unitsPerMHz);
    }
    return frequencies;
}

} // namespace

std::vector<double> IORegistryReader::parseFrequencies(std::span<const std::byte> table)
{
    return parseRecords(table, 1'000'000);
}

std::vector<double> IORegistryReader::parseScaledFrequencies(std::span<const std::byte> table)
{
    auto frequencies = parseFrequencies(table);
    const bool isInKHz =
        std::ranges::none_of(frequencies, [](double mhz) { return mhz >= slowestTopMHz; });
    return isInKHz ? parseRecords(table, 1000) : frequencies;
}

std::vector<std::uint32_t> IORegistryReader::parseClusterTables(std::span<const std::byte> clusters)
{
    constexpr std::uint32_t highestNumber = 255;
    if (clusters.size() % recordBytes != 0)
        return {};
    std::vector<std::uint32_t> numbers;
    for (; !clusters.empty(); clusters = clusters.subspan(recordBytes)) {
        numbers.push_back(littleEndianWord(clusters));
        if (numbers.back() > highestNumber)
            return {};
    }
    return numbers;
}

std::vector<double> IORegistryReader::slowerTable(const std::vector<std::vector<double>> &tables,
                                                  const std::vector<double> &faster)
{
    std::vector<double> slower;
    for (const std::vector<double> &table : tables) {
        if (table.empty())
            return {};
        if (table != faster && (slower.empty() || table.back() < slower.back()))
            slower = table;
    }
    return slower;
}

} // namespace corvane
