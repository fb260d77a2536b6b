// One run with a reader and a writer per table: JSON and XML give related tables, pages and
// workbooks the tables or sheets that they list.
//
// A column of a parent identifies its records only if each value occurs once. A first run over the
// parents checks that.
#include "cli/convert/tables_command.h"

#include "base/system_error.h"
#include "cli/file_types.h"
#include "cli/input_graph.h"
#include "cli/print/output.h"
#include "cli/session.h"
#include "corvanta/main_ui.h"
#include "corvanta/row_listener.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr int kMostLikely = -1; // of the tables of an input

/// A table to write.
struct Table
{
    InputTable table;
    QString file; ///< name in the folder, without its extension
};

/// Makes the readers of the tables of one input.
class Tables
{
public:
    static CommandResult<Tables> open(const CommandLine &line, const ActionRegistry &registry);

    const std::vector<Table> &all() const { return m_tables; }
    /// The reader of a table; `areKeys` as in fillFromRelated(). The fault is kFailed after a
    /// message.
    CommandResult<std::unique_ptr<ActionItem>> reader(qsizetype index,
                                                      const QVector<bool> &areKeys) const;
    bool areRelated() const { return m_areRelated; }
    bool hasChildren(qsizetype index) const;

private:
    const CommandLine *m_line = nullptr;
    const ActionRegistry *m_registry = nullptr;
    std::vector<Table> m_tables;
    bool m_areRelated = false;
};

bool isPlain(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || u" _-.()"_s.contains(c);
}

/// The text as a part of a file name that no system refuses.
QString fileNameOf(QString name)
{
    std::ranges::replace_if(name, std::not_fn(isPlain), QChar(u'_'));
    // Neither "." nor a hidden file.
    return name.startsWith(u'.') ? u'_' + name : name;
}

/// The name of the input without folders and extensions.
QString tableStemOf(const QString &input)
{
    const QString stem = QFileInfo(withoutArchive(input)).fileName().section(u'.', 0, 0);
    return stem.isEmpty() || input == "-"_L1 ? u"records"_s : stem;
}

CommandResult<Tables> Tables::open(const CommandLine &line, const ActionRegistry &registry)
{
    Tables tables;
    tables.m_line = &line;
    tables.m_registry = &registry;
    const auto input = makeInput(line, line.arguments[0], registry);
    if (!input) {
        return input.fault();
    }
    auto *const parameters = dynamic_cast<ActionParameters *>(input->get());
    const LogScope scope({nullptr, QString::fromLatin1(kInputId)});
    // Each of the functions below would report a missing file.
    if (!QFileInfo(line.arguments[0]).isReadable() && !parameters->fillFromInput(kMostLikely)) {
        return Fault{kFailed};
    }
    QVector<InputTable> all = parameters->relatedTables();
    tables.m_areRelated = !all.isEmpty();
    if (all.isEmpty()) {
        all = parameters->inputTables();
    }
    if (all.isEmpty()) {
        all.append(InputTable()); // one table without a name
    }
    QSet<QString> taken;
    for (qsizetype i = 0; i < all.size(); ++i) {
        const InputTable &table = all[i];
        // Paths of pages are long and say little.
        const bool isSheet = table.rows == InputTable::kRowsNotKnown;
        QString name = tables.m_areRelated ? table.name
                       : isSheet           ? table.path
                       : all.size() > 1    ? u"table%1"_s.arg(i + 1)
                                           : QString();
        name = fileNameOf(name.isEmpty() ? tableStemOf(line.arguments[0]) : name);
        QString file = name;
        for (int n = 2; taken.contains(file.toLower()); ++n) {
            file = name + u'_' + QString::number(n);
        }
        taken.insert(file.toLower());
        tables.m_tables.push_back({table, file});
    }
    return tables;
}

