#include "history/PersistedMetric.h"

#include "history/JsonText.h"

#include <QByteArrayView>
#include <QJsonDocument>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

namespace corvane {

namespace {

/// A field and its key.
template <typename Number>
struct Field {
    std::string_view key;
    Number PersistedMetric::*number;
};

constexpr Field<double> time{"t", &PersistedMetric::t};
constexpr std::array byteCounts{Field<quint64>{"memTotal", &PersistedMetric::memTotal},
                                Field<quint64>{"memUsed", &PersistedMetric::memUsed}};
constexpr std::array measures{Field<double>{"memPct", &PersistedMetric::memPct},
                              Field<double>{"cpuPct", &PersistedMetric::cpuPct},
                              Field<double>{"gpuPct", &PersistedMetric::gpuPct},
                              Field<double>{"cpuW", &PersistedMetric::cpuW},
                              Field<double>{"gpuW", &PersistedMetric::gpuW},
                              Field<double>{"aneW", &PersistedMetric::aneW}};

} // namespace

PersistedMetric PersistedMetric::from(const SystemMetrics &sample)
{
    const ChipReading chip = sample.chip.value_or(ChipReading());
    return {.t = sample.timestamp,
            .memTotal = sample.memory.total,
            .memUsed = sample.memory.used,
            .memPct = usedPercent(sample.memory),
            .cpuPct = chip.cpuActiveFraction * 100,
            .gpuPct = chip.gpuActiveFraction * 100,
            .cpuW = chip.cpuWatts,
            .gpuW = chip.gpuWatts,
            .aneW = chip.aneWatts};
}

SystemMetrics PersistedMetric::toSample() const
{
    return {.timestamp = t,
            .memory = {.total = memTotal, .used = memUsed},
            .chip = ChipReading{.cpuWatts = cpuW,
                                .gpuWatts = gpuW,
                                .aneWatts = aneW,
                                .cpuActiveFraction = cpuPct / 100,
                                .gpuActiveFraction = gpuPct / 100}};
}

std::optional<QByteArray> PersistedMetric::toJson() const
{
    QByteArray line;
    const auto add = [&line](std::string_view key, const QByteArray &number) {
        line += (line.isEmpty() ? '{' : ',');
        line += '"' + QByteArray(key.data(), static_cast<qsizetype>(key.size())) + "\":" + number;
    };
    const auto addMeasure = [this, &add](const Field<double> &field) {
        const double number = this->*field.number;
        // The shortest digits that read back as the very same number.
        add(field.key, QByteArray::number(number, 'g', QLocale::FloatingPointShortest));
        return std::isfinite(number);
    };
    bool finite = addMeasure(time);
    for (const auto &field : byteCounts)
        add(field.key, QByteArray::number(this->*field.number));
    for (const auto &field : measures)
        finite = addMeasure(field) && finite;
    if (!finite)
        return std::nullopt;
    return line + '}';
}

std::optional<PersistedMetric> PersistedMetric::fromJson(const QByteArray &line)
{
    if (!QJsonDocument::fromJson(line).isObject())
        return std::nullopt;

    // Qt's values hold whole numbers of 63 bits and make doubles of the larger ones, so all numbers
    // are read from the text.
    PersistedMetric metric;
    const std::vector<JsonMember> all =
        members(std::string_view(line.data(), static_cast<std::size_t>(line.size())));
    const auto readMeasure = [&metric, &all](const Field<double> &field) {
        const std::string_view text = valueOf(all, field.key);
        bool finite = false;
        metric.*field.number = QByteArrayView(text.data(), text.size()).toDouble(&finite);
        return finite && isNumber(text);
    };
    const auto readByteCount = [&metric, &all](const Field<quint64> &field) {
        const auto count = exactUnsigned(valueOf(all, field.key));
        metric.*field.number = count.value_or(0);
        return count.has_value();
    };
    if (!readMeasure(time) || !std::ranges::all_of(byteCounts, readByteCount)
        || !std::ranges::all_of(measures, readMeasure))
        return std::nullopt;
    return metric;
}

} // namespace corvane
