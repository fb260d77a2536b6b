// The canvas of a document: shows its graph, and edits it by mouse and keyboard.
//
// Mouse: drag from pin to pin adds a link, the end of a link to another pin re-routes it, a node
// onto a link inserts it; the wheel scrolls, with Ctrl it zooms; the middle button moves the
// view. A double click asks for an action.
// Keyboard: Tab goes from node to node, arrows move the selected nodes, Alt+arrows follow links,
// L draws a link or re-routes the selected one, K goes from link to link, Enter edits, Space asks
// for an action. The user can change these keys, except Tab.
// Threads: the GUI thread.
#pragma once
#include "studio/canvas/graph_scene.h"

#include <QGraphicsView>

#include <optional>

class QMimeData;

namespace corvanta::studio {

class Overview;
class QuickAdd;

class CanvasView final : public QGraphicsView
{
    Q_OBJECT

public:
    /// `document` must outlive the view.
    explicit CanvasView(GraphDocument &document, QWidget *parent = nullptr);
    ~CanvasView() override;

    GraphDocument &document() const { return m_document; }
    GraphScene &graphScene() const { return *m_scene; }

    QStringList selectedIds() const { return m_scene->selectedIds(); }
    QVector<LinkRef> selectedLinks() const { return m_scene->selectedLinks(); }
    /// Select these and nothing else.
    void select(const QStringList &ids, const QVector<LinkRef> &links = {},
                const QVector<int> &notes = {})
    {
        m_scene->select(ids, links, notes);
    }
    /// Select an action, scroll to it, and give it the focus.
    void showAction(const QString &id);
    /// The same for a link and a note.
    void showLink(LinkItem *link);
    void showNote(NoteItem *note);
    /// A place in the visible part where a new action covers no other.
    QPointF freePosition() const;

    void zoomIn() { zoomBy(kZoomStep); }
    void zoomOut() { zoomBy(1 / kZoomStep); }
    /// To 100 %.
    void zoomReset();
    /// Show the whole graph, not larger than at 100 %.
    void zoomFit();
    /// 1 is 100 %.
    double zoom() const { return transform().m11() / m_scale; }
    /// Show the whole graph in a corner; it is hidden at first.
    void setOverviewShown(bool isShown);
    /// Whether dragged nodes keep to the grid, as they do at first; Alt leaves it.
    void setSnapping(bool snaps) { m_scene->setSnapping(snaps); }
    /// Write the whole graph as SVG, PNG or PDF, after the extension of `file`.
    GraphDocument::FileResult<void> exportTo(const QString &file);
    /// Ask for the text of a new note; edit that of another one.
    void addNote();
    void editNote(int key);
    /// Remove the selected actions, links and notes.
    void removeSelection();

    /// The files of a drop, by what can be done with them.
    struct DroppedFiles
    {
        QStringList graphs;
        QStringList data;   ///< an action reads them
        QStringList others; ///< folders too
    };
    static DroppedFiles filesOf(const QMimeData &data, const ActionRegistry &registry);
    /// Add the readers of files, one below the other; the rows of the first one go to `to`. The
    /// message says why a file has none.
    void addDataFiles(const QStringList &files, QPointF corner, PinRef to = {});

    /// The type of an action that is dragged from a palette, in UTF-8.
    static QString actionMimeType();
    static constexpr double kZoomStep = 1.2;

Q_SIGNALS:
    void selectionChanged();
    /// Why something is not possible, or what happens, for the status bar.
    void message(const QString &text);
    /// The user wants to edit this action.
    void activated(const QString &id);
    /// A graph file was dropped.
    void graphDropped(const QString &file);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void drawBackground(QPainter *painter, const QRectF &area) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void zoomBy(double factor);
    void growScene();
    void makeKeys();
    void editCurrent();
    void askAtCurrent();
    void drawLink();
    void goToNeighbour(QPointF direction);
    void goToNextLink();
    void goToNextNote();
    void moveSelection(QPointF way);
    template <class Item>
    void goToNext(const QVector<Item *> &items, void (CanvasView::*show)(Item *));
    void askForAction(const PinRef &from, QPointF place);
    std::optional<QString> askForNote(const QString &text);
    void askForInsertion(const LinkRef &link, QPointF place);
    void addAsked(const QString &type, const PinRef &from, QPointF place);
    bool isAcceptable(const QMimeData *data) const;
    void placeOverview();

    GraphDocument &m_document;
    GraphScene *m_scene;  // a child
    Overview *m_overview; // a child
    QuickAdd *m_quickAdd; // a child
    double m_scale;       // canvasScale()
    QPoint m_panStart;    // while the middle button is pressed
    bool m_isPanning = false;
    int m_moveSeries = -1000000; // of moves by keys, which are one step until the selection changes
};

} // namespace corvanta::studio
