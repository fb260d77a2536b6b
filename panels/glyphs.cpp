#include "panels/glyphs.h"

#include "panels/colors.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace corvanta {

namespace {

constexpr int kGrid = 16; // the drawings have this many units per side
/// A line through the points, in units of the grid.
void line(QPainterPath &path, std::initializer_list<QPointF> points)
{
    path.moveTo(*points.begin());
    for (const QPointF &point : points) {
        path.lineTo(point);
    }
}

/// Apart, because it is the only drawing with an arc: an arrow that turns back to the left.
void arrowBack(QPainterPath &path)
{
    path.moveTo(3, 6);
    path.lineTo(9.5, 6);
    path.arcTo(6, 6, 7, 7, 90, -180);
    path.lineTo(5, 13);
    line(path, {{6, 3}, {3, 6}, {6, 9}});
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
    case Glyph::Open:
        line(path, {{7, 3}, {3, 3}, {3, 13}, {13, 13}, {13, 9}});
        line(path, {{7, 9}, {13.5, 2.5}});
        line(path, {{9.5, 2.5}, {13.5, 2.5}, {13.5, 6.5}});
        break;
    case Glyph::Reset:
        arrowBack(path);
        break;
    }
    return path;
}

/// In units of the grid, so that it is sharp at any size.
void drawGlyph(QPainter *painter, const QRectF &rect, Glyph glyph, const QColor &color)
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / kGrid, rect.height() / kGrid);
    painter->setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPath(pathOf(glyph));
}

/// Draws the icon in the size that is asked for: that depends on the font and the screen.
class GlyphEngine final : public QIconEngine
{
public:
    GlyphEngine(Glyph glyph, const QColor &normal, const QColor &selected)
        : m_glyph(glyph)
        , m_normal(normal)
        , m_selected(selected)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        constexpr double dimmed = 0.4;
        painter->save();
        painter->setOpacity(mode == QIcon::Disabled ? dimmed : 1);
        drawGlyph(painter, rect, m_glyph, mode == QIcon::Selected ? m_selected : m_normal);
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, {{}, size}, mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return new GlyphEngine(*this); }

private:
    Glyph m_glyph;
    QColor m_normal;
    QColor m_selected;
};

} // namespace

QPixmap glyphPixmap(Glyph glyph, const QColor &color, int size, double ratio)
{
    const int pixels = qRound(size * ratio);
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawGlyph(&painter, pixmap.rect(), glyph, color);
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

int scaledToFont(int pixels, const QFontMetrics &font)
{
    constexpr int usualHeight = 18;
    return qMax(pixels, pixels * font.height() / usualHeight);
}

QIcon glyphIcon(Glyph glyph, const QColor &color)
{
    return QIcon(new GlyphEngine(glyph, color, color)); // takes ownership
}

QIcon warningMark(const QPalette &palette)
{
    return QIcon(new GlyphEngine(Glyph::Warning, warningColor(palette),
                                 palette.color(QPalette::HighlightedText)));
}

} // namespace corvanta
