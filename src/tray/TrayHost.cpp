#include "tray/TrayHost.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace corvane {

namespace {

constexpr std::size_t shortNameLength = 15;

struct KnownHost {
    std::string_view program;
    TrayHost host;
};

constexpr std::array knownHosts{
    KnownHost{"gnome-shell", {.form = LabelForm::text}},
    KnownHost{"ayatana-indicator-application-service", {.form = LabelForm::text}},
    KnownHost{"indicator-application-service", {.form = LabelForm::text}},
    KnownHost{"waybar", {.form = LabelForm::widePicture}},
    KnownHost{"swaybar", {.order = ItemOrder::newestLeft}}, // Drops what is not square.
};

/// Xfce runs each plugin of its panel as "panel-NUMBER-PLUGIN" of one wrapper program.
bool isXfcePlugin(const TrayProgram &program)
{
    constexpr std::string_view prefix = "panel-";
    const std::string_view name = program.name;
    if (!name.starts_with(prefix))
        return false;
    const std::string_view rest = name.substr(prefix.size());
    const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
    return digits > 0 && rest.substr(digits).starts_with("-s"); // systray, statusnotifier
}

bool isProgram(const TrayProgram &program, std::string_view name)
{
    return program.name == name.substr(0, shortNameLength) || program.executable == name;
}

} // namespace

TrayHost trayHost(const TrayProgram &program)
{
    if (isXfcePlugin(program))
        return {.order = ItemOrder::newestLeft};
    const auto *known = std::ranges::find_if(knownHosts, [&program](const KnownHost &candidate) {
        return isProgram(program, candidate.program);
    });
    return known == knownHosts.end() ? TrayHost{} : known->host;
}

} // namespace corvane
