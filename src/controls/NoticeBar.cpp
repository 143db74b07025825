#include "controls/NoticeBar.h"

#include "controls/PanelButton.h"
#include "threads/MainThread.h"
#include "ui/PixelGrid.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QBoxLayout>
#include <QPainter>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int margin = 16;
constexpr int height = 44;
constexpr int gap = 8;

const QFont &textFont()
{
    static const QFont font = Theme::systemFont(11);
    return font;
}

} // namespace

NoticeBar::NoticeBar(const QString &text, QWidget *parent)
    : AccessibleWidget(parent),
      m_text(singleLine(text)),
      m_buttons(new QWidget(this))
{
    assertMainThread();
    setAccessibleName(u"Notice"_s);
    setToolTip(plainToolTip(m_text)); // The line may be cut.
    setFixedHeight(corvane::height);
    auto *forGood = new PanelButton(u"Don’t Show Again"_s, {}, m_buttons);
    auto *close = new PanelButton(u"Close"_s, {}, m_buttons);
    auto *row = new QHBoxLayout(m_buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(gap);
    row->addWidget(forGood);
    row->addWidget(close);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(margin, 0, margin, 0);
    line->addStretch();
    line->addWidget(m_buttons);
    connect(forGood, &PanelButton::clicked, this, &NoticeBar::dismissedForGood);
    for (PanelButton *button : {forGood, close})
        connect(button, &PanelButton::clicked, this, &QObject::deleteLater);
}

std::vector<AccessibleText> NoticeBar::accessibleTexts() const
{
    return {{.value = m_text, .place = textPlace()}};
}

QRect NoticeBar::textPlace() const
{
    return {margin, 0, m_buttons->x() - 2 * margin, QWidget::height()};
}

void NoticeBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::cardFill);
    fillHairline(painter, QRectF(0, 0, width(), 1), Theme::divider);
    const QRect place = textPlace();
    const TextLine line{0, static_cast<double>(place.height())};
    painter.setPen(Theme::textSecondary);
    drawText(painter, QPointF(place.left(), line.baseline(textFont())),
             elided(m_text, textFont(), place.width()), textFont(), Digits::proportional);
}

} // namespace corvane
