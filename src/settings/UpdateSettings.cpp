#include "settings/UpdateSettings.h"

#include "controls/PanelButton.h"
#include "controls/Switch.h"
#include "settings/SettingsNote.h"
#include "settings/SettingsTexts.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"
#include "updates/UpdaterManager.h"

#include <QPainter>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int buttonGap = 14;  ///< Below the note.
constexpr int findingGap = 12; ///< Between the finding and the button.

} // namespace

UpdateSettings::UpdateSettings(UpdaterManager &updater, QWidget *parent)
    : SettingsPage(u"Auto-update"_s, 2, parent),
      m_version(updater.currentVersion()),
      m_automatic(new Switch(u"Check for updates automatically"_s, this)),
      m_note(SettingsNote::explanation(this)),
      m_finding(SettingsNote::outcome(Theme::textSecondary, this)),
      m_checkNow(new PanelButton(u"Check Now"_s, {}, this))
{
    m_note->showMarkdown(updatesNote(updater.isOffered()));
    m_automatic->setEnabled(updater.isOffered());
    m_automatic->setChecked(updater.automaticallyChecks());
    connect(m_automatic, &QAbstractButton::clicked, &updater,
            &UpdaterManager::setAutomaticallyChecks);
    connect(&updater, &UpdaterManager::automaticallyChecksChanged, m_automatic,
            &QAbstractButton::setChecked);
    m_checkNow->setEnabled(updater.canCheck());
    connect(m_checkNow, &QAbstractButton::clicked, &updater, &UpdaterManager::checkForUpdates);
    connect(&updater, &UpdaterManager::canCheckChanged, m_checkNow, &QWidget::setEnabled);
    connect(&updater, &UpdaterManager::findingChanged, this,
            [this, &updater] { showFinding(updater); });
    showFinding(updater);
}

std::vector<AccessibleText> UpdateSettings::accessibleTexts() const
{
    std::vector<AccessibleText> texts = SettingsPage::accessibleTexts();
    texts.push_back({u"Current version"_s, m_version, QRectF(row(0))});
    return texts;
}

void UpdateSettings::showFinding(const UpdaterManager &updater)
{
    m_finding->showPlain(updater.finding().value_or(QString()));
    layOut();
}

void UpdateSettings::resizeEvent(QResizeEvent *)
{
    layOut();
}

/// The finding stands beside the button.
void UpdateSettings::layOut()
{
    m_automatic->setGeometry(row(1));
    const int top = placeNote(*m_note, groupBottom()) + buttonGap;
    const QSize button = m_checkNow->sizeHint();
    m_checkNow->setGeometry(row(0).right() + 1 - button.width(), top, button.width(),
                            button.height());
    const int left = row(0).left() + Switch::padding;
    const int width = m_checkNow->x() - findingGap - left;
    const int height = m_finding->heightForWidth(width);
    m_finding->setGeometry(left, std::max(top, top + (button.height() - height) / 2), width,
                           height);
}

void UpdateSettings::paintEvent(QPaintEvent *event)
{
    SettingsPage::paintEvent(event);
    QPainter painter(this);
    const QRectF place = QRectF(row(0)).adjusted(Switch::padding, 0, -Switch::padding, 0);
    const double baseline = Switch::textBaseline(place);
    painter.setPen(Theme::textPrimary);
    drawText(painter, {place.left(), baseline}, u"Current version"_s, Switch::textFont());
    painter.setPen(Theme::textSecondary);
    drawTextRight(painter, {place.right(), baseline}, m_version, Switch::textFont());
}

} // namespace corvane
