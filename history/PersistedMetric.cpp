#include "history/PersistedMetric.h"

#include "history/JsonText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <array>
#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// A field and its key.
template <typename Number>
struct Field {
    QLatin1StringView key;
    Number PersistedMetric::*number;
};

constexpr Field<double> time{"t"_L1, &PersistedMetric::t};
constexpr std::array byteCounts{Field<quint64>{"memTotal"_L1, &PersistedMetric::memTotal},
                                Field<quint64>{"memUsed"_L1, &PersistedMetric::memUsed}};
constexpr std::array measures{Field<double>{"memPct"_L1, &PersistedMetric::memPct},
                              Field<double>{"cpuPct"_L1, &PersistedMetric::cpuPct},
                              Field<double>{"gpuPct"_L1, &PersistedMetric::gpuPct},
                              Field<double>{"cpuW"_L1, &PersistedMetric::cpuW},
                              Field<double>{"gpuW"_L1, &PersistedMetric::gpuW},
                              Field<double>{"aneW"_L1, &PersistedMetric::aneW}};

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
    const auto add = [&line](QLatin1StringView key, const QByteArray &number) {
        line += (line.isEmpty() ? '{' : ',');
        line += '"' + QByteArray(key.data(), key.size()) + "\":" + number;
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
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();

    PersistedMetric metric;
    const auto readMeasure = [&metric, &object](const Field<double> &field) {
        const QJsonValue value = object.value(field.key);
        metric.*field.number = value.toDouble();
        return value.isDouble() && std::isfinite(value.toDouble());
    };
    if (!readMeasure(time))
        return std::nullopt;
    for (const auto &field : measures) {
        if (!readMeasure(field))
            return std::nullopt;
    }
    // Qt's values hold whole numbers of 63 bits and make doubles of the larger ones, so these are
    // read from the text.
    for (const auto &field : byteCounts) {
        const auto text = memberText(std::string_view(line.data(), line.size()),
                                     std::string_view(field.key.data(), field.key.size()));
        const auto count = text ? exactUnsigned(*text) : std::nullopt;
        if (!count)
            return std::nullopt;
        metric.*field.number = *count;
    }
    return metric;
}

} // namespace corvane
