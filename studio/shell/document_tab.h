// One open graph: its document, its canvas, its runs and the messages about its file.
#pragma once
#include "studio/document/graph_document.h"
#include "studio/run/log_panel.h"

#include <QPointer>
#include <QWidget>

namespace corvanta::studio {

class CanvasView;
class MessageBar;
class RunController;

/// Threads: the GUI thread.
class DocumentTab final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentTab(std::unique_ptr<GraphDocument> document, QWidget *parent = nullptr);
    ~DocumentTab() override; ///< stops a run

    GraphDocument *document() const { return m_document.get(); }
    CanvasView *canvas() const { return m_canvas; }
    RunController *runs() const { return m_runs; }
    /// The log of the runs, which another widget shows; the tab deletes it.
    LogPanel *log() const { return m_log; }
    MessageBar *messages() const { return m_messages; }
    /// The title of the tab: the name of the graph, with a mark if it has unsaved changes.
    QString title() const;

Q_SIGNALS:
    void titleChanged();

protected:
    /// Shows the whole graph when the canvas first has a size.
    void showEvent(QShowEvent *event) override;

private:
    /// Show what the document reports about its file.
    void connectDocument();
    /// Another program has changed the file: let the user choose a version.
    void offerReload();

    std::unique_ptr<GraphDocument> m_document;
    MessageBar *m_messages;
    CanvasView *m_canvas;
    RunController *m_runs;
    QPointer<LogPanel> m_log;
    bool m_wasShown = false;
};

} // namespace corvanta::studio
