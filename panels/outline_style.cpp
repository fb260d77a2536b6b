#include "panels/outline_style.h"

#include "panels/colors.h"
#include "panels/glyphs.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kFusion = "fusion"_L1;

/// Draws outlines over those of the other style.
class OutlineStyle final : public QProxyStyle
{
public:
    explicit OutlineStyle(QObject *owner)
        : QProxyStyle(QStyleFactory::create(kFusion))
    {
        setParent(owner);
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (element == PE_IndicatorCheckBox) {
            drawOutline(*option, 0, painter);
        } else if (element == PE_FrameLineEdit || element == PE_Frame) {
            drawUnlessFocused(*option, painter);
        }
    }

    /// Boxes and icons grow with the font of their control.
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        // A mark in a list is as large as its text.
        const PixelMetric base = metric == PM_ListViewIconSize ? PM_SmallIconSize : metric;
        const int pixels = QProxyStyle::pixelMetric(base, option, widget);
        switch (metric) {
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
        case PM_SmallIconSize:
        case PM_ButtonIconSize:
        case PM_ListViewIconSize:
        case PM_LineEditIconSize:
            return widget != nullptr ? scaledToFont(pixels, widget->fontMetrics()) : pixels;
        default:
            return pixels;
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget) const override
    {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        if (control == CC_ComboBox || control == CC_SpinBox) {
            drawUnlessFocused(*option, painter);
        }
    }

private:
    /// The other style shows the focus by its own outline.
    static void drawUnlessFocused(const QStyleOption &option, QPainter *painter)
    {
        if (!option.state.testFlag(State_HasFocus)) {
            constexpr double radius = 2;
            drawOutline(option, radius, painter);
        }
    }

    static void drawOutline(const QStyleOption &option, double radius, QPainter *painter)
    {
        constexpr double disabledOpacity = 0.5;
        painter->save();
        painter->setOpacity(option.state.testFlag(State_Enabled) ? 1 : disabledOpacity);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(outlineColor(option.palette));
        painter->setBrush(Qt::NoBrush);
        // In the middle of the pixels at the edge.
        painter->drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius,
                                 radius);
        painter->restore();
    }
};

} // namespace

void showOutline(QWidget *control)
{
    static QPointer<OutlineStyle> style; // one for all controls; the application deletes it
    if (QApplication::style()->name() != kFusion) {
        return;
    }
    if (style.isNull()) {
        style = new OutlineStyle(qApp);
    }
    control->setStyle(style);
}

} // namespace corvanta
