#include "timeline/MinuteRecord.h"

#include <cstdint>

using namespace corvane;

/// Any line is either refused or read as a minute that can be written and read back unchanged, but
/// for digits beyond those that are written; what is written is read back exactly.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view line(reinterpret_cast<const char *>(data), size);
    const auto minute = MinuteRecord::fromLine(line);
    const auto energy = MinuteEnergy::fromLine(line);
    if (minute
        && (!energy || energy->start != minute->means.start || energy->energy != minute->energy))
        __builtin_trap();
    if (!minute)
        return 0;
    const auto written = minute->toLine();
    const auto again = written ? MinuteRecord::fromLine(written->toStdString()) : std::nullopt;
    const auto rewritten = again ? again->toLine() : std::nullopt;
    if (!rewritten || *rewritten != *written)
        __builtin_trap();
    return 0;
}
