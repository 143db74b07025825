#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <vector>

class QPainter;

namespace corvane {

/// One row of a pill, below the time.
struct PillRow {
    enum class Style {
        total,    ///< One large value.
        values,   ///< Values side by side.
        component ///< Dot, label, value at the right edge.
    };

    Style style = Style::values;
    QColor color = {};
    QString label = {}; ///< Only in rows of the style `component`.
    QStringList values = {};

    bool operator==(const PillRow &) const = default;
};

PillRow totalRow(const QString &value, const QColor &color);
PillRow valuesRow(const QStringList &values, const QColor &color);
PillRow componentRow(const QString &label, const QString &value, const QColor &color);

/// What a pill shows of one sample.
struct PillContent {
    QString time = {}; ///< As `HoverTime` formats it.
    std::vector<PillRow> rows = {};

    bool operator==(const PillContent &) const = default;
};

/// The content as one line for screen readers, such as "14:05:15, 39.60 W, CPU 9.30".
QString accessibleText(const PillContent &content);

/// The rounded box with the values of the hovered sample. Its chart owns it. Main thread.
class HoverPill {
public:
    /// Returns whether the content differs from that before.
    bool show(const PillContent &content);

    const PillContent &content() const { return m_content; }

    /// Size of the box without its shadow.
    QSizeF size() const { return m_size; }

    /// Draws the box with its top left corner at `origin`, and its shadow around it.
    void paint(QPainter &painter, const QPointF &origin) const;

private:
    void paintContent(QPainter &painter, const QPointF &origin) const;

    PillContent m_content;
    QSizeF m_size;
    mutable QImage m_shadow; ///< For the size of the box and the scale of the last painting.
};

} // namespace corvane
