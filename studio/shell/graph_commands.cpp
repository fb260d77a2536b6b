// What the commands do with the document and the canvas of the current tab.
//
// Everything that changes a graph is a function of GraphDocument, which makes it a step for undo.
#include "studio/shell/graph_commands.h"

#include "base/mapped.h"
#include "studio/canvas/canvas_view.h"
#include "studio/run/run_controller.h"
#include "studio/shell/command_text.h"
#include "studio/shell/commands.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/views/message_bar.h"
#include "studio/shell/workspace.h"

#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QInputDialog>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The first possible link from one action to another; nothing if there is none.
std::optional<LinkRef> possibleLink(const GraphDocument &document, const QString &from,
                                    const QString &to, QString *why)
{
    // Few actions have more than two pins, so that all pairs can be tried.
    for (int out = 0; out < document.outputCount(from); ++out) {
        for (int in = 0; in < document.inputCount(to); ++in) {
            if (document.canLink({from, out}, {to, in}, why)) {
                return LinkRef{{from, out}, {to, in}};
            }
        }
    }
    return std::nullopt;
}

/// All links that could start at an action, and those that could end there.
QVector<LinkRef> possibleLinks(const GraphDocument &document, const QString &id)
{
    QVector<LinkRef> links;
    // Both directions: the user may begin at either end.
    for (const QString &other : document.ids()) {
        for (const auto &[from, to] : {std::pair(id, other), std::pair(other, id)}) {
            if (const auto link = possibleLink(document, from, to, nullptr)) {
                links << *link;
            }
        }
    }
    return links;
}

QString linkText(const LinkRef &link)
{
    // As in the graph file, with an arrow.
    return u"%1:%2 \u2192 %3:%4"_s.arg(link.from.action, QString::number(link.from.pin),
                                       link.to.action, QString::number(link.to.pin));
}

} // namespace

GraphCommands::GraphCommands(Commands &commands, Workspace &workspace)
    : QObject(&workspace)
    , m_commands(commands)
    , m_workspace(workspace)
{
    connectEdits();
    connectLinks();
    connectViews();
    connectExports();
    connectRuns();
}

DocumentTab *GraphCommands::tab() const
{
    // Asked each time: a command is for the tab that is shown when it runs.
    return m_workspace.current();
}

GraphDocument *GraphCommands::document() const
{
    return tab() != nullptr ? tab()->document() : nullptr;
}

CanvasView *GraphCommands::canvas() const
{
    return tab() != nullptr ? tab()->canvas() : nullptr;
}

QStringList GraphCommands::selectedIds() const
{
    return canvas() != nullptr ? canvas()->selectedIds() : QStringList();
}

QVector<LinkRef> GraphCommands::selectedLinks() const
{
    return canvas() != nullptr ? canvas()->selectedLinks() : QVector<LinkRef>();
}

QVector<int> GraphCommands::selectedNotes() const
{
    return canvas() != nullptr ? canvas()->graphScene().selectedNotes() : QVector<int>();
}

void GraphCommands::select(const QStringList &ids, const QVector<LinkRef> &links,
                           const QVector<int> &notes)
{
    if (canvas() != nullptr) {
        canvas()->select(ids, links, notes);
    }
}

void GraphCommands::showAction(const QString &id)
{
    if (canvas() != nullptr) {
        canvas()->showAction(id);
    }
}

void GraphCommands::connectEdits()
{
    // None of them checks for a document: update() disables them where there is none.
    m_commands.onTrigger("edit.undo", this, [this] { document()->undoStack()->undo(); });
    m_commands.onTrigger("edit.redo", this, [this] { document()->undoStack()->redo(); });
    m_commands.onTrigger("edit.cut", this, [this] { cut(); });
    m_commands.onTrigger("edit.copy", this, [this] { copy(); });
    m_commands.onTrigger("edit.paste", this, [this] { paste(); });
    m_commands.onTrigger("edit.duplicate", this,
                         [this] { select(document()->duplicate(selectedIds())); });
    onCanvas("edit.delete", &CanvasView::removeSelection);
    m_commands.onTrigger("edit.deleteJoin", this,
                         [this] { document()->removeAndJoin(selectedIds()); });
    m_commands.onTrigger("edit.selectAll", this, [this] { select(document()->ids()); });
    onCanvas("graph.note", &CanvasView::addNote);
    m_commands.onTrigger("graph.layout", this, [this] {
        // A single action has nothing to be arranged with.
        const QStringList ids = selectedIds();
        document()->layout(ids.size() > 1 ? ids : QStringList());
    });
    // The commands differ only in the alignment.
    using Alignment = GraphDocument::Alignment;
    constexpr std::pair<const char *, Alignment> kAlignments[] = {
        {"align.left", Alignment::Left},       {"align.center", Alignment::Center},
        {"align.right", Alignment::Right},     {"align.top", Alignment::Top},
        {"align.middle", Alignment::Middle},   {"align.bottom", Alignment::Bottom},
        {"align.columns", Alignment::Columns}, {"align.rows", Alignment::Rows},
    };
    for (const auto &[name, alignment] : kAlignments) {
        m_commands.onTrigger(name, this, [this, alignment = alignment] {
            document()->align(selectedIds(), alignment);
        });
    }
}

