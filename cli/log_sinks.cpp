// Messages as text and as JSON.
//
// A progress line on a terminal is erased before a message and written again after it.
#include "log_sinks.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "base/platform/terminal.h"
#include "base/system_error.h"
#include "visible_text.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstdio>

using namespace Qt::StringLiterals;
using corvanta::ActionProgress;

namespace {

/// Standard error for JSON only: messages that libraries write to it would not be JSON. Taken once,
/// because the stream stays taken until the program ends.
std::FILE *jsonStream()
{
    static std::FILE *const stream = corvanta::platform::takeErrorStream();
    return stream;
}

/// "Error: " and the like, or nothing for a text that begins with its severity, as most texts do.
QString severityPrefix(const QString &text, int level)
{
    const bool saysSeverity = text.startsWith("error"_L1, Qt::CaseInsensitive) ||
                              text.startsWith("warning"_L1, Qt::CaseInsensitive);
    const QString severity = saysSeverity ? QString() : severityOf(level) + ": "_L1;
    // As in the texts that have one.
    return severity.left(1).toUpper() + severity.mid(1);
}

/// As programs read it.
QString nameOf(ActionProgress::State state)
{
    static const QString names[] = {u"waiting"_s, u"running"_s, u"done"_s,
                                    u"warned"_s,  u"failed"_s,  u"stopped"_s};
    return names[static_cast<int>(state)];
}

/// The escapes that set the color of a message on a terminal; none for information.
const char *colorOf(int level)
{
    return level == MainUI::Error ? "\033[31m" : level == MainUI::Warning ? "\033[33m" : "";
}

/// "[ACTION] Severity: text", for people.
class TextLog final : public CommandLog
{
public:
    using CommandLog::CommandLog;

private:
    QByteArray format(const LogMessage &message) const override
    {
        const QString text = message.text.trimmed();
        const QString severity = severityPrefix(text, message.level);
        const QString action =
            message.action.isEmpty() ? QString() : u"[%1] "_s.arg(visibleText(message.action));
        const QString place = input().isEmpty() ? action : visibleText(input()) + ": "_L1 + action;
        return (place + severity + visibleLines(text) + u'\n').toUtf8();
    }
    QByteArray format(const LogMessage &message, const RunSummary &) const override
    {
        return visibleText(message.text).toUtf8() + '\n';
    }
    QByteArray format(const LogMessage &message, const QVector<ActionProgress> &) const override
    {
        return message.text.toUtf8() + '\n';
    }
};

/// One object per line with the keys in a fixed order; the text is unchanged.
class JsonLog final : public CommandLog
{
public:
    using CommandLog::CommandLog;

private:
    static QByteArray jsonOf(const QJsonValue &value)
    {
        const QByteArray array =
            QJsonDocument(QJsonObject{{u"v"_s, value}}).toJson(QJsonDocument::Compact);
        return array.mid(5, array.size() - 6); // after {"v": and before }
    }
    /// The members of a message, without the end of the object.
    QByteArray membersOf(const LogMessage &message) const
    {
        return "{\"level\":" + QByteArray::number(message.level) +
               ",\"severity\":" + jsonOf(severityOf(message.level)) +
               (input().isEmpty() ? QByteArray() : ",\"input\":" + jsonOf(input())) +
               ",\"action\":" + jsonOf(message.action) + ",\"message\":" + jsonOf(message.text);
    }
    QByteArray format(const LogMessage &message) const override
    {
        return membersOf(message) + "}\n";
    }
    QByteArray format(const LogMessage &message, const RunSummary &summary) const override
    {
        QJsonObject object{{u"rows"_s, summary.rows},
                           {u"seconds"_s, summary.seconds},
                           {u"megabytesPerSecond"_s, summary.megabytesPerSecond},
                           {u"files"_s, QJsonArray::fromStringList(summary.files)}};
        if (summary.inputs) {
            object.insert(u"inputs"_s, objectOf(*summary.inputs));
        }
        return membersOf(message) + ",\"summary\":" + jsonOf(object) + "}\n";
    }
    QByteArray format(const LogMessage &message, const QVector<ActionProgress> &all) const override
    {
        QJsonArray actions;
        for (const ActionProgress &action : all) {
            actions << objectOf(action);
        }
        return membersOf(message) + ",\"progress\":" + jsonOf(actions) + "}\n";
    }
    static QJsonObject objectOf(const InputCounts &inputs)
    {
        return {{u"shard"_s, inputs.shard},
                {u"done"_s, inputs.done},
                {u"skipped"_s, inputs.skipped},
                {u"failed"_s, inputs.failed},
                {u"left"_s, inputs.left}};
    }
    static QJsonObject objectOf(const ActionProgress &action)
    {
        QJsonArray rowsOut;
        for (const qint64 rows : action.rowsOut) {
            rowsOut << rows;
        }
        QJsonObject object{{u"action"_s, action.id},
                           {u"state"_s, nameOf(action.state)},
                           {u"rowsIn"_s, action.rowsIn},
                           {u"rowsOut"_s, rowsOut}};
        if (action.fraction >= 0) {
            object.insert(u"fraction"_s, qMin(1.0F, action.fraction));
        }
        return object;
    }
};

/// "shard 2/10: 97 inputs done, 2 done before, 1 failed, "; nothing for a single run.
QString textOf(const std::optional<InputCounts> &inputs)
{
    if (!inputs) {
        return {};
    }
    QString text =
        u"shard %1: %2 done, "_s.arg(inputs->shard, corvanta::counted(inputs->done, u"input"_s));
    const std::pair<qint64, QString> others[] = {{inputs->skipped, u"done before"_s},
                                                 {inputs->failed, u"failed"_s},
                                                 {inputs->left, u"not run"_s}};
    for (const auto &[count, state] : others) {
        text += count > 0 ? u"%1 %2, "_s.arg(QString::number(count), state) : QString();
    }
    return text;
}

/// Whether the words ask for messages in JSON, also if they are otherwise wrong.
bool asksForJson(const QStringList &words)
{
    const qsizetype option = words.lastIndexOf(u"--log-format"_s);
    return words.contains(u"--log-format=json"_s) ||
           (option >= 0 && words.value(option + 1) == "json"_L1);
}

} // namespace

