// Light and dark palettes for the Fusion style, which draws every control from its palette.
#include "studio/shell/preferences/appearance.h"

#include <QApplication>
#include <QFont>
#include <QStyle>
#include <QStyleFactory>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

QPalette darkPalette()
{
    const QColor window(0x35, 0x36, 0x3a);
    const QColor deep(0x1f, 0x20, 0x23);
    // Grey rather than black: outlines and shadows stay visible.
    QPalette dark(window, QColor(0x2b, 0x2c, 0x30));
    dark.setColor(QPalette::Base, deep);
    dark.setColor(QPalette::AlternateBase, QColor(0x2b, 0x2c, 0x30));
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xd8));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, deep);
    dark.setColor(QPalette::ToolTipText, Qt::white);
    dark.setColor(QPalette::Link, QColor(0x8a, 0xb4, 0xf8));
    dark.setColor(QPalette::PlaceholderText, QColor(0xb0, 0xb0, 0xb4));
    // The constructor makes them too dark to read.
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(QPalette::Disabled, role, QColor(0x9a, 0x9b, 0xa0));
    }
    return dark;
}

/// Of the desktop, before anything changed it.
const QFont &desktopFont()
{
    static const QFont font = QApplication::font();
    return font;
}

} // namespace

QPalette themePalette(Theme theme)
{
    switch (theme) {
    case Theme::Light:
        // The other colours are derived from that of the buttons.
        return {QColor(0xf4, 0xf4, 0xf4)};
    case Theme::Dark:
        return darkPalette();
    case Theme::System:
        break;
    }
    return QApplication::style()->standardPalette();
}

void applyAppearance(Theme theme, int fontPercent)
{
    // Other styles draw controls with the colours of the desktop.
    if (theme != Theme::System) {
        QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    }
    QApplication::setPalette(themePalette(theme));
    // From the size of the desktop, not from the current one.
    QFont font = desktopFont();
    font.setPointSizeF(font.pointSizeF() * fontPercent / 100);
    QApplication::setFont(font);
}

bool isDark(const QPalette &palette)
{
    // The theme of the desktop has no name that could be asked for.
    return palette.color(QPalette::WindowText).lightness() >
           palette.color(QPalette::Window).lightness();
}

} // namespace corvanta::studio
