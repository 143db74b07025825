#include "charts/CoreBars.h"

#include "ui/CardStyle.h"
#include "ui/NumberText.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double captionGap = 2;
constexpr double captionHeight = 10;

const QFont &captionFont()
{
    static const QFont font = Theme::systemFont(8, QFont::Medium);
    return font;
}

double clampedLoad(double value)
{
    return std::fmax(std::fmin(value, 1), 0);
}

QStringList coreNumbers(std::size_t count)
{
    QStringList numbers;
    for (std::size_t core = 0; core < count; ++core)
        numbers.append(QString::number(core));
    return numbers;
}

} // namespace

CoreBarsData fittedCoreBars(std::vector<double> values, const QColor &color, double width)
{
    constexpr double bandHeight = 52;
    const std::size_t cores = values.size();
    const double pitch = cores > 0 ? width / static_cast<double>(cores) : 0;

    CoreBarsData data;
    data.values = std::move(values);
    data.color = color;
    data.height = bandHeight;
    data.spacing = pitch >= 8 ? 3 : pitch >= 5 ? 2 : pitch >= 2 ? 1 : 0;
    data.barCornerRadius = std::clamp((pitch - data.spacing) / 2, 0.0, 2.0);
    if (pitch >= 13) {
        data.labels = coreNumbers(cores);
        data.height = bandHeight - captionGap - captionHeight;
    }
    return data;
}

std::vector<QRectF> evenRow(std::size_t count, const QRectF &row, double spacing)
{
    std::vector<QRectF> places;
    places.reserve(count);
    const auto n = static_cast<double>(count);
    const double width = std::max((row.width() - spacing * (n - 1)) / n, 0.0);
    for (std::size_t i = 0; i < count; ++i)
        places.emplace_back(row.x() + (width + spacing) * static_cast<double>(i), row.y(), width,
                            row.height());
    return places;
}

QRectF barFill(const QRectF &bar, double value)
{
    const double height = std::max(2.0, bar.height() * clampedLoad(value));
    return {bar.x(), bar.bottom() - height, bar.width(), height};
}

CoreBars::CoreBars(QWidget *parent) : AccessibleWidget(parent, QAccessible::Chart)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void CoreBars::show(CoreBarsData bars)
{
    if (bars == m_data)
        return;
    const bool sameSize =
        bars.height == m_data.height && bars.labels.has_value() == m_data.labels.has_value();
    m_data = std::move(bars);
    if (!sameSize)
        updateGeometry();
    update();
    announceValue();
}

QSize CoreBars::sizeHint() const
{
    const double captions = m_data.labels ? captionGap + captionHeight : 0;
    return {0, qCeil(m_data.height + captions)};
}

QString CoreBars::accessibleValue() const
{
    QStringList loads;
    for (std::size_t core = 0; core < m_data.values.size(); ++core)
        loads.append(
            u"%1: %2"_s.arg(core).arg(percentText(100 * clampedLoad(m_data.values[core]))));
    return loads.join(u", "_s);
}

void CoreBars::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);

    const QBrush track = Theme::withOpacity(m_data.color, 0.1);
    QLinearGradient gradient(0, 0, 0, 1);
    gradient.setCoordinateMode(QGradient::ObjectMode);
    gradient.setColorAt(0, Theme::withOpacity(m_data.color, 0.95));
    gradient.setColorAt(1, Theme::withOpacity(m_data.color, 0.6));
    const QBrush fill = gradient;

    const double radius = m_data.barCornerRadius;
    const std::vector<QRectF> bars =
        evenRow(m_data.values.size(), QRectF(0, 0, width(), m_data.height), m_data.spacing);
    for (std::size_t core = 0; core < bars.size(); ++core) {
        painter.setBrush(track);
        painter.drawPath(CardStyle::continuousCorners(bars[core], radius));
        painter.setBrush(fill);
        const QRectF filled = barFill(bars[core], m_data.values[core]);
        painter.drawPath(CardStyle::continuousCorners(filled, radius));
    }
    if (!m_data.labels)
        return;

    const QRectF row(0, m_data.height + captionGap, width(), captionHeight);
    const double baseline = TextLine{row.top(), row.height()}.baseline(captionFont());
    const std::vector<QRectF> places =
        evenRow(static_cast<std::size_t>(m_data.labels->size()), row, m_data.spacing);
    painter.setPen(Theme::textTertiary);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const QString &label = m_data.labels->at(static_cast<qsizetype>(i));
        const double x = places[i].center().x() - textWidth(label, captionFont()) / 2;
        drawText(painter, {x, baseline}, label, captionFont());
    }
}

} // namespace corvane
