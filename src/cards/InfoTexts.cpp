#include "cards/InfoTexts.h"

#include <QResource>

/// The texts lie in a static library, whose resources are registered by name.
static void registerTexts()
{
    Q_INIT_RESOURCE(texts);
}

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// In the order of the topics.
constexpr std::array fileNames{"memory"_L1, "power"_L1,     "cpu"_L1,      "gpu"_L1,
                               "ane"_L1,    "workloads"_L1, "processes"_L1};

/// Splits a file into its heading and the paragraphs below it.
InfoText parsed(const QString &markdown)
{
    constexpr auto mark = "# "_L1;
    const qsizetype lineEnd = markdown.indexOf(u'\n');
    return {markdown.mid(mark.size(), lineEnd - mark.size()), markdown.mid(lineEnd).trimmed()};
}

} // namespace

InfoText infoText(InfoTopic topic, HostSystem system)
{
    registerTexts();
    const auto topicName = fileNames[static_cast<std::size_t>(topic)];
    const auto systemName = system == HostSystem::mac ? "mac"_L1 : "linux"_L1;
    const QResource file(u":/texts/%1.%2.md"_s.arg(topicName, systemName));
    return parsed(QString::fromUtf8(file.uncompressedData()));
}

} // namespace corvane
