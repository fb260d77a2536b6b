// Draws icons from resources. Without a GUI application (the command line) nothing is drawn,
// because QPixmap needs one.
#include "corvanta/icons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace {

constexpr int kIconPixels = 64;

/// A plus or minus sign, drawn so that it needs no resource.
QPixmap signIcon(bool plus)
{
    constexpr int size = 16;
    QPixmap icon(size, size);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    const QColor colour(plus ? 0x2e7d32 : 0xc62828);
    painter.fillRect(3, 7, 10, 3, colour);
    if (plus) {
        painter.fillRect(6, 3, 3, 10, colour);
    }
    return icon;
}

} // namespace

QPixmap *renderSVG(double scale, const QString &path, QPixmap *cache, void **key)
{
    const bool hasGui = qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
    const int pixels = qBound(1, qRound(kIconPixels * scale), 4096);
    if (!hasGui || (*key != nullptr && cache->width() == pixels)) {
        return cache;
    }
    QPixmap drawn(pixels, pixels);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (path.endsWith(".svg"_L1)) {
        QSvgRenderer(path).render(&painter);
    } else {
        painter.drawPixmap(drawn.rect(), QPixmap(path));
    }
    painter.end();
    *cache = drawn;
    *key = cache;
    return cache;
}

QPixmap resizeIcon(const QPixmap &icon, double scale)
{
    return icon.scaled(icon.size() * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QPixmap getPlusIcon()
{
    return signIcon(true);
}

QPixmap getMinusIcon()
{
    return signIcon(false);
}
