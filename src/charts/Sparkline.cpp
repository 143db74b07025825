#include "charts/Sparkline.h"

#include "charts/ChartTime.h"
#include "charts/ColumnReduction.h"
#include "charts/RoundBends.h"
#include "controls/ContextMenu.h"
#include "ui/ContentArea.h"
#include "ui/FocusRing.h"
#include "ui/PixelGrid.h"
#include "ui/RoundedBox.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace corvane {

namespace {

const QFont &labelFont()
{
    static const QFont font = Theme::systemFont(9, QFont::Medium);
    return font;
}

/// A gradient from the top edge to the bottom edge, also for a single colour: Qt blends spans of a
/// gradient more than twice as fast as those of a translucent colour.
QBrush fillBrush(const std::vector<QColor> &colors, double height)
{
    if (colors.empty())
        return Qt::NoBrush;
    QLinearGradient gradient(0, 0, 0, height);
    gradient.setColorAt(1, colors.back());
    for (std::size_t i = 0; i + 1 < colors.size(); ++i)
        gradient.setColorAt(static_cast<double>(i) / static_cast<double>(colors.size() - 1),
                            colors[i]);
    return gradient;
}

/// A pen for lines with round bends.
QPen linePen(const QColor &color, double width)
{
    QPen pen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin);
    pen.setMiterLimit(10);
    return pen;
}

/// Paints an area and its line in strips, since the time of Qt's rasteriser and stroker grows
/// faster than the length of an outline. A strip is clipped to whole device pixels and drawn a
/// little beyond them, so that no seam shows.
void paintSeries(QPainter &painter, const SeriesShape &shape, const QBrush &fill, const QPen &pen,
                 const QRectF &chart)
{
    constexpr double stripWidth = 120;
    constexpr double overlap = 2;
    const QPolygonF &line = shape.line;
    const qsizetype last = line.size() - 1;
    const double reach = overlap + pen.widthF();
    const QRectF all = shape.fill.boundingRect().adjusted(-reach, -reach, reach, reach) & chart;
    // The joins of a line of one pixel cannot be seen.
    const bool hasJoins = pen.widthF() * painter.deviceTransform().m11() > 1;
    QPolygonF strip;
    for (qsizetype from = 0, to = 0; from < last; from = to) {
        while (to < last && line[to].x() < line[from].x() + stripWidth)
            ++to;
        qsizetype left = from;
        while (left > 0 && line[left].x() > line[from].x() - overlap)
            --left;
        qsizetype right = to;
        while (right < last && line[right].x() < line[to].x() + overlap)
            ++right;

        const double clipLeft = from > 0 ? line[from].x() : all.left();
        const double clipRight = to < last ? line[to].x() : all.right();
        const QPointF topLeft = snappedToPixels(painter, QPointF(clipLeft, all.top()));
        const QPointF bottomRight = snappedToPixels(painter, QPointF(clipRight, all.bottom()));
        painter.setClipRect(QRectF(topLeft, bottomRight));

        strip = line.mid(left, right - left + 1);
        const qsizetype points = strip.size();
        for (qsizetype i = right; i >= left; --i)
            strip.append(shape.fill[shape.fill.size() - 1 - i]); // The way back along the baseline.
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawPolygon(strip, Qt::WindingFill);
        painter.setPen(pen);
        strip.resize(points);
        painter.drawPolyline(hasJoins ? withRoundBends(strip) : strip);
    }
    painter.setClipping(false);
}

/// The next stop in that direction from the one nearest to `x`, past others at the same place; the
/// nearest stop itself if there is none. Stops ascend.
double neighbour(const std::vector<double> &stops, double x, int direction)
{
    const double here =
        *std::ranges::min_element(stops, {}, [x](double stop) { return std::abs(stop - x); });
    if (direction > 0) {
        const auto after = std::ranges::upper_bound(stops, here);
        return after != stops.end() ? *after : here;
    }
    const auto atOrAfter = std::ranges::lower_bound(stops, here);
    return atOrAfter != stops.begin() ? *std::prev(atOrAfter) : here;
}

} // namespace

Sparkline::Sparkline(QWidget *parent) : AccessibleWidget(parent, QAccessible::Chart)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    constexpr int outset = 3;
    addFocusRing(*this, {outset, outset, outset, outset}, 4);
}

void Sparkline::show(SparklineData chart)
{
    if (chart != m_data) {
        m_data = std::move(chart);
        m_prepared = false;
        update();
    }
    keepToPointer();
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
    return nearestIndex(m_data.timestamps, m_data.xDomain, *m_cursorX, plot().width());
}

