#include "figures/FiguresJSON.h"

#include "ui/MetricText.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Adds a number; nothing if it is not known.
void add(QJsonObject &object, QLatin1StringView key, std::optional<double> value)
{
    if (value && std::isfinite(*value))
        object.insert(key, *value);
}

void addBytes(QJsonObject &object, QLatin1StringView key, std::optional<std::uint64_t> bytes)
{
    if (bytes)
        object.insert(key, static_cast<qint64>(*bytes));
}

void add(QJsonObject &object, QLatin1StringView key, const QString &text)
{
    if (!text.isEmpty())
        object.insert(key, text);
}

/// Adds a part; nothing if nothing is known of it.
void add(QJsonObject &object, QLatin1StringView key, const QJsonObject &part)
{
    if (!part.isEmpty())
        object.insert(key, part);
}

QJsonObject memoryObject(const MemorySnapshot &memory)
{
    QJsonObject object{{"pressure"_L1, pressureName(memory.pressure)}};
    addBytes(object, "total_bytes"_L1, memory.total);
    addBytes(object, "used_bytes"_L1, memory.used);
    addBytes(object, "app_bytes"_L1, memory.appMemory);
    addBytes(object, "wired_bytes"_L1, memory.wired);
    addBytes(object, "compressed_bytes"_L1, memory.compressed);
    addBytes(object, "cached_bytes"_L1, memory.cached);
    addBytes(object, "swap_used_bytes"_L1, memory.swapUsed);
    addBytes(object, "swap_total_bytes"_L1, memory.swapTotal);
    return object;
}

QJsonObject cpuObject(const CPUFigures &cpu)
{
    QJsonObject object;
    add(object, "busy_ratio"_L1, cpu.busyRatio);
    add(object, "frequency_hertz"_L1, cpu.hertz);
    QJsonArray cores;
    for (const double ratio : cpu.coreRatios)
        cores.append(ratio);
    if (!cores.isEmpty())
        object.insert("core_busy_ratios"_L1, cores);
    return object;
}

QString limitName(GPULimit limit)
{
    switch (limit) {
    case GPULimit::power:
        return u"power"_s;
    case GPULimit::temperature:
        return u"temperature"_s;
    case GPULimit::hardware:
        break;
    }
    return u"hardware"_s;
}

QJsonObject gpuObject(const GPUFigures &gpu)
{
    QJsonObject object{{"integrated"_L1, gpu.isIntegrated}, {"asleep"_L1, gpu.isAsleep}};
    add(object, "device"_L1, gpu.device);
    add(object, "name"_L1, gpu.name);
    add(object, "busy_ratio"_L1, gpu.busyRatio);
    add(object, "state"_L1, gpu.state.value_or(QString()));
    add(object, "frequency_hertz"_L1, gpu.hertz);
    add(object, "power_watts"_L1, gpu.watts);
    add(object, "temperature_celsius"_L1, gpu.celsius);
    addBytes(object, "memory_used_bytes"_L1, gpu.memoryUsed);
    if (gpu.memoryUsed && gpu.memoryIsLowerBound)
        object.insert("memory_used_is_lower_bound"_L1, true);
    addBytes(object, "memory_total_bytes"_L1, gpu.memoryTotal);
    if (gpu.limit)
        object.insert("limited_by"_L1, limitName(*gpu.limit));
    return object;
}

QJsonArray gpuArray(const std::vector<GPUFigures> &gpus)
{
    QJsonArray array;
    for (const GPUFigures &gpu : gpus)
        array.append(gpuObject(gpu));
    return array;
}

QJsonObject npuObject(const NPUFigures &npu)
{
    QJsonObject object;
    add(object, "busy_ratio"_L1, npu.busyRatio);
    add(object, "frequency_hertz"_L1, npu.hertz);
    addBytes(object, "memory_used_bytes"_L1, npu.memoryUsed);
    return object;
}

QJsonObject powerObject(const Figures &figures)
{
    QJsonObject object;
    add(object, "cpu"_L1, figures.cpu.watts);
    add(object, "gpu"_L1, gpuWatts(figures));
    if (figures.npu)
        add(object, "npu"_L1, figures.npu->watts);
    add(object, "sum"_L1, knownWatts(figures));
    add(object, "package"_L1, figures.packageWatts);
    add(object, "system"_L1, figures.systemWatts);
    return object;
}

QJsonObject temperatureObject(const Figures &figures)
{
    QJsonObject object;
    add(object, "cpu"_L1, figures.cpu.celsius);
    if (figures.npu)
        add(object, "npu"_L1, figures.npu->celsius);
    add(object, "package"_L1, figures.packageCelsius);
    return object;
}

QJsonArray processArray(const std::vector<ProcessRow> &processes)
{
    QJsonArray array;
    for (const ProcessRow &process : processes) {
        QJsonObject object{{"pid"_L1, qint64(process.id)}, {"name"_L1, process.name}};
        addBytes(object, "memory_bytes"_L1, process.memory);
        addBytes(object, "gpu_memory_bytes"_L1, process.gpuMemory);
        array.append(object);
    }
    return array;
}

QJsonArray workloadArray(const std::vector<AIWorkload> &workloads)
{
    QJsonArray array;
    for (const AIWorkload &workload : workloads) {
        QJsonObject object{{"pid"_L1, qint64(workload.pid)},
                           {"name"_L1, workload.processName},
                           {"framework"_L1, displayName(workload.framework)}};
        add(object, "model"_L1, workload.model.value_or(QString()));
        addBytes(object, "memory_bytes"_L1, workload.memory);
        addBytes(object, "gpu_memory_bytes"_L1, workload.gpuMemory);
        add(object, "gpu_busy_ratio"_L1, workload.gpuFraction);
        array.append(object);
    }
    return array;
}

} // namespace

QJsonObject figuresObject(const Figures &figures, const std::optional<SurveyFigures> &survey)
{
    QJsonObject object{{"version"_L1, figuresVersion}, {"time_seconds"_L1, figures.unixTime}};
    add(object, "chip"_L1, figures.chip);
    if (figures.memory)
        object.insert("memory"_L1, memoryObject(*figures.memory));
    add(object, "cpu"_L1, cpuObject(figures.cpu));
    object.insert("gpus"_L1, gpuArray(figures.gpus));
    if (figures.npu)
        object.insert("npu"_L1, npuObject(*figures.npu));
    add(object, "power_watts"_L1, powerObject(figures));
    add(object, "temperature_celsius"_L1, temperatureObject(figures));
    if (survey) {
        object.insert("processes"_L1, processArray(survey->processes));
        object.insert("workloads"_L1, workloadArray(survey->workloads));
    }
    return object;
}

QJsonObject barObject(const SystemMetrics &sample)
{
    const LabelNumbers numbers = labelNumbers(sample);
    const QString pressure = pressureName(sample.memory.pressure);
    return {{"text"_L1, inOneLine(numbers)},
            {"tooltip"_L1, inWords(numbers)},
            {"class"_L1, pressure},
            {"alt"_L1, pressure},
            {"percentage"_L1, static_cast<int>(usedPercent(sample.memory))}};
}

QByteArray inOneLine(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace corvane
