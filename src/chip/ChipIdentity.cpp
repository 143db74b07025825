#include "chip/ChipIdentity.h"

#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

struct Ceilings {
    QLatin1StringView part; ///< Of the chip's name.
    double cpuW;
    double gpuW;
    double aneW;
};

/// Longer names first, so that "M3 Max" is not taken for "M3". The uneven Neural Engine ceilings of
/// the two-die chips are meant.
constexpr auto knownChips = std::to_array<Ceilings>({
    {"M5 Ultra"_L1, 60, 130, 20}, {"M5 Max"_L1, 36, 65, 10},    {"M5 Pro"_L1, 30, 35, 10},
    {"M5"_L1, 25, 25, 10},        {"M4 Max"_L1, 36, 50, 8},     {"M4 Pro"_L1, 30, 28, 8},
    {"M4"_L1, 25, 20, 8},         {"M3 Ultra"_L1, 60, 120, 16}, {"M3 Max"_L1, 36, 56, 8},
    {"M3 Pro"_L1, 30, 30, 8},     {"M3"_L1, 24, 18, 8},         {"M2 Ultra"_L1, 60, 120, 16},
    {"M2 Max"_L1, 36, 60, 8},     {"M2 Pro"_L1, 30, 30, 8},     {"M2"_L1, 25, 15, 8},
    {"M1 Ultra"_L1, 60, 120, 8},  {"M1 Max"_L1, 30, 60, 8},     {"M1 Pro"_L1, 30, 30, 8},
    {"M1"_L1, 20, 14, 8},
});
constexpr Ceilings unknownChip{""_L1, 30, 30, 8};

const Ceilings &ceilings(const QString &chipName)
{
    for (const Ceilings &chip : knownChips) {
        if (chipName.contains(chip.part))
            return chip;
    }
    return unknownChip;
}

} // namespace

const QString &SystemInfo::chipName()
{
    static const QString name = shownChipName(readChipName());
    return name;
}

QString SystemInfo::shownChipName(const std::optional<std::string> &name, HostSystem system)
{
    const QString text = QString::fromUtf8(name.value_or(std::string())).trimmed();
    if (!text.isEmpty())
        return text;
    return system == HostSystem::mac ? u"Apple Silicon"_s : u"Linux computer"_s;
}

const ChipInfo &ChipInfo::current()
{
    static const ChipInfo chip = detect();
    return chip;
}

ChipInfo ChipInfo::detect(const QString &chipName)
{
    const Ceilings &found = ceilings(chipName);
    return {chipName, found.cpuW, found.gpuW, found.aneW};
}

} // namespace corvane
