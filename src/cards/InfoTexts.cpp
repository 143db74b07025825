#include "cards/InfoTexts.h"

#include "records/MachineParts.h"
#include "threads/MainThread.h"

#include <QResource>

#include <algorithm>
#include <map>
#include <utility>

/// The texts lie in a static library, whose resources are registered by name.
static void registerTexts()
{
    Q_INIT_RESOURCE(texts);
}

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// In the order of the topics.
constexpr std::array fileNames{"memory"_L1, "power"_L1,     "cpu"_L1,       "gpu"_L1,
                               "ane"_L1,    "workloads"_L1, "processes"_L1, "vram"_L1};

struct Condition {
    QLatin1StringView name;
    bool (*holds)(const MachineCoverage &machine);
};

template <Coverage wanted>
bool anyGPU(const MachineCoverage &machine)
{
    return std::ranges::any_of(countedGPUs(machine),
                               [](const GPUCoverage &gpu) { return gpu.load == wanted; });
}

bool hasCard(const MachineCoverage &machine)
{
    return std::ranges::any_of(machine.gpus,
                               [](const GPUCoverage &gpu) { return !gpu.integrated; });
}

constexpr std::array conditions{
    Condition{"cpu-locked"_L1,
              [](const MachineCoverage &machine) { return machine.cpuWatts == Coverage::locked; }},
    Condition{"cpu-watts"_L1,
              [](const MachineCoverage &machine) { return machine.cpuWatts == Coverage::known; }},
    Condition{
        "package"_L1,
        [](const MachineCoverage &machine) { return machine.packageWatts == Coverage::known; }},
    Condition{
        "system"_L1,
        [](const MachineCoverage &machine) { return machine.systemWatts == Coverage::known; }},
    Condition{
        "npu-unpublished"_L1,
        [](const MachineCoverage &machine) { return machine.npuLoad == Coverage::unpublished; }},
    Condition{"card"_L1, hasCard},
    Condition{"no-card"_L1, [](const MachineCoverage &machine) { return !hasCard(machine); }},
    Condition{"asleep"_L1, anyGPU<Coverage::asleep>},
    Condition{"no-library"_L1, anyGPU<Coverage::noLibrary>},
    Condition{"new-driver"_L1, anyGPU<Coverage::newDriver>},
    Condition{"unpublished"_L1, anyGPU<Coverage::unpublished>},
};

/// A line without its condition.
struct ConditionalLine {
    QString condition = {}; ///< Empty: for every machine.
    QString text = {};
};

ConditionalLine conditionalLine(const QString &line)
{
    const qsizetype end = line.indexOf(u"} "_s);
    if (!line.startsWith(u'{') || end < 0)
        return {{}, line};
    return {line.mid(1, end - 1), line.mid(end + 2)};
}

template <typename Holds>
QString withoutConditions(const QString &text, Holds holds)
{
    QStringList paragraphs;
    for (const QString &paragraph : text.split(u"\n\n"_s)) {
        QStringList lines;
        for (const QString &line : paragraph.split(u'\n')) {
            const auto [condition, words] = conditionalLine(line);
            if (condition.isEmpty() || holds(condition))
                lines.append(words);
        }
        if (!lines.isEmpty())
            paragraphs.append(lines.join(u'\n'));
    }
    return paragraphs.join(u"\n\n"_s);
}

/// Splits a file into its heading and the paragraphs below it.
InfoText parsed(const QString &markdown)
{
    constexpr auto mark = "# "_L1;
    const qsizetype lineEnd = markdown.indexOf(u'\n');
    return {markdown.mid(mark.size(), lineEnd - mark.size()), markdown.mid(lineEnd).trimmed()};
}

InfoText textOfFile(InfoTopic topic, HostSystem system)
{
    registerTexts();
    const auto topicName = fileNames[static_cast<std::size_t>(topic)];
    const auto systemName = system == HostSystem::mac ? "mac"_L1 : "linux"_L1;
    const QResource file(u":/texts/%1.%2.md"_s.arg(topicName, systemName));
    return parsed(QString::fromUtf8(file.uncompressedData()));
}

std::array<bool, conditions.size()> holding(const MachineCoverage &machine)
{
    std::array<bool, conditions.size()> result = {};
    std::ranges::transform(conditions, result.begin(), [&machine](const Condition &condition) {
        return condition.holds(machine);
    });
    return result;
}

} // namespace

InfoText infoText(InfoTopic topic, HostSystem system)
{
    InfoText info = textOfFile(topic, system);
    info.text = withoutConditions(info.text, [](const QString &) { return true; });
    return info;
}

const InfoText &infoText(InfoTopic topic, const MachineCoverage &machine)
{
    assertMainThread();
    if (machine.isWhole) {
        static std::map<InfoTopic, InfoText> ofWhole;
        const auto known = ofWhole.find(topic);
        return known != ofWhole.end() ? known->second
                                      : ofWhole.emplace(topic, infoText(topic)).first->second;
    }
    // Views ask with every sample; the answers are few.
    const auto holds = holding(machine);
    static std::map<std::pair<InfoTopic, std::array<bool, conditions.size()>>, InfoText> texts;
    const auto [place, isNew] = texts.try_emplace({topic, holds});
    if (isNew) {
        place->second = textOfFile(topic, HostSystem::linuxDesktop);
        place->second.text = withoutConditions(place->second.text, [&](const QString &name) {
            const auto found = std::ranges::find(conditions, name, &Condition::name);
            return found != conditions.end()
                && holds[static_cast<std::size_t>(found - conditions.begin())];
        });
    }
    return place->second;
}

} // namespace corvane
