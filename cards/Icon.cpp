#include "cards/Icon.h"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

#include <memory>

/// The drawings lie in a static library, whose resources must be asked for by name.
static void registerDrawings()
{
    Q_INIT_RESOURCE(resources);
}

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The drawing of a symbol in one colour. A drawing is parsed once for each colour that it is shown
/// in; there are few of both.
QSvgRenderer *renderer(const QString &symbol, const QColor &color)
{
    static QHash<QString, std::shared_ptr<QSvgRenderer>> renderers;
    const QString colorName = color.name(QColor::HexRgb);
    auto &found = renderers[symbol + colorName];
    if (!found) {
        registerDrawings();
        QFile file(u":/icons/%1.svg"_s.arg(symbol));
        QByteArray drawing = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        drawing.replace("currentColor", colorName.toLatin1());
        found = std::make_shared<QSvgRenderer>(drawing);
    }
    return found.get();
}

} // namespace

void paintIcon(QPainter &painter, const QString &symbol, const QRectF &target, const QColor &color)
{
    QSvgRenderer *drawing = renderer(symbol, color);
    if (!drawing->isValid())
        return;
    const double opacity = painter.opacity();
    painter.setOpacity(opacity * color.alphaF());
    drawing->render(&painter, target);
    painter.setOpacity(opacity);
}

} // namespace corvane
