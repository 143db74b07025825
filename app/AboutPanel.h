#pragma once

#include "app/AboutTexts.h"

#include <QWidget>

namespace corvane {

/// Shows the about panel, or brings it to the front: the system's own on a Mac, elsewhere an
/// `AboutPanel`. There is at most one. Main thread.
void showAboutPanel();

/// Who the program is: its sign, name and version, what it reads, whose it is. A window of its own;
/// Escape closes it. Main thread.
class AboutPanel : public QWidget {
    Q_OBJECT

public:
    explicit AboutPanel(const AboutTexts &texts = AboutTexts::current(), QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace corvane