/// Every level above Info is for diagnosis, whatever its number.
QString severityOf(int level)
{
    switch (level) {
    case MainUI::Error:
        return u"error"_s;
    case MainUI::Warning:
        return u"warning"_s;
    case MainUI::Info:
        return u"info"_s;
    default:
        return u"diagnostic"_s;
    }
}

QString summaryText(const RunSummary &summary)
{
    const QString files = summary.files.isEmpty() ? u"no file written"_s
                          : summary.inputs
                              ? "wrote "_L1 + corvanta::counted(summary.files.size(), u"file"_s)
                              : "wrote "_L1 + summary.files.join(", "_L1);
    return textOf(summary.inputs) + u"%1 read in %2 s (%3 MB/s), %4"_s.arg(
                                        corvanta::counted(summary.rows, u"row"_s),
                                        QString::number(summary.seconds, 'f', 2),
                                        QString::number(summary.megabytesPerSecond, 'f', 1), files);
}

CommandResult<std::unique_ptr<CommandLog>> CommandLog::create(const LogOptions &options)
{
    std::unique_ptr<CommandLog> log;
    if (options.format == "json"_L1) {
        log = std::make_unique<JsonLog>(options, jsonStream());
    } else if (options.format == "text"_L1) {
        log = std::make_unique<TextLog>(options, stderr);
    } else {
        return badUsage(u"--log-format must be text or json"_s);
    }
    if (!options.fileName.isEmpty()) {
        log->m_file.reset(std::fopen(QFile::encodeName(options.fileName).constData(), "we"));
        if (!log->m_file) {
            return corvanta::Fault{
                kFailed, u"--log-file: cannot write '%1': %2"_s.arg(
                             options.fileName, corvanta::SystemError::ofLastCall().text())};
        }
    }
    return log;
}

/// A reason follows its message in the same thread, and is shown if the message is.
void CommandLog::add(const LogMessage &message)
{
    thread_local int previous = MainUI::Info;
    previous = message.text.startsWith("Reason: "_L1) ? previous : message.level;
    if (message.level == MainUI::Error && !m_hasErrors.exchange(true)) {
        const std::lock_guard lock(m_mutex);
        m_firstError = message.text;
    }
    const QByteArray line = format(message);
    writeToFile(line);
    if (!m_options.isQuiet || previous <= MainUI::Warning) {
        write(line, m_options.hasColors ? colorOf(message.level) : "");
    }
}

