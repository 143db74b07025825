#include "ui/EnergyText.h"

#include "ui/NumberText.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// "412 Wh today, 7 h 12 min measured"
QString measuredText(const Energy &energy, const QString &since)
{
    return u"%1 %2, %3 measured"_s.arg(energyText(energy.all), since, durationText(energy.seconds));
}

/// "CPU 200 Wh, GPU 190 Wh", as far as the parts are known.
QString partsText(const Energy &energy, const QString &npu)
{
    QStringList parts;
    if (energy.cpu)
        parts.append(u"CPU "_s + energyText(*energy.cpu));
    if (energy.gpu)
        parts.append(u"GPU "_s + energyText(*energy.gpu));
    if (energy.npu)
        parts.append(npu + u' ' + energyText(*energy.npu));
    return parts.join(u", "_s);
}

QString withParts(const Energy &energy, const QString &since, const QString &npu)
{
    const QString parts = partsText(energy, npu);
    return measuredText(energy, since) + (parts.isEmpty() ? QString() : u": "_s + parts);
}

bool wasMeasured(const DayEnergy &day)
{
    return day.energy.seconds > 0;
}

/// A row of the table: code keeps its spaces, and its digits have one width.
QString dayRow(const DayEnergy &day)
{
    constexpr int energyWidth = 9;
    constexpr int durationWidth = 12;
    const QString energy = wasMeasured(day) ? energyText(day.energy.all) : u"\u2013"_s;
    const QString duration = wasMeasured(day) ? durationText(day.energy.seconds) : u"\u2013"_s;
    return u'`' + day.date.toString(u"ddd dd MMM"_s) + energy.rightJustified(energyWidth + 2)
        + duration.rightJustified(durationWidth + 2) + u'`';
}

/// With spaces between names, numbers and units at which no line is broken.
QString keptTogether(QString text)
{
    static const QRegularExpression space(u"(?<=[0-9]) (?=[a-zA-Z])|(?<=[A-Zh]) (?=[0-9])"_s);
    return text.replace(space, QString(QChar::Nbsp));
}

bool isMeasured(const EnergyReport &report)
{
    return report.today().seconds > 0 || report.sinceStart.seconds > 0;
}

} // namespace

QString energyText(double joules)
{
    constexpr double joulesPerWattHour = 3'600;
    const double wattHours = joules / joulesPerWattHour;
    if (wattHours < 9.995)
        return fixedText(wattHours, 2) + u" Wh"_s;
    if (wattHours < 99.95)
        return fixedText(wattHours, 1) + u" Wh"_s;
    if (wattHours < 9'999.5)
        return fixedText(wattHours, 0) + u" Wh"_s;
    return fixedText(wattHours / 1'000, 1) + u" kWh"_s;
}

QString durationText(double seconds)
{
    constexpr double minute = 60;
    constexpr qint64 minutesOfAnHour = 60;
    if (!(seconds >= minute))
        return fixedText(std::floor(seconds), 0) + u" s"_s;
    const auto minutes = static_cast<qint64>(seconds / minute);
    if (minutes < minutesOfAnHour)
        return u"%1 min"_s.arg(minutes);
    return u"%1 h %2 min"_s.arg(minutes / minutesOfAnHour).arg(minutes % minutesOfAnHour);
}

QString energyTodayText(const EnergyReport &report)
{
    const Energy today = report.today();
    return today.seconds > 0 ? measuredText(today, u"today"_s) : QString();
}

QString shortEnergyText(const EnergyReport &report)
{
    const Energy today = report.today();
    return today.seconds > 0 ? energyText(today.all) + u" today"_s : QString();
}

QString energyTip(const EnergyReport &report, const QString &npu)
{
    if (!isMeasured(report))
        return {};
    return withParts(report.today(), u"today"_s, npu) + u'\n'
        + withParts(report.sinceStart, u"since the start"_s, npu);
}

QString energyMarkdown(const EnergyReport &report, const QString &npu)
{
    if (!isMeasured(report))
        return {};
    QStringList rows;
    for (auto day = std::ranges::find_if(report.days, wasMeasured); day != report.days.end(); ++day)
        rows.append(dayRow(*day));
    const QString text = u"**Energy**: "_s + withParts(report.today(), u"today"_s, npu) + u". "_s
        + withParts(report.sinceStart, u"since the start"_s, npu)
        + u". Time asleep, and time in which nothing could be read, is left out."_s;
    return keptTogether(text) + u"\n\n"_s + rows.join(u'\n');
}

} // namespace corvane
