#pragma once

#include <QLocale>
#include <QString>

namespace corvane {

/// Formats byte counts as every memory figure of the interface shows them: megabytes below one GiB,
/// gigabytes from there on, in powers of 1024.
class ByteFormatter {
public:
    /// The shared formatter in the locale of the user.
    static const ByteFormatter &f();

    explicit ByteFormatter(const QLocale &locale);

    /// "188.5 MB", "12.35 GB". At most one fraction digit for MB and two for GB, without
    /// trailing zeros; ties are rounded to even. The unit is chosen before rounding.
    QString string(quint64 bytes) const;

    /// The same always in gigabytes, as a part beside a whole is shown: "0.29 GB".
    QString gigabytes(quint64 bytes) const;

    /// The same without the unit: "0.29".
    QString gigabyteNumber(quint64 bytes) const;

private:
    QLocale m_locale;
};

} // namespace corvane
