#include "panels/colors.h"

#include <algorithm>
#include <cmath>

namespace corvanta {

namespace {

/// The part of one colour component, 0 to 1, in the relative luminance of WCAG 2.1.
double linear(double component)
{
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// A colour between two others: `share` 0 gives `from`, 1 gives `to`.
QColor mixed(const QColor &from, const QColor &to, double share)
{
    const auto mix = [share](float a, float b) {
        return std::clamp(static_cast<float>(a + (b - a) * share), 0.0F, 1.0F);
    };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

} // namespace

double contrastOf(const QColor &text, const QColor &background)
{
    const double a = luminance(text);
    const double b = luminance(background);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor readableOn(const QColor &background, const QColor &wanted, double contrast)
{
    // Black or white has a contrast of at least 4.58 with every colour.
    const bool isLight = contrastOf(Qt::black, background) > contrastOf(Qt::white, background);
    constexpr int steps = 20;
    // In small steps, to keep the hue where the background allows it.
    QColor color = wanted;
    for (int i = 1; i <= steps && contrastOf(color, background) < contrast; ++i) {
        color = mixed(wanted, isLight ? Qt::black : Qt::white, static_cast<double>(i) / steps);
    }
    return color;
}

QColor remarkColor(const QPalette &palette)
{
    const QColor background = palette.color(QPalette::Window);
    return readableOn(background, mixed(palette.color(QPalette::WindowText), background, 0.4));
}

QColor warningColor(const QPalette &palette)
{
    return readableOn(palette.color(QPalette::Window), QColor(0xb2, 0x6a, 0x00));
}

QColor errorColor(const QPalette &palette)
{
    return readableOn(palette.color(QPalette::Window), QColor(0xc6, 0x28, 0x28));
}

QColor outlineColor(const QPalette &palette)
{
    const QColor background = palette.color(QPalette::Window);
    return readableOn(background, mixed(palette.color(QPalette::WindowText), background, 0.7),
                      kOutlineContrast);
}

QPalette readablePalette(QPalette palette)
{
    // As close to the background as it can be read.
    const auto dim = [&palette](QPalette::ColorGroup group, QPalette::ColorRole role,
                                QPalette::ColorRole background) {
        const QColor under = palette.color(group, background);
        palette.setColor(
            group, role,
            readableOn(under, mixed(palette.color(QPalette::Active, role), under, 0.5)));
    };
    dim(QPalette::Disabled, QPalette::WindowText, QPalette::Window);
    dim(QPalette::Disabled, QPalette::Text, QPalette::Base);
    dim(QPalette::Disabled, QPalette::ButtonText, QPalette::Button);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor base = palette.color(group, QPalette::Base);
        palette.setColor(
            group, QPalette::PlaceholderText,
            readableOn(base, mixed(palette.color(QPalette::Active, QPalette::Text), base, 0.5)));
    }
    return palette;
}

} // namespace corvanta