QString Sparkline::accessibleValue() const
{
    if (!m_buildPill || m_data.timestamps.empty())
        return {};
    return accessibleText(m_buildPill(hoveredIndex().value_or(m_data.timestamps.size() - 1)));
}

QString Sparkline::copiedText() const
{
    const std::vector<std::optional<double>> columns =
        sampleColumns(m_data.timestamps, {m_data.xDomain, m_data.yDomain, plot().size()});
    QStringList lines;
    for (std::size_t i = 0; m_buildPill && i < columns.size(); ++i) {
        if (!columns[i])
            continue;
        const PillContent content = m_buildPill(i);
        QStringList fields{content.time};
        for (const PillRow &row : content.rows)
            fields += row.values;
        lines.append(fields.join(u'\t'));
    }
    return lines.join(u'\n');
}

void Sparkline::contextMenuEvent(QContextMenuEvent *event)
{
    popUpCopy(*this, copiedText(), event->globalPos());
}

QRectF Sparkline::plot() const
{
    return contentArea(*this);
}

void Sparkline::resizeEvent(QResizeEvent *)
{
    const double before = std::exchange(m_plotWidth, plot().width());
    m_prepared = false;
    if (m_pointer)
        keepToPointer();
    else if (m_cursorX && before > 0)
        setCursorX(*m_cursorX * m_plotWidth / before); // On the same sample.
}

void Sparkline::moveEvent(QMoveEvent *)
{
    keepToPointer();
}

void Sparkline::hideEvent(QHideEvent *)
{
    m_pointer.reset();
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
    followPointer(*event);
}

void Sparkline::mouseMoveEvent(QMouseEvent *event)
{
    followPointer(*event);
}

void Sparkline::leaveEvent(QEvent *)
{
    m_pointer.reset();
    setCursorX(std::nullopt);
}

/// The key of Copy is for the chart, although a menu bar may have a command of that key.
bool Sparkline::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy))
        event->accept();
    return AccessibleWidget::event(event);
}

void Sparkline::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        QGuiApplication::clipboard()->setText(copiedText());
    else if (!stepCursor(event->key()))
        QWidget::keyPressEvent(event);
}

void Sparkline::focusOutEvent(QFocusEvent *)
{
    if (!underMouse())
        setCursorX(std::nullopt);
}

void Sparkline::followPointer(const QSinglePointEvent &event)
{
    m_pointer = event.globalPosition();
    const double x = event.position().x() - plot().left();
    setCursorX(x >= 0 && x <= plot().width() ? std::optional(x) : std::nullopt);
}

/// A resting pointer sends no event when the chart moves below it.
void Sparkline::keepToPointer()
{
    if (!m_pointer)
        return;
    const QPointF place = mapFromGlobal(*m_pointer);
    setCursorX(plot().contains(place) ? std::optional(place.x() - plot().left()) : std::nullopt);
}

void Sparkline::setCursorX(std::optional<double> x)
{
    if (x == m_cursorX)
        return;
    m_cursorX = x;
    updatePill();
    update();
}

/// Moves the cursor; returns whether the key is one for the cursor.
bool Sparkline::stepCursor(int key)
{
    if (key == Qt::Key_Escape && m_cursorX) {
        m_pointer.reset();
        setCursorX(std::nullopt);
        return true;
    }
    if (key != Qt::Key_Left && key != Qt::Key_Right && key != Qt::Key_Home && key != Qt::Key_End)
        return false;

    m_pointer.reset();
    std::vector<double> stops;
    for (const std::optional<double> column :
         sampleColumns(m_data.timestamps, {m_data.xDomain, m_data.yDomain, plot().size()})) {
        if (column)
            stops.push_back(*column);
    }
    if (stops.empty())
        return true;

    if (key == Qt::Key_Home)
        setCursorX(stops.front());
    else if (key == Qt::Key_End || !m_cursorX)
        setCursorX(stops.back());
    else
        setCursorX(neighbour(stops, *m_cursorX, key == Qt::Key_Right ? 1 : -1));
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
    announceValue();
}

