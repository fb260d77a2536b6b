// Runs a graph for many inputs in this process, one at a time.
//
// What can be wrong is found before the first run: every input of the whole list is checked, so
// that all shards agree. A run that fails does not end the shard.
#include "cli/batch/input_runs.h"

#include "base/counted.h"
#include "cli/batch/batch_inputs.h"
#include "cli/stop_signals.h"
#include "corvanta/main_ui.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <unordered_map>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr OptionInfo kInputOptions[] = {
    {"--inputs", "LIST",
     "run the graph once for each file of LIST: a file with one name per line, a quoted pattern "
     "such as 'in/*.json', - for standard input, or the folder of a batch; the variables ${input}, "
     "${inputStem} and "
     "${inputIndex} hold the current one"},
    {"--split-rows", "N",
     "divide each input into pieces of about N rows, and run the graph once for each piece: its "
     "reader has firstRow='${inputFirstRow}' rowCount='${inputRowCount}'; ${inputPart} is the "
     "number of the piece. For Parquet (by row groups), SAS, SPSS and Stata files"},
    {"--shard", "I/N",
     "run only the I-th of N parts of the inputs (default: the task of a Slurm job array, else "
     "all)"},
    {"--balance", "count|size",
     "shards of as many inputs (count, the default), or of as many bytes (size)"},
    {"--journal", "DIR",
     "folder for the journal of the inputs that are done (default: NAME.journal in the folder of "
     "the outputs)"},
    {"--no-resume", "", "run inputs again that the journal says are done"},
    {"--fail-fast", "", "stop at the first input that fails"},
};

LoadedGraph::Variables joined(LoadedGraph::Variables variables, const LoadedGraph::Variables &more)
{
    variables.insert(more);
    return variables;
}

/// Names in which links to folders are resolved: by two of them, a run would replace its own input.
class RealNames
{
public:
    QString of(const QString &name)
    {
        const QFileInfo file(name);
        const auto [folder, isNew] = m_folders.try_emplace(file.path(), file.path());
        if (const QString real = isNew ? QFileInfo(file.path()).canonicalFilePath() : QString();
            !real.isEmpty()) {
            folder->second = real;
        }
        return folder->second + u'/' + file.fileName();
    }

private:
    std::unordered_map<QString, QString> m_folders; // by name
};

/// Two inputs that share a file would replace each other's result, in whatever order they run.
CommandResult<void> checkOutputs(const BatchGraph &graph)
{
    std::unordered_map<QString, const InputFile *> owners; // by output
    std::unordered_map<QString, const InputFile *> inputs; // by name
    RealNames real;
    for (const InputFile &input : graph.inputs) {
        inputs.emplace(real.of(input.file.name), &input);
    }
    for (const InputFile &input : graph.inputs) {
        for (const QString &output : graph.outputsOf(input)) {
            if (const auto [owner, isNew] = owners.emplace(real.of(output), &input); !isNew) {
                return badUsage(
                    u"the runs of '%1' and '%2' would both write '%3'; its name must depend on "
                    "${input}, ${inputStem} or ${inputIndex}%4"_s.arg(
                        owner->second->label(), input.label(), output,
                        input.piece ? u", and for pieces on ${inputIndex} or ${inputPart}"_s
                                    : QString()));
            }
            if (const auto read = inputs.find(real.of(output)); read != inputs.end()) {
                return badUsage(u"the run of '%1' would replace the input '%2'"_s.arg(
                    input.file.name, read->second->file.name));
            }
        }
    }
    return {};
}

/// A reader that does not use the range would read all rows for each piece.
CommandResult<void> checkPieces(const BatchGraph &graph)
{
    const QStringList used = graph.loaded->graph.usedVariables();
    for (const QString &name : {u"inputFirstRow"_s, u"inputRowCount"_s}) {
        if (graph.inputs.first().piece && !used.contains(name)) {
            return badUsage(u"--split-rows: the graph does not use ${%1}, so every run would read "
                            "rows of other pieces; set firstRow='${inputFirstRow}' "
                            "rowCount='${inputRowCount}' in its reader"_s.arg(name));
        }
    }
    return {};
}

/// Options that contradict --inputs.
CommandResult<void> checkOptions(const CommandLine &line)
{
    const QString balance = line.value(u"--balance"_s, u"count"_s);
    if (balance != "count"_L1 && balance != "size"_L1) {
        return badUsage(u"--balance must be count or size"_s);
    }
    if (line.values.contains(u"--tap"_s)) {
        return badUsage(u"--tap cannot be used with --inputs: every run would write the file"_s);
    }
    if (line.value(u"--inputs"_s, QString()) == "-"_L1 && line.arguments[0] == "-"_L1) {
        return badUsage(u"the graph and --inputs cannot both be standard input"_s);
    }
    return {};
}

