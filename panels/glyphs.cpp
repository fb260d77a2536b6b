#include "panels/glyphs.h"

#include "panels/colors.h"

#include <QPainter>
#include <QPainterPath>

namespace corvanta {

namespace {

constexpr int kGrid = 16; // the drawings have this many units per side
constexpr int kIconPixels = 16;

/// A line through the points, in units of the grid.
void line(QPainterPath &path, std::initializer_list<QPointF> points)
{
    path.moveTo(*points.begin());
    for (const QPointF &point : points) {
        path.lineTo(point);
    }
}

/// The drawing of a glyph, on a grid of 16 by 16 units with y downwards.
QPainterPath pathOf(Glyph glyph)
{
    QPainterPath path;
    switch (glyph) {
    case Glyph::Folded:
        line(path, {{6, 4}, {10, 8}, {6, 12}});
        break;
    case Glyph::Unfolded:
        line(path, {{4, 6}, {8, 10}, {12, 6}});
        break;
    case Glyph::Add:
        line(path, {{3, 8}, {13, 8}});
        line(path, {{8, 3}, {8, 13}});
        break;
    case Glyph::Remove:
        line(path, {{3, 8}, {13, 8}});
        break;
    case Glyph::Up:
        line(path, {{8, 13}, {8, 3}});
        line(path, {{4, 7}, {8, 3}, {12, 7}});
        break;
    case Glyph::Down:
        line(path, {{8, 3}, {8, 13}});
        line(path, {{4, 9}, {8, 13}, {12, 9}});
        break;
    case Glyph::ToRight:
        line(path, {{3, 8}, {13, 8}});
        line(path, {{9, 4}, {13, 8}, {9, 12}});
        break;
    case Glyph::ToLeft:
        line(path, {{13, 8}, {3, 8}});
        line(path, {{7, 4}, {3, 8}, {7, 12}});
        break;
    case Glyph::Folder:
        line(path, {{2, 13}, {2, 3}, {6, 3}, {8, 5}, {14, 5}, {14, 13}, {2, 13}});
        break;
    case Glyph::Check:
        line(path, {{3, 8.5}, {6.5, 12}, {13, 4}});
        break;
    case Glyph::Cross:
        line(path, {{4, 4}, {12, 12}});
        line(path, {{12, 4}, {4, 12}});
        break;
    case Glyph::Warning:
        line(path, {{8, 2}, {15, 14}, {1, 14}, {8, 2}});
        line(path, {{8, 6.5}, {8, 10}});
        line(path, {{8, 12}, {8, 12.1}});
        break;
    case Glyph::New:
        line(path, {{4, 2}, {9, 2}, {12, 5}, {12, 14}, {4, 14}, {4, 2}});
        line(path, {{8, 7}, {8, 11}});
        line(path, {{6, 9}, {10, 9}});
        break;
    }
    return path;
}

} // namespace

QPixmap glyphPixmap(Glyph glyph, const QColor &color, int size, double ratio)
{
    const int pixels = qRound(size * ratio);
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    // Drawn in units of the grid, so that it is sharp at any size.
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(static_cast<double>(pixels) / kGrid, static_cast<double>(pixels) / kGrid);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(pathOf(glyph));
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QIcon glyphIcon(Glyph glyph, const QColor &color)
{
    // Qt chooses the pixmap for the screen, and dims it for a disabled control.
    QIcon icon;
    for (const double ratio : {1.0, 2.0, 3.0}) {
        icon.addPixmap(glyphPixmap(glyph, color, kIconPixels, ratio));
    }
    return icon;
}

QIcon warningMark(const QPalette &palette)
{
    QIcon mark = glyphIcon(Glyph::Warning, warningColor(palette));
    const QColor selected = palette.color(QPalette::HighlightedText);
    for (const double ratio : {1.0, 2.0, 3.0}) {
        mark.addPixmap(glyphPixmap(Glyph::Warning, selected, kIconPixels, ratio), QIcon::Selected);
    }
    return mark;
}

} // namespace corvanta
