#include "settings/GeneralSettings.h"

#include "controls/Switch.h"
#include "login/LaunchAtLoginManager.h"
#include "settings/MetricsSettings.h"
#include "settings/SettingsNote.h"
#include "settings/SettingsTexts.h"
#include "ui/Theme.h"

namespace corvane {

using namespace Qt::StringLiterals;

GeneralSettings::GeneralSettings(LaunchAtLoginManager &launch, AppSettings &settings,
                                 const MetricsFile &metrics, QWidget *parent)
    : SettingsPage(u"Startup"_s, 1, parent),
      m_launch(new Switch(u"Launch Corvane at login"_s, this)),
      m_error(SettingsNote::outcome(Theme::critical, this)),
      m_note(SettingsNote::explanation(this)),
      m_metrics(new MetricsSettings(settings, metrics, this))
{
    m_note->showMarkdown(loginNote());
    connect(m_launch, &QAbstractButton::clicked, &launch, &LaunchAtLoginManager::setEnabled);
    const auto show = [this, &launch] { showState(launch); };
    connect(&launch, &LaunchAtLoginManager::isEnabledChanged, this, show);
    connect(&launch, &LaunchAtLoginManager::lastErrorChanged, this, show);
    showState(launch);
}

void GeneralSettings::showState(const LaunchAtLoginManager &launch)
{
    m_launch->setChecked(launch.isEnabled());
    m_error->showPlain(launch.lastError().value_or(QString()));
    layOut();
}

void GeneralSettings::resizeEvent(QResizeEvent *)
{
    layOut();
}

void GeneralSettings::layOut()
{
    m_launch->setGeometry(row(0));
    const int top = placeNote(*m_note, placeNote(*m_error, groupBottom()));
    m_metrics->setGeometry(0, top, width(), height() - top);
}

} // namespace corvane
