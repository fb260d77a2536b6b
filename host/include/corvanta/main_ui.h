// The host's log, questions and user interface, as actions call them.
#pragma once
#include "corvanta/export.h"
#include "corvanta/log.h"
#include "corvanta/meta_info.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class ActionItem;
class CorvantaGraph;
class QWidget;

namespace corvanta {
struct ParameterEdit;
}

/// Threads: addLog(), displayOutOfDiskSpace() and getNearUniqueRandomID() may be called from any
/// thread, everything else from the GUI thread or before a run.
class CORVANTA_EXPORT MainUI
{
public:
    /// The values are part of the contract. An error fails the run, but addLog() does not do that;
    /// see ActionBase::fail(). Diagnostic is for messages of libraries.
    enum LogLevel { Error = 1, Warning = 2, Info = 3, Diagnostic = 4 };

    /// Log a message. It goes to the sink of the current LogScope, else to the program's sink.
    static void addLog(LogLevel level, const QString &text);
    static void addLog(int level, const QString &text)
    {
        addLog(static_cast<LogLevel>(level), text);
    }
    /// The sink of the current LogScope, else the program's. Never null.
    static LogSink *logSink();
    /// Set the program's sink, which must outlive its use; null: standard error.
    static void setLogSink(LogSink *sink);

    /// Ask the user whether to retry writing `name`. Returns false if `canRetry` is false or no
    /// handler is set. Blocks.
    static bool displayOutOfDiskSpace(const QString &name, int action, bool canRetry);
    /// Handler of that question; called on the thread of the action that asks.
    using DiskSpaceQuestion = std::function<bool(const QString &name)>;
    static void setDiskSpaceQuestion(DiskSpaceQuestion question);

    /// Operations of an editor. Without an editor they do nothing.
    struct EditorHooks
    {
        std::function<void(ActionItem *)> refreshProperties; ///< parameters have changed
        std::function<void()> modified;                      ///< the graph differs from its file
        /// The graph that is being edited; null if none is open. Owned by the editor.
        std::function<CorvantaGraph *()> editedGraph;
        /// Let the user choose among the columns that reach input pin `pin` of an action. Returns
        /// the chosen names, none when cancelled.
        std::function<QStringList(QWidget *, ActionItem *, int pin, bool several)> chooseColumns;
        /// The user has edited a parameter in a panel, and the action has the new value. An editor
        /// makes this a step that can be undone; see corvanta::EditHistory.
        std::function<void(ActionItem *, const corvanta::ParameterEdit &)> edited;
        /// The columns that reach an input pin, as far as they are known; must not block. When
        /// they become known later, the editor calls UpdateClassWidget::refresh().
        std::function<TableSchema(ActionItem *, int pin)> inputColumns;
    };
    /// Set the operations. Call on the GUI thread, before any panel is made.
    static void setEditorHooks(EditorHooks hooks);
    // Call the operations of the editor; panels use these.
    static void refreshDisplayOfProperties(ActionItem *action);
    static void documentWasModified();
    static void invalidate() { documentWasModified(); }
    static CorvantaGraph *editedGraph();
    /// Calls `edited`, then `modified`.
    static void parameterWasEdited(ActionItem *action, const corvanta::ParameterEdit &edit);
    /// No columns without an editor.
    static TableSchema inputColumns(ActionItem *action, int pin);
    /// Let the user choose one column or several. Returns false when cancelled. The form without a
    /// pin uses pin 0.
    static bool selectColumn(QWidget *parent, ActionItem *action, int pin, QString *column);
    static bool selectColumn(QWidget *parent, ActionItem *action, QString *column);
    static bool selectColumn(QWidget *parent, ActionItem *action, int pin, QStringList *columns);

    /// Always 0: this host serves nothing over the web.
    static int isWebOn();
    /// The job object for child processes (Windows), else null.
    static void *getJobHandle();
    /// Device pixels per logical pixel of the primary screen.
    static double pixelSize();
    /// A random number that is practically never returned twice, also by other processes.
    static quint64 getNearUniqueRandomID();
};

/// Offer the written file `name` for download. Always false: this host serves nothing over the web.
CORVANTA_EXPORT bool downloadForWeb(const QString &name);
