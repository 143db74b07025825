#include "app/AboutPanel.h"

#include "controls/ContextMenu.h"
#include "controls/Logo.h"
#include "controls/WindowBackground.h"
#include "threads/MainThread.h"
#include "ui/Theme.h"
#include "windows/WindowTools.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QPainter>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int side = 300;
constexpr QRectF logo{114, 26, 72, 72};
constexpr TextLine nameLine{112.75, 18}; ///< A rounded top would shift the text at scale 2.
constexpr TextLine versionLine{135, 14};
constexpr TextLine firstCreditsLine{163.5, 15};
constexpr TextLine copyrightLine{267, 13};

} // namespace

AboutPanel::AboutPanel(const AboutTexts &texts, QWidget *parent) : AccessibleWidget(parent)
{
    assertMainThread();
    setWindowFlag(Qt::Dialog);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setWindowTitle(u"About %1"_s.arg(texts.name));
    setAccessibleName(windowTitle());
    setFixedSize(side, side);
    closeOnControlW(*this);
    closeOnEscape(*this);

    auto *copyText = new QAction(u"Copy"_s, this);
    copyText->setShortcut(QKeySequence::Copy);
    connect(copyText, &QAction::triggered, this, &AboutPanel::copy);
    addAction(copyText);

    addLine(texts.name, Theme::systemFont(16, QFont::DemiBold), Theme::textPrimary, nameLine);
    addLine(u"Version %1 (%2)"_s.arg(texts.version, texts.build), Theme::systemFont(11),
            Theme::textSecondary, versionLine);
    TextLine place = firstCreditsLine;
    for (const QString &line : texts.credits.split(u'\n')) {
        addLine(line, Theme::systemFont(11), Theme::textSecondary, place);
        place.top += place.height;
    }
    addLine(texts.copyright, Theme::systemFont(10), Theme::textTertiary, copyrightLine);
}

std::vector<AccessibleText> AboutPanel::accessibleTexts() const
{
    std::vector<AccessibleText> texts;
    for (const CardText &line : m_lines) {
        if (line.isAccessible())
            texts.push_back(line.accessible());
    }
    return texts;
}

void AboutPanel::addLine(const QString &text, const QFont &font, const QColor &color,
                         const TextLine &place)
{
    m_lines.push_back({.text = text,
                       .font = font,
                       .color = color,
                       .alignment = Qt::AlignHCenter,
                       .baseline = {side / 2.0, place.baseline(font)}});
}

void AboutPanel::copy() const
{
    QStringList lines;
    for (const CardText &line : m_lines)
        lines.append(line.text);
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

void AboutPanel::contextMenuEvent(QContextMenuEvent *event)
{
    popUpActions(*this, event->globalPos());
}

void AboutPanel::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintWindowBackground(painter, *this, event->region());
    paintLogo(painter, logo, LogoSize::large);
    for (const CardText &line : m_lines)
        line.paint(painter);
}

} // namespace corvane