void Sparkline::prepare()
{
    m_prepared = true;
    m_timeLabels = {};
    if (m_data.showsTimeLabels)
        m_timeLabels = m_data.showsMeans ? timeLabelsOfDays(m_data.xDomain, locale())
                                         : timeLabels(m_data.xDomain, locale());
    m_layers.clear();
    if (!m_data.showsMeans) {
        m_bands.clear();
        addLayers(m_data);
        return;
    }
    const SparklineData drawn =
        reducedToColumns(m_data, static_cast<int>(plot().width() * devicePixelRatioF()));
    m_bands = bandShapes(drawn, plot().size());
    addLayers(drawn);
}

void Sparkline::addLayers(const SparklineData &drawn)
{
    for (SeriesShape &shape : seriesShapes(drawn, plot().size())) {
        const SparklineSeries &series = m_data.series[shape.series];
        m_layers.push_back({std::move(shape), fillBrush(series.fillColors, plot().height()),
                            linePen(series.lineColor, series.lineWidth)});
    }
}

void Sparkline::paintEvent(QPaintEvent *)
{
    if (!m_prepared)
        prepare();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(plot().topLeft());
    const QSizeF size = plot().size();
    if (m_data.showsGrid)
        fillHairline(painter, QRectF(0, size.height() * 0.5 - 0.5, size.width(), 1),
                     Theme::chartGrid);
    paintBands(painter);
    paintLayers(painter);
    painter.setClipRect(QRectF({}, size));
    if (m_cursorX)
        paintCursor(painter);
    paintTimeLabels(painter);
    if (m_showsPill)
        paintPill(painter);
}

void Sparkline::paintBands(QPainter &painter) const
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_data.bandColor);
    for (const QPolygonF &band : m_bands)
        painter.drawPolygon(band, Qt::WindingFill);
}

void Sparkline::paintLayers(QPainter &painter) const
{
    for (const Layer &layer : m_layers)
        paintSeries(painter, layer.shape, layer.fill, layer.line, QRectF({}, plot().size()));
}

void Sparkline::paintCursor(QPainter &painter) const
{
    const QSizeF size = plot().size();
    QRectF line = snappedToPixels(painter, QRectF(*m_cursorX - 0.5, 0, 1, size.height()));
    line.moveLeft(std::clamp(line.left(), 0.0, std::max(size.width() - line.width(), 0.0)));
    fillHairline(painter, line, Theme::chartCursor);
}

/// Whether a label leaves room between the others. Labels of hours and minutes are of nearly one
/// width; those with weekdays would hide a low chart where three take most of its width.
bool Sparkline::hasRoomForLabel(std::size_t label, const std::array<double, 3> &widths) const
{
    constexpr double labelGap = 16;
    if (m_data.showsMeans) {
        const double ends = widths[0] + labelGap + widths[2];
        const std::array<double, 3> needed{0, 1.5 * (widths[0] + widths[1] + widths[2]), ends};
        return plot().width() >= needed[label];
    }
    constexpr std::array<double, 3> neededWidths{0, 160, 72}; // Of the chart, for each label.
    return plot().width() >= neededWidths[label];
}

void Sparkline::paintTimeLabels(QPainter &painter) const
{
    constexpr double inset = 4;
    constexpr double tagMargin = 3;
    const double width = plot().width();
    const TextLine tag{plot().height() - 13, 12};
    const double baseline = tag.baseline(labelFont());
    std::array<double, 3> widths = {};
    std::ranges::transform(m_timeLabels, widths.begin(),
                           [](const QString &label) { return textWidth(label, labelFont()); });
    const double free = width - 2 * inset - widths[0] - widths[1] - widths[2];
    const std::array<double, 3> lefts = {inset, inset + widths[0] + free / 2,
                                         width - inset - widths[2]};
    for (std::size_t i = 0; i < m_timeLabels.size(); ++i) {
        if (m_timeLabels[i].isEmpty() || !hasRoomForLabel(i, widths))
            continue;
        fillRounded(painter,
                    QRectF(lefts[i] - tagMargin, tag.top, widths[i] + 2 * tagMargin, tag.height), 3,
                    Theme::timeLabelTag);
        painter.setPen(Theme::timeLabel);
        drawText(painter, {lefts[i], baseline}, m_timeLabels[i], labelFont());
    }
}

void Sparkline::paintPill(QPainter &painter) const
{
    const QSizeF size = m_pill.size();
    const double x = clampedPillX(*m_cursorX, size.width() * 0.5, plot().width());
    const double y = pillY(size.height());
    const QPointF origin(x - size.width() * 0.5, y - size.height() * 0.5);
    m_pill.paint(painter, snappedToPixels(painter, origin));
}

} // namespace corvane
