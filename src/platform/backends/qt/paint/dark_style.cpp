#include "platform/backends/qt/paint/dark_style.h"

#include "platform/backends/qt/paint/dark_icons.h"
#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/screen/geometry.h"

#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QStyleFactory>
#include <QStyleOption>

namespace velmora::platform::qt {

namespace {

constexpr double insetRadius = 4;
constexpr double keyRadius = 5;
constexpr int menuRow = 26;
constexpr int menuSeparator = 9;
constexpr int menuMargin = 5;
constexpr int menuMark = 26; // room for a check mark at the left
constexpr int menuArrow = 24;
constexpr int barWidth = 9;

QColor colour(QRgb value) { return QColor::fromRgba(value); }

double densityOf(const QPainter &painter) { return painter.device()->devicePixelRatioF(); }

// Widgets stand on whole logical pixels, which lie between device pixels at a fractional density: a
// fine line there would be a blur over two.
QRectF onDevicePixels(const QPainter &painter, const QRectF &area) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF mapped = toDevice.mapRect(area);
    const QPointF first(std::round(mapped.left()), std::round(mapped.top()));
    const QPointF last(std::round(mapped.right()), std::round(mapped.bottom()));
    return toDevice.inverted().mapRect(QRectF(first, last));
}

QLinearGradient upright(const QRectF &area, QRgb top, QRgb foot) {
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, colour(top));
    gradient.setColorAt(1, colour(foot));
    return gradient;
}

void paintBox(QPainter &painter, const QRectF &area, double radius, const QBrush &fill,
              QRgb outline) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double thick = hairline(densityOf(painter));
    painter.setPen(QPen(colour(outline), thick));
    painter.setBrush(fill);
    const double half = thick / 2;
    painter.drawRoundedRect(onDevicePixels(painter, area).adjusted(half, half, -half, -half),
                            radius, radius);
    painter.restore();
}

void paintKey(QPainter &painter, const QStyleOption &option) {
    const bool on = (option.state & QStyle::State_Enabled) != 0;
    const bool down = (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0;
    const bool hot = on && (option.state & QStyle::State_MouseOver) != 0;
    const bool focus = (option.state & QStyle::State_HasFocus) != 0;
    const QRectF area(option.rect);
    const QBrush fill = down  ? upright(area, look::bodyFoot, look::bodyMiddle)
                        : hot ? upright(area, look::keyOutline, look::keyTop)
                              : upright(area, look::keyTop, look::keyFoot);
    paintBox(painter, area, keyRadius, fill, focus || hot ? look::accent : look::keyOutline);
}

void paintCheck(QPainter &painter, const QRectF &area) {
    QPainterPath tick;
    const QPointF c = area.center();
    tick.moveTo(c + QPointF(-4, 0));
    tick.lineTo(c + QPointF(-1.2, 2.8));
    tick.lineTo(c + QPointF(4, -3));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour(look::accent), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(tick);
    painter.restore();
}

void paintArrow(QPainter &painter, const QRectF &area, const QColor &ink) {
    const QPointF c = area.center();
    const QPointF points[] = {c + QPointF(-2, -3.5), c + QPointF(2, 0), c + QPointF(-2, 3.5)};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(points, 3);
    painter.restore();
}

void paintMenuItem(QPainter &painter, const QStyleOptionMenuItem &item) {
    const QRectF area(item.rect);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        const double thick = hairline(densityOf(painter));
        painter.fillRect(
            QRectF(area.left() + 8, std::round(area.center().y()), area.width() - 16, thick),
            colour(look::outline));
        return;
    }
    const bool live = (item.state & QStyle::State_Enabled) != 0;
    if (live && (item.state & QStyle::State_Selected) != 0)
        paintBox(painter, area.adjusted(3, 1, -3, -1), insetRadius, colour(look::rowTint),
                 look::accentDeep);
    const QColor ink = colour(live ? look::text : look::dimmed);
    if (item.checked)
        paintCheck(painter, QRectF(area.left() + 3, area.top(), menuMark - 3, area.height()));
    painter.setPen(ink);
    painter.setFont(item.font);
    painter.drawText(area.adjusted(menuMark, 0, -menuArrow, 0),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine | Qt::TextShowMnemonic,
                     item.text.section(QLatin1Char('\t'), 0, 0));
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        paintArrow(painter, QRectF(area.right() - menuArrow, area.top(), menuArrow, area.height()),
                   ink);
}

} // namespace

QPalette darkPalette() {
    QPalette palette(colour(look::bodyMiddle));
    palette.setColor(QPalette::Window, colour(look::bodyMiddle));
    palette.setColor(QPalette::WindowText, colour(look::text));
    palette.setColor(QPalette::Base, colour(look::insetFoot));
    palette.setColor(QPalette::AlternateBase, colour(look::insetTop));
    palette.setColor(QPalette::Text, colour(look::text));
    palette.setColor(QPalette::PlaceholderText, colour(look::dimmed));
    palette.setColor(QPalette::Button, colour(look::keyFoot));
    palette.setColor(QPalette::ButtonText, colour(look::text));
    palette.setColor(QPalette::BrightText, colour(look::warning));
    palette.setColor(QPalette::Highlight, colour(look::accentDeep));
    palette.setColor(QPalette::HighlightedText, colour(look::accentInk));
    palette.setColor(QPalette::ToolTipBase, colour(look::bodyMiddle));
    palette.setColor(QPalette::ToolTipText, colour(look::text));
    palette.setColor(QPalette::Link, colour(look::accent));
    palette.setColor(QPalette::LinkVisited, colour(look::accentDeep));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colour(look::dimmed));
    return palette;
}

