// Counts the inputs of a batch by their last entry in the journal, and looks up failures in logs.
#include "cli/batch/batch_state.h"

#include "base/mapped.h"
#include "cli/batch/line_file.h"
#include "cli/visible_text.h"

#include <QDir>
#include <QJsonDocument>

#include <algorithm>
#include <functional>
#include <set>
#include <unordered_map>

using namespace Qt::StringLiterals;
using corvanta::mapped;

namespace {

/// Where the first errors of inputs are in the logs: FILE:LINE by input and text; the last place
/// counts, because a task that runs again appends to its log.
class ErrorPlaces
{
public:
    explicit ErrorPlaces(const QString &folder)
    {
        const QDir logs(folder);
        for (const QString &name : logs.entryList({u"task-*.log"_s}, QDir::Files, QDir::Name)) {
            addFile(logs.filePath(name));
        }
    }
    /// Empty if there is no such message.
    QString find(const InputFile &input, const QString &error) const
    {
        const auto found = m_places.find(keyOf(input.label(), error));
        return found == m_places.end() ? QString() : found->second;
    }

private:
    static QString keyOf(const QString &input, const QString &text)
    {
        return input + u'\n' + text.trimmed();
    }
    void addFile(const QString &name)
    {
        LineFile file(name);
        for (qint64 number = 1; file.next(); ++number) {
            if (file.line().startsWith("{\"level\":1,")) {
                const QJsonObject message = QJsonDocument::fromJson(file.line()).object();
                m_places[keyOf(message[u"input"].toString(), message[u"message"].toString())] =
                    u"%1:%2"_s.arg(name, QString::number(number));
            }
        }
    }

    std::unordered_map<QString, QString> m_places;
};

} // namespace

BatchState::BatchState(const BatchPlan &plan, QVector<InputFile> inputs)
    : m_plan(plan)
    , m_inputs(std::move(inputs))
    , m_reader(plan.journal)
{
    for (qsizetype i = 0; i < m_inputs.size(); ++i) {
        m_indexes.emplace(m_inputs[i].file.name, i);
    }
}

/// Look up the state of a file, once for all its pieces. One that is gone has a state, too: a run
/// that did not find it has failed.
void BatchState::examineFile(qsizetype first)
{
    const FileState file = m_inputs[first].file.now();
    for (qsizetype i = first; i < m_inputs.size() && m_inputs[i].file.name == file.name; ++i) {
        m_inputs[i].file = file;
    }
}

/// An input that has changed since the list was read is done if it has not changed since its run.
void BatchState::update()
{
    const QVector<JournalEntry> entries = m_reader.read();
    for (const JournalEntry &entry : entries) {
        const auto found = m_indexes.find(entry.input.name);
        if (found != m_indexes.end() && m_inputs[found->second].file != entry.input) {
            examineFile(found->second);
        }
    }
    addEntries(entries, &m_last);
}

/// Only entries that belong to the graph and its present inputs count.
BatchCounts BatchState::counts() const
{
    BatchCounts counts{m_inputs.size()};
    for (const InputFile &input : m_inputs) {
        const JournalEntry *const entry = findEntry(m_last, input, m_plan.identity);
        const bool isDone = entry != nullptr && entry->status == kDone;
        counts.done += isDone ? 1 : 0;
        counts.failed += entry != nullptr && !isDone ? 1 : 0;
        counts.rows += isDone ? entry->rows : 0;
    }
    return counts;
}

/// Tasks with an input that is not done. A task skips its other inputs by the journal.
BatchWork BatchState::workLeft() const
{
    BatchWork work;
    const QVector<qsizetype> taskOf = shardsOf(m_inputs, m_plan.tasks, m_plan.balancesSize);
    std::set<qsizetype> tasks;
    for (qsizetype i = 0; i < m_inputs.size(); ++i) {
        const JournalEntry *const entry = findEntry(m_last, m_inputs[i], m_plan.identity);
        if (entry == nullptr || entry->status != kDone || !entry->hasItsFiles()) {
            tasks.insert(taskOf[i]);
            ++work.inputs;
        }
    }
    work.tasks = {tasks.begin(), tasks.end()};
    return work;
}

/// Without rows, a run may have written no file. One that is there is of an earlier run.
QStringList BatchState::outputs() const
{
    QStringList names;
    for (const InputFile &input : m_inputs) {
        const JournalEntry *const entry = findEntry(m_last, input, m_plan.identity);
        if (entry != nullptr && entry->status == kDone) {
            names += mapped<QStringList>(entry->files, std::mem_fn(&FileState::name));
        }
    }
    return names;
}

/// Inputs with a failed run, and those whose task ended before it reached them.
QVector<BatchFailure> BatchState::failures() const
{
    const ErrorPlaces places(m_plan.file(u"logs"_s));
    LastEntries last = m_last;
    addEntries(interruptedRuns(m_plan.journal), &last);
    QVector<BatchFailure> failures;
    for (const InputFile &input : m_inputs) {
        const JournalEntry *const entry = findEntry(last, input, m_plan.identity);
        if (entry != nullptr && entry->status == kDone) {
            continue;
        }
        BatchFailure failure{input.label(), u"not run"_s, m_plan.file(u"logs"_s),
                             m_plan.commandFor(input.index)};
        if (entry != nullptr) {
            failure.cause = entry->error;
            const QString place = places.find(input, entry->error);
            failure.log = place.isEmpty() ? failure.log : place;
        }
        failures << failure;
    }
    return failures;
}

/// Of "failures.tsv", which other programs read, and for terminals: no character of a cell ends it
/// or its line.
QByteArray failureTable(const QVector<BatchFailure> &failures)
{
    QByteArray table = "input\tcause\tlog\tcommand\n";
    for (const BatchFailure &failure : failures) {
        const QStringList cells{failure.input, failure.cause, failure.log, failure.command};
        table += mapped<QStringList>(cells, visibleText).join(u'\t').toUtf8() + '\n';
    }
    return table;
}
