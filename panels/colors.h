// Colours of texts that palettes do not have, readable on any background.
//
// The contrast of two colours is the ratio of WCAG 2.1, from 1 (equal) to 21 (black on white).
// Threads: pure functions.
#pragma once
#include <QColor>
#include <QPalette>

namespace corvanta {

/// Smallest contrast of a text with its background.
inline constexpr double kTextContrast = 4.5;
/// Smallest contrast of the outline of a control.
inline constexpr double kOutlineContrast = 3.0;

/// The contrast of two opaque colours.
double contrastOf(const QColor &text, const QColor &background);
/// `wanted`, made darker on a light background or lighter on a dark one until its contrast is at
/// least `contrast`, which is at most kTextContrast.
QColor readableOn(const QColor &background, const QColor &wanted, double contrast = kTextContrast);

// Colours of text on the background QPalette::Window.
/// For remarks: less prominent than the other texts.
QColor remarkColor(const QPalette &palette);
QColor warningColor(const QPalette &palette);
QColor errorColor(const QPalette &palette);
/// Of the outline of a control.
QColor outlineColor(const QPalette &palette);

/// `palette` with readable texts of disabled controls and readable placeholders. They stay less
/// prominent than other texts.
QPalette readablePalette(QPalette palette);

} // namespace corvanta
