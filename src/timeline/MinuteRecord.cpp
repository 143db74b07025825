#include "timeline/MinuteRecord.h"

#include "platform/KernelText.h"

#include <QByteArrayView>

#include <cmath>
#include <cstdint>

namespace corvane {

namespace {

/// Significant digits: joules are summed, the rest is kept as `float` and shown.
constexpr int joulesDigits = 15;
constexpr int meanDigits = 6;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Reads a line from its start. Whatever does not fit fails, and so does all that follows.
class LineReader {
public:
    explicit LineReader(std::string_view line) : m_rest(line) { }

    bool hasFailed() const { return m_hasFailed; }
    bool isAtEnd() const { return m_rest.empty(); }

    void take(char wanted)
    {
        if (m_hasFailed || !m_rest.starts_with(wanted))
            m_hasFailed = true;
        else
            m_rest.remove_prefix(1);
    }

    bool takeNull()
    {
        constexpr std::string_view null = "null";
        if (!m_rest.starts_with(null))
            return false;
        m_rest.remove_prefix(null.size());
        return true;
    }

    /// A number in JSON's notation, finite.
    double number()
    {
        const std::size_t length = numberLength();
        const std::string_view text = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        const std::optional<double> number = parsed(text);
        m_hasFailed = m_hasFailed || !number;
        return number.value_or(0);
    }

    double amount()
    {
        const double value = number();
        m_hasFailed = m_hasFailed || value < 0;
        return value;
    }

    std::optional<double> amountOrNull()
    {
        return takeNull() ? std::nullopt : std::optional(amount());
    }

private:
    /// Of the number at the start of the rest; 0 if there is none.
    std::size_t numberLength() const
    {
        std::size_t at = m_rest.starts_with('-') ? 1 : 0;
        const std::size_t whole = skipDigits(at);
        if (whole == at || (m_rest[at] == '0' && whole > at + 1))
            return 0; // JSON has no leading zeros.
        at = whole;
        if (at < m_rest.size() && m_rest[at] == '.') {
            const std::size_t fraction = skipDigits(at + 1);
            if (fraction == at + 1)
                return 0;
            at = fraction;
        }
        if (at < m_rest.size() && (m_rest[at] == 'e' || m_rest[at] == 'E')) {
            ++at;
            if (at < m_rest.size() && (m_rest[at] == '+' || m_rest[at] == '-'))
                ++at;
            const std::size_t exponent = skipDigits(at);
            if (exponent == at)
                return 0;
            at = exponent;
        }
        return at;
    }

    std::size_t skipDigits(std::size_t at) const
    {
        while (at < m_rest.size() && isDigit(m_rest[at]))
            ++at;
        return at;
    }

    /// Nearly all numbers have few digits and no exponent, and a start reads a hundred thousand.
    static std::optional<double> parsed(std::string_view text)
    {
        const bool isNegative = text.starts_with('-');
        if (const auto amount = parseDecimal(text.substr(isNegative ? 1 : 0)))
            return isNegative ? -*amount : *amount;
        bool isDouble = false; // False for 1e400.
        const double value =
            QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).toDouble(&isDouble);
        return isDouble && std::isfinite(value) ? std::optional(value) : std::nullopt;
    }

    std::string_view m_rest;
    bool m_hasFailed = false;
};

/// `[known,mean,least,greatest]`
Mean readMean(LineReader &reader, bool &isRight)
{
    constexpr double mostKnown = 65'535;
    reader.take('[');
    const double known = reader.number();
    reader.take(',');
    const double mean = reader.number();
    reader.take(',');
    const double least = reader.number();
    reader.take(',');
    const double greatest = reader.number();
    reader.take(']');
    isRight = isRight && known >= 1 && known <= mostKnown && known == std::floor(known)
        && least <= mean && mean <= greatest && std::abs(least) < 1e30 && std::abs(greatest) < 1e30;
    if (!isRight || reader.hasFailed())
        return {};
    return {static_cast<float>(mean), static_cast<float>(least), static_cast<float>(greatest),
            static_cast<std::uint16_t>(known)};
}

/// The part up to the means.
MinuteEnergy readEnergy(LineReader &reader)
{
    MinuteEnergy minute;
    reader.take('[');
    minute.start = reader.number();
    reader.take(',');
    minute.energy.seconds = reader.amount();
    reader.take(',');
    minute.energy.all = reader.amount();
    for (std::optional<double> *joules :
         {&minute.energy.cpu, &minute.energy.gpu, &minute.energy.npu}) {
        reader.take(',');
        *joules = reader.amountOrNull();
    }
    return minute;
}

/// Far from where doubles cannot tell one minute from the next.
bool isStartOfMinute(double start)
{
    constexpr double furthest = 1e13;
    return std::abs(start) <= furthest && spanStart(start, minuteSeconds) == start;
}

QByteArray text(double number, int digits)
{
    return QByteArray::number(number, 'g', digits);
}

QByteArray joulesText(const std::optional<double> &joules)
{
    return joules ? text(*joules, joulesDigits) : QByteArrayLiteral("null");
}

/// Rounded numbers keep their order, so that a mean never lies outside its range.
QByteArray meanText(const Mean &mean)
{
    if (mean.known == 0)
        return QByteArrayLiteral("null");
    return '[' + QByteArray::number(mean.known) + ',' + text(double(mean.mean), meanDigits) + ','
        + text(double(mean.least), meanDigits) + ',' + text(double(mean.greatest), meanDigits)
        + ']';
}

bool isFinite(const MinuteRecord &record)
{
    bool isFinite = std::isfinite(record.means.start) && std::isfinite(record.energy.seconds)
        && std::isfinite(record.energy.all) && std::isfinite(record.energy.cpu.value_or(0))
        && std::isfinite(record.energy.gpu.value_or(0))
        && std::isfinite(record.energy.npu.value_or(0));
    for (const Mean &mean : record.means.means)
        isFinite = isFinite && std::isfinite(mean.mean) && std::isfinite(mean.least)
            && std::isfinite(mean.greatest);
    return isFinite;
}

} // namespace

std::optional<QByteArray> MinuteRecord::toLine() const
{
    if (!isFinite(*this))
        return std::nullopt;
    QByteArray line = '[' + QByteArray::number(static_cast<qint64>(means.start)) + ','
        + text(energy.seconds, joulesDigits) + ',' + text(energy.all, joulesDigits);
    for (const auto &joules : {energy.cpu, energy.gpu, energy.npu})
        line += ',' + joulesText(joules);
    for (const Mean &mean : means.means)
        line += ',' + meanText(mean);
    return line + ']';
}

std::optional<MinuteRecord> MinuteRecord::fromLine(std::string_view line)
{
    LineReader reader(line);
    const MinuteEnergy minute = readEnergy(reader);
    MinuteRecord record{.means = {.start = minute.start, .seconds = minuteSeconds},
                        .energy = minute.energy};
    bool isRight = isStartOfMinute(minute.start);
    for (Mean &mean : record.means.means) {
        reader.take(',');
        if (!reader.takeNull())
            mean = readMean(reader, isRight);
    }
    reader.take(']');
    if (!isRight || reader.hasFailed() || !reader.isAtEnd())
        return std::nullopt;
    return record;
}

std::optional<MinuteEnergy> MinuteEnergy::fromLine(std::string_view line)
{
    LineReader reader(line);
    MinuteEnergy minute = readEnergy(reader);
    if (reader.hasFailed() || !isStartOfMinute(minute.start) || !line.ends_with(']'))
        return std::nullopt;
    return minute;
}

} // namespace corvane
