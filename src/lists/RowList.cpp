#include "lists/RowList.h"

#include "controls/ContextMenu.h"
#include "ui/ContentArea.h"
#include "ui/FocusRing.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double thumbWidth = 4;
constexpr double thumbInset = 6; ///< From the right edge.
constexpr int ringInset = 3;     ///< From the left and right edges, beside rows and thumb.
constexpr int ringRise = 6;      ///< Above the first row.
constexpr double minThumbHeight = 24;
constexpr int eighthsOfDegreePerPoint = 2; ///< One notch of a wheel is 60 points.

} // namespace

int RowGeometry::maxOffset() const
{
    return std::max(contentHeight() - viewHeight, 0);
}

int RowGeometry::top(int row, int offset) const
{
    return row * (rowHeight + gap) - offset;
}

std::pair<double, double> RowGeometry::thumb(int offset) const
{
    if (maxOffset() == 0)
        return {0, 0};
    const double view = viewHeight;
    const double height = std::min(std::max(view * view / contentHeight(), minThumbHeight), view);
    return {(view - height) * offset / maxOffset(), height};
}

RowList::RowList(const QString &name, Rows rows, QWidget *parent)
    : AccessibleWidget(parent),
      m_rows(std::move(rows))
{
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    m_geometry.rowHeight = m_rows.height;
    m_geometry.gap = m_rows.gap;
    addFocusRing(*this, {-ringInset, ringRise, -ringInset, 0}, 7);
}

void RowList::setRowCount(int count)
{
    if (count == m_geometry.count)
        return;
    m_geometry.count = count;
    m_offset = std::min(m_offset, m_geometry.maxOffset());
    update();
}

void RowList::updateRow(int row)
{
    const QRect place = rowRect(row).toAlignedRect();
    if (place.intersects(rect()))
        update(place);
}

void RowList::scrollTo(int offset)
{
    offset = std::clamp(offset, 0, m_geometry.maxOffset());
    if (offset == m_offset)
        return;
    m_offset = offset;
    update();
}

std::vector<AccessibleText> RowList::accessibleTexts() const
{
    std::vector<AccessibleText> texts;
    for (int row = 0; row < m_geometry.count; ++row) {
        texts.push_back(m_rows.accessibleRow(row));
        texts.back().place = rowRect(row);
    }
    return texts;
}

QRectF RowList::rowRect(int row) const
{
    const QRectF area = contentArea(*this);
    return QRectF(area.left() + m_rows.margin, area.top() + m_geometry.top(row, m_offset),
                  area.width() - 2 * m_rows.margin, m_rows.height);
}

QRectF RowList::thumbRect() const
{
    const auto [top, height] = m_geometry.thumb(m_offset);
    const QRectF area = contentArea(*this);
    return {area.right() - thumbInset - thumbWidth, area.top() + top, thumbWidth, height};
}

void RowList::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF dirty = event->rect();
    const QRectF area = contentArea(*this);
    QRectF plain = area;
    if (m_offset < m_geometry.maxOffset()) {
        plain.setBottom(plain.bottom() - fadeHeight);
        paintFade(painter, area.adjusted(0, plain.height(), 0, 0));
    }
    painter.save();
    paintRows(painter, plain & dirty);
    painter.restore();

    if (m_geometry.maxOffset() > 0)
        fillRounded(painter, thumbRect(), thumbWidth / 2, Theme::scrollThumb);
}

void RowList::paintRows(QPainter &painter, const QRectF &part) const
{
    for (int row = 0; row < m_geometry.count; ++row) {
        if (!rowRect(row).intersects(part))
            continue;
        // A name of stacked accents would reach far into other rows.
        painter.setClipRect(rowRect(row) & part);
        m_rows.paint(painter, row, rowRect(row));
    }
}

