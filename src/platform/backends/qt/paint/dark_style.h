#pragma once

// The look of the toolkit's own widgets: text boxes, menus, buttons, scroll bars, tips, in the
// colours of the skin. Drawn in code, since reading a style sheet would cost the start its time.

#include <QPalette>
#include <QProxyStyle>

namespace velmora::platform::qt {

QPalette darkPalette();

class DarkStyle : public QProxyStyle {
public:
    DarkStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    QIcon standardIcon(StandardPixmap which, const QStyleOption *option,
                       const QWidget *widget) const override;
};

} // namespace velmora::platform::qt
