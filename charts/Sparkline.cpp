#include "charts/Sparkline.h"

#include "cards/PixelGrid.h"
#include "cards/TextLayout.h"
#include "cards/Theme.h"
#include "charts/ChartTime.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

const QFont &labelFont()
{
    static const QFont font = Theme::systemFont(9, QFont::Medium);
    return font;
}

/// A single colour is flat; several run evenly from the top edge to the bottom edge.
QBrush fillBrush(const std::vector<QColor> &colors, double height)
{
    if (colors.empty())
        return Qt::NoBrush;
    if (colors.size() == 1)
        return colors.front();
    QLinearGradient gradient(0, 0, 0, height);
    for (std::size_t i = 0; i < colors.size(); ++i)
        gradient.setColorAt(static_cast<double>(i) / static_cast<double>(colors.size() - 1),
                            colors[i]);
    return gradient;
}

} // namespace

Sparkline::Sparkline(QWidget *parent) : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void Sparkline::show(SparklineData chart)
{
    if (chart != m_data) {
        m_data = std::move(chart);
        m_prepared = false;
        update();
    }
    updatePill();
}

void Sparkline::setHoverPill(PillBuilder builder)
{
    m_buildPill = std::move(builder);
    updatePill();
}

std::optional<std::size_t> Sparkline::hoveredIndex() const
{
    if (!m_cursorX)
        return std::nullopt;
    return nearestIndex(m_data.timestamps, m_data.xDomain, *m_cursorX, width());
}

QString Sparkline::spokenValue() const
{
    if (!m_buildPill || m_data.timestamps.empty())
        return {};
    return spokenText(m_buildPill(hoveredIndex().value_or(m_data.timestamps.size() - 1)));
}

void Sparkline::resizeEvent(QResizeEvent *)
{
    m_prepared = false;
    if (m_cursorX)
        followPointer(*m_cursorX);
}

void Sparkline::hideEvent(QHideEvent *)
{
    setCursorX(std::nullopt);
}

void Sparkline::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LocaleChange) {
        m_prepared = false;
        update();
    }
    QWidget::changeEvent(event);
}

void Sparkline::enterEvent(QEnterEvent *event)
{
    followPointer(event->position().x());
}

void Sparkline::mouseMoveEvent(QMouseEvent *event)
{
    followPointer(event->position().x());
}

void Sparkline::leaveEvent(QEvent *)
{
    setCursorX(std::nullopt);
}

void Sparkline::keyPressEvent(QKeyEvent *event)
{
    if (!stepCursor(event->key()))
        QWidget::keyPressEvent(event);
}

void Sparkline::focusInEvent(QFocusEvent *)
{
    update();
}

void Sparkline::focusOutEvent(QFocusEvent *)
{
    if (!underMouse())
        setCursorX(std::nullopt);
    update();
}

void Sparkline::followPointer(double x)
{
    setCursorX(x >= 0 && x <= width() ? std::optional(x) : std::nullopt);
}

void Sparkline::setCursorX(std::optional<double> x)
{
    if (x == m_cursorX)
        return;
    m_cursorX = x;
    updatePill();
    update();
}

/// Moves the cursor by the key; says whether the key was for it.
bool Sparkline::stepCursor(int key)
{
    if (key == Qt::Key_Escape && m_cursorX) {
        setCursorX(std::nullopt);
        return true;
    }
    const bool forwards = key == Qt::Key_Right || key == Qt::Key_End;
    const bool toTheEnd = key == Qt::Key_Home || key == Qt::Key_End;
    if (!forwards && key != Qt::Key_Left && key != Qt::Key_Home)
        return false;

    const ChartScale scale{m_data.xDomain, m_data.yDomain, size()};
    const std::optional<std::size_t> hovered = hoveredIndex();
    // Without a cursor the first step is onto the newest sample.
    const std::optional<double> from =
        hovered ? scale.xFor(m_data.timestamps[*hovered]) : std::nullopt;
    std::optional<double> next;
    for (const double timestamp : m_data.timestamps) {
        const std::optional<double> x = scale.xFor(timestamp);
        if (!x || (from && !toTheEnd && (forwards ? *x <= *from : *x >= *from)))
            continue;
        const bool wantsLeast = from && forwards != toTheEnd;
        if (!next || (wantsLeast ? *x < *next : *x > *next))
            next = x;
    }
    if (next)
        setCursorX(next);
    return true;
}

