// Pictures are drawn into memory first, so that a failure leaves the old file.
#include "studio/canvas/export_graph.h"

#include "studio/canvas/graph_scene.h"

#include <QBuffer>
#include <QFileInfo>
#include <QPageSize>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QSvgGenerator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr double kPictureMargin = 24;
constexpr double kPointsPerPixel = 0.75;

/// Draw a part of the scene.
void render(GraphScene &scene, QPaintDevice *device, const QRectF &target, const QRectF &area)
{
    QPainter painter(device);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    scene.render(&painter, target, area);
}

// Texts stay texts, so that other programs can search them.
QByteArray svgOf(GraphScene &scene, const QRectF &area)
{
    QBuffer buffer;
    QSvgGenerator svg;
    svg.setOutputDevice(&buffer);
    svg.setSize(area.size().toSize());
    svg.setViewBox(QRectF(QPointF(), area.size()));
    svg.setTitle(scene.document().title());
    render(scene, &svg, QRectF(QPointF(), area.size()), area);
    return buffer.data();
}

/// Twice as sharp as at 100 %, unless the picture becomes too large for other programs.
QByteArray pngOf(GraphScene &scene, const QRectF &area)
{
    constexpr double kMaxPixels = 16000;
    const double factor = qMin(2.0, kMaxPixels / qMax(area.width(), area.height()));
    QImage image((area.size() * factor).toSize().expandedTo({1, 1}), QImage::Format_ARGB32);
    image.fill(Qt::white);
    render(scene, &image, QRectF(QPointF(), QSizeF(image.size())), area);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

// One page of the size of the graph.
QByteArray pdfOf(GraphScene &scene, const QRectF &area)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter pdf(&buffer);
    pdf.setTitle(scene.document().title());
    pdf.setPageSize(QPageSize(area.size() * kPointsPerPixel, QPageSize::Point, QString(),
                              QPageSize::ExactMatch));
    pdf.setPageMargins({});
    render(scene, &pdf, QRectF(0, 0, pdf.width(), pdf.height()), area);
    return buffer.data();
}

/// Draws without selection, focus and the colours of a dark screen.
class PrintLook
{
public:
    /// The signals of the scene are blocked: the selection of the user does not change.
    explicit PrintLook(GraphScene &scene)
        : m_scene(scene)
        , m_selected(scene.selectedIds())
        , m_palette(scene.palette())
        , m_blocker(&scene)
    {
        scene.clearSelection();
        scene.clearFocus();
        QPalette light = m_palette;
        for (const auto role : {QPalette::Base, QPalette::Window}) {
            light.setColor(role, Qt::white);
        }
        light.setColor(QPalette::Text, Qt::black);
        scene.setPalette(light);
    }
    ~PrintLook()
    {
        m_scene.setPalette(m_palette);
        m_scene.select(m_selected);
    }
    Q_DISABLE_COPY_MOVE(PrintLook)

private:
    GraphScene &m_scene;
    QStringList m_selected;
    QPalette m_palette;
    QSignalBlocker m_blocker;
};

} // namespace

// An empty graph gives an empty picture of the size of a node.
GraphDocument::FileResult<void> exportGraph(GraphScene &scene, const QString &file)
{
    const QRectF graph = scene.itemsRect();
    const QRectF area = graph.isEmpty() ? QRectF(0, 0, NodeItem::kWidth, NodeItem::kGrid * 4)
                                        : graph.adjusted(-kPictureMargin, -kPictureMargin,
                                                         kPictureMargin, kPictureMargin);
    const QString extension = QFileInfo(file).suffix().toLower();
    const PrintLook look(scene);
    if (extension == "svg"_L1) {
        return GraphDocument::writeFile(file, svgOf(scene, area));
    }
    if (extension == "png"_L1) {
        return GraphDocument::writeFile(file, pngOf(scene, area));
    }
    if (extension == "pdf"_L1) {
        return GraphDocument::writeFile(file, pdfOf(scene, area));
    }
    return Fault{GraphDocument::FileError::CannotWrite,
                 GraphScene::tr("“%1”: a graph is exported as .svg, .png or .pdf.").arg(file)};
}

} // namespace corvanta::studio
