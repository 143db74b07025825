#include "history/MinuteFile.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr auto versionMark = R"({"corvane":"minutes","version":)";
constexpr auto versionLine = R"({"corvane":"minutes","version":1})";
constexpr std::size_t linesOfADay = std::size_t(24) * 60;

/// As many as the newest samples of the other file can lie in.
constexpr std::size_t mostNewestStarts = 120;

void addEnergy(std::vector<EnergyLedger::Quarter> &quarters, const MinuteEnergy &minute)
{
    const double start = spanStart(minute.start, EnergyLedger::quarterSeconds);
    if (quarters.empty() || quarters.back().start != start)
        quarters.push_back({.start = start});
    quarters.back().energy += minute.energy;
}

} // namespace

bool StoredMinutes::hasLine(double start, bool isLastMinute) const
{
    if (newestStarts.empty() || isLastMinute)
        return !newestStarts.empty() && newestStarts.back() == start;
    return std::ranges::find(newestStarts, start) != newestStarts.end();
}

MinuteFile::MinuteFile(const std::string &path) : m_file(path) { }

void MinuteFile::create() const
{
    m_file.create(versionLine);
}

void MinuteFile::append(const MinuteRecord &minute)
{
    const auto line = minute.toLine();
    if (!line || !isOfThisVersion())
        return;
    m_file.appendWhole(line->toStdString(), versionLine);
    if (++m_appended >= linesOfADay)
        cut(); // A program that runs for months starts only once.
}

/// A damaged first line does not tell another version.
bool MinuteFile::isOfThisVersion() const
{
    if (!m_isOfThisVersion) {
        const std::string first = m_file.first();
        m_isOfThisVersion = !first.starts_with(versionMark) || first == versionLine;
    }
    return *m_isOfThisVersion;
}

StoredMinutes MinuteFile::read(double now) const
{
    StoredMinutes stored;
    if (!isOfThisVersion())
        return stored;
    m_file.forEach([&stored, now](std::string_view line) {
        const auto energy = MinuteEnergy::fromLine(line);
        if (!energy)
            return;
        // The whole line is read only where its means are shown.
        if (energy->start >= now - Timeline::longKept - minuteSeconds) {
            const auto minute = MinuteRecord::fromLine(line);
            if (!minute)
                return;
            stored.means.push_back(minute->means);
        }
        addEnergy(stored.energy, *energy);
        if (stored.newestStarts.size() == mostNewestStarts)
            stored.newestStarts.erase(stored.newestStarts.begin());
        stored.newestStarts.push_back(energy->start);
    });
    return stored;
}

void MinuteFile::cut()
{
    m_appended = 0;
    if (isOfThisVersion())
        m_file.keepLast(mostLines, versionLine);
}

} // namespace corvane
