// corvanta/main_ui.h
// The host's log, questions and user interface, as actions call them.
#pragma once
#include "corvanta/export.h"
#include "corvanta/log.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class ActionItem;
class CorvantaGraph;
class QWidget;

class CORVANTA_EXPORT MainUI
{
public:
    enum LogLevel { Error = 1, Warning = 2, Info = 3, Diagnostic = 4 };

    /// Log a message. It goes to the run that the calling thread works for, else to the program's
    /// sink.
    static void addLog(LogLevel level, const QString &text);
    static void addLog(int level, const QString &text)
    {
        addLog(static_cast<LogLevel>(level), text);
    }
    /// Where messages outside any run go; null: standard error.
    static void setLogSink(LogSink *sink);

    /// Ask whether writing `name` shall be tried again; false where nobody can answer.
    static bool displayOutOfDiskSpace(const QString &name, int action, bool canRetry);
    /// Who answers that question. The handler is called on the asking action's thread.
    using DiskSpaceQuestion = std::function<bool(const QString &name)>;
    static void setDiskSpaceQuestion(DiskSpaceQuestion question);

    /// What an editor hooks into; without one these do nothing.
    struct EditorHooks
    {
        std::function<void(ActionItem *)> refreshProperties;
        std::function<void()> modified;
        std::function<CorvantaGraph *()> editedGraph;
        /// Columns that reach input pin `pin` of `action`; the user's choice, empty when cancelled.
        std::function<QStringList(QWidget *, ActionItem *, int pin, bool several)> chooseColumns;
    };
    static void setEditorHooks(EditorHooks hooks);
    static void refreshDisplayOfProperties(ActionItem *action);
    static void documentWasModified();
    static void invalidate() { documentWasModified(); }
    static CorvantaGraph *editedGraph();
    static bool selectColumn(QWidget *parent, ActionItem *action, int pin, QString *column);
    static bool selectColumn(QWidget *parent, ActionItem *action, QString *column);
    static bool selectColumn(QWidget *parent, ActionItem *action, int pin, QStringList *columns);

    /// 0: nothing of this host is served over the web.
    static int isWebOn();
    /// The job object that child processes belong to (Windows), else null.
    static void *getJobHandle();
    /// Device pixels per logical pixel of the primary screen.
    static double pixelSize();
    /// A number that is not given twice, also not by another process.
    static quint64 getNearUniqueRandomID();
};

/// Offer the written file `name` for download. Always false: this host serves nothing over the web.
CORVANTA_EXPORT bool downloadForWeb(const QString &name);
