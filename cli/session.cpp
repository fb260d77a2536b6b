// The log and the progress line of a command, and the end of its runs.
#include "session.h"

#include "base/platform/terminal.h"
#include "corvanta/system.h"
#include "failure.h"
#include "stop_signals.h"
#include "visible_text.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// 1234567 as "1.2M": at most four characters and a unit.
QByteArray shortCount(double count)
{
    constexpr std::pair<double, char> units[] = {{1e9, 'G'}, {1e6, 'M'}, {1e3, 'k'}};
    for (const auto &[size, letter] : units) {
        if (count >= size) {
            return QByteArray::number(count / size, 'f', count < 100 * size ? 1 : 0) + letter;
        }
    }
    return QByteArray::number(static_cast<qint64>(count));
}

/// A fraction from 0 to 1 as "[####------] 42%".
QByteArray fractionBar(float fraction)
{
    const int percent = static_cast<int>(qBound(0.0F, fraction, 1.0F) * 100);
    const QByteArray bar = QByteArray(percent / 10, '#').leftJustified(10, '-');
    return '[' + bar + "] " + QByteArray::number(percent) + '%';
}

/// Sum of the rows that the readers of the graph have sent.
qint64 rowsRead(const CorvantaGraph &graph, const QVector<ActionProgress> &all)
{
    qint64 rows = 0;
    for (const ActionProgress &action : all) {
        const bool hasInput =
            std::any_of(graph.links.begin(), graph.links.end(),
                        [&](const auto &link) { return link.to.action == action.id; });
        // Listeners read, and are not part of the graph.
        rows += hasInput || graph.indexOf(action.id) < 0 ? 0 : action.allRowsOut();
    }
    return rows;
}

/// One line with the rows, rows per second and fraction done of each action.
QByteArray progressLine(const QVector<ActionProgress> &all, double seconds)
{
    QByteArray line;
    // A reader only sends rows and most writers only take them, so the larger count is meant.
    for (const ActionProgress &action : all) {
        const double rows = static_cast<double>(qMax(action.rowsIn, action.allRowsOut()));
        line += line.isEmpty() ? "" : "  ";
        line += visibleText(action.id).toUtf8() + ' ' + shortCount(rows);
        line += seconds > 0 ? " (" + shortCount(rows / seconds) + "/s)" : "";
        if (action.isFinished()) {
            line += " done";
        } else if (action.fraction >= 0) {
            line += ' ' + fractionBar(action.fraction);
        }
    }
    return line;
}

/// Whether messages have colors: `choice` is auto, always or never.
bool hasColors(const QString &choice)
{
    return choice == "always"_L1 || (choice == "auto"_L1 && platform::isTerminal(stderr) &&
                                     qEnvironmentVariableIsEmpty("NO_COLOR"));
}

/// One line per action: what it took and sent.
void logRows(const QVector<ActionProgress> &all)
{
    for (const ActionProgress &action : all) {
        MainUI::addLog(MainUI::Info, u"%1 (%2): %3 rows in, %4 rows out"_s.arg(
                                         action.id, action.type, QString::number(action.rowsIn),
                                         QString::number(action.allRowsOut())));
    }
}

constexpr OptionInfo kMessageOptions[] = {
    {"--log-format", "text|json", "write messages as text, or as one JSON object per line"},
    {"--log-file", "FILE", "write all messages to FILE as well"},
    {"--progress", "auto|always|never|lines",
     "show a progress line, and a summary at the end; auto: on a terminal only; lines: for "
     "programs, "
     "with --log-format json, an object with the state of all actions every 0.2 s"},
    {"--color", "auto|always|never",
     "colors of errors and warnings; auto: on a terminal, unless NO_COLOR is set"},
    {"-q, --quiet", "", "show only errors and warnings, with their reasons"},
    {"-v", "", "show more: the rows that each action took and sent, or further details"},
    {"--system-encoding", "NAME", "8-bit encoding of files in the \"system\" encoding"},
};

