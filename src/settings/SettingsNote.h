#pragma once

#include "ui/AccessibleWidget.h"
#include "ui/Markdown.h"

#include <QColor>

namespace corvane {

/// A small text on a page of the settings, broken into as many lines as it needs. Empty, it is
/// hidden. Main thread.
class SettingsNote : public AccessibleWidget {
    Q_OBJECT

public:
    /// What explains a setting.
    static SettingsNote *explanation(QWidget *parent);
    /// What was said after an action.
    static SettingsNote *outcome(const QColor &color, QWidget *parent);

    /// A text of our own, with inline marks.
    void showMarkdown(const QString &text);
    /// Any text, as it is.
    void showPlain(const QString &text);

    /// As high as it must be at its width.
    int heightForWidth(int width) const override;

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    SettingsNote(const MarkdownStyle &style, const QColor &color, QWidget *parent);
    void showRuns(const QList<MarkdownRun> &runs);

    const MarkdownStyle m_style;
    const QColor m_color;
    QList<MarkdownRun> m_runs;
};

} // namespace corvane