/// A log file that cannot be written, for example on a full disk, is reported once and closed.
void CommandLog::writeToFile(const QByteArray &line)
{
    std::unique_lock lock(m_mutex);
    if (!m_file) {
        return;
    }
    errno = 0;
    if (std::fputs(line.constData(), m_file.get()) < 0 || std::fflush(m_file.get()) != 0) {
        const QString reason = corvanta::SystemError::ofLastCall().text();
        m_file.reset();
        lock.unlock();
        write(format(
            {MainUI::Warning,
             {},
             u"Warning: --log-file: cannot write '%1': %2"_s.arg(m_options.fileName, reason)}));
    }
}

/// Locked, so that the lines of several threads do not mix.
void CommandLog::write(const QByteArray &line, const char *color)
{
    const std::lock_guard lock(m_mutex);
    // Return to the first column and erase to the end of the line, then write the progress again.
    const char *const clear = m_progress.isEmpty() ? "" : "\r\033[K";
    // The color ends before the line does: what follows has none.
    const QByteArray shown = *color == '\0' ? line : color + line.chopped(1) + "\033[0m\n";
    std::fprintf(m_out, "%s%s%s", clear, shown.constData(), m_progress.constData());
    std::fflush(m_out);
}

void CommandLog::addProgress(const LogMessage &message, const QVector<ActionProgress> &all)
{
    write(format(message, all));
}

void CommandLog::addSummary(const RunSummary &summary)
{
    const QByteArray line = format({MainUI::Info, {}, summaryText(summary)}, summary);
    writeToFile(line);
    write(line);
}

void CommandLog::setTemporary(const QString &name)
{
    m_temporary = QFileInfo(name).fileName();
}

/// Called on the threads of several actions.
void CommandLog::addWrittenFile(const QString &name)
{
    if (!m_temporary.isEmpty() && QFileInfo(name).fileName() == m_temporary) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    // A file that is written twice, for example by an update, is one file.
    m_written.removeAll(name);
    m_written << name;
}

QStringList CommandLog::writtenFiles() const
{
    const std::lock_guard lock(m_mutex);
    return m_writtenBefore + m_written;
}

QStringList CommandLog::filesOfInput() const
{
    const std::lock_guard lock(m_mutex);
    return m_written;
}

QString CommandLog::firstError() const
{
    const std::lock_guard lock(m_mutex);
    return m_firstError;
}

void CommandLog::setInput(const QString &name)
{
    const std::lock_guard lock(m_mutex);
    m_input = name;
    m_hasErrors = false;
    m_firstError.clear();
    m_writtenBefore += std::exchange(m_written, {});
}

void CommandLog::setProgressLine(const QByteArray &line)
{
    const std::lock_guard lock(m_mutex);
    // Nothing to erase: standard error may be a file, which must not get escapes.
    if (line.isEmpty() && m_progress.isEmpty()) {
        return;
    }
    m_progress = line;
    std::fprintf(m_out, "\r\033[K%s", line.constData());
    std::fflush(m_out);
}

/// Usage errors may occur before a log exists: they are written here, or by a JSON log made for
/// them.
ExitStatus reportResult(const QString &command, const QStringList &words,
                        const CommandResult<void> &result)
{
    if (result) {
        return kDone;
    }
    // A failed run has logged its errors already; only usage errors have a text.
    const QString &text = result.fault().detail;
    if (text.isEmpty()) {
        return result.fault().code;
    }
    const QString suffix = command.isEmpty() ? QString() : u' ' + command;
    const QString message = u"corvanta%1: %2"_s.arg(suffix, text);
    const bool isJson = asksForJson(words);
    if (isJson) {
        (*CommandLog::create({.format = u"json"_s}))->add({MainUI::Error, {}, message});
    } else {
        std::fprintf(stderr, "%s\n", visibleLines(message).toUtf8().constData());
    }
    if (!isJson && result.fault().code == kUsage) {
        std::fprintf(stderr, "See \"corvanta help%s\".\n", qPrintable(suffix));
    }
    return result.fault().code;
}
