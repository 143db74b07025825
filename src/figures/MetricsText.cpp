#include "figures/MetricsText.h"

#include <QLocale>

#include <cmath>
#include <initializer_list>
#include <map>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

struct Label {
    QByteArray name;
    QString value;
};

/// One metric with its series. It is left out while it has none.
class Metric {
public:
    Metric(QByteArray name, const QByteArray &help, const QByteArray &type = "gauge")
        : m_name(std::move(name)),
          m_text("# HELP " + m_name + ' ' + help + "\n# TYPE " + m_name + ' ' + type + '\n')
    {
    }

    /// Adds a series; nothing if its value is not known.
    void add(std::optional<double> value, const std::vector<Label> &labels = {})
    {
        if (value && std::isfinite(*value))
            addSeries(QByteArray::number(*value, 'g', QLocale::FloatingPointShortest), labels);
    }

    void addBytes(std::optional<std::uint64_t> bytes, const std::vector<Label> &labels = {})
    {
        if (bytes)
            addSeries(QByteArray::number(*bytes), labels);
    }

    QByteArray text() const { return m_hasSeries ? m_text : QByteArray(); }

private:
    void addSeries(const QByteArray &value, const std::vector<Label> &labels)
    {
        m_hasSeries = true;
        m_text += m_name;
        if (!labels.empty()) {
            QByteArrayList pairs;
            for (const Label &label : labels)
                pairs.append(label.name + "=\"" + labelValue(label.value) + '"');
            m_text += '{' + pairs.join(',') + '}';
        }
        m_text += ' ' + value + '\n';
    }

    QByteArray m_name;
    QByteArray m_text;
    bool m_hasSeries = false;
};

QByteArray memoryText(const std::optional<MemorySnapshot> &memory)
{
    Metric used("corvane_memory_used_bytes", "Memory in use.");
    Metric total("corvane_memory_total_bytes", "Memory of the machine.");
    Metric swap("corvane_swap_used_bytes", "Swap in use.");
    Metric pressure("corvane_memory_pressure", "1 for the present state of memory pressure.");
    if (memory) {
        used.addBytes(memory->used);
        total.addBytes(memory->total);
        swap.addBytes(memory->swapUsed);
        for (const auto state :
             {MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical})
            pressure.add(memory->pressure == state ? 1.0 : 0.0, {{"state", pressureName(state)}});
    }
    return used.text() + total.text() + swap.text() + pressure.text();
}

QByteArray gpuText(const std::vector<GPUFigures> &gpus)
{
    Metric busy("corvane_gpu_busy_ratio", "Share of the time in which the GPU worked.");
    Metric used("corvane_gpu_memory_used_bytes", "Memory of the GPU in use.");
    Metric total("corvane_gpu_memory_total_bytes", "Memory of the GPU.");
    Metric watts("corvane_gpu_power_watts", "Power of the GPU.");
    Metric celsius("corvane_gpu_temperature_celsius", "Temperature of the GPU.");
    for (std::size_t place = 0; place < gpus.size(); ++place) {
        const GPUFigures &gpu = gpus[place];
        const std::vector<Label> labels{{"gpu", QString::number(place)}, {"name", gpu.name}};
        busy.add(gpu.busyRatio, labels);
        used.addBytes(gpu.memoryUsed, labels);
        total.addBytes(gpu.memoryTotal, labels);
        watts.add(gpu.watts, labels);
        celsius.add(gpu.celsius, labels);
    }
    return busy.text() + used.text() + total.text() + watts.text() + celsius.text();
}

QByteArray unitText(const Figures &figures)
{
    Metric cpu("corvane_cpu_busy_ratio", "Share of the time in which the CPUs worked.");
    Metric npu("corvane_npu_busy_ratio", "Share of the time in which the NPU worked.");
    Metric celsius("corvane_temperature_celsius", "Temperature of a part of the machine.");
    cpu.add(figures.cpu.busyRatio);
    celsius.add(figures.cpu.celsius, {{"part", u"cpu"_s}});
    if (figures.npu) {
        npu.add(figures.npu->busyRatio);
        celsius.add(figures.npu->celsius, {{"part", u"npu"_s}});
    }
    celsius.add(figures.packageCelsius, {{"part", u"package"_s}});
    return cpu.text() + npu.text() + celsius.text();
}

QByteArray powerText(const Figures &figures, const Energy &energy)
{
    Metric watts("corvane_power_watts", "Power of a part of the machine.");
    Metric joules("corvane_energy_joules_total",
                  "Energy of a part since the start of the program, while its power was known.",
                  "counter");
    watts.add(figures.cpu.watts, {{"part", u"cpu"_s}});
    watts.add(gpuWatts(figures), {{"part", u"gpu"_s}});
    if (figures.npu)
        watts.add(figures.npu->watts, {{"part", u"npu"_s}});
    watts.add(figures.packageWatts, {{"part", u"package"_s}});
    watts.add(figures.systemWatts, {{"part", u"system"_s}});
    joules.add(energy.cpu, {{"part", u"cpu"_s}});
    joules.add(energy.gpu, {{"part", u"gpu"_s}});
    joules.add(energy.npu, {{"part", u"npu"_s}});
    return watts.text() + joules.text();
}

/// All workloads of one framework and model.
struct WorkloadSum {
    std::uint64_t memory = 0;
    std::optional<std::uint64_t> gpuMemory = {};
    std::optional<double> gpuFraction = {};
};

QByteArray workloadText(const std::vector<AIWorkload> &workloads)
{
    std::map<std::pair<QString, QString>, WorkloadSum> sums;
    for (const AIWorkload &workload : workloads) {
        WorkloadSum &sum =
            sums[{displayName(workload.framework), workload.model.value_or(QString())}];
        sum.memory += workload.memory;
        if (workload.gpuMemory)
            sum.gpuMemory = sum.gpuMemory.value_or(0) + *workload.gpuMemory;
        if (workload.gpuFraction)
            sum.gpuFraction = sum.gpuFraction.value_or(0) + *workload.gpuFraction;
    }
    Metric bytes("corvane_ai_workload_memory_bytes",
                 "Memory of the local AI inference with a model, in RAM and on the GPUs.");
    Metric ratio("corvane_ai_workload_gpu_ratio",
                 "Share of the GPUs' time that the local AI inference with a model used.");
    for (const auto &[names, sum] : sums) {
        const std::vector<Label> labels{{"framework", names.first}, {"model", names.second}};
        const auto ofKind = [&labels](const QString &kind) {
            std::vector<Label> all = labels;
            all.push_back({"kind", kind});
            return all;
        };
        bytes.addBytes(sum.memory, ofKind(u"ram"_s));
        bytes.addBytes(sum.gpuMemory, ofKind(u"gpu"_s));
        ratio.add(sum.gpuFraction, labels);
    }
    return bytes.text() + ratio.text();
}

} // namespace

QByteArray metricsText(const Figures &figures, const Energy &energy,
                       const std::vector<AIWorkload> &workloads)
{
    return memoryText(figures.memory) + unitText(figures) + gpuText(figures.gpus)
        + powerText(figures, energy) + workloadText(workloads);
}

QByteArray labelValue(const QString &text)
{
    QByteArray value;
    for (const char byte : text.toUtf8()) {
        switch (byte) {
        case '\\':
            value += R"(\\)";
            break;
        case '"':
            value += R"(\")";
            break;
        case '\n':
            value += R"(\n)";
            break;
        case '\0':
            break; // The format has no escape for it.
        default:
            value += byte;
        }
    }
    return value;
}

} // namespace corvane