void GraphCommands::connectLinks()
{
    m_commands.onTrigger("graph.link", this, [this] { link(); });
    m_commands.onTrigger("graph.insert", this, [this] { insertIntoLink(); });
}

void GraphCommands::onCanvas(const char *command, void (CanvasView::*function)())
{
    m_commands.onTrigger(command, this, [this, function] {
        if (canvas() != nullptr) {
            (canvas()->*function)();
        }
    });
}

void GraphCommands::connectViews()
{
    onCanvas("view.zoomIn", &CanvasView::zoomIn);
    onCanvas("view.zoomOut", &CanvasView::zoomOut);
    onCanvas("view.zoomReset", &CanvasView::zoomReset);
    onCanvas("view.zoomFit", &CanvasView::zoomFit);
    m_commands.onTrigger("view.overview", this, [this](bool isShown) {
        // A preference of the window, not of one graph.
        for (const DocumentTab *const each : m_workspace.tabs()) {
            each->canvas()->setOverviewShown(isShown);
        }
    });
    m_commands.onTrigger("view.snap", this, [this](bool snaps) {
        for (const DocumentTab *const each : m_workspace.tabs()) {
            each->canvas()->setSnapping(snaps);
        }
    });
}

void GraphCommands::connectExports()
{
    m_commands.onTrigger("export.svg", this, [this] {
        // The suffix decides about the format, see CanvasView::exportTo().
        exportPicture(tr("Save as SVG"), tr("Drawings (*.svg)"), u"svg"_s);
    });
    m_commands.onTrigger("export.png", this, [this] {
        exportPicture(tr("Save as PNG"), tr("Images (*.png)"), u"png"_s);
    });
    m_commands.onTrigger("export.pdf", this, [this] {
        exportPicture(tr("Save as PDF"), tr("Documents (*.pdf)"), u"pdf"_s);
    });
    m_commands.onTrigger("export.command", this, [this] { copyCommand(); });
    m_commands.onTrigger("export.script", this, [this] { saveScript(); });
}

void GraphCommands::connectRuns()
{
    m_commands.onTrigger("run.all", this, [this] { runs()->runAll(); });
    m_commands.onTrigger("run.here", this, [this] { runs()->runTo(selectedIds()); });
    m_commands.onTrigger("run.stop", this, [this] { tab()->runs()->stop(); });
    m_commands.onTrigger("run.again", this, [this] { runs()->rerun(); });
}

RunController *GraphCommands::runs() const
{
    // A value that is still being typed belongs to the run.
    Workspace::finishEditing();
    return tab()->runs();
}

void GraphCommands::update()
{
    // Of the shown tab; on the start page all of these are false or 0.
    const bool hasGraph = document() != nullptr;
    const qsizetype count = selectedIds().size();
    const qsizetype links = selectedLinks().size();
    const bool isRunning = hasGraph && tab()->runs()->isRunning();
    const auto enable = [&](std::initializer_list<const char *> names, bool isEnabled) {
        for (const char *const name : names) {
            m_commands[QLatin1StringView(name)]->setEnabled(isEnabled);
        }
    };
    enable({"edit.undo"}, hasGraph && document()->undoStack()->canUndo());
    enable({"edit.redo"}, hasGraph && document()->undoStack()->canRedo());
    enable({"edit.cut", "edit.copy", "edit.duplicate", "edit.deleteJoin"}, count > 0);
    enable({"edit.delete"}, count + links + selectedNotes().size() > 0);
    enable({"edit.paste", "edit.selectAll", "view.zoomIn", "view.zoomOut", "view.zoomReset",
            "view.zoomFit", "graph.note", "graph.layout", "export.svg", "export.png", "export.pdf",
            "export.command", "export.script"},
           hasGraph);
    enable({"edit.rename", "edit.comment", "run.data"}, count == 1);
    enable({"graph.link"}, count == 1 || count == 2);
    enable({"graph.insert"}, count == 1 && links == 1);
    enable(
        {"align.left", "align.center", "align.right", "align.top", "align.middle", "align.bottom"},
        count > 1);
    enable({"align.columns", "align.rows"}, count > 2);
    enable({"run.all", "run.again"}, hasGraph && !isRunning);
    enable({"run.here"}, count > 0 && !isRunning);
    enable({"run.stop"}, isRunning);
}

void GraphCommands::cut()
{
    copy();
    document()->remove(selectedIds());
}

