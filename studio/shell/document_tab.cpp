// Connects a document with what is shown of it in its tab.
#include "studio/shell/document_tab.h"

#include "studio/canvas/canvas_view.h"
#include "studio/run/log_panel.h"
#include "studio/run/run_controller.h"
#include "studio/shell/views/message_bar.h"

#include <QFileInfo>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

DocumentTab::DocumentTab(std::unique_ptr<GraphDocument> document, QWidget *parent)
    : QWidget(parent)
    , m_document(std::move(document))
    , m_messages(new MessageBar(this))
    , m_canvas(new CanvasView(*m_document, this))
    , m_runs(new RunController(*m_document, this))
    , m_log(new LogPanel(m_runs->log()))
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_messages);
    // The log is not in the tab: the window shows it in a dock.
    layout->addWidget(m_canvas, 1);
    // Keys that are not for a panel are for the graph.
    setFocusProxy(m_canvas);
    connectDocument();
}

DocumentTab::~DocumentTab()
{
    // All of them use the document, and the log uses the runs.
    delete m_log;
    delete m_runs;
    delete m_canvas;
}

void DocumentTab::connectDocument()
{
    GraphDocument *const shown = m_document.get();
    connect(shown, &GraphDocument::modifiedChanged, this, &DocumentTab::titleChanged);
    connect(shown, &GraphDocument::fileNameChanged, this, &DocumentTab::titleChanged);
    connect(shown, &GraphDocument::changedOnDisk, this, &DocumentTab::offerReload);
    const auto showFault = [this](const QString &id, const QString &reason) {
        m_messages->show(u"%1: %2"_s.arg(id, reason), {{tr("Close")}});
    };
    // A file is read in the background: the reason comes after the drop is complete.
    connect(shown, &GraphDocument::fillFailed, this, showFault);
}

void DocumentTab::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_wasShown) {
        m_wasShown = true;
        // Not now: the layout comes after this event.
        QTimer::singleShot(0, m_canvas, &CanvasView::zoomFit);
    }
}

QString DocumentTab::title() const
{
    // Tabs have no mark for unsaved changes, as the title of a window has.
    return m_document->isModified() ? m_document->title() + u'*' : m_document->title();
}

void DocumentTab::offerReload()
{
    if (!QFileInfo::exists(m_document->fileName())) {
        m_document->keepContent();
        m_messages->show(tr("The file was removed or renamed. Save the graph to keep it."),
                         {{tr("Close")}});
        return;
    }
    const QString text = m_document->isModified()
                             ? tr("Another program has changed the file. Reading it again loses "
                                  "the unsaved changes.")
                             : tr("Another program has changed the file.");
    const auto reload = [this] {
        if (const auto loaded = m_document->reload(); !loaded) {
            m_messages->show(loaded.fault().detail, {{tr("Close")}});
        }
    };
    // Not a dialog: the user may compare the graph with the file first.
    const auto keep = [this] { m_document->keepContent(); };
    m_messages->show(text, {{tr("Read it again"), reload}, {tr("Keep this version"), keep}});
}

} // namespace corvanta::studio
