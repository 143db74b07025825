#pragma once

#include "controls/AccessibleWidget.h"
#include "ui/Markdown.h"

#include <QColor>

namespace corvane {

/// A small wrapped text on a page of the settings, hidden while it is empty. Main thread.
class SettingsNote : public AccessibleWidget {
    Q_OBJECT

public:
    /// Explains a setting.
    static SettingsNote *explanation(QWidget *parent);
    /// Shows the outcome of an action.
    static SettingsNote *outcome(const QColor &color, QWidget *parent);

    /// Shows one of the program's texts, with inline Markdown.
    void showMarkdown(const QString &text);
    /// Shows any text, without markup and as a single line.
    void showPlain(const QString &text);

    /// Height of all lines at this width.
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