CommandResult<void> checkMessageOptions(const CommandLine &line)
{
    const QString progress = line.value(u"--progress"_s, u"auto"_s);
    const QStringList choices{u"auto"_s, u"always"_s, u"never"_s};
    if (!choices.contains(progress) && progress != "lines"_L1) {
        return badUsage(u"--progress must be auto, always, never or lines"_s);
    }
    if (!choices.contains(line.value(u"--color"_s, u"auto"_s))) {
        return badUsage(u"--color must be auto, always or never"_s);
    }
    if (progress == "lines"_L1 && line.value(u"--log-format"_s, QString()) != "json"_L1) {
        return badUsage(u"--progress lines needs --log-format json"_s);
    }
    const QString encoding = line.value(u"--system-encoding"_s, QString());
    if (!encoding.isEmpty() && !isKnownEncoding(encoding)) {
        return badUsage(
            u"--system-encoding: the encoding '%1' is unknown (windows-1252 is an example)"_s.arg(
                encoding));
    }
    return {};
}

CommandResult<std::unique_ptr<CommandLog>> openLog(const CommandLine &line)
{
    return CommandLog::create(
        {line.value(u"--log-format"_s, u"text"_s), line.has(u"--quiet"_s) || line.has(u"-q"_s),
         hasColors(line.value(u"--color"_s, u"auto"_s)), line.value(u"--log-file"_s, QString())});
}

} // namespace

CommandOptions Session::options(CommandOptions more)
{
    more.groups << OptionGroup{"Messages", kMessageOptions};
    return more;
}

std::span<const OptionInfo> Session::logFormatOption()
{
    return std::span(kMessageOptions).first<1>();
}

CommandResult<std::unique_ptr<Session>> Session::open(const CommandLine &line)
{
    if (const auto valid = checkMessageOptions(line); !valid) {
        return valid.fault();
    }
    const bool isJson = line.value(u"--log-format"_s, u"text"_s) == "json"_L1;
    auto log = openLog(line);
    if (!log) {
        return log.fault();
    }
    setFailureStream((*log)->stream(), isJson);
    setSystemEncoding(line.value(u"--system-encoding"_s, QString()));
    std::unique_ptr<Session> session(new Session(*std::move(log)));
    session->m_isVerbose = line.has(u"-v"_s);
    session->setProgress(line.value(u"--progress"_s, u"auto"_s), isJson);
    session->m_timer.start();
    return session;
}

/// Programs that parse JSON messages must get nothing else; the summary is a message.
void Session::setProgress(const QString &choice, bool isJson)
{
    const bool isAlways = choice == "always"_L1;
    const bool isWanted = isAlways || (choice == "auto"_L1 && platform::isTerminal(stderr));
    m_writesProgress = choice == "lines"_L1;
    m_showsProgress = isWanted && !isJson;
    m_summary = isAlways || m_writesProgress ? Summary::Always
                : isWanted                   ? Summary::OfFiles
                                             : Summary::Never;
}

Session::Session(std::unique_ptr<CommandLog> log)
    : m_log(std::move(log))
{
    MainUI::setLogSink(m_log.get());
}

Session::~Session()
{
    // Here and not in run(), because the summary is the last line.
    const QStringList files = m_files.isEmpty() ? m_log->writtenFiles() : m_files;
    // Unless it is asked for, a summary below the rows of head would only disturb.
    const bool showsRun = m_rows && (m_summary == Summary::Always ||
                                     (m_summary == Summary::OfFiles && !files.isEmpty()));
    if (showsRun || m_inputs) {
        const double seconds = static_cast<double>(m_timer.nsecsElapsed()) / 1e9;
        const double megabytes = static_cast<double>(m_log->bytesRead()) / 1e6;
        const RunSummary summary{m_earlierRows + m_rows.value_or(0), seconds, megabytes / seconds,
                                 files, m_inputs};
        if (m_summary == Summary::Never) {
            m_log->add({MainUI::Info, {}, summaryText(summary)});
        } else {
            m_log->addSummary(summary);
        }
    }
    MainUI::setLogSink(nullptr);
}

void Session::beginInput(const QString &name)
{
    m_log->setInput(name);
    m_earlierRows += m_rows.value_or(0);
    m_rows.reset();
}

