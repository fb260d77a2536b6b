// The commands that change, show, export and run the current graph.
//
// They act on the tab that is shown and on what is selected on its canvas. Those that are
// impossible now are disabled.
#pragma once
#include "studio/document/graph_document.h"

#include <QObject>

namespace corvanta::studio {

class CanvasView;
class Commands;
class DocumentTab;
class RunController;
class Workspace;

/// Threads: the GUI thread.
class GraphCommands final : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this object.
    GraphCommands(Commands &commands, Workspace &workspace);

    /// What is selected; nothing on the start page.
    QStringList selectedIds() const;
    QVector<LinkRef> selectedLinks() const;
    QVector<int> selectedNotes() const;
    void select(const QStringList &ids, const QVector<LinkRef> &links = {},
                const QVector<int> &notes = {});
    /// Select an action and make it visible.
    void showAction(const QString &id);
    /// Add an action and select it: into the selected link or after the selected action, if that is
    /// possible, else at a free place.
    void addAction(const QString &type);
    /// Enable what is possible now.
    void update();

Q_SIGNALS:
    /// A sentence for the status bar: what was done, or why it is impossible.
    void reported(const QString &text);

private:
    // Called once, by the constructor: what each command starts.
    void connectEdits();
    void connectLinks();
    void connectViews();
    void connectExports();
    void connectRuns();
    /// Call a function of the canvas of the current tab, if there is one.
    void onCanvas(const char *command, void (CanvasView::*function)());

    DocumentTab *tab() const;
    GraphDocument *document() const;
    CanvasView *canvas() const;
    /// The runs of the current tab, after the edit in progress has become a part of the graph.
    RunController *runs() const;

    /// Copy the selected actions to the clipboard and remove them.
    void cut();
    void copy();
    /// Add the actions of the clipboard; reports a text that is not a graph.
    void paste();
    /// Link the two selected actions, or let the user choose what to link the selected one to.
    void link();
    /// Let the user choose among all links that `id` can have.
    void chooseLink(const QString &id);
    /// Insert the selected action into the selected link; reports why that is impossible.
    void insertIntoLink();
    /// Let the user choose a file, and draw the whole graph into it.
    void exportPicture(const QString &title, const QString &filter, const QString &suffix);
    /// Copy the command that runs the saved graph.
    void copyCommand();
    /// Save an executable shell script that runs the saved graph.
    void saveScript();
    /// Show why a file could not be written. Returns whether it was written.
    bool checkWritten(const GraphDocument::FileResult<void> &written);
    /// Save a new or changed graph first; the command and the script name its file. Returns false
    /// if the user cancelled.
    bool hasFile();

    Commands &m_commands;
    Workspace &m_workspace;
};

} // namespace corvanta::studio
