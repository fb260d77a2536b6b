// A graph that is being edited: its content, the actions made from it, its file and its undo stack.
//
// Every edit is one step of the undo stack, and every change, also by undo and redo, is reported by
// signals after it has been made. Actions are named by their ids. The document keeps the text of
// the opened file: what is not edited is saved byte for byte.
// Threads: the GUI thread.
#pragma once
#include "base/result.h"
#include "corvanta/action_registry.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/global_parameters.h"
#include "studio/document/content.h"
#include "studio/document/run_state.h"
#include "studio/document/source_text.h"

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QUndoStack>

#include <functional>
#include <memory>

namespace corvanta::studio {

class DocumentFile;
class InputColumns;
class ProblemWatch;

/// Something that the user should correct, for the list of problems.
struct GraphProblem
{
    QString text;   ///< without file and line
    QString action; ///< id; empty if it concerns the graph or a link
    CorvantaGraph::Problem::Kind kind = CorvantaGraph::Problem::Kind::Invalid;
    bool operator==(const GraphProblem &) const = default;
};

class GraphDocument final : public QObject
{
    Q_OBJECT

public:
    /// Why a file cannot be opened or saved; the detail of the fault is the text for the user.
    enum class FileError { CannotRead, CannotWrite };
    template <class T> using FileResult = Result<T, FileError>;
    /// Replace a file of the user, whatever it contains, in one step.
    static FileResult<void> writeFile(const QString &file, const QByteArray &content);

    /// A new graph without a file. `registry` must outlive the document.
    explicit GraphDocument(const ActionRegistry &registry, QObject *parent = nullptr);
    ~GraphDocument() override;

    // The file.

    /// Open a graph file. A graph that cannot be run is opened too, as long as it can be parsed.
    static FileResult<std::unique_ptr<GraphDocument>> open(const QString &file,
                                                           const ActionRegistry &registry);
    /// Replace the content by what the file has now; empties the undo stack.
    FileResult<void> reload();
    /// Replace the file in one step. The document has a file.
    FileResult<void> save();
    /// Save under another name, which becomes the file of the document. In another folder, names of
    /// inputs that are relative to the old one become absolute; this is a step too.
    FileResult<void> saveAs(const QString &file);
    /// Absolute; empty for a new graph.
    QString fileName() const { return m_graph.fileName; }
    /// The name of the file without its folder, or "Untitled", for titles.
    QString title() const;
    bool isModified() const { return m_differsFromFile || !m_undo.isClean(); }
    /// Whether another program has changed or removed the file since it was opened or saved.
    bool hasChangedOnDisk() const;
    /// Keep this content, although another program has changed or removed the file: the document
    /// counts as modified until it is saved.
    void keepContent();
    /// What save() writes.
    QByteArray toXml() const;

    /// A recovery file of a session that has ended without closing its documents.
    struct Recovery
    {
        QString file;     ///< of the recovery
        QString original; ///< the file of its graph; empty: it had none
        QDateTime time;   ///< of the last edit in it
        QByteArray base;  ///< digest of the original that was edited; empty: it had none
    };
    /// The recovery files of sessions that are not running, newest first.
    static QVector<Recovery> recoveries();
    /// Open a recovery; the document has the original's name and counts as modified. Soon after it
    /// emits changedOnDisk() if the original is not the one that was edited.
    static FileResult<std::unique_ptr<GraphDocument>> recover(const Recovery &recovery,
                                                              const ActionRegistry &registry);
    /// Remove a recovery that the user does not want.
    static void discard(const Recovery &recovery);
    /// Remove the recovery file because the user has decided not to keep the changes.
    void discardRecovery();

    // The content.

