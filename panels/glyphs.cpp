#include "panels/glyphs.h"

#include "panels/colors.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace corvanta {

namespace {

constexpr int kGrid = 16; // the drawings have this many units per side

/// The lines of a glyph, each through some points, on the grid with y downwards.
QList<QList<QPointF>> linesOf(Glyph glyph)
{
    switch (glyph) {
    case Glyph::Folded:
        return {{{6, 4}, {10, 8}, {6, 12}}};
    case Glyph::Unfolded:
        return {{{4, 6}, {8, 10}, {12, 6}}};
    case Glyph::Add:
        return {{{3, 8}, {13, 8}}, {{8, 3}, {8, 13}}};
    case Glyph::Remove:
        return {{{3, 8}, {13, 8}}};
    case Glyph::Up:
        return {{{8, 13}, {8, 3}}, {{4, 7}, {8, 3}, {12, 7}}};
    case Glyph::Down:
        return {{{8, 3}, {8, 13}}, {{4, 9}, {8, 13}, {12, 9}}};
    case Glyph::ToRight:
        return {{{3, 8}, {13, 8}}, {{9, 4}, {13, 8}, {9, 12}}};
    case Glyph::ToLeft:
        return {{{13, 8}, {3, 8}}, {{7, 4}, {3, 8}, {7, 12}}};
    case Glyph::Folder:
        return {{{2, 13}, {2, 3}, {6, 3}, {8, 5}, {14, 5}, {14, 13}, {2, 13}}};
    case Glyph::Check:
        return {{{3, 8.5}, {6.5, 12}, {13, 4}}};
    case Glyph::Cross:
        return {{{4, 4}, {12, 12}}, {{12, 4}, {4, 12}}};
    case Glyph::Warning:
        return {{{8, 2}, {15, 14}, {1, 14}, {8, 2}}, {{8, 6.5}, {8, 10}}, {{8, 12}, {8, 12.1}}};
    case Glyph::New:
        return {{{4, 2}, {9, 2}, {12, 5}, {12, 14}, {4, 14}, {4, 2}},
                {{8, 7}, {8, 11}},
                {{6, 9}, {10, 9}}};
    case Glyph::Open:
        return {{{7, 3}, {3, 3}, {3, 13}, {13, 13}, {13, 9}},
                {{7, 9}, {13.5, 2.5}},
                {{9.5, 2.5}, {13.5, 2.5}, {13.5, 6.5}}};
    case Glyph::Reset:
        return {{{6, 3}, {3, 6}, {6, 9}}};
    }
    return {};
}

/// The shaft of an arrow that turns back to the left: the only drawing with an arc.
void addArrowBack(QPainterPath *path)
{
    path->moveTo(3, 6);
    path->lineTo(9.5, 6);
    path->arcTo(6, 6, 7, 7, 90, -180);
    path->lineTo(5, 13);
}

QPainterPath pathOf(Glyph glyph)
{
    QPainterPath path;
    if (glyph == Glyph::Reset) {
        addArrowBack(&path);
    }
    for (const QList<QPointF> &line : linesOf(glyph)) {
        path.addPolygon(line);
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
        if (size.isEmpty()) {
            return {}; // a view that is not laid out yet asks for it
        }
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
