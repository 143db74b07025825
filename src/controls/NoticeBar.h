#pragma once

#include "controls/AccessibleWidget.h"

namespace corvane {

/// One line of advice across a window, with a button that closes it and one that closes it for
/// good. It deletes itself when it is closed. Owned by its window; main thread.
class NoticeBar : public AccessibleWidget {
    Q_OBJECT

public:
    explicit NoticeBar(const QString &text, QWidget *parent = nullptr);

    std::vector<AccessibleText> accessibleTexts() const override;

signals:
    void dismissedForGood();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect textPlace() const;

    const QString m_text;
    QWidget *m_buttons;
};

} // namespace corvane
