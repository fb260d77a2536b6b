// What is dropped on the canvas: actions of the palette, data files and graphs.
#include "studio/canvas/canvas_view.h"
#include "studio/document/layered_layout.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The files of a drop; other URLs are ignored.
QStringList localFiles(const QMimeData *data)
{
    QStringList files;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile()) {
            files << url.toLocalFile();
        }
    }
    return files;
}

bool isGraphFile(const QString &file)
{
    return file.endsWith(".graph"_L1, Qt::CaseInsensitive);
}

} // namespace

/// Whether something of a drop can be used.
bool CanvasView::isAcceptable(const QMimeData *data) const
{
    if (data->hasFormat(actionMimeType())) {
        return true;
    }
    const QStringList files = localFiles(data);
    return std::any_of(files.begin(), files.end(), [&](const QString &file) {
        return isGraphFile(file) || m_document.canRead(file);
    });
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
    // On an action, the rows of the first file go there.
    PinRef to = m_scene->inputFor(place);
    if (!to.action.isEmpty()) {
        corner = m_document.position(to.action) - QPointF(kLayerStep.width(), 0);
    }
    for (const QString &file : localFiles(event->mimeData())) {
        if (isGraphFile(file)) {
            Q_EMIT graphDropped(file);
            continue;
        }
        QString why;
        const QString id = m_document.addDataFile(file, corner, &why, to);
        to = {};
        if (!id.isEmpty()) {
            showAction(id);
        }
        Q_EMIT message(why);
        corner.ry() += kLayerStep.height();
    }
}

} // namespace corvanta::studio