CommandResult<std::unique_ptr<ActionItem>> Tables::reader(qsizetype index,
                                                          const QVector<bool> &areKeys) const
{
    auto input = makeInput(*m_line, m_line->arguments[0], *m_registry);
    if (!input) {
        return input;
    }
    auto *const parameters = dynamic_cast<ActionParameters *>(input->get());
    const LogScope scope({nullptr, m_tables[static_cast<size_t>(index)].file});
    const bool isFilled =
        m_areRelated ? parameters->fillFromRelated(static_cast<int>(index), areKeys)
                     : parameters->fillFromInput(m_tables.size() > 1 ? static_cast<int>(index)
                                                                     : kMostLikely);
    if (!isFilled) {
        return Fault{kFailed};
    }
    return input;
}

/// Only tables with children need a key.
bool Tables::hasChildren(qsizetype index) const
{
    return std::any_of(m_tables.begin(), m_tables.end(),
                       [&](const Table &other) { return other.table.parent == index; });
}

/// Add the reader of a table to a graph. Its id is the name of the file. `isCheck`: another run
/// reads the rows, and reports what is not read.
CommandResult<void> addReader(const Tables &tables, qsizetype index, const QVector<bool> &areKeys,
                              CorvantaGraph *graph, bool isCheck = false)
{
    const auto reader = tables.reader(index, areKeys);
    if (!reader) {
        return reader.fault();
    }
    auto *const parameters = dynamic_cast<ActionParameters *>(reader->get());
    if (const int unread = parameters->indexOfParameter(u"warnUnread"_s); isCheck && unread >= 0) {
        parameters->setParameterValue(unread, u"0"_s);
    }
    return addAction(graph, tables.all()[static_cast<size_t>(index)].file, **reader);
}

/// Takes the values of a column until one is missing or repeated.
class KeyCheck
{
public:
    explicit KeyCheck(QString column)
        : m_column(std::move(column))
    {
    }
    bool isKey() const { return m_isKey; }
    /// A column is a key as long as its values are neither empty nor repeated.
    bool take(const TableSchema &columns, const OneRow *row)
    {
        if (row != nullptr && m_isKey) {
            const qsizetype index = columns.names.indexOf(m_column);
            const QString value = index < 0 ? QString() : textsOf(*row).value(index);
            // Equal hashes count as equal values: then there is a number in place of the key.
            const size_t hash = qHash(value, kSeed);
            const qsizetype before = m_hashes.size();
            m_hashes.insert(hash);
            m_isKey = !value.isEmpty() && m_hashes.size() > before;
        }
        return true;
    }

private:
    static constexpr size_t kSeed = 0x9E3779B97F4A7C15U;
    QString m_column;
    QSet<size_t> m_hashes; // 8 bytes of a value are kept, not the value
    bool m_isKey = true;
};

/// Find the tables whose key is one, by reading those with children.
CommandResult<QVector<bool>> findKeys(const Tables &tables, const ActionRegistry &registry,
                                      Session *session)
{
    const auto count = static_cast<qsizetype>(tables.all().size());
    QVector<bool> areKeys(count, false);
    CorvantaGraph graph;
    RunOptions options;
    std::vector<std::pair<qsizetype, std::unique_ptr<KeyCheck>>> checks;
    for (qsizetype i = 0; i < count; ++i) {
        const Table &table = tables.all()[static_cast<size_t>(i)];
        if (table.table.key.isEmpty() || !tables.hasChildren(i)) {
            continue;
        }
        if (const auto added = addReader(tables, i, areKeys, &graph, true); !added) {
            return added.fault();
        }
        checks.emplace_back(i, std::make_unique<KeyCheck>(table.table.key));
        KeyCheck *const check = checks.back().second.get();
        options.listeners.push_back(
            {u"key of "_s + table.file,
             {table.file, 0},
             std::make_unique<RowListener>([check](const TableSchema &columns, const OneRow *row) {
                 return check->take(columns, row);
             })});
    }
    if (checks.empty()) {
        return areKeys;
    }
    if (const auto run = session->run(graph, registry, std::move(options)); !run) {
        return run.fault();
    }
    for (const auto &[index, check] : checks) {
        areKeys[index] = check->isKey();
    }
    return areKeys;
}

