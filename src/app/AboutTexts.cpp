#include "app/AboutTexts.h"

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

QString creditsOn(HostSystem system)
{
    const QString reads = system == HostSystem::mac
        ? u"Apple Silicon system monitor.\nReads IOReport, host_statistics64, libproc."_s
        : u"Linux system monitor.\nReads procfs, cpufreq, hwmon, powercap, DRM."_s;
    return reads + u"\n\nMade for people who run AI workloads locally."_s;
}

} // namespace

AboutTexts AboutTexts::current(const BundleVersion &bundle, HostSystem system)
{
    return {.name = u"Corvane"_s,
            .version = bundle.version.value_or(u"0.1.0"_s),
            .build = bundle.build.value_or(u"1"_s),
            .credits = creditsOn(system),
            .copyright = u"© 2026 The Corvane contributors"_s};
}

} // namespace corvane
