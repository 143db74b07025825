#include "settings/MetricsSettings.h"

#include "controls/PanelButton.h"
#include "controls/Switch.h"
#include "figures/MetricsFile.h"
#include "sampler/AppSettings.h"
#include "settings/SettingsNote.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QDir>
#include <QFileDialog>
#include <QFontMetricsF>
#include <QPainter>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int buttonGap = 12; ///< Between the folder and the button.
constexpr int buttonMargin = 6;

} // namespace

MetricsSettings::MetricsSettings(AppSettings &settings, const MetricsFile &metrics, QWidget *parent)
    : SettingsPage(u"Metrics"_s, 2, parent),
      askForFolder([this](const QString &first) {
          return QFileDialog::getExistingDirectory(window(), u"Folder for metrics"_s, first);
      }),
      usualFolder(collectorFolder()),
      m_settings(settings),
      m_metrics(metrics),
      m_switch(new Switch(u"Write metrics for Prometheus"_s, this)),
      m_choose(new PanelButton(u"Choose…"_s, {}, this)),
      m_error(SettingsNote::outcome(Theme::critical, this)),
      m_note(SettingsNote::explanation(this))
{
    m_choose->setAccessibleName(u"Choose the folder for metrics"_s);
    connect(m_switch, &QAbstractButton::clicked, this, &MetricsSettings::switchTo);
    connect(m_choose, &QAbstractButton::clicked, this, &MetricsSettings::choose);
    connect(&settings, &AppSettings::metricsChanged, this, &MetricsSettings::showState);
    connect(&metrics, &MetricsFile::lastErrorChanged, this, &MetricsSettings::showState);
    showState();
}

std::vector<AccessibleText> MetricsSettings::accessibleTexts() const
{
    std::vector<AccessibleText> texts = SettingsPage::accessibleTexts();
    texts.push_back({u"Folder"_s, folderText(), QRectF(row(1))});
    return texts;
}

/// Without a folder so far, the collector's is taken, or the user is asked.
void MetricsSettings::switchTo(bool isOn)
{
    if (isOn && m_settings.metricsFolder().isEmpty()) {
        if (!usualFolder.isEmpty())
            m_settings.setMetricsFolder(usualFolder);
        else if (!choose())
            isOn = false;
    }
    m_settings.setWritesMetrics(isOn);
    showState();
}

/// Returns whether the user chose a folder.
bool MetricsSettings::choose()
{
    const QString folder = askForFolder(m_settings.metricsFolder());
    if (folder.isEmpty())
        return false;
    m_settings.setMetricsFolder(folder);
    return true;
}

void MetricsSettings::showState()
{
    m_switch->setChecked(m_settings.writesMetrics());
    const auto error = m_metrics.lastError();
    m_error->showPlain(error.value_or(QString()));
    m_note->showMarkdown(
        error ? QString()
              : u"Writes `corvane.prom` every 15 seconds. The names of models are in it."_s);
    layOut();
    update();
}

QString MetricsSettings::folderText() const
{
    const QString &folder = m_settings.metricsFolder();
    return folder.isEmpty() ? u"No folder"_s : QDir::toNativeSeparators(folder);
}

void MetricsSettings::resizeEvent(QResizeEvent *)
{
    layOut();
}

void MetricsSettings::layOut()
{
    m_switch->setGeometry(row(0));
    const int height = row(1).height() - 2 * buttonMargin;
    const int width = m_choose->sizeHint().width();
    m_choose->setGeometry(row(1).right() + 1 - buttonMargin - width, row(1).top() + buttonMargin,
                          width, height);
    placeNote(*m_note, placeNote(*m_error, groupBottom()));
}

void MetricsSettings::paintEvent(QPaintEvent *event)
{
    SettingsPage::paintEvent(event);
    QPainter painter(this);
    const QFont &font = Switch::textFont();
    const double left = row(1).left() + Switch::padding;
    const double room = m_choose->x() - buttonGap - left;
    painter.setPen(Theme::textSecondary);
    drawText(painter, {left, Switch::textBaseline(row(1))},
             QFontMetricsF(font).elidedText(folderText(), Qt::ElideMiddle, room), font);
}

} // namespace corvane
