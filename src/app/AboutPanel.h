#pragma once

#include "app/AboutTexts.h"
#include "cards/CardText.h"

namespace corvane {

/// Shows the about panel, or brings it to the front: the system's own on a Mac, elsewhere an
/// `AboutPanel`. There is at most one. Main thread.
void showAboutPanel();

/// A window with the program's logo, name and version, what it reads and who made it. Main thread.
/// Escape closes it; its text can be copied.
class AboutPanel : public AccessibleWidget {
    Q_OBJECT

public:
    explicit AboutPanel(const AboutTexts &texts = AboutTexts::current(), QWidget *parent = nullptr);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void addLine(const QString &text, const QFont &font, const QColor &color,
                 const TextLine &place);
    void copy() const;

    std::vector<CardText> m_lines; ///< From top to bottom.
};

} // namespace corvane