void Sparkline::updatePill()
{
    const std::optional<std::size_t> index = hoveredIndex();
    const bool shows = index && m_buildPill;
    const bool changed = shows && m_pill.show(m_buildPill(*index));
    if (changed || shows != m_showsPill)
        update();
    m_showsPill = shows;
    announceChange(this);
}

void Sparkline::prepare()
{
    m_prepared = true;
    m_timeLabels =
        m_data.showsTimeLabels ? timeLabels(m_data.xDomain, locale()) : std::array<QString, 3>{};
    m_layers.clear();
    std::vector<SeriesShape> shapes = seriesShapes(m_data, size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const SparklineSeries &series = m_data.series[i];
        m_layers.push_back(
            {std::move(shapes[i]), fillBrush(series.fillColors, height()),
             QPen(series.lineColor, series.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)});
    }
}

void Sparkline::paintEvent(QPaintEvent *)
{
    if (!m_prepared)
        prepare();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_data.showsGrid)
        fillHairline(painter, QRectF(0, height() * 0.5 - 0.5, width(), 1), Theme::chartGrid());
    paintLayers(painter);
    if (m_cursorX)
        paintCursor(painter);
    paintTimeLabels(painter);
    if (m_showsPill)
        paintPill(painter);
    if (hasFocus())
        paintFocusRing(painter);
}

void Sparkline::paintLayers(QPainter &painter) const
{
    for (const Layer &layer : m_layers) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(layer.fill);
        painter.drawPolygon(layer.shape.fill, Qt::WindingFill);
        painter.setPen(layer.line);
        painter.drawPolyline(layer.shape.line);
    }
}

void Sparkline::paintCursor(QPainter &painter) const
{
    const double x = std::clamp(*m_cursorX, 0.5, std::max(width() - 0.5, 0.5));
    fillHairline(painter, QRectF(x - 0.5, 0, 1, height()), Theme::chartCursor());
}

void Sparkline::paintTimeLabels(QPainter &painter) const
{
    constexpr double inset = 4;
    constexpr double tagMargin = 3;
    constexpr double tagHeight = 12;
    std::array<double, 3> widths = {};
    std::ranges::transform(m_timeLabels, widths.begin(),
                           [](const QString &label) { return textWidth(label, labelFont()); });
    const double free = width() - 2 * inset - widths[0] - widths[1] - widths[2];
    const std::array<double, 3> lefts = {inset, inset + widths[0] + free / 2,
                                         width() - inset - widths[2]};
    for (std::size_t i = 0; i < m_timeLabels.size(); ++i) {
        if (m_timeLabels[i].isEmpty())
            continue;
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::timeLabelTag());
        painter.drawRoundedRect(QRectF(lefts[i] - tagMargin, height() - 1 - tagHeight,
                                       widths[i] + 2 * tagMargin, tagHeight),
                                3, 3);
        painter.setPen(Theme::timeLabel());
        drawText(painter, {lefts[i], height() - 3.75}, m_timeLabels[i], labelFont());
    }
}

void Sparkline::paintPill(QPainter &painter) const
{
    const QSizeF size = m_pill.size();
    const double x = clampedPillX(*m_cursorX, size.width() * 0.5, width());
    const double y = pillY(size.height());
    const QPointF origin(x - size.width() * 0.5, y - size.height() * 0.5);
    m_pill.paint(painter, snappedToPixels(painter, origin));
}

void Sparkline::paintFocusRing(QPainter &painter) const
{
    painter.setPen(QPen(Theme::focusRing(), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
}

} // namespace corvane