void GraphCommands::copy()
{
    QGuiApplication::clipboard()->setText(document()->copied(selectedIds()));
}

void GraphCommands::paste()
{
    // The clipboard may have any text: paste() finds out whether it is a graph.
    const QStringList ids =
        document()->paste(QGuiApplication::clipboard()->text(), canvas()->freePosition());
    if (ids.isEmpty()) {
        Q_EMIT reported(tr("The clipboard has no actions."));
    } else {
        select(ids);
    }
}

void GraphCommands::addAction(const QString &type)
{
    QString id;
    const QStringList ids = selectedIds();
    const QVector<LinkRef> links = selectedLinks();
    // The palette has no other way to say where an action goes.
    if (links.size() == 1 && ids.isEmpty()) {
        id = document()->addActionIntoLink(type, links.first());
    } else if (ids.size() == 1 && document()->outputCount(ids.first()) > 0) {
        id = document()->addActionAfter(type, {ids.first(), 0});
    }
    // For example a second reader, which no action can send rows to.
    if (id.isEmpty()) {
        id = document()->addAction(type, canvas()->freePosition());
    }
    showAction(id);
}

void GraphCommands::link()
{
    const QStringList ids = selectedIds();
    if (ids.size() == 1) {
        chooseLink(ids.first());
        return;
    }
    QString why;
    auto found = possibleLink(*document(), ids.first(), ids.last(), &why);
    // The order of a selection is not that of clicks; only one direction may be possible.
    if (!found) {
        found = possibleLink(*document(), ids.last(), ids.first(), nullptr);
    }
    if (found) {
        document()->addLink(found->from, found->to);
    } else {
        Q_EMIT reported(why);
    }
}

void GraphCommands::chooseLink(const QString &id)
{
    const QVector<LinkRef> links = possibleLinks(*document(), id);
    if (links.isEmpty()) {
        Q_EMIT reported(tr("No other action can be linked to this one."));
        return;
    }
    // The same as a drag between two pins, for users of the keyboard.
    const auto texts = mapped<QStringList>(links, linkText);
    bool isChosen = false;
    const QString chosen = QInputDialog::getItem(&m_workspace, tr("Link"), tr("New link:"), texts,
                                                 0, false, &isChosen);
    if (isChosen) {
        // No two texts are equal: each names both pins.
        const LinkRef &ends = links.at(texts.indexOf(chosen));
        document()->addLink(ends.from, ends.to);
    }
}

void GraphCommands::insertIntoLink()
{
    QString why;
    if (!document()->insertIntoLink(selectedIds().first(), selectedLinks().first(), &why)) {
        Q_EMIT reported(why);
    }
}

void GraphCommands::exportPicture(const QString &title, const QString &filter,
                                  const QString &suffix)
{
    const QFileInfo graph(document()->fileName());
    const QString name =
        // Next to the graph; a graph without a file has only a title.
        graph.path() + u'/' + QFileInfo(document()->title()).completeBaseName() + u'.' + suffix;
    const QString file = QFileDialog::getSaveFileName(&m_workspace, title, name, filter);
    if (!file.isEmpty()) {
        checkWritten(canvas()->exportTo(file));
    }
}

bool GraphCommands::checkWritten(const GraphDocument::FileResult<void> &written)
{
    if (!written) {
        tab()->messages()->show(written.fault().detail, {{tr("Close")}});
    }
    return bool(written);
}

bool GraphCommands::hasFile()
{
    // The command reads the file, where unsaved changes would be missing.
    return (!document()->isModified() && !document()->fileName().isEmpty()) ||
           m_workspace.save(tab());
}

void GraphCommands::copyCommand()
{
    // A shell may be in any folder, so the command has the full name of the file.
    const bool wasModified = document()->isModified();
    if (hasFile()) {
        const QString command = runCommandText(document()->fileName());
        QGuiApplication::clipboard()->setText(command);
        Q_EMIT reported(
            (wasModified ? tr("The graph was saved. Copied: %1") : tr("Copied: %1")).arg(command));
    }
}

void GraphCommands::saveScript()
{
    if (!hasFile()) {
        return;
    }
    const QFileInfo graph(document()->fileName());
    const QString start = graph.path() + u'/' + graph.completeBaseName() + u".sh"_s;
    const QString name = QFileDialog::getSaveFileName(&m_workspace, tr("Save a shell script"),
                                                      start, tr("Shell scripts (*.sh)"));
    if (!name.isEmpty() && checkWritten(GraphDocument::writeFile(
                               name, runScriptText(document()->fileName(), name).toUtf8()))) {
        // For the same people who may read it.
        QFile::setPermissions(name, QFile::permissions(name) | QFile::ExeOwner | QFile::ExeUser |
                                        QFile::ExeGroup | QFile::ExeOther);
    }
}

} // namespace corvanta::studio
