#include "settings/SettingsNote.h"

#include "threads/MainThread.h"
#include "ui/Theme.h"

#include <QPainter>

#include <cmath>

namespace corvane {

namespace {

MarkdownStyle noteStyle(double pixelSize, const TextLine &line)
{
    MarkdownStyle style = markdownStyle(pixelSize);
    style.lineHeight = line.height;
    style.baseline = line.baseline(style.plain);
    style.codeBox = {1, line.height - 1};
    return style;
}

} // namespace

SettingsNote *SettingsNote::explanation(QWidget *parent)
{
    return new SettingsNote(noteStyle(10, {0, 14}), Theme::textSecondary, parent);
}

SettingsNote *SettingsNote::outcome(const QColor &color, QWidget *parent)
{
    return new SettingsNote(noteStyle(11, {-0.5, 15}), color, parent);
}

SettingsNote::SettingsNote(const MarkdownStyle &style, const QColor &color, QWidget *parent)
    : AccessibleWidget(parent),
      m_style(style),
      m_color(color)
{
    assertMainThread();
    hide();
}

void SettingsNote::showMarkdown(const QString &text)
{
    showRuns(markdownRuns(text));
}

void SettingsNote::showPlain(const QString &text)
{
    showRuns(text.isEmpty() ? QList<MarkdownRun>() : QList<MarkdownRun>{{singleLine(text)}});
}

void SettingsNote::showRuns(const QList<MarkdownRun> &runs)
{
    m_runs = runs;
    setVisible(!runs.isEmpty());
    announceText(0);
    update();
}

int SettingsNote::heightForWidth(int width) const
{
    return static_cast<int>(
        std::ceil(layOut(m_runs, m_style, width).lineCount * m_style.lineHeight));
}

std::vector<AccessibleText> SettingsNote::accessibleTexts() const
{
    QString text;
    for (const MarkdownRun &run : m_runs)
        text += run.text;
    if (text.isEmpty())
        return {};
    return {{{}, text, QRectF(rect())}};
}

void SettingsNote::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintMarkdown(painter, {}, layOut(m_runs, m_style, width()), m_style, m_color);
}

} // namespace corvane