Session::InputResult Session::inputResult() const
{
    return {m_rows.value_or(0), m_log->filesOfInput(), m_log->firstError()};
}

void Session::endInputs(const InputCounts &counts)
{
    m_log->setInput({});
    m_inputs = counts;
}

void Session::setTemporary(const QString &name)
{
    m_log->setTemporary(name);
}

void Session::setResult(qint64 rows, const QStringList &files)
{
    m_rows = rows;
    m_files = files;
}

bool Session::logProblems(const CorvantaGraph::Problems &problems, const IsError &isError)
{
    bool hasErrors = false;
    for (const CorvantaGraph::Problem &problem : problems) {
        const bool fails = !isError || isError(problem);
        hasErrors = hasErrors || fails;
        MainUI::addLog(fails ? MainUI::Error : MainUI::Warning,
                       (fails ? u"Error: "_s : u"Warning: "_s) + problem.text);
    }
    return hasErrors;
}

void Session::showProgress(const Run &run, const QElapsedTimer &timer)
{
    if (!m_showsProgress && !m_writesProgress) {
        return;
    }
    const QVector<ActionProgress> all = run.progress();
    const QByteArray line = progressLine(all, static_cast<double>(timer.elapsed()) / 1000);
    if (m_writesProgress) {
        m_log->addProgress({MainUI::Info, {}, QString::fromUtf8(line)}, all);
    } else {
        showLine(line);
    }
}

void Session::showLine(const QByteArray &line)
{
    if (m_writesProgress && !line.isEmpty()) {
        m_log->addProgress({MainUI::Info, {}, QString::fromUtf8(line)}, {});
    } else if (m_showsProgress) {
        // One column less than the terminal has: a full line would begin a new one.
        m_log->setProgressLine(line.left(platform::terminalWidth(stderr) - 1));
    }
}

/// A run that ends within the first tick shows no progress line.
void Session::waitForEnd(Run *run)
{
    constexpr auto kTick = std::chrono::milliseconds(200); // between two progress lines
    QElapsedTimer timer;
    timer.start();
    while (!run->waitFor(kTick)) {
        showProgress(*run, timer);
    }
    m_log->setProgressLine({});
    run->wait(); // joins the threads
    if (m_writesProgress) {
        showProgress(*run, timer);
    }
    if (run->hasAbandoned()) {
        // Without destructors, because a thread is left. The log has the reason.
        std::fflush(nullptr);
        std::_Exit(interruption().value_or(kFailed));
    }
}

void Session::reportIncomplete()
{
    const QStringList files = m_log->filesOfInput();
    MainUI::addLog(MainUI::Warning,
                   u"Warning: %1; %2"_s.arg(interruption() ? u"interrupted"_s
                                                           : u"not all of the input was read"_s,
                                            files.isEmpty() ? u"no file was written"_s
                                                            : u"kept: "_s + files.join(u", "_s)));
}

CommandResult<void> Session::run(const CorvantaGraph &graph, const ActionRegistry &registry,
                                 RunOptions options)
{
    const CleanEnd cleanEnd;
    // A command may run several graphs; a signal ends all of them.
    if (const auto status = interruption()) {
        return Fault{*status};
    }
    const bool keepsPartial = options.keepPartial;
    const bool logsRows = m_isVerbose && options.listeners.empty();
    options.log = m_log.get();
    Run run(graph, registry, std::move(options));
    const SignalWatch watch(run);
    if (logProblems(run.problems())) {
        return Fault{kUsage};
    }
    run.start();
    waitForEnd(&run);
    // A command may run several graphs, for example to measure texts; the last one does its work.
    m_rows = rowsRead(graph, run.progress());
    if (logsRows) {
        logRows(run.progress());
    }
    if (run.succeeded()) {
        return {};
    }
    if (keepsPartial || interruption()) {
        reportIncomplete();
    }
    // Without memory an action cannot say why it failed.
    if (run.failed() && !m_log->hasErrors()) {
        reportFailure("not enough memory");
    }
    // Without a failure or a signal the run does not stop.
    return Fault{run.failed() ? kFailed : interruption().value_or(kFailed)};
}
