#include "dashboard/WindowChoice.h"

#include "controls/WindowBackground.h"
#include "ui/FocusRing.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QtMath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int rowHeight = 22;
constexpr double margin = 2; ///< Between the edge of the row and the box of the chosen button.
constexpr double padding = 9;
constexpr double radius = 7;

const QFont &wordFont()
{
    static const QFont font = Theme::systemFont(10, QFont::Medium);
    return font;
}

/// One of the words.
class WindowButton : public QAbstractButton {
public:
    WindowButton(HistoryWindow window, QWidget *parent) : QAbstractButton(parent)
    {
        setText(windowName(window));
        setAccessibleName(u"Charts of "_s + windowName(window));
        setCheckable(true);
        setAutoExclusive(true);
        setFocusPolicy(Qt::TabFocus); // A click leaves the focus, and its ring, where it is.
        resize(qCeil(textWidth(text(), wordFont()) + 2 * padding), rowHeight);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF box = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
        if (isChecked())
            fillRounded(painter, box, radius - margin, Theme::chosenFill);
        painter.setPen(isChecked() || underMouse() ? Theme::textPrimary : Theme::textSecondary);
        const double left = (width() - textWidth(text(), wordFont())) / 2;
        drawText(painter, {left, TextLine{-0.25, double(rowHeight)}.baseline(wordFont())}, text(),
                 wordFont());
        if (hasFocus())
            paintFocusRing(painter, rect(), radius);
    }

    void enterEvent(QEnterEvent *event) override
    {
        update();
        QAbstractButton::enterEvent(event);
    }

    void leaveEvent(QEvent *event) override
    {
        update();
        QAbstractButton::leaveEvent(event);
    }
};

} // namespace

QString windowName(HistoryWindow window)
{
    switch (window) {
    case HistoryWindow::tenMin:
        return u"10 min"_s;
    case HistoryWindow::oneHour:
        return u"1 hour"_s;
    case HistoryWindow::oneDay:
        return u"1 day"_s;
    case HistoryWindow::oneMin:
        break;
    }
    return u"1 min"_s;
}

WindowChoice::WindowChoice(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(u"Time shown in the charts"_s);
    int left = 0;
    for (std::size_t i = 0; i < m_buttons.size(); ++i) {
        const HistoryWindow window = allHistoryWindows[i];
        m_buttons[i] = new WindowButton(window, this);
        m_buttons[i]->move(left, 0);
        left += m_buttons[i]->width();
        connect(m_buttons[i], &QAbstractButton::clicked, this,
                [this, window] { emit chosenByUser(window); });
    }
    setChosen(HistoryWindow::oneMin);
    resize(sizeHint());
}

HistoryWindow WindowChoice::chosen() const
{
    for (std::size_t i = 0; i < m_buttons.size(); ++i) {
        if (m_buttons[i]->isChecked())
            return allHistoryWindows[i];
    }
    return HistoryWindow::oneMin;
}

void WindowChoice::setChosen(HistoryWindow window)
{
    for (std::size_t i = 0; i < m_buttons.size(); ++i) {
        if (allHistoryWindows[i] == window)
            m_buttons[i]->setChecked(true);
    }
}

QSize WindowChoice::sizeHint() const
{
    return {m_buttons.back()->geometry().right() + 1, rowHeight};
}

QWidget *WindowChoice::lastInTabOrder() const
{
    return m_buttons.back();
}

void WindowChoice::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintWindowBackground(painter, *this, event->region());
    fillRounded(painter, rect(), radius, Theme::choiceFill);
}

} // namespace corvane
