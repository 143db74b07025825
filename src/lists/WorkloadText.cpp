#include "lists/WorkloadText.h"

#include "ui/ByteFormatter.h"
#include "ui/NumberText.h"
#include "ui/TextLayout.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr std::int64_t leastIdleSeconds = 60;

QString bytesText(std::uint64_t bytes)
{
    return ByteFormatter::f().string(bytes);
}

bool hasModel(const AIWorkload &workload)
{
    return workload.model && !workload.model->isEmpty();
}

/// Empty where nothing is known of it.
QString useText(const AIWorkload &workload)
{
    const auto idle = workload.details.idleSeconds;
    if (idle && *idle >= leastIdleSeconds)
        return u"idle for "_s + spanText(*idle);
    if (!workload.gpuFraction)
        return {};
    return spacedPercentText(*workload.gpuFraction * 100) + u" of GPU"_s;
}

QString quantisationText(const AIWorkload &workload)
{
    const QString quantisation = workload.details.quantisation.value_or(QString());
    const bool isInName =
        workload.model && workload.model->contains(quantisation, Qt::CaseInsensitive);
    return isInName ? QString() : quantisation;
}

QString originText(const AIWorkload &workload)
{
    if (!hasModel(workload))
        return u"neither the command line nor a file in use names it"_s;
    switch (workload.details.origin) {
    case ModelOrigin::arguments:
        return u"named by the command line"_s;
    case ModelOrigin::server:
        return u"named by the command line of its server"_s;
    case ModelOrigin::ollamaStore:
        return u"named by Ollama's store"_s;
    case ModelOrigin::fileHeader:
        return u"named by the header of its file"_s;
    case ModelOrigin::usedFile:
        return u"named by a file that the process has open or mapped"_s;
    }
    return {};
}

void addModel(QStringList &lines, const AIWorkload &workload)
{
    const ModelDetails &details = workload.details;
    lines.append(modelText(workload) + u": "_s + originText(workload));
    if (!details.otherNames.isEmpty())
        lines.append(u"Also stored as "_s + details.otherNames.join(u", "_s));
    if (details.quantisation)
        lines.append(u"Quantisation: "_s + *details.quantisation);
    QStringList lengths;
    if (details.contextLength)
        lengths.append(u"%1 tokens, as started"_s.arg(*details.contextLength));
    if (details.trainedLength)
        lengths.append(u"trained for %1 tokens"_s.arg(*details.trainedLength));
    if (!lengths.isEmpty())
        lines.append(u"Context: "_s + lengths.join(u"; "_s));
}

void addMemory(QStringList &lines, const AIWorkload &workload, const QString &gpuLabel)
{
    if (workload.gpuMemory && !gpuLabel.isEmpty())
        lines.append(u"%1: %2, as the GPU's driver tells it of each process"_s.arg(
            gpuLabel, bytesText(*workload.gpuMemory)));
    lines.append(u"RAM: %1, without files that are mapped"_s.arg(bytesText(workload.memory)));
    if (workload.details.mappedBytes)
        lines.append(u"Weights mapped from files: %1, shared with the system's cache and not "
                     "added"_s.arg(bytesText(*workload.details.mappedBytes)));
}

void addUse(QStringList &lines, const AIWorkload &workload)
{
    if (workload.gpuFraction)
        lines.append(u"GPU load: %1 of its time since the last look"_s.arg(
            spacedPercentText(*workload.gpuFraction * 100)));
    const auto idle = workload.details.idleSeconds;
    if (idle && *idle >= leastIdleSeconds)
        lines.append(
            u"The model is loaded and has not used the GPU for %1 at least"_s.arg(spanText(*idle)));
}

QString partText(const WorkloadPart &part, const QString &gpuLabel)
{
    QStringList facts{u"pid %1"_s.arg(part.pid)};
    if (part.gpuMemory && !gpuLabel.isEmpty())
        facts.append(bytesText(*part.gpuMemory) + u' ' + gpuLabel);
    if (part.memory)
        facts.append(bytesText(*part.memory) + u" RAM"_s);
    return u"  "_s + singleLine(part.name) + u": "_s + facts.join(u", "_s);
}

void addParts(QStringList &lines, const AIWorkload &workload, const QString &gpuLabel)
{
    constexpr std::size_t most = 12; // More would fill the screen.
    if (workload.parts.empty())
        return;
    lines.append(u"Its processes:"_s);
    for (std::size_t i = 0; i < std::min(most, workload.parts.size()); ++i)
        lines.append(partText(workload.parts[i], gpuLabel));
    if (workload.parts.size() > most)
        lines.append(u"  and %1 more"_s.arg(workload.parts.size() - most));
}

} // namespace

QString modelText(const AIWorkload &workload)
{
    return hasModel(workload) ? *workload.model : u"model unknown"_s;
}

QStringList modelRemarks(const AIWorkload &workload)
{
    QStringList remarks{quantisationText(workload), useText(workload)};
    remarks.removeAll(QString());
    if (remarks.size() < 2)
        return remarks;
    return {remarks.join(u" · "_s), remarks[1], remarks[0]};
}

QString workloadExplanation(const AIWorkload &workload, const QString &gpuLabel)
{
    QStringList lines;
    addModel(lines, workload);
    addMemory(lines, workload, gpuLabel);
    addUse(lines, workload);
    addParts(lines, workload, gpuLabel);
    return lines.join(u'\n');
}

QString spanText(std::int64_t seconds)
{
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 60 * minute;
    return seconds < hour ? u"%1 min"_s.arg(seconds / minute) : u"%1 h"_s.arg(seconds / hour);
}

} // namespace corvane
