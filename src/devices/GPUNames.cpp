#include "devices/GPUNames.h"

#include "cards/DeniedTexts.h"
#include "records/MachineParts.h"
#include "ui/ByteFormatter.h"

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

bool areAlike(const std::vector<GPUCoverage> &gpus)
{
    return std::ranges::all_of(
        gpus, [&](const GPUCoverage &gpu) { return gpu.name == gpus.front().name; });
}

QString systemMemoryText(const GPUCoverage &gpu)
{
    const ByteFormatter &bytes = ByteFormatter::f();
    const std::uint64_t total = gpu.memoryTotal.value_or(0);
    const std::uint64_t own = std::min(gpu.memoryOwn.value_or(0), total);
    const QString shared = bytes.gigabytes(total - own) + u" of RAM"_s;
    return own > 0 ? bytes.gigabytes(own) + u" own + "_s + shared : shared;
}

} // namespace

QString shortGPUName(const QString &name)
{
    QStringList words = name.split(u' ', Qt::SkipEmptyParts);
    words.removeIf([](const QString &word) {
        return word == u"NVIDIA"_s || word == u"GeForce"_s || word == u"AMD"_s
            || word == u"Radeon"_s || word == u"Intel"_s || word == u"Graphics"_s;
    });
    if (words.endsWith(u"GPU"_s) && words.size() > 2 && words[words.size() - 2] == u"Laptop"_s)
        words.resize(words.size() - 2);
    return words.isEmpty() ? name : words.join(u' ');
}

QString gpuGroupName(const std::vector<GPUCoverage> &gpus)
{
    if (gpus.empty())
        return {};
    if (gpus.size() == 1)
        return gpus.front().name;
    if (areAlike(gpus))
        return u"%1 × %2"_s.arg(QString::number(gpus.size()), gpus.front().name);
    return gpus.front().integrated ? u"%1 GPUs"_s.arg(gpus.size())
                                   : u"%1 graphics cards"_s.arg(gpus.size());
}

QString gpuMemoryHeading(const std::vector<GPUCoverage> &gpus)
{
    const bool isShared =
        gpus.size() == 1 && gpus.front().usesSystemMemory && gpus.front().memoryTotal;
    return isShared ? systemMemoryText(gpus.front()) : gpuGroupName(gpus);
}

QString gpuColumnName(const std::vector<GPUCoverage> &gpus, std::size_t index)
{
    return areAlike(gpus) ? u"GPU %1"_s.arg(index) : shortGPUName(gpus[index].name);
}

QStringList gpuMemoryNotes(const MachineCoverage &machine)
{
    QStringList notes;
    for (const GPUCoverage &gpu : gpusWithMemory(machine)) {
        const QString note = deniedNote(u"Memory of "_s + gpu.name, gpu.memory);
        if (!note.isEmpty())
            notes.append(note);
    }
    return notes;
}

} // namespace corvane
