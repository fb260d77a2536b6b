// A journal in a folder of JSON lines:
//
//   {"error":"","files":[{"modified":NS,"name":"/out/a.parquet","size":N}],"graphFile":"/g.graph",
//    "input":{"modified":NS,"name":"/in/a.json","size":N},"rows":N,
//    "run":{"graph":SHA-256,"outDir":"/out","variables":{"year":"2026"}},
//    "seconds":S,"status":0,"time":MS}
#include "cli/batch/journal.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "base/system_error.h"
#include "cli/batch/line_file.h"
#include "corvanta/main_ui.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The member that names the rows of a piece.
constexpr auto kRows = "rowsOfInput"_L1;

/// The files of a journal, among others if a user has chosen their folder.
constexpr auto kEntries = "shard-*-of-*.jsonl"_L1;
constexpr auto kRunning = "shard-*-of-*.running"_L1;

/// Whether the file is unchanged.
bool isUnchanged(const FileState &state)
{
    return state.now() == state;
}

/// Whether entries exist, and all of them are of another graph: it may have been moved or changed,
/// but not both since the last run.
bool isOfAnotherGraph(const LastEntries &entries, const RunIdentity &identity,
                      const QString &graphFile)
{
    return !entries.empty() && std::ranges::none_of(entries, [&](const auto &item) {
        const JournalEntry &entry = item.second;
        return entry.graphFile == graphFile || entry.run[u"graph"] == identity.common[u"graph"];
    });
}

/// Lines of other programs, or of a device that lost a part of the file, are reported once: their
/// inputs run again.
void logDamage(const JournalReader &reader)
{
    if (const qint64 damaged = reader.damagedLines(); damaged > 0) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: %1 of the journal cannot be read and %2 ignored (first: %3)"_s.arg(
                counted(damaged, u"line"_s), isOrAre(damaged), reader.firstDamaged()));
    }
}

} // namespace

/// A user may have removed or replaced an output: then the input is not done.
bool JournalEntry::hasItsFiles() const
{
    return std::ranges::all_of(files, isUnchanged);
}

