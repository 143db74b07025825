#include "charts/CoreBars.h"

#include "ui/CardStyle.h"
#include "ui/ContentArea.h"
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

std::size_t barCount(const CoreBarsData &bars)
{
    return (bars.values.size() + bars.coresPerBar - 1) / bars.coresPerBar;
}

/// From the left end of a bar to that of the next if they fill the width.
double pitchOf(const CoreBarsData &bars, double width)
{
    const std::size_t count = barCount(bars);
    return count > 0 ? width / static_cast<double>(count) : 0;
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
    constexpr std::size_t few = 8;
    constexpr double widestOfFew = 32;
    constexpr double minPitch = 4; ///< A bar of 3 points and a gap.
    const std::size_t cores = values.size();

    CoreBarsData data;
    data.values = std::move(values);
    data.color = color;
    data.height = bandHeight;
    if (cores < few)
        data.maxBarWidth = widestOfFew;
    while (barCount(data) > 1 && pitchOf(data, width) < minPitch)
        data.coresPerBar *= 2;
    const double pitch = pitchOf(data, width);
    data.spacing = pitch >= 8 ? 3 : pitch >= 5 ? 2 : 1;
    data.barCornerRadius = std::clamp((pitch - data.spacing) / 2, 0.0, 2.0);
    if (pitch >= 13) {
        data.labels = coreNumbers(cores);
        data.height = bandHeight - captionGap - captionHeight;
    }
    return data;
}

std::vector<double> barLoads(const CoreBarsData &bars)
{
    std::vector<double> loads;
    loads.reserve(barCount(bars));
    for (std::size_t first = 0; first < bars.values.size(); first += bars.coresPerBar) {
        const std::size_t end = std::min(first + bars.coresPerBar, bars.values.size());
        double sum = 0;
        for (std::size_t core = first; core < end; ++core)
            sum += clampedLoad(bars.values[core]);
        loads.push_back(sum / static_cast<double>(end - first));
    }
    return loads;
}

QRectF stripPlace(const CoreBarsData &bars, const QRectF &row)
{
    const auto count = static_cast<double>(barCount(bars));
    const double widest = count * bars.maxBarWidth + (count - 1) * bars.spacing;
    return count > 0 ? row.adjusted(std::max(row.width() - widest, 0.0), 0, 0, 0) : row;
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
    const QRectF area = contentArea(*this);
    painter.translate(area.topLeft());

    const QBrush track = Theme::withOpacity(m_data.color, 0.1);
    QLinearGradient gradient(0, 0, 0, 1);
    gradient.setCoordinateMode(QGradient::ObjectMode);
    gradient.setColorAt(0, Theme::withOpacity(m_data.color, 0.95));
    gradient.setColorAt(1, Theme::withOpacity(m_data.color, 0.6));
    const QBrush fill = gradient;

    const double radius = m_data.barCornerRadius;
    const std::vector<double> loads = barLoads(m_data);
    const QRectF strip = stripPlace(m_data, QRectF(0, 0, area.width(), m_data.height));
    const std::vector<QRectF> bars = evenRow(loads.size(), strip, m_data.spacing);
    for (std::size_t bar = 0; bar < bars.size(); ++bar) {
        painter.setBrush(track);
        painter.drawPath(CardStyle::continuousCorners(bars[bar], radius));
        painter.setBrush(fill);
        const QRectF filled = barFill(bars[bar], loads[bar]);
        painter.drawPath(CardStyle::continuousCorners(filled, radius));
    }
    if (!m_data.labels)
        return;

    const QRectF row(strip.left(), strip.bottom() + captionGap, strip.width(), captionHeight);
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