DarkStyle::DarkStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void DarkStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                              QPainter *painter, const QWidget *widget) const {
    const QRectF area(option->rect);
    switch (element) {
    case PE_PanelLineEdit:
    case PE_Frame:
    case PE_FrameLineEdit: {
        // The ground of a text area is its frame's, which has the round corners.
        const bool focus = (option->state & State_HasFocus) != 0;
        const bool grounded =
            element == PE_PanelLineEdit || qobject_cast<const QPlainTextEdit *>(widget) != nullptr;
        paintBox(*painter, area, insetRadius,
                 grounded ? QBrush(option->palette.color(QPalette::Base)) : QBrush(Qt::NoBrush),
                 focus ? look::accent : look::insetOutline);
        return;
    }
    case PE_PanelMenu:
        painter->fillRect(area, upright(area, look::bodyTop, look::bodyFoot));
        return;
    case PE_FrameMenu:
    case PE_PanelTipLabel: {
        const double half = hairline(densityOf(*painter)) / 2;
        painter->setPen(QPen(colour(look::litEdge), 2 * half));
        painter->setBrush(element == PE_FrameMenu ? QBrush(Qt::NoBrush)
                                                  : QBrush(colour(look::bodyMiddle)));
        painter->drawRect(area.adjusted(half, half, -half, -half));
        return;
    }
    case PE_PanelButtonCommand:
    case PE_PanelButtonTool:
        paintKey(*painter, *option);
        return;
    case PE_IndicatorCheckBox:
        paintBox(*painter, area, keyRadius - 2, colour(look::insetTop),
                 (option->state & State_HasFocus) != 0 ? look::accent : look::keyOutline);
        if ((option->state & State_On) != 0)
            paintCheck(*painter, area);
        return;
    case PE_FrameFocusRect:
        return; // the ring is part of what has the focus
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void DarkStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                            const QWidget *widget) const {
    if (element == CE_MenuItem) {
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            paintMenuItem(*painter, *item);
            return;
        }
    }
    if (element == CE_MenuEmptyArea)
        return;
    if (element == CE_HeaderSection || element == CE_HeaderEmptyArea) {
        painter->fillRect(option->rect, colour(look::bodyMiddle));
        const double thick = hairline(densityOf(*painter));
        const QRectF area(option->rect);
        painter->fillRect(QRectF(area.left(), area.bottom() - thick, area.width(), thick),
                          colour(look::outline));
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void DarkStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                   QPainter *painter, const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || bar == nullptr) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->fillRect(option->rect, option->palette.color(QPalette::Base));
    const QRectF thumb(proxy()->subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget));
    const bool hot = (option->state & State_MouseOver) != 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colour(hot ? look::litEdge : look::outline));
    painter->drawRoundedRect(thumb.adjusted(1.5, 1.5, -1.5, -1.5), 3, 3);
    painter->restore();
}

int DarkStyle::pixelMetric(PixelMetric metric, const QStyleOption *option,
                           const QWidget *widget) const {
    switch (metric) {
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuVMargin:
        return menuMargin;
    case PM_MenuHMargin:
        return 0;
    case PM_SubMenuOverlap:
        return 2;
    case PM_ScrollBarExtent:
        return barWidth;
    case PM_ScrollBarSliderMin:
        return 24;
    case PM_ToolTipLabelFrameWidth:
        return 6;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int DarkStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                         QStyleHintReturn *returned) const {
    switch (hint) {
    case SH_ToolTipLabel_Opacity:
        return 255;
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_Menu_SloppySubMenus:
        return hint == SH_Menu_SloppySubMenus;
    case SH_UnderlineShortcut:
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_BlinkCursorWhenTextSelected:
    case SH_Widget_Animation_Duration: // nothing moves by itself
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

QSize DarkStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                  const QWidget *widget) const {
    if (type == CT_MenuItem) {
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            if (item->menuItemType == QStyleOptionMenuItem::Separator)
                return {size.width(), menuSeparator};
            const QFontMetrics metrics(item->font);
            const int text =
                metrics.size(Qt::TextSingleLine | Qt::TextShowMnemonic, item->text).width();
            return {menuMark + text + menuArrow, std::max(menuRow, metrics.height() + 8)};
        }
    }
    if (type == CT_PushButton) {
        const QSize full = QProxyStyle::sizeFromContents(type, option, size, widget);
        return {std::max(84, full.width()), std::max(28, full.height())};
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

QIcon DarkStyle::standardIcon(StandardPixmap which, const QStyleOption *option,
                              const QWidget *widget) const {
    const QIcon drawn = darkIcon(which);
    return drawn.isNull() ? QProxyStyle::standardIcon(which, option, widget) : drawn;
}

} // namespace velmora::platform::qt
