// Each icon is the path of an SVG image of 16 by 16 units.
#include "studio/shell/command_icons.h"

#include "studio/shell/preferences/appearance.h"

#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

struct IconPath
{
    const char *command;
    const char *stroke;      ///< of lines
    const char *fill = "";   ///< of areas
    const char *colour = ""; ///< of areas; empty: that of texts
};

// In the program and not in files: the lines take their colour from the palette.
constexpr IconPath kIcons[] = {
    {"file.new", "M3.5 1.5h5.5l3.5 3.5v9.5h-9z M9 1.5v3.5h3.5"},
    {"file.open", "M1.5 13.5v-11h4l1.5 2h6v2.5 M1.5 13.5l2.5-6.5h11l-2.5 6.5z"},
    {"file.save", "M2 2h9l3 3v9h-12z M5 2v3.5h5.5v-3.5 M4.5 14v-5h7v5"},
    {"edit.undo", "M5.5 2.5l-3.5 3.5l3.5 3.5 M2 6h7.5a4 4 0 0 1 0 8h-3.5"},
    {"edit.redo", "M10.5 2.5l3.5 3.5l-3.5 3.5 M14 6h-7.5a4 4 0 0 0 0 8h3.5"},
    {"view.zoomFit", "M2 6v-4h4 M10 2h4v4 M14 10v4h-4 M6 14h-4v-4"},
    {"graph.layout",
     "M1.5 6h4v4h-4z M10.5 1.5h4v4h-4z M10.5 10.5h4v4h-4z M5.5 8h2.5 M10.5 3.5h-2.5v9h2.5"},
    // The colours of starting and stopping are the same in all themes.
    {"run.all", "", "M4 2l9.5 6l-9.5 6z", "#2f9e44"},
    {"run.here", "M13.5 2.5v11", "M2.5 2.5l8.5 5.5l-8.5 5.5z", "#2f9e44"},
    {"run.stop", "", "M3 3h10v10h-10z", "#e03131"},
};

// For screens of any density, so that no icon is scaled.
constexpr int kSizes[] = {16, 24, 32, 48, 64}; // pixels

QByteArray svgOf(const IconPath &icon, const QColor &text)
{
    const QString colour = *icon.colour != 0 ? QLatin1StringView(icon.colour) : text.name();
    return u"<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'>"
           "<path d='%1' fill='none' stroke='%2' stroke-width='1.2' stroke-linejoin='round'/>"
           "<path d='%3' fill='%4'/></svg>"_s
               .arg(QLatin1StringView(icon.stroke), text.name(), QLatin1StringView(icon.fill),
                    colour)
               .toLatin1();
}

QPixmap drawn(const QByteArray &svg, int size)
{
    QPixmap pixmap(size, size);
    // A new pixmap has arbitrary pixels.
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(svg).render(&painter);
    return pixmap;
}

} // namespace

QIcon commandIcon(const QString &command, const QPalette &palette)
{
    QIcon icon;
    for (const IconPath &each : kIcons) {
        if (command != QLatin1StringView(each.command)) {
            continue;
        }
        // Disabled icons are made from this one by the style.
        const QByteArray svg = svgOf(each, palette.color(QPalette::ButtonText));
        for (const int size : kSizes) {
            icon.addPixmap(drawn(svg, size));
        }
    }
    return icon;
}

QIcon actionIcon(const QPixmap &drawn, const QPalette &palette)
{
    // The modules draw their icons for a light background.
    if (!isDark(palette) || drawn.isNull()) {
        return drawn;
    }
    QPixmap tile(drawn.size());
    tile.fill(Qt::transparent);
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // Not white: the tile should not be the brightest thing of the window.
    painter.setBrush(QColor(0xe8, 0xe8, 0xea));
    painter.drawRoundedRect(tile.rect(), 8, 8);
    painter.drawPixmap(tile.rect().marginsRemoved({4, 4, 4, 4}), drawn);
    // The icon shares the pixels, so they must be complete.
    painter.end();
    return tile;
}

} // namespace corvanta::studio
