#include "app/AboutPanel.h"

#include "ui/ContextMenu.h"
#include "ui/Logo.h"
#include "ui/Theme.h"
#include "ui/WindowBackground.h"
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
constexpr QRectF sign{114, 26, 72, 72};
constexpr double nameBaseline = 127.5;
constexpr double versionBaseline = 146;
constexpr double creditsBaseline = 175;
constexpr double creditsLine = 15;
constexpr double copyrightBaseline = 277;

} // namespace

AboutPanel::AboutPanel(const AboutTexts &texts, QWidget *parent) : AccessibleWidget(parent)
{
    setWindowFlag(Qt::Dialog);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setWindowTitle(u"About %1"_s.arg(texts.name));
    setAccessibleName(windowTitle());
    setFixedSize(side, side);
    closeOnUsualKey(*this);
    closeOnEscape(*this);

    auto *copyText = new QAction(u"Copy"_s, this);
    copyText->setShortcut(QKeySequence::Copy);
    connect(copyText, &QAction::triggered, this, &AboutPanel::copy);
    addAction(copyText);

    addLine(texts.name, Theme::systemFont(16, QFont::DemiBold), Theme::textPrimary, nameBaseline);
    addLine(u"Version %1 (%2)"_s.arg(texts.version, texts.build), Theme::systemFont(11),
            Theme::textSecondary, versionBaseline);
    double baseline = creditsBaseline;
    for (const QString &line : texts.credits.split(u'\n')) {
        addLine(line, Theme::systemFont(11), Theme::textSecondary, baseline);
        baseline += creditsLine;
    }
    addLine(texts.copyright, Theme::systemFont(10), Theme::textTertiary, copyrightBaseline);
}

std::vector<AccessibleText> AboutPanel::accessibleTexts() const
{
    std::vector<AccessibleText> texts;
    for (const CardText &line : m_lines) {
        if (line.isSpoken())
            texts.push_back(line.spoken());
    }
    return texts;
}

void AboutPanel::addLine(const QString &text, const QFont &font, const QColor &color,
                         double baseline)
{
    m_lines.push_back({.text = text,
                       .font = font,
                       .color = color,
                       .side = Qt::AlignHCenter,
                       .baseline = {side / 2.0, baseline}});
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
    paintLogo(painter, sign, LogoSize::large);
    for (const CardText &line : m_lines)
        line.paint(painter);
}

} // namespace corvane