QByteArray JournalEntry::line() const
{
    const QJsonObject object{{u"input"_s, input.json()},
                             {u"run"_s, run},
                             {u"graphFile"_s, graphFile},
                             {u"status"_s, status},
                             {u"rows"_s, rows},
                             {u"seconds"_s, seconds},
                             {u"files"_s, mapped<QJsonArray>(files, std::mem_fn(&FileState::json))},
                             {u"error"_s, error},
                             {u"time"_s, time}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

/// Members that are missing, as in the journal of an earlier version, get values that make the
/// input run again.
bool JournalEntry::parse(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    input = FileState::of(object[u"input"]);
    run = object[u"run"].toObject();
    graphFile = object[u"graphFile"].toString();
    status = object[u"status"].toInt(kFailed);
    rows = object[u"rows"].toInteger();
    seconds = object[u"seconds"].toDouble();
    files = mapped<QVector<FileState>>(object[u"files"].toArray(), &FileState::of);
    error = object[u"error"].toString();
    time = object[u"time"].toInteger();
    return !input.name.isEmpty();
}

/// Other processes may append to the file, so each call continues where the last complete
/// line ended. A file that cannot be opened has been removed.
void JournalReader::readFile(const QString &name, Position *position,
                             QVector<JournalEntry> *entries)
{
    LineFile file(name, position->offset);
    while (file.next() && file.isComplete()) {
        position->offset += file.bytes();
        ++position->line;
        JournalEntry entry;
        if (entry.parse(file.line())) {
            *entries << entry;
        } else if (file.line() != "\n" && ++m_damaged == 1) {
            m_firstDamaged = u"%1, line %2"_s.arg(name, QString::number(position->line));
        }
    }
}

QVector<JournalEntry> JournalReader::read()
{
    const QDir folder(m_folder);
    QVector<JournalEntry> entries;
    for (const QString &name : folder.entryList({kEntries}, QDir::Files, QDir::Name)) {
        readFile(folder.filePath(name), &m_positions[name], &entries);
    }
    return entries;
}

namespace {

/// Nothing if the file has no entry, as after the end of a shard.
std::optional<JournalEntry> entryIn(const QString &name)
{
    LineFile file(name);
    JournalEntry entry;
    return file.next() && entry.parse(file.line()) ? std::optional(entry) : std::nullopt;
}

} // namespace

/// A process that was killed has left the file that names its input.
QVector<JournalEntry> interruptedRuns(const QString &folder)
{
    const QDir files(folder);
    QVector<JournalEntry> entries;
    for (const QString &name : files.entryList({kRunning}, QDir::Files, QDir::Name)) {
        if (const auto entry = entryIn(files.filePath(name))) {
            entries << *entry;
        }
    }
    return entries;
}

void clearJournal(const QString &folder)
{
    const QDir files(folder);
    for (const QString &name : files.entryList({kEntries, kRunning}, QDir::Files)) {
        QFile::remove(files.filePath(name));
    }
}

namespace {

/// Each piece of an input has an entry of its own.
QString keyOf(const QString &name, const QJsonObject &run)
{
    const QJsonValue rows = run.value(kRows);
    return rows.isUndefined() ? name : name + u'\n' + rows.toString();
}

} // namespace

/// Of entries of one time the one that is read last counts.
void addEntries(const QVector<JournalEntry> &entries, LastEntries *last)
{
    for (const JournalEntry &entry : entries) {
        const auto [place, isNew] = last->try_emplace(keyOf(entry.input.name, entry.run), entry);
        if (!isNew && place->second.time <= entry.time) {
            place->second = entry;
        }
    }
}

/// An entry counts only for the same bytes of input and the same graph, variables and folder.
const JournalEntry *findEntry(const LastEntries &entries, const InputFile &input,
                              const RunIdentity &identity)
{
    const auto found = entries.find(keyOf(input.file.name, identity.of(input)));
    const bool isSame = found != entries.end() && found->second.input == input.file &&
                        found->second.run == identity.of(input);
    return isSame ? &found->second : nullptr;
}

/// With other inputs in the list the index changes, and with it the names of files.
QJsonObject RunIdentity::of(const InputFile &input) const
{
    QJsonObject run = common;
    if (usesIndex) {
        run.insert(u"inputIndex"_s, input.index);
    }
    if (input.piece) {
        run.insert(kRows, u"%1 from %2"_s.arg(QString::number(input.piece->rowCount),
                                              QString::number(input.piece->firstRow)));
    }
    return run;
}

CommandResult<Journal> Journal::read(const QString &folder, const RunIdentity &identity,
                                     const QString &graphFile)
{
    Journal journal;
    journal.m_folder = folder;
    journal.m_identity = identity;
    JournalReader reader(folder);
    addEntries(reader.read(), &journal.m_last);
    if (isOfAnotherGraph(journal.m_last, identity, graphFile)) {
        return badUsage(u"the journal '%1' is of another graph, '%2'; name another folder with "
                        "--journal"_s.arg(folder, journal.m_last.begin()->second.graphFile));
    }
    logDamage(reader);
    return journal;
}

bool Journal::isDone(const InputFile &input) const
{
    const JournalEntry *const entry = findEntry(m_last, input, m_identity);
    return entry != nullptr && entry->status == kDone && entry->hasItsFiles();
}

bool Journal::hasFailed(const InputFile &input) const
{
    const auto found = m_last.find(keyOf(input.file.name, m_identity.of(input)));
    return found != m_last.end() && found->second.status != kDone;
}

/// The lock of the file "*.running" ends with the process, however that ends. What the last process
/// of this shard was doing when it ended counts as failed.
CommandResult<void> Journal::open(const Shard &shard)
{
    const QString name = QDir(m_folder).filePath(
        u"shard-%1-of-%2"_s.arg(QString::number(shard.number), QString::number(shard.count)));
    m_file = name + ".jsonl"_L1;
    m_running = name + ".running"_L1;
    using platform::FileLock;
    if (!QDir().mkpath(m_folder)) {
        return Fault{kFailed, u"cannot create the folder '%1' of the journal: %2"_s.arg(
                                  m_folder, SystemError::ofLastCall().text())};
    }
    if (m_lock.tryFile(m_running, FileLock::IfMissing::Create) == FileLock::Outcome::Held) {
        return Fault{kFailed, u"another program runs the shard %1 (its journal is '%2')"_s.arg(
                                  shard.text(), m_file)};
    }
    if (const auto interrupted = entryIn(m_running)) {
        const auto last = m_last.find(keyOf(interrupted->input.name, interrupted->run));
        if (last == m_last.end() || last->second.time < interrupted->time) {
            addEntries({*interrupted}, &m_last);
            static_cast<void>(add(*interrupted)); // add() reports the next one
        }
    }
    return {};
}

/// Later than all entries of the input, also after the clock was set back: the last one counts.
qint64 Journal::timeNow(const JournalEntry &entry) const
{
    const auto last = m_last.find(keyOf(entry.input.name, entry.run));
    return std::max(QDateTime::currentMSecsSinceEpoch(),
                    last == m_last.end() ? 0 : last->second.time + 1);
}

/// Written before the run: an input that ends the program, such as one that takes all memory, is
/// known afterwards.
bool Journal::begin(JournalEntry entry)
{
    entry.status = kFailed;
    entry.error = u"the program ended during the run of this input"_s;
    entry.time = timeNow(entry);
    QFile running(m_running);
    return running.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered) &&
           running.write(entry.line()) > 0;
}

bool Journal::add(JournalEntry entry)
{
    entry.time = timeNow(entry);
    QFile file(m_file);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered)) {
        return false;
    }
    // An incomplete line that a power cut or a full disk has left must not swallow this one.
    char last = '\n';
    const bool isCut =
        file.size() > 0 && file.seek(file.size() - 1) && file.getChar(&last) && last != '\n';
    const QByteArray line = (isCut ? QByteArray("\n") : QByteArray()) + entry.line();
    return file.write(line) == line.size();
}

/// Without the file, a later run does not treat the last input as one that ended the program.
void Journal::close()
{
    if (!m_file.isEmpty()) {
        QFile::remove(m_running);
    }
    m_lock.release();
}