    const ActionRegistry &registry() const { return m_registry; }
    /// The graph of the current state, for EditorHooks::editedGraph() and runs.
    CorvantaGraph &graph() { return m_graph; }
    const CorvantaGraph &graph() const { return m_graph; }
    const Content &content() const { return m_content; }
    /// The ids of all actions in the order of the file.
    QStringList ids() const;
    bool contains(const QString &id) const { return m_indexes.contains(id); }
    /// Name of the type; empty for an unknown id, as for the functions below.
    QString type(const QString &id) const;
    QString comment(const QString &id) const;
    QPointF position(const QString &id) const;
    /// In the order of the file.
    const QVector<Note> &notes() const { return m_content.notes; }
    /// Empty for an unknown key.
    QString noteText(int key) const;
    /// In the order of the file.
    QVector<LinkRef> links() const;
    /// The link into an input pin, or those from an output pin.
    QVector<LinkRef> linksTo(const PinRef &input) const;
    QVector<LinkRef> linksFrom(const PinRef &output) const;
    const QMap<QString, QString> &variables() const { return m_content.variables; }
    /// The action for panels; null if the module does not have its type. The object stays the same
    /// for as long as the document exists, also while the action is removed.
    ActionItem *action(const QString &id) const;
    /// The id of an action of this document; empty for any other.
    QString idOf(const ActionItem *action) const;
    int outputCount(const QString &id) const;
    /// Number of input pins to show: the linked ones, and one that is free if there may be more.
    int inputCount(const QString &id) const;
    /// Number of input pins that may be linked.
    int maxInputs(const QString &id) const;
    /// The ids of the actions that the action gets rows from, directly or not, with itself; and of
    /// those that get rows from it, as if the link `without` did not exist.
    QStringList upstream(const QString &id) const;
    QStringList downstream(const QString &id, const LinkRef *without = nullptr) const;

    // Edits; each is one step of the undo stack.

    QUndoStack *undoStack() { return &m_undo; }
    /// Add an action with the parameters that are usual for its type. Returns its id; empty for an
    /// unknown type.
    QString addAction(const QString &type, QPointF position);
    /// Add the reader of a data file, and fill in its levels and columns in the background, as part
    /// of the same step. Its rows go to the input `to`, if that is free; else `why` gets the
    /// reason. Returns its id; empty, with the reason, if no action reads such files.
    QString addDataFile(const QString &file, QPointF position, QString *why = nullptr,
                        const PinRef &to = {});
    /// Remove actions with their links, links, and notes by their keys.
    void remove(const QStringList &ids, const QVector<LinkRef> &links = {},
                const QVector<int> &notes = {});
    /// Remove actions, and give those after them the rows of their first input.
    void removeAndJoin(const QStringList &ids);
    /// Whether an input pin exists and is free; if not, `why` gets a sentence for the user.
    bool isFree(const PinRef &to, QString *why = nullptr, const LinkRef *replaced = nullptr) const;
    /// Whether the link is possible; if not, `why` gets a sentence for the user. `replaced` is a
    /// link that would be removed at the same time.
    bool canLink(const PinRef &from, const PinRef &to, QString *why = nullptr,
                 const LinkRef *replaced = nullptr) const;
    /// Add a link, if canLink().
    bool addLink(const PinRef &from, const PinRef &to, QString *why = nullptr);
    /// Give a link other ends.
    bool reroute(const LinkRef &link, const LinkRef &ends, QString *why = nullptr);
    bool canInsertIntoLink(const QString &id, const LinkRef &link, QString *why = nullptr) const;
    /// Replace a link by one to the first input pin of an action and one from its first output pin.
    /// Where it covers the ends of the link, it goes between them, and what follows makes room.
    bool insertIntoLink(const QString &id, const LinkRef &link, QString *why = nullptr);
    /// Add an action in the middle of a link, where what follows makes room. Returns its id.
    QString addActionIntoLink(const QString &type, const LinkRef &link, QString *why = nullptr);
    /// Add an action that gets the rows of an output pin, at a free place right of it.
    QString addActionAfter(const QString &type, const PinRef &from, QString *why = nullptr);
    /// `series` as in ParameterEdit.
    void move(const QMap<QString, QPointF> &positions, int series = 0);
    /// Rename an action; the links follow. Returns false, with the reason, for a name that is taken
    /// or not allowed.
    bool rename(const QString &id, const QString &name, QString *why = nullptr);
    /// An empty comment removes it.
    void setComment(const QString &id, const QString &comment, int series = 0);
    /// Add a note, which belongs to no action. Returns its key.
    int addNote(QPointF position, const QString &text);
    /// An empty text removes the note.
    void setNoteText(int key, const QString &text);
    void moveNotes(const QMap<int, QPointF> &positions, int series = 0);
    /// A null value removes the variable.
    void setVariable(const QString &name, const QString &value, int series = 0);
    /// Set one parameter of several actions of one type.
    bool setParameter(const QStringList &ids, const QString &parameter, const QString &value);
    /// Make an edit of a panel a step, see MainUI::EditorHooks::edited.
    void recordEdit(ActionItem *action, const ParameterEdit &edit);
    /// Actions and the links among them as text for the clipboard: a graph file.
    QString copied(const QStringList &ids) const;
    /// Add the actions of such a text; their upper left corner is at `position`. Returns their ids,
    /// none if the text is not a graph.
    QStringList paste(const QString &text, QPointF position);
    /// Add copies next to the actions, with the links among them. Returns their ids.
    QStringList duplicate(const QStringList &ids);
    enum class Alignment { Left, Center, Right, Top, Middle, Bottom, Columns, Rows };
    /// Align actions, or distribute them evenly in one direction (Columns, Rows).
    void align(const QStringList &ids, Alignment alignment);
    /// Place all actions in layers from left to right; only these if there are any.
    void layout(const QStringList &ids = {});