/// The name of a file of the folder.
QString targetOf(const CommandLine &line, const Table &table)
{
    return line.arguments.last() + table.file + u".csv"_s;
}

/// The folder and those above it that do not exist, the innermost first.
QStringList missingFolders(QString folder)
{
    QStringList missing;
    for (folder = QDir::cleanPath(folder); !QFileInfo::exists(folder);
         folder = QFileInfo(folder).path()) {
        missing << folder;
    }
    return missing;
}

/// Check that the targets may be written, and create the folder.
CommandResult<void> prepareFolder(const CommandLine &line, const Tables &tables)
{
    const QString &folder = line.arguments.last();
    for (const Table &table : tables.all()) {
        if (auto checked = checkClobber(line, targetOf(line, table)); !checked) {
            return checked;
        }
    }
    if (!QDir().mkpath(folder)) {
        return Fault{kFailed, u"cannot create the folder '%1': %2"_s.arg(
                                  folder, SystemError::ofLastCall().text())};
    }
    return {};
}

CommandResult<CorvantaGraph> makeGraph(const CommandLine &line, const ActionRegistry &registry,
                                       const Tables &tables, const QVector<bool> &areKeys)
{
    CorvantaGraph graph;
    for (qsizetype i = 0; i < static_cast<qsizetype>(tables.all().size()); ++i) {
        const Table &table = tables.all()[static_cast<size_t>(i)];
        const QString writerId = u"write "_s + table.file;
        const auto writer =
            makeFileAction(registry, FileFormat::Write, {targetOf(line, table), u"csv"_s},
                           line.values.value(u"--writer"_s));
        if (!writer) {
            return writer.fault();
        }
        auto added = addReader(tables, i, areKeys, &graph);
        if (added) {
            added = addAction(&graph, writerId, **writer);
        }
        if (!added) {
            return added.fault();
        }
        graph.links.append(CorvantaGraph::Link{{table.file, 0}, {writerId, 0}});
    }
    return graph;
}

/// The options that a folder has no use for.
CommandResult<void> checkConvertOptions(const CommandLine &line)
{
    for (const QString &option : {u"--table"_s, u"--sheet"_s, u"--to"_s, u"--where"_s, u"--sort"_s,
                                  u"--rows"_s, u"--limit"_s, u"--select"_s, u"--rename"_s}) {
        if (line.values.contains(option)) {
            return badUsage(u"%1 chooses from one table; into a folder all tables are written, as "
                            "CSV files"_s.arg(option));
        }
    }
    if (line.arguments.size() > 2) {
        return badUsage(u"one input is required to write its tables to a folder"_s);
    }
    return {};
}

} // namespace

/// The folder need not exist, so only its name can say what it is.
bool isFolderTarget(const CommandLine &line)
{
    return line.arguments.last().endsWith(u'/');
}

CommandResult<void> convertTables(const CommandLine &line, const ActionRegistry &registry,
                                  Session *session)
{
    if (auto checked = checkConvertOptions(line); !checked) {
        return checked;
    }
    const auto tables = Tables::open(line, registry);
    if (!tables) {
        return tables.fault();
    }
    const auto areKeys = findKeys(*tables, registry, session);
    if (!areKeys) {
        return areKeys.fault();
    }
    const auto graph = makeGraph(line, registry, *tables, *areKeys);
    if (!graph) {
        return graph.fault();
    }
    if (line.has(u"--print-graph"_s)) {
        printBytes(graph->toXml());
        return {};
    }
    const QStringList created = missingFolders(line.arguments.last());
    if (auto prepared = prepareFolder(line, *tables); !prepared) {
        return prepared;
    }
    RunOptions options;
    options.keepPartial = line.has(u"--keep-partial"_s);
    auto run = session->run(*graph, registry, std::move(options));
    for (const QString &folder : run ? QStringList() : created) {
        QDir().rmdir(folder); // only if it is empty
    }
    return run;
}