/// Whether the file of a piece has not changed: the piece would have other rows.
bool isAsDivided(const InputFile &input, const FileState &now)
{
    const bool isSame = !input.piece || input.file == now;
    if (!isSame) {
        MainUI::addLog(MainUI::Error, u"Error: the file has changed since it was divided into "
                                      "pieces; start the same command again"_s);
    }
    return isSame;
}

/// The runs of one shard.
class InputRuns
{
public:
    InputRuns(const BatchGraph &graph, Session &session, Journal journal)
        : m_graph(graph)
        , m_session(session)
        , m_journal(std::move(journal))
    {
    }

    CommandResult<void> run(const CommandLine &line, const Shard &shard);

private:
    QVector<InputFile> chosen(const CommandLine &line, const Shard &shard);
    ExitStatus runInput(const InputFile &input);
    ExitStatus timedRun(const InputFile &input, JournalEntry *entry);
    void addToJournal(bool isWritten);
    CommandResult<void> finished() const;

    const BatchGraph &m_graph;
    Session &m_session;
    Journal m_journal;
    InputCounts m_counts;
    bool m_hasReportedJournal = false;
    int m_status = kDone; // the worst one
};

/// The inputs to run, without those that are done. Those that have failed before come last: one
/// that ends the program must not keep the others from being run.
QVector<InputFile> InputRuns::chosen(const CommandLine &line, const Shard &shard)
{
    QVector<InputFile> own =
        shard.inputsOf(m_graph.inputs, line.value(u"--balance"_s, {}) == "size"_L1);
    for (InputFile &input : own) {
        // Those of a batch were listed when it began. Pieces are checked before their run.
        input.file = input.piece ? input.file : input.file.now();
    }
    if (!line.has(u"--no-resume"_s)) {
        m_counts.skipped =
            own.removeIf([&](const InputFile &input) { return m_journal.isDone(input); });
    }
    std::stable_partition(own.begin(), own.end(),
                          [&](const InputFile &input) { return !m_journal.hasFailed(input); });
    return own;
}

/// A journal that cannot be written makes the run fail, because a second one would repeat it.
void InputRuns::addToJournal(bool isWritten)
{
    if (!isWritten && !m_hasReportedJournal) {
        m_hasReportedJournal = true;
        MainUI::addLog(MainUI::Error, u"Error: the journal cannot be written: a second run does "
                                      "not know which inputs are done"_s);
    }
    m_status = std::max<int>(m_status, isWritten ? kDone : kFailed);
}

/// Runs the graph with the variables of one input.
ExitStatus InputRuns::timedRun(const InputFile &input, JournalEntry *entry)
{
    RunOptions options = m_graph.loaded->runOptions();
    options.variables = joined(options.variables, input.variables());
    QElapsedTimer timer;
    timer.start();
    const auto done =
        m_session.run(m_graph.loaded->graph, m_graph.loaded->registry, std::move(options));
    entry->seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    return done ? kDone : done.fault().code;
}

/// Runs one input between two lines of the journal. A run that a signal has ended leaves no entry:
/// the next one repeats it.
ExitStatus InputRuns::runInput(const InputFile &input)
{
    m_session.beginInput(input.label());
    // Its state now: a change during the run makes the entry differ, and the input runs again.
    JournalEntry entry{input.file.now(), m_graph.identity().of(input), m_graph.graphFile()};
    addToJournal(m_journal.begin(entry));
    const ExitStatus status = isAsDivided(input, entry.input) ? timedRun(input, &entry) : kFailed;
    if (status != kDone && interruption()) {
        return status; // neither done nor failed
    }
    const Session::InputResult result = m_session.inputResult();
    entry.status = status;
    entry.rows = result.rows;
    entry.error = result.firstError.trimmed();
    for (const QString &name : result.files) {
        entry.files << FileState{name}.now();
    }
    addToJournal(m_journal.add(entry));
    return status;
}

/// Runs what is left of the shard. A signal ends it, and so does a failure with --fail-fast.
CommandResult<void> InputRuns::run(const CommandLine &line, const Shard &shard)
{
    if (const auto opened = m_journal.open(shard); !opened) {
        return opened.fault();
    }
    const QVector<InputFile> inputs = chosen(line, shard);
    m_counts.shard = shard.text();
    for (const InputFile &input : inputs) {
        const ExitStatus status = runInput(input);
        m_status = std::max<int>(m_status, status);
        const bool isInterrupted = interruption().has_value();
        m_counts.done += status == kDone ? 1 : 0;
        m_counts.failed += status != kDone && !isInterrupted ? 1 : 0;
        if (isInterrupted || (status != kDone && line.has(u"--fail-fast"_s))) {
            break;
        }
    }
    m_journal.close();
    m_counts.left = inputs.size() - m_counts.done - m_counts.failed;
    m_session.endInputs(m_counts);
    return finished();
}

