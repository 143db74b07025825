#include "ui/FocusRing.h"

#include "threads/MainThread.h"
#include "ui/ContentArea.h"
#include "ui/RoundedBox.h"

#include <QEvent>
#include <QFocusFrame>
#include <QPainter>

namespace corvane {

namespace {

/// A focus frame, since assistive technology and the pointer skip these.
class FocusRing : public QFocusFrame {
public:
    FocusRing(QWidget &widget, const QMargins &outset, double radius)
        : QFocusFrame(widget.parentWidget()),
          m_outset(outset),
          m_radius(radius)
    {
        hide();
        widget.installEventFilter(this);
        connect(&widget, &QObject::destroyed, this, &QObject::deleteLater);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto &widget = *static_cast<QWidget *>(watched);
        const QEvent::Type type = event->type();
        if (type == QEvent::FocusIn || type == QEvent::Move || type == QEvent::Resize)
            placeContent(*this,
                         contentArea(widget).translated(widget.pos()).marginsAdded(m_outset));
        if (type == QEvent::FocusIn || type == QEvent::FocusOut)
            setVisible(type == QEvent::FocusIn);
        return false;
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        paintFocusRing(painter, contentArea(*this), m_radius);
    }

private:
    QMargins m_outset;
    double m_radius;
};

} // namespace

void addFocusRing(QWidget &widget, const QMargins &outset, double radius)
{
    assertMainThread();
    if (widget.parentWidget())
        new FocusRing(widget, outset, radius);
}

} // namespace corvane
