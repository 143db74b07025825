#include "history/PersistedMetric.h"

#include "platform/KernelText.h"

#include <QByteArrayView>
#include <QLocale>

// Its assertions check doubles that the C library converts. They fail where the language's decimal
// point has several bytes, and these doubles are not used here.
#define JSON_ASSERT(condition)
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <bitset>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <variant>

namespace corvane {

namespace {

/// A field and its key.
struct Field {
    std::string_view key;
    std::variant<double PersistedMetric::*, quint64 PersistedMetric::*> number;
};

/// In the order in which they are written.
constexpr std::array fields{
    Field{"t", &PersistedMetric::t},
    Field{"memTotal", &PersistedMetric::memTotal},
    Field{"memUsed", &PersistedMetric::memUsed},
    Field{"memPct", &PersistedMetric::memPct},
    Field{"cpuPct", &PersistedMetric::cpuPct},
    Field{"gpuPct", &PersistedMetric::gpuPct},
    Field{"cpuW", &PersistedMetric::cpuW},
    Field{"gpuW", &PersistedMetric::gpuW},
    Field{"aneW", &PersistedMetric::aneW},
};

/// The exact value of a JSON number in the range of a double, also of one with more digits; absent
/// if it is negative, has a fraction or needs more than 64 bits.
std::optional<quint64> wholeNumber(std::string_view number)
{
    const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
    std::int64_t exponent = 0;
    if (mantissa.size() < number.size()) {
        const bool hasPlus = number[mantissa.size() + 1] == '+';
        std::from_chars(number.data() + mantissa.size() + (hasPlus ? 2 : 1),
                        number.data() + number.size(), exponent);
    }

    // The value is ±digits × 10^exponent, without zeros on either side of the digits.
    std::string digits(mantissa);
    if (const std::size_t point = digits.find('.'); point != std::string::npos) {
        exponent -= static_cast<std::int64_t>(digits.size() - point - 1);
        digits.erase(point, 1);
    }
    digits.erase(0, digits.find_first_not_of("-0"));
    if (digits.empty())
        return 0;
    const std::size_t significant = digits.find_last_not_of('0') + 1;
    exponent += static_cast<std::int64_t>(digits.size() - significant);
    digits.resize(significant);

    constexpr std::int64_t mostDigits = 20;
    if (number.starts_with('-') || exponent < 0
        || static_cast<std::int64_t>(significant) + exponent > mostDigits)
        return std::nullopt;
    digits.append(static_cast<std::size_t>(exponent), '0');
    return parseUnsigned(digits);
}

/// Receives the values of a line one by one as the parser reads them, which needs no tree and no
/// recursion. A function that returns false ends the parse.
class LineReader : public nlohmann::json_sax<nlohmann::json> {
public:
    /// Absent unless every field had a number of its kind.
    std::optional<PersistedMetric> metric() const
    {
        return m_found.all() ? std::optional(m_metric) : std::nullopt;
    }

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }

    bool number_integer(number_integer_t number) override
    {
        const auto whole = static_cast<quint64>(number);
        setNumber(static_cast<double>(number), number < 0 ? std::nullopt : std::optional(whole));
        return true;
    }

    bool number_unsigned(number_unsigned_t number) override
    {
        setNumber(static_cast<double>(number), number);
        return true;
    }

    bool number_float(number_float_t, const string_t &text) override
    {
        // The parser has replaced the decimal point by that of the user's language.
        std::string number = text;
        const std::size_t point = number.find_first_not_of("0123456789+-eE");
        if (point != std::string::npos)
            number[point] = '.';
        bool isDouble = false; // False for 1e400 and 1e-400.
        const double measure = QByteArrayView(number).toDouble(&isDouble);
        if (isDouble)
            setNumber(measure, wholeNumber(number));
        return isDouble;
    }

    bool start_object(std::size_t) override { return enter(); }
    bool start_array(std::size_t) override { return enter(); }
    bool end_object() override { return closeLevel(); }
    bool end_array() override { return closeLevel(); }

    bool key(string_t &name) override
    {
        if (m_depth != 1)
            return true;
        m_field =
            static_cast<std::size_t>(std::ranges::find(fields, name, &Field::key) - fields.begin());
        if (m_field < fields.size())
            m_found.reset(m_field); // If a key stands twice the last one counts.
        return true;
    }

    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) override
    {
        return false;
    }

private:
    bool enter()
    {
        ++m_depth;
        return true;
    }

    bool closeLevel()
    {
        --m_depth;
        return true;
    }

    /// Sets the field of the present key, if it has one. The count is absent for a number that is
    /// not one.
    void setNumber(double measure, std::optional<quint64> count)
    {
        if (m_depth != 1 || m_field >= fields.size())
            return;
        const auto &number = fields[m_field].number;
        if (const auto *measured = std::get_if<double PersistedMetric::*>(&number))
            m_metric.*(*measured) = measure;
        else if (count)
            m_metric.*std::get<quint64 PersistedMetric::*>(number) = *count;
        else
            return;
        m_found.set(m_field);
    }

    PersistedMetric m_metric;
    std::bitset<fields.size()> m_found;
    std::size_t m_field = fields.size(); ///< Field of the present key; past the end: none.
    int m_depth = 0;                     ///< Number of open objects and lists.
};

/// The fewest digits that give the same double again; absent if it is not finite.
std::optional<QByteArray> numberText(double number)
{
    if (!std::isfinite(number))
        return std::nullopt;
    return QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
}

std::optional<QByteArray> numberText(quint64 number)
{
    return QByteArray::number(number);
}

} // namespace

PersistedMetric PersistedMetric::from(const SystemMetrics &sample)
{
    PersistedMetric metric{.t = sample.timestamp,
                           .memTotal = sample.memory.total,
                           .memUsed = sample.memory.used,
                           .memPct = usedPercent(sample.memory)};
    if (const auto &chip = sample.chip) {
        metric.cpuPct = chip->cpuActiveFraction * 100;
        metric.gpuPct = chip->gpuActiveFraction * 100;
        metric.cpuW = chip->cpuWatts;
        metric.gpuW = chip->gpuWatts;
        metric.aneW = chip->aneWatts;
    }
    return metric;
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
    for (const Field &field : fields) {
        const auto text =
            std::visit([this](auto number) { return numberText(this->*number); }, field.number);
        if (!text)
            return std::nullopt;
        line += line.isEmpty() ? "{\"" : ",\"";
        line += QByteArrayView(field.key.data(), field.key.size());
        line += "\":" + *text;
    }
    return line + '}';
}

std::optional<PersistedMetric> PersistedMetric::fromJson(const QByteArray &line)
{
    // The parser takes a NUL as the end of its input.
    if (line.contains('\0'))
        return std::nullopt;
    LineReader reader;
    if (!nlohmann::json::sax_parse(line.begin(), line.end(), &reader))
        return std::nullopt;
    return reader.metric();
}

} // namespace corvane