    // What is computed in the background.

    /// What `corvanta check` finds, a short time after the last edit; see problemsChanged().
    const QVector<GraphProblem> &problems() const;
    /// The columns that reach an input pin; empty until they are known, see columnsChanged().
    TableSchema inputColumns(const QString &id, int pin);

    // The state of the last run, as the run reports it.

    /// Idle for an action that has not run.
    const RunState &runState(const QString &id) const;
    void setRunState(const QString &id, const RunState &state);
    void clearRunStates();

Q_SIGNALS:
    void actionAdded(const QString &id);
    void actionRemoved(const QString &id); ///< action() still has the object while this is emitted
    void actionRenamed(const QString &oldId, const QString &id);
    /// Its parameters or its comment.
    void actionChanged(const QString &id);
    void linkAdded(const corvanta::studio::LinkRef &link);
    void linkRemoved(const corvanta::studio::LinkRef &link);
    void moved(const QString &id);
    void variablesChanged();
    void notesChanged();
    void modifiedChanged(bool isModified);
    void fileNameChanged();
    void changedOnDisk();
    void reloaded(); ///< all content has been replaced; emitted instead of the signals above
    void problemsChanged();
    /// The rows of its outputs may differ: an action, or one that it depends on, has changed.
    void upstreamChanged(const QString &id);
    /// The columns of its input pins are known, or must be asked for again.
    void columnsChanged(const QString &id);
    void runStateChanged(const QString &id);
    /// The beginning of a data file could not be read.
    void fillFailed(const QString &id, const QString &reason);

private:
    friend class GraphEdit;
    using Change = std::function<void(Content &)>;

    FileResult<void> load(const QByteArray &text, const QString &file);
    FileResult<void> write(const QString &file);
    void push(const QString &text, const Change &change, int series = 0);
    void apply(const Content &next);
    Content contentOf(const CorvantaGraph &graph, const SourceText &source, bool isKept);
    void rebuildGraph();
    void updateItems(const Content &previous);
    void reportNodes(const Content &previous);
    void reportLinks(const Content &previous);
    void reportUpstream(const Content &previous);
    void makeItem(const Node &node);
    Node newNode(const QString &wantedId, const XMLNode &element, QPointF position);
    QString uniqueId(const QString &wanted, const QStringList &taken = {}) const;
    XMLNode newElement(const QString &type) const;
    QString addNode(const QString &text, const Node &node, const QVector<Wire> &wires,
                    int series = 0);
    void fill(const QString &id, const QString &text, int series);
    void finishFill(int key, int revision, const XMLNode &filled, const QString &text, int series,
                    const QString &reason);
    void rebaseInputs(const QString &oldFolder);
    void setElements(const QHash<QString, XMLNode> &elements, const QString &text, int series = 0);
    const Node &node(const QString &id) const { return *m_content.nodes[m_indexes.value(id)]; }

    const ActionRegistry &m_registry;
    GlobalParameters m_global; // of the actions
    SourceText m_source;       // the opened file
    Content m_content;
    CorvantaGraph m_graph;                           // the same, for the host
    QHash<QString, int> m_indexes;                   // in m_content.nodes, by id
    QHash<int, std::shared_ptr<ActionItem>> m_items; // by key, also of removed actions
    int m_nextKey = 0;
    int m_nextRevision = 1;
    int m_nextSeries = -1;          // of edits of the document itself; those of panels are positive
    int m_upToDateKey = -1;         // the action that already has the parameters of the step
    bool m_differsFromFile = false; // although the undo stack is at the saved state
    QHash<QString, RunState> m_runStates;
    QUndoStack m_undo;
    std::unique_ptr<DocumentFile> m_file;
    std::unique_ptr<ProblemWatch> m_problems;
    std::unique_ptr<InputColumns> m_columns;
};

} // namespace corvanta::studio
