#include "updates/UpdateReport.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

QString countText(unsigned int count, const QString &unit)
{
    return u"%1 %2%3 old"_s.arg(QString::number(count), unit, count == 1 ? QString() : u"s"_s);
}

QString ageText(const std::optional<unsigned int> &seconds)
{
    constexpr unsigned int minute = 60;
    constexpr unsigned int hour = 60 * minute;
    constexpr unsigned int day = 24 * hour;
    if (!seconds)
        return u"of unknown age"_s;
    if (*seconds < minute)
        return u"less than a minute old"_s;
    if (*seconds < hour)
        return countText(*seconds / minute, u"minute"_s);
    if (*seconds < 2 * day)
        return countText(*seconds / hour, u"hour"_s);
    return countText(*seconds / day, u"day"_s);
}

/// Names the age of package lists that were not refreshed; else empty.
QString sourceText(const UpdateReport &report)
{
    return report.isCurrent ? QString()
                            : u" according to package lists "_s + ageText(report.listAge);
}

} // namespace

QString updateFinding(const UpdateReport &report)
{
    switch (report.outcome) {
    case UpdateReport::Outcome::noService:
        return u"This system has no PackageKit service, which could tell of updates."_s;
    case UpdateReport::Outcome::notAPackage:
        return u"This Corvane was not installed as a package, so the system has no updates for it."_s;
    case UpdateReport::Outcome::failed:
        return u"The check failed: the system's package service gave no usable answer."_s;
    case UpdateReport::Outcome::unverified:
        return u"The signature of the package lists is wrong, so no update is offered."_s;
    case UpdateReport::Outcome::upToDate:
        return u"Corvane is up to date%1."_s.arg(sourceText(report));
    case UpdateReport::Outcome::available:
        return u"Corvane %1 is available%2; the system's updater installs it."_s.arg(
            report.version, sourceText(report));
    }
    return {};
}

} // namespace corvane
