// The journal of a batch: which inputs are done, so that a second run skips them.
//
// A journal is a folder with a file per shard, "shard-2-of-10.jsonl". Each input that is done or
// has failed leaves one line in it, a JSON object. A line is appended in one write, so that a
// killed process leaves whole lines; after a power cut the last one may be incomplete and is
// ignored. It is not flushed to the device: the files of a run are, before its line is written, and
// an input whose line is lost only runs again. "shard-2-of-10.running" exists during a run and
// names its input, so that the next attempt knows which input has ended the program.
#pragma once
#include "base/platform/file_lock.h"
#include "cli/batch/input_list.h"
#include "cli/batch/shard.h"

#include <QJsonObject>

#include <unordered_map>

/// One line.
struct JournalEntry
{
    FileState input;   ///< before the run
    QJsonObject run;   ///< what the result depends on, in addition to the input: graph, variables
    QString graphFile; ///< absolute
    int status = 0;    ///< of the run, as an exit status
    qint64 rows = 0;   ///< that its readers sent
    double seconds = 0;
    QVector<FileState> files; ///< that it wrote
    QString error;            ///< its first error; empty: none
    qint64 time = 0;          ///< of its end, milliseconds since 1970

    /// Whether the files that it wrote exist and have not been written since.
    bool hasItsFiles() const;
    QByteArray line() const; ///< with the line feed
    /// False for a text that is not such a line.
    bool parse(const QByteArray &line);
};

/// Reads the lines of all files of a journal, also while others write them. Threads: one at a time.
class JournalReader
{
public:
    explicit JournalReader(QString folder)
        : m_folder(std::move(folder))
    {
    }
    /// The entries of the lines that were completed since the last call.
    QVector<JournalEntry> read();
    /// Lines that are not entries, and the first of them as "FILE, line N".
    qint64 damagedLines() const { return m_damaged; }
    const QString &firstDamaged() const { return m_firstDamaged; }

private:
    struct Position
    {
        qint64 offset = 0; // of the first byte that was not read
        qint64 line = 0;   // lines before it
    };
    void readFile(const QString &name, Position *position, QVector<JournalEntry> *entries);

    QString m_folder;
    std::unordered_map<QString, Position> m_positions; // by name of the file
    qint64 m_damaged = 0;
    QString m_firstDamaged;
};

/// What the runs that have not ended, or have ended their program, would leave as entries.
QVector<JournalEntry> interruptedRuns(const QString &folder);
/// Remove the files of all shards, and no others.
void clearJournal(const QString &folder);

/// What determines the result of a run, in addition to its input.
struct RunIdentity
{
    QJsonObject common;     ///< of all inputs: the graph, its variables, the folder of the outputs
    bool usesIndex = false; ///< the graph uses ${inputIndex}

    /// As an entry of the input has it.
    QJsonObject of(const InputFile &input) const;
};

/// The last entry of each input, or of each of its pieces.
using LastEntries = std::unordered_map<QString, JournalEntry>;
/// Add entries; of one input the last one counts.
void addEntries(const QVector<JournalEntry> &entries, LastEntries *last);
/// The last entry of an input if it is one of the same graph and the same content, else null.
const JournalEntry *findEntry(const LastEntries &entries, const InputFile &input,
                              const RunIdentity &identity);

/// The journal of one shard. Threads: one at a time.
class Journal
{
public:
    /// Read the folder, which need not exist. The fault is a usage error: the journal is of
    /// another graph than `graphFile`.
    static CommandResult<Journal> read(const QString &folder, const RunIdentity &identity,
                                       const QString &graphFile);

    /// Whether the last run of the input succeeded with the same graph and variables, the input is
    /// unchanged, and so are the files that were written.
    bool isDone(const InputFile &input) const;
    /// Whether the last run of the input failed.
    bool hasFailed(const InputFile &input) const;

    /// Write to the file of `shard` from now on; creates the folder. Adds an entry for an input
    /// that has ended the program before. Fails (kFailed) if another program runs the shard.
    CommandResult<void> open(const Shard &shard);
    /// Note that the run of `entry.input` begins. Returns false if the file cannot be written.
    bool begin(JournalEntry entry);
    /// Add a line, with the time. The same.
    bool add(JournalEntry entry);
    /// The shard has ended, and not during a run.
    void close();

private:
    qint64 timeNow(const JournalEntry &entry) const;

    QString m_folder;
    QString m_file;    // of the shard; empty: not open
    QString m_running; // of the shard
    RunIdentity m_identity;
    LastEntries m_last;
    corvanta::platform::FileLock m_lock;
};
