// What is dropped on the canvas: actions of the palette, data files and graphs.
#include "studio/canvas/canvas_view.h"
#include "studio/document/file_reader.h"
#include "studio/document/layered_layout.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

bool isGraphFile(const QString &file)
{
    return file.endsWith(".graph"_L1, Qt::CaseInsensitive);
}

} // namespace

// Other URLs are ignored.
CanvasView::DroppedFiles CanvasView::filesOf(const QMimeData &data, const ActionRegistry &registry)
{
    DroppedFiles files;
    for (const QUrl &url : data.urls()) {
        if (!url.isLocalFile()) {
            continue;
        }
        const QString file = url.toLocalFile();
        QStringList &kind = isGraphFile(file)                      ? files.graphs
                            : readerType(registry, file).isEmpty() ? files.others
                                                                   : files.data;
        kind << file;
    }
    return files;
}

/// Whether a drop has an effect. For a file that no action reads, this is a message.
bool CanvasView::isAcceptable(const QMimeData *data) const
{
    const DroppedFiles files = filesOf(*data, m_document.registry());
    return data->hasFormat(actionMimeType()) ||
           !(files.graphs + files.data + files.others).isEmpty();
}

void CanvasView::dragEnterEvent(QDragEnterEvent *event)
{
    event->setAccepted(isAcceptable(event->mimeData()));
}

// The link that would get the action is marked.
void CanvasView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setAccepted(isAcceptable(event->mimeData()));
    const bool isAction = event->mimeData()->hasFormat(actionMimeType());
    m_scene->markLink(isAction ? m_scene->linkAt(mapToScene(event->position().toPoint()))
                               : nullptr);
}

void CanvasView::dragLeaveEvent(QDragLeaveEvent *event)
{
    m_scene->markLink(nullptr);
    event->accept();
}

// On a link, an action is inserted into it.
void CanvasView::dropEvent(QDropEvent *event)
{
    const QPointF place = mapToScene(event->position().toPoint());
    // The middle of the new node is where the mouse is.
    QPointF corner = m_scene->snapped(place - NodeItem::kCenter);
    const LinkItem *const link = m_scene->linkAt(place);
    m_scene->markLink(nullptr);
    event->acceptProposedAction();
    if (event->mimeData()->hasFormat(actionMimeType())) {
        const QString type = QString::fromUtf8(event->mimeData()->data(actionMimeType()));
        QString why;
        const QString inserted =
            link == nullptr ? QString() : m_document.addActionIntoLink(type, link->link(), &why);
        showAction(inserted.isEmpty() ? m_document.addAction(type, corner) : inserted);
        Q_EMIT message(why);
        return;
    }
    const DroppedFiles files = filesOf(*event->mimeData(), m_document.registry());
    // On an action, the rows of the first file go there.
    const PinRef to = m_scene->inputFor(place);
    if (!to.action.isEmpty()) {
        corner = m_document.position(to.action) - QPointF(kLayerStep.width(), 0);
    }
    addDataFiles(files.data + files.others, corner, to);
    for (const QString &file : files.graphs) {
        Q_EMIT graphDropped(file);
    }
}

// One message for all, so that no reason covers another.
void CanvasView::addDataFiles(const QStringList &files, QPointF corner, PinRef to)
{
    QStringList reasons;
    for (const QString &file : files) {
        QString why;
        const QString id = m_document.addDataFile(file, corner, &why, std::exchange(to, {}));
        if (!id.isEmpty()) {
            showAction(id);
            corner.ry() += kLayerStep.height();
        }
        reasons << why;
    }
    reasons.removeAll(QString());
    Q_EMIT message(reasons.join(u' '));
}

} // namespace corvanta::studio
