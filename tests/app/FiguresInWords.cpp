#include "app/FiguresInWords.h"

#include "ui/ByteFormatter.h"
#include "ui/NumberText.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <vector>

namespace corvane::test {

namespace {

using namespace Qt::StringLiterals;

using Number = std::optional<double>;

Number number(const QJsonObject &object, QLatin1StringView key)
{
    return object.contains(key) ? std::optional(object[key].toDouble()) : std::nullopt;
}

QString bytes(double count)
{
    return ByteFormatter::f().string(static_cast<quint64>(count));
}

/// The GPUs that the dashboard is about: integrated ones only where there are no others.
std::vector<QJsonObject> countedGPUs(const QJsonObject &figures)
{
    std::vector<QJsonObject> all;
    for (const QJsonValue gpu : figures["gpus"_L1].toArray())
        all.push_back(gpu.toObject());
    std::vector<QJsonObject> cards;
    std::ranges::copy_if(all, std::back_inserter(cards),
                         [](const QJsonObject &gpu) { return !gpu["integrated"_L1].toBool(); });
    return cards.empty() ? all : cards;
}

/// Those that are read: the integrated one while the only card sleeps.
std::vector<QJsonObject> readGPUs(const QJsonObject &figures)
{
    std::vector<QJsonObject> gpus = countedGPUs(figures);
    if (gpus.size() != 1 || !gpus.front()["asleep"_L1].toBool())
        return gpus;
    for (const QJsonValue gpu : figures["gpus"_L1].toArray()) {
        if (gpu["integrated"_L1].toBool())
            gpus = {gpu.toObject()};
    }
    return gpus;
}

/// The sum over all GPUs; absent where one does not tell it.
Number sum(const std::vector<QJsonObject> &gpus, QLatin1StringView key)
{
    double sum = 0;
    for (const QJsonObject &gpu : gpus) {
        if (!gpu.contains(key))
            return std::nullopt;
        sum += gpu[key].toDouble();
    }
    return gpus.empty() ? std::nullopt : std::optional(sum);
}

/// Texts with names; the absent ones are left out.
class Words {
public:
    void add(const QString &name, const QString &value) { m_texts.append(name + u": "_s + value); }
    void addBytes(const QString &name, Number count)
    {
        if (count)
            add(name, bytes(*count));
    }
    void addRatio(const QString &name, Number ratio)
    {
        if (ratio)
            add(name, percentText(100 * *ratio));
    }
    void addWatts(const QString &name, Number watts)
    {
        if (watts)
            add(name, fixedText(*watts, 2));
    }
    /// A state that is a frequency stands for the clock.
    void addFrequency(const QString &name, Number hertz, const QString &state = {})
    {
        QStringList parts;
        if (state.startsWith(u'P'))
            parts.append(state);
        if (hertz)
            parts.append(fixedText(*hertz / 1e9, 2) + u" GHz"_s);
        if (!parts.isEmpty())
            add(name, parts.join(u" · "_s));
    }
    void addStat(const QString &name, Number watts, Number celsius, int digits = 2,
                 const QString &before = {})
    {
        QStringList parts;
        if (!before.isEmpty())
            parts.append(before);
        if (watts)
            parts.append(wattsText(watts, digits));
        if (celsius)
            parts.append(celsiusText(*celsius));
        if (watts || celsius)
            add(name, parts.join(u" · "_s));
    }
    const QStringList &texts() const { return m_texts; }

private:
    QStringList m_texts;
};

QStringList memoryWords(const QJsonObject &memory)
{
    Words words;
    const Number used = number(memory, "used_bytes"_L1);
    const Number total = number(memory, "total_bytes"_L1);
    words.add(u"Memory used in percent"_s, fixedText(100 * *used / *total, 0));
    words.addBytes(u"Used"_s, used);
    words.addBytes(u"Total"_s, total);
    const Number swap = number(memory, "swap_total_bytes"_L1);
    words.add(u"Swap"_s,
              *swap == 0
                  ? u"off"_s
                  : bytes(memory["swap_used_bytes"_L1].toDouble()) + u" / "_s + bytes(*swap));
    words.add(u"Memory pressure"_s, memory["pressure"_L1].toString().toUpper());
    words.addBytes(u"App"_s, number(memory, "app_bytes"_L1));
    words.addBytes(u"Wired"_s, number(memory, "wired_bytes"_L1));
    words.addBytes(u"Compressed"_s, number(memory, "compressed_bytes"_L1));
    words.addBytes(u"Cached"_s, number(memory, "cached_bytes"_L1));
    return words.texts();
}

QStringList gpuMemoryWords(const std::vector<QJsonObject> &gpus)
{
    Words words;
    const Number used = sum(gpus, "memory_used_bytes"_L1);
    const Number total = sum(gpus, "memory_total_bytes"_L1);
    if (used && total)
        words.add(u"GPU memory used in percent"_s, fixedText(100 * *used / *total, 0));
    words.addBytes(u"Used"_s, used);
    words.addBytes(u"Total"_s, total);
    for (std::size_t i = 0; gpus.size() > 1 && i < gpus.size(); ++i) {
        const auto gigabytes = [&](QLatin1StringView key) {
            return ByteFormatter::f().gigabyteNumber(static_cast<quint64>(gpus[i][key].toDouble()));
        };
        words.add(u"Memory in use on GPU %1"_s.arg(i), gigabytes("memory_used_bytes"_L1));
        words.add(u"Memory of GPU %1"_s.arg(i), gigabytes("memory_total_bytes"_L1) + u" GB"_s);
    }
    if (used && total && gpus.size() <= 2) {
        words.addBytes(u"In use"_s, used);
        words.addBytes(u"Free"_s, *total - *used);
    }
    return words.texts();
}

QStringList cpuWords(const QJsonObject &figures)
{
    Words words;
    const QJsonObject cpu = figures["cpu"_L1].toObject();
    const QJsonObject temperatures = figures["temperature_celsius"_L1].toObject();
    const Number own = number(temperatures, "cpu"_L1);
    words.addStat(u"Power and temperature"_s,
                  number(figures["power_watts"_L1].toObject(), "cpu"_L1),
                  own ? own : number(temperatures, "package"_L1));
    words.addRatio(u"Load"_s, number(cpu, "busy_ratio"_L1));
    words.addFrequency(u"Frequency"_s, number(cpu, "frequency_hertz"_L1));
    return words.texts();
}

QStringList gpuWords(const std::vector<QJsonObject> &gpus)
{
    Words words;
    Number hottest;
    for (const QJsonObject &gpu : gpus) {
        if (const Number celsius = number(gpu, "temperature_celsius"_L1))
            hottest = std::max(hottest.value_or(*celsius), *celsius);
    }
    words.addStat(u"Power and temperature"_s, sum(gpus, "power_watts"_L1), hottest);
    if (gpus.size() == 1) {
        const QJsonObject &gpu = gpus.front();
        words.addRatio(u"Load"_s, number(gpu, "busy_ratio"_L1));
        words.addFrequency(u"Dominant state"_s, number(gpu, "frequency_hertz"_L1),
                           gpu["state"_L1].toString());
        return words.texts();
    }
    for (std::size_t i = 0; i < gpus.size(); ++i) {
        words.addRatio(u"Load of GPU %1"_s.arg(i), number(gpus[i], "busy_ratio"_L1));
        words.addStat(u"Power and temperature of GPU %1"_s.arg(i),
                      number(gpus[i], "power_watts"_L1), number(gpus[i], "temperature_celsius"_L1),
                      0, gpus.size() == 2 ? u"GPU %1"_s.arg(i) : QString());
    }
    return words.texts();
}

QStringList npuWords(const QJsonObject &figures)
{
    Words words;
    const QJsonObject npu = figures["npu"_L1].toObject();
    words.addStat(u"Power and temperature"_s,
                  number(figures["power_watts"_L1].toObject(), "npu"_L1),
                  number(figures["temperature_celsius"_L1].toObject(), "npu"_L1));
    words.addRatio(u"Load"_s, number(npu, "busy_ratio"_L1));
    words.addFrequency(u"Clock"_s, number(npu, "frequency_hertz"_L1));
    return words.texts();
}

/// The package where it tells its watts, else the sum of the parts.
Number totalWatts(const QJsonObject &power)
{
    const Number package = number(power, "package"_L1);
    return package ? package : number(power, "sum"_L1);
}

QStringList powerWords(const QJsonObject &power)
{
    Words words;
    if (const Number total = totalWatts(power))
        words.add(u"Power in watts"_s, fixedText(*total, 0));
    words.addWatts(u"Power of CPU"_s, number(power, "cpu"_L1));
    words.addWatts(u"Power of GPU"_s, number(power, "gpu"_L1));
    words.addWatts(u"Power of NPU"_s, number(power, "npu"_L1));
    if (const Number package = number(power, "package"_L1))
        words.addWatts(u"Power of Rest"_s, *package - power["sum"_L1].toDouble());
    words.addWatts(u"System"_s, number(power, "system"_L1));
    return words.texts();
}

QStringList headerWords(const QJsonObject &figures)
{
    Words words;
    words.add(u"Chip"_s, figures["chip"_L1].toString());
    const QJsonObject memory = figures["memory"_L1].toObject();
    words.addRatio(u"Memory"_s,
                   memory["used_bytes"_L1].toDouble() / memory["total_bytes"_L1].toDouble());
    const std::vector<QJsonObject> gpus = countedGPUs(figures);
    const bool isIntegrated = !gpus.empty() && gpus.front()["integrated"_L1].toBool();
    const Number used = sum(gpus, "memory_used_bytes"_L1);
    const Number total = sum(gpus, "memory_total_bytes"_L1);
    if (used && total)
        words.addRatio(isIntegrated ? u"GPU memory"_s : u"VRAM"_s, *used / *total);
    words.addRatio(u"CPU"_s, number(figures["cpu"_L1].toObject(), "busy_ratio"_L1));
    const std::vector<QJsonObject> read = readGPUs(figures);
    if (const Number loads = sum(read, "busy_ratio"_L1))
        words.addRatio(u"GPU"_s, *loads / static_cast<double>(read.size()));
    const QJsonObject power = figures["power_watts"_L1].toObject();
    if (const Number watts = totalWatts(power)) {
        const bool isAll = power.contains("cpu"_L1) || power.contains("package"_L1);
        words.add(isAll ? u"Power"_s : u"GPU power"_s, tightWattsText(watts, 1));
    }
    return words.texts();
}

} // namespace

QMap<QString, QStringList> figuresInWords(const QJsonObject &figures)
{
    const std::vector<QJsonObject> gpus = countedGPUs(figures);
    const bool isIntegrated = !gpus.empty() && gpus.front()["integrated"_L1].toBool();
    return {{u"Corvane"_s, headerWords(figures)},
            {u"Memory"_s, memoryWords(figures["memory"_L1].toObject())},
            {isIntegrated ? u"GPU Memory"_s : u"VRAM"_s, gpuMemoryWords(gpus)},
            {u"CPU"_s, cpuWords(figures)},
            {u"GPU"_s, gpuWords(readGPUs(figures))},
            {u"NPU"_s, npuWords(figures)},
            {u"Power"_s, powerWords(figures["power_watts"_L1].toObject())}};
}

QStringList figuresOfCard(const QStringList &texts)
{
    // Notes on the machine and on a longer time, and what is part of another figure.
    static const QStringList others{u"Note"_s, u"Peak"_s,   u"Graphics card"_s,
                                    u"GPUs"_s, u"In RAM"_s, u"Sum of"_s};
    static const QRegularExpression aFigure(u"[0-9]|: (off|NORMAL|WARNING|CRITICAL|Chip)$"_s);
    QStringList figures;
    for (QString text : texts) {
        const bool isOther = others.contains(text.section(u": "_s, 0, 0));
        const QString value = text.section(u": "_s, 1);
        if (isOther || !aFigure.match(u": "_s + value).hasMatch())
            continue;
        static const QRegularExpression source(u"^System · [^:]+"_s);
        text.replace(source, u"System"_s);
        // Said of a figure beside it.
        for (const QString &remark : {u" nominal"_s, u" · integrated"_s})
            text.remove(remark);
        figures.append(text);
    }
    return figures;
}

} // namespace corvane::test