void RowList::paintFade(QPainter &painter, const QRectF &part) const
{
    const double scale = painter.deviceTransform().m11();
    QImage layer((part.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(scale);
    layer.fill(Qt::transparent);
    QPainter rows(&layer);
    rows.setRenderHint(QPainter::Antialiasing);
    rows.translate(-part.topLeft());
    paintRows(rows, part);
    QLinearGradient fade(part.topLeft(), part.bottomLeft());
    fade.setColorAt(0, Qt::black);
    fade.setColorAt(1, Qt::transparent);
    rows.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    rows.fillRect(part, fade);
    rows.end();
    painter.drawImage(part.topLeft(), layer);
}

void RowList::resizeEvent(QResizeEvent *)
{
    m_geometry.viewHeight = qRound(contentArea(*this).height());
    m_offset = std::min(m_offset, m_geometry.maxOffset());
}

void RowList::wheelEvent(QWheelEvent *event)
{
    int points = event->pixelDelta().y();
    if (points == 0) {
        m_wheelRemainder += event->angleDelta().y();
        points = m_wheelRemainder / eighthsOfDegreePerPoint;
        m_wheelRemainder %= eighthsOfDegreePerPoint;
    }
    scrollTo(m_offset - points);
    event->accept();
}

std::optional<int> RowList::rowAt(const QPointF &place) const
{
    for (int row = 0; row < m_geometry.count; ++row) {
        if (rect().contains(place.toPoint()) && rowRect(row).contains(place))
            return row;
    }
    return std::nullopt;
}

QString RowList::copiedText(const QPointF &place) const
{
    const auto textOf = [this](int row) {
        const AccessibleText text = m_rows.accessibleRow(row);
        return text.name + u": "_s + text.value;
    };
    if (const auto row = rowAt(place))
        return textOf(*row);
    QStringList all;
    for (int row = 0; row < m_geometry.count; ++row)
        all.append(textOf(row));
    return all.join(u'\n');
}

/// What a tool tip says may come from other programs: it is no markup.
void RowList::showToolTip(const QHelpEvent &help)
{
    const auto row = rowAt(help.pos());
    const QString text = row ? m_rows.accessibleRow(*row).description : QString();
    if (text.isEmpty())
        return QToolTip::hideText();
    QToolTip::showText(help.globalPos(), plainToolTip(text), this, rowRect(*row).toAlignedRect());
}

void RowList::contextMenuEvent(QContextMenuEvent *event)
{
    const bool hasPlace = event->reason() == QContextMenuEvent::Mouse;
    popUpCopy(*this, copiedText(hasPlace ? event->pos() : QPointF(-1, -1)), event->globalPos());
}

/// The key of Copy is for the list, although a menu bar may have a command of that key.
bool RowList::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy))
        event->accept();
    if (event->type() == QEvent::ToolTip) {
        showToolTip(*static_cast<QHelpEvent *>(event));
        return true;
    }
    return AccessibleWidget::event(event);
}

void RowList::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        const QPointF pointer =
            underMouse() ? mapFromGlobal(QPointF(QCursor::pos())) : QPointF(-1, -1);
        QGuiApplication::clipboard()->setText(copiedText(pointer));
        return;
    }
    const int step = m_rows.height + m_rows.gap;
    const int page = std::max(height() / step - 1, 1) * step;
    switch (event->key()) {
    case Qt::Key_Up:
        return scrollTo(m_offset - step);
    case Qt::Key_Down:
        return scrollTo(m_offset + step);
    case Qt::Key_PageUp:
        return scrollTo(m_offset - page);
    case Qt::Key_PageDown:
        return scrollTo(m_offset + page);
    case Qt::Key_Home:
        return scrollTo(0);
    case Qt::Key_End:
        return scrollTo(m_geometry.maxOffset());
    default:
        AccessibleWidget::keyPressEvent(event);
    }
}

void RowList::mousePressEvent(QMouseEvent *event)
{
    // A target wider than the thin thumb.
    if (thumbRect().adjusted(-thumbInset, 0, thumbInset, 0).contains(event->position()))
        m_dragOffset = event->position().y() - thumbRect().top();
}

void RowList::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragOffset)
        return;
    const double way = height() - thumbRect().height();
    if (way > 0)
        scrollTo(qRound((event->position().y() - *m_dragOffset) / way * m_geometry.maxOffset()));
}

void RowList::mouseReleaseEvent(QMouseEvent *)
{
    m_dragOffset.reset();
}

} // namespace corvane
