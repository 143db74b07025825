#pragma once

#include <QCommonStyle>

namespace corvane {

/// Paints a menu like the popovers, whatever the style of the desktop is: it opens over dark views.
/// Its keys begin in one column. For menus of plain commands and separators; main thread.
class MenuStyle : public QCommonStyle {
    Q_OBJECT

public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
};

} // namespace corvane
