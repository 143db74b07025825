#include "ui/ByteFormatter.h"

#include <algorithm>
#include <limits>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

struct Unit {
    int shift;          ///< The unit has 2^shift bytes.
    int fractionDigits; ///< Largest number of digits that are shown.
    quint64 steps;      ///< Steps of the last digit in one unit.
    QLatin1StringView name;
};

constexpr Unit megabyte{20, 1, 10, "MB"_L1};
constexpr Unit gigabyte{30, 2, 100, "GB"_L1};

/// `numerator / 2^shift` as a whole number, exact ties to the even neighbour.
quint64 dividedHalfEven(quint64 numerator, int shift)
{
    const quint64 whole = numerator >> shift;
    const quint64 rest = numerator & ((quint64(1) << shift) - 1);
    const quint64 half = quint64(1) << (shift - 1);
    const bool up = rest > half || (rest == half && whole % 2 == 1);
    return whole + (up ? 1 : 0);
}

QString numberText(quint64 bytes, const Unit &unit, const QLocale &locale)
{
    // The platform formatter that sets the rules takes a signed count.
    bytes = std::min<quint64>(bytes, std::numeric_limits<qint64>::max());

    // Whole units and the rest are multiplied separately, so that no product exceeds 64 bits. A
    // unit has an even number of steps, so rounding the rest to even rounds the sum to even.
    const quint64 rest = bytes & ((quint64(1) << unit.shift) - 1);
    const quint64 steps =
        (bytes >> unit.shift) * unit.steps + dividedHalfEven(rest * unit.steps, unit.shift);

    int digits = unit.fractionDigits;
    for (quint64 left = steps; digits > 0 && left % 10 == 0; left /= 10)
        --digits;
    const double value = static_cast<double>(steps) / static_cast<double>(unit.steps);
    return locale.toString(value, 'f', digits);
}

} // namespace

const ByteFormatter &ByteFormatter::f()
{
    static const ByteFormatter shared{QLocale()};
    return shared;
}

ByteFormatter::ByteFormatter(const QLocale &locale) : m_locale(locale) { }

QString ByteFormatter::string(quint64 bytes) const
{
    const Unit &unit = bytes >> gigabyte.shift == 0 ? megabyte : gigabyte;
    return numberText(bytes, unit, m_locale) + u' ' + unit.name;
}

QString ByteFormatter::gigabytes(quint64 bytes) const
{
    return gigabyteNumber(bytes) + u' ' + gigabyte.name;
}

QString ByteFormatter::gigabyteNumber(quint64 bytes) const
{
    return numberText(bytes, gigabyte, m_locale);
}

} // namespace corvane
