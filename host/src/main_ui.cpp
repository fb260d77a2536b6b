// The host's log and the requests of actions to a user interface.
//
// The program installs handlers. Without them messages go to standard error, and questions are
// answered "no".
#include "corvanta/main_ui.h"

#include <QGuiApplication>
#include <QRandomGenerator>
#include <QScreen>

#include <atomic>
#include <cstdio>
#include <mutex>

namespace {

/// Writes one message per line to standard error, for programs that set no sink.
class PlainSink final : public LogSink
{
public:
    void add(const LogMessage &message) override
    {
        const QByteArray text = message.text.trimmed().toUtf8();
        const std::lock_guard lock(m_mutex);
        std::fprintf(stderr, "%s\n", text.constData());
    }

private:
    std::mutex m_mutex;
};

/// The handlers of the program.
struct Host
{
    PlainSink plainSink;
    std::atomic<LogSink *> sink = nullptr; // null: plainSink
    std::mutex mutex;
    MainUI::DiskSpaceQuestion diskSpaceQuestion; // guarded by mutex
    MainUI::EditorHooks hooks;                   // set before use, by the GUI thread
};

/// Created on first use: plug-ins may log while they are loaded.
Host &host()
{
    static Host instance;
    return instance;
}

} // namespace

void MainUI::addLog(LogLevel level, const QString &text)
{
    logSink()->add({level, LogScope::current().action, text});
}

LogSink *MainUI::logSink()
{
    // The sink of the run first: several runs of a process can have different logs.
    LogSink *const ofRun = LogScope::current().sink;
    LogSink *const sink = ofRun != nullptr ? ofRun : host().sink.load();
    return sink != nullptr ? sink : &host().plainSink;
}

void MainUI::setLogSink(LogSink *sink)
{
    host().sink = sink;
}

bool MainUI::displayOutOfDiskSpace(const QString &name, int, bool canRetry)
{
    // Copy the handler, because it may block for as long as the user needs.
    DiskSpaceQuestion question;
    {
        const std::lock_guard lock(host().mutex);
        question = host().diskSpaceQuestion;
    }
    return canRetry && question && question(name);
}

void MainUI::setDiskSpaceQuestion(DiskSpaceQuestion question)
{
    const std::lock_guard lock(host().mutex);
    host().diskSpaceQuestion = std::move(question);
}

void MainUI::setEditorHooks(EditorHooks hooks)
{
    host().hooks = std::move(hooks);
}

void MainUI::refreshDisplayOfProperties(ActionItem *action)
{
    if (host().hooks.refreshProperties) {
        host().hooks.refreshProperties(action);
    }
}

void MainUI::documentWasModified()
{
    if (host().hooks.modified) {
        host().hooks.modified();
    }
}

void MainUI::parameterWasEdited(ActionItem *action, const corvanta::ParameterEdit &edit)
{
    if (host().hooks.edited) {
        host().hooks.edited(action, edit);
    }
    documentWasModified();
}

TableSchema MainUI::inputColumns(ActionItem *action, int pin)
{
    return host().hooks.inputColumns ? host().hooks.inputColumns(action, pin) : TableSchema();
}

CorvantaGraph *MainUI::editedGraph()
{
    return host().hooks.editedGraph ? host().hooks.editedGraph() : nullptr;
}

bool MainUI::selectColumn(QWidget *parent, ActionItem *action, int pin, QStringList *columns)
{
    if (host().hooks.chooseColumns) {
        *columns = host().hooks.chooseColumns(parent, action, pin, true);
        return !columns->isEmpty();
    }
    return false;
}

bool MainUI::selectColumn(QWidget *parent, ActionItem *action, int pin, QString *column)
{
    if (host().hooks.chooseColumns) {
        *column = host().hooks.chooseColumns(parent, action, pin, false).value(0);
        return !column->isEmpty();
    }
    return false;
}

bool MainUI::selectColumn(QWidget *parent, ActionItem *action, QString *column)
{
    return selectColumn(parent, action, 0, column);
}

int MainUI::isWebOn()
{
    return 0;
}

void *MainUI::getJobHandle()
{
    return nullptr;
}

double MainUI::pixelSize()
{
    // The command line has no screen.
    const auto *const application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    return application != nullptr && QGuiApplication::primaryScreen() != nullptr
               ? QGuiApplication::primaryScreen()->devicePixelRatio()
               : 1.0;
}

quint64 MainUI::getNearUniqueRandomID()
{
    // The system's generator: a seeded one could give two processes the same numbers.
    return QRandomGenerator::system()->generate64();
}

bool downloadForWeb(const QString &)
{
    return false;
}