/// A signal after the last input has changed nothing.
CommandResult<void> InputRuns::finished() const
{
    const int signalled = m_counts.left > 0 ? interruption().value_or(kDone) : kDone;
    const auto status = static_cast<ExitStatus>(std::max(m_status, signalled));
    if (status != kDone) {
        return Fault{status};
    }
    return {};
}

} // namespace

std::span<const OptionInfo> manyInputsOptions()
{
    return kInputOptions;
}

/// Checks in the order in which a user can correct them: the options, the list, the graph, and then
/// what the graph would write for each input.
CommandResult<BatchGraph> BatchGraph::load(const CommandLine &line, Loader loader)
{
    if (const auto options = checkOptions(line); !options) {
        return options.fault();
    }
    const QString word = line.value(u"--inputs"_s, QString());
    const bool isOfBatch = isBatchFolder(word);
    auto inputs = isOfBatch ? inputsOfBatch(word) : readInputs(word);
    if (!inputs) {
        return inputs.fault();
    }
    if (line.values.contains(u"--split-rows"_s)) {
        if (isOfBatch) {
            return badUsage(u"--split-rows: the batch in '%1' has divided its inputs"_s.arg(word));
        }
        inputs = inPieces(*inputs, line.value(u"--split-rows"_s, QString()));
        if (!inputs) {
            return inputs.fault();
        }
    }
    auto loaded = loader(line, inputs->first().variables());
    if (!loaded) {
        return loaded.fault();
    }
    BatchGraph graph(*std::move(inputs), *std::move(loaded));
    if (const QString encoding = line.value(u"--system-encoding"_s, {}); !encoding.isEmpty()) {
        graph.m_identity.common.insert(u"systemEncoding"_s, encoding);
    }
    if (!graph.loaded->isValid) {
        return graph;
    }
    if (!graph.loaded->graph.usedVariables().contains(u"input"_s)) {
        return badUsage(u"--inputs: the graph does not use ${input}, so every run would read the "
                        "same file"_s);
    }
    if (const auto used = checkPieces(graph); !used) {
        return used.fault();
    }
    if (const auto outputs = checkOutputs(graph); !outputs) {
        return outputs.fault();
    }
    return graph;
}

BatchGraph::BatchGraph(QVector<InputFile> files, std::unique_ptr<LoadedGraph> graph)
    : inputs(std::move(files))
    , loaded(std::move(graph))
{
    QJsonObject variables;
    for (auto it = loaded->variables.begin(); it != loaded->variables.end(); ++it) {
        if (!inputVariables().contains(it.key())) {
            variables.insert(it.key(), it.value());
        }
    }
    // White space and comments of the file do not count.
    const QByteArray hash =
        QCryptographicHash::hash(loaded->graph.toXml(), QCryptographicHash::Sha256);
    m_identity.usesIndex = loaded->graph.usedVariables().contains(u"inputIndex"_s);
    m_identity.common = {{u"graph"_s, QString::fromLatin1(hash.toHex())},
                         {u"outDir"_s, loaded->absoluteOutDir()},
                         {u"compression"_s, loaded->compression},
                         {u"variables"_s, variables}};
}

QStringList BatchGraph::outputsOf(const InputFile &input) const
{
    return loaded->graph.outputs(loaded->registry, joined(loaded->variables, input.variables()),
                                 loaded->outDir);
}

QStringList BatchGraph::outputs() const
{
    QStringList all = inputs.isEmpty() ? loaded->outputs() : QStringList();
    for (const InputFile &input : inputs) {
        all << outputsOf(input);
    }
    return all;
}

QString BatchGraph::graphFile() const
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(loaded->graph.fileName));
}

/// Next to the outputs, because these are what it describes; each graph has a folder of its own.
QString BatchGraph::journalFolder(const CommandLine &line) const
{
    const QString name = QFileInfo(loaded->graph.fileName).completeBaseName() + ".journal"_L1;
    const QString folder =
        line.value(u"--journal"_s, QDir(loaded->absoluteOutDir()).filePath(name));
    return QDir::cleanPath(QDir::current().absoluteFilePath(folder));
}

/// Nothing is written, not even a folder, before everything has been checked.
CommandResult<void> runInputs(const CommandLine &line, Session &session)
{
    const auto shard = Shard::of(line);
    if (!shard) {
        return shard.fault();
    }
    const auto graph = BatchGraph::load(line, LoadedGraph::loadForRun);
    if (!graph) {
        return graph.fault();
    }
    if (Session::logProblems(graph->loaded->conflicts())) {
        return Fault{kUsage};
    }
    auto journal = Journal::read(graph->journalFolder(line), graph->identity(), graph->graphFile());
    if (!journal) {
        return journal.fault();
    }
    if (const auto created = graph->loaded->createOutDir(); !created) {
        return created.fault();
    }
    return InputRuns(*graph, session, *std::move(journal)).run(line, *shard);
}
