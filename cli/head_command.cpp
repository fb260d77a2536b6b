// head and schema: run the reader of a file with a listener that stops it after the first rows.
#include "cli/print/json_rows.h"
#include "cli/print/output.h"
#include "commands.h"
#include "input_rows.h"
#include "session.h"
#include "table_printer.h"
#include "visible_text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

CommandOptions inputFileOptions()
{
    CommandOptions options = Session::options(inputOptions());
    options.arguments = 1;
    options.wrongArguments = u"one file is required"_s;
    return options;
}

CommandResult<void> readRows(const QString &command, const CommandLine &line, qint64 rows,
                             ReadExtent extent, const RowListener::Callback &onRow,
                             InputFacts *facts)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    CorvantaGraph graph;
    if (const auto added = addInput(line, line.arguments[0], registry, &graph, extent, facts);
        !added) {
        return added.fault();
    }
    RunOptions options;
    options.listeners.push_back({command,
                                 {QString::fromLatin1(kInputId), 0},
                                 std::make_unique<RowListener>(onRow),
                                 // With 0 rows the reader would not run and declare no columns.
                                 rows == 0 ? 1 : rows});
    return (*session)->run(graph, registry, std::move(options));
}

/// Columns that the reader says nothing about are what their cells are.
QVector<ColumnKind> kindsOf(const TableSchema &schema, const InputFacts &facts)
{
    QHash<QString, ColumnKind> known;
    for (const ColumnKind &kind : facts.kinds) {
        known.insert(kind.column, kind);
    }
    QVector<ColumnKind> kinds;
    for (qsizetype i = 0; i < schema.names.size(); ++i) {
        const char letter = schema.types[i].type();
        ColumnKind ofCells;
        ofCells.letter = letter;
        ofCells.kind = letter == 'K'   ? ValueKind::Integer
                       : letter == 'F' ? ValueKind::Decimal
                                       : ValueKind::Text;
        kinds << known.value(schema.names[i], ofCells);
    }
    return kinds;
}

namespace {

/// The number of rows of -n.
CommandResult<qint64> headRowsOf(const CommandLine &line)
{
    constexpr qint64 kDefaultRows = 10;
    bool isNumber = true;
    const qint64 rows = line.value(u"-n"_s, QString::number(kDefaultRows)).toLongLong(&isNumber);
    if (!isNumber || rows < 0) {
        return badUsage(u"-n needs a number of rows"_s);
    }
    return rows;
}

/// Prints the first rows of a table, as they arrive.
class FirstRows
{
public:
    /// `facts`, if given, makes it JSON, and must be set before the first row.
    FirstRows(qint64 rows, const InputFacts *facts)
        : m_left(rows)
        , m_facts(facts)
    {
    }
    void add(const TableSchema &columns, const OneRow *row)
    {
        // The columns are known with the first call, which may be the end of an empty table.
        if (!m_table && !m_json) {
            start(columns);
        }
        if (row == nullptr) {
            m_json ? m_json->finish() : m_table->finish();
        } else if (m_left-- > 0) {
            m_json ? m_json->add(*row) : m_table->add(textsOf(*row));
        }
    }

private:
    /// The columns are known with the first row, or with the end of the table.
    void start(const TableSchema &columns)
    {
        if (m_facts != nullptr) {
            m_json.emplace(columns, kindsOf(columns, *m_facts));
        } else {
            m_table.emplace(columns);
        }
    }

    qint64 m_left; // rows to print; the reader may send one more
    const InputFacts *m_facts;
    std::optional<TablePrinter> m_table;
    std::optional<JsonRows> m_json;
};

// ---- The columns of a file.

/// At most this many value labels are printed in a line, unless -v asks for all.
constexpr qsizetype kFewLabels = 10;

/// "VALUE=LABEL, ..." in the order of the file.
QString labelsText(const QVector<ColumnNotes::ValueLabel> &labels, bool isVerbose)
{
    QStringList texts;
    for (const ColumnNotes::ValueLabel &entry : labels) {
        if (texts.size() == kFewLabels && !isVerbose) {
            texts << u"... (%1 labels)"_s.arg(labels.size());
            break;
        }
        texts << entry.value + u'=' + entry.label;
    }
    return texts.join(u", "_s);
}

/// A column with everything that is known about it.
struct Column
{
    QString name;
    ColumnKind kind;
    ColumnNotes notes;
};

/// The columns of the rows. The letters of kinds that the host has found replace those of cells.
QVector<Column> columnsOf(const TableSchema &schema, const InputFacts &facts)
{
    const QVector<ColumnKind> kinds = kindsOf(schema, facts);
    QVector<Column> columns;
    for (qsizetype i = 0; i < schema.names.size(); ++i) {
        columns << Column{schema.names[i], kinds[i], facts.notes.value(i)};
    }
    return columns;
}

/// For people: the kind, if the letter does not say it, or what made the column a text.
QString reasonText(const ColumnKind &kind)
{
    if (kind.exceptionPlace.isEmpty()) {
        // K says integer, and F decimal: it also has integers that K cannot hold.
        const bool isPlain = kind.kind == ValueKind::Text || kind.letter == 'K' ||
                             (kind.letter == 'F' && kind.kind == ValueKind::Decimal);
        return isPlain ? QString() : kindName(kind.kind);
    }
    const QString value =
        u"text because of '%1' in %2"_s.arg(visibleText(kind.exception), kind.exceptionPlace);
    return kind.before == ValueKind::Text
               ? value
               : value + u"; the values before it: "_s + kindName(kind.before);
}

/// "NAME TYPE LABEL FORMAT VALUE=LABEL, ..." with tabs, without empty fields at the end.
QString columnLine(const Column &column, bool isVerbose)
{
    const ColumnNotes &notes = column.notes;
    QStringList fields{column.name, QString(QLatin1Char(column.kind.letter)), notes.label,
                       notes.format, labelsText(notes.valueLabels, isVerbose)};
    while (fields.last().isEmpty()) {
        fields.removeLast();
    }
    for (QString &field : fields) {
        field = visibleText(field);
    }
    const QString line = fields.join(u'\t');
    const QString reason = isVerbose ? reasonText(column.kind) : QString();
    return reason.isEmpty() ? line : line + u"\n    "_s + reason;
}

/// The members that the file does not have are left out.
QJsonObject columnJson(const Column &of, bool isVerbose)
{
    const ColumnNotes &notes = of.notes;
    QJsonObject column{{u"name"_s, of.name},
                       {u"type"_s, kindName(of.kind.kind)},
                       {u"letter"_s, QString(QLatin1Char(of.kind.letter))}};
    if (isVerbose && !of.kind.exceptionPlace.isEmpty()) {
        column[u"decidedBy"_s] = QJsonObject{{u"value"_s, of.kind.exception},
                                             {u"place"_s, of.kind.exceptionPlace},
                                             {u"typeBefore"_s, kindName(of.kind.before)}};
    }
    if (!notes.label.isEmpty()) {
        column[u"label"_s] = notes.label;
    }
    if (!notes.format.isEmpty()) {
        column[u"format"_s] = notes.format;
    }
    QJsonArray labels;
    for (const ColumnNotes::ValueLabel &entry : notes.valueLabels) {
        labels << QJsonObject{{u"value"_s, entry.value}, {u"label"_s, entry.label}};
    }
    if (!labels.isEmpty()) {
        column[u"valueLabels"_s] = labels;
    }
    return column;
}

void printSchema(const CommandLine &line, const QVector<Column> &columns)
{
    const bool isVerbose = line.has(u"-v"_s);
    QJsonArray all;
    for (const Column &column : columns) {
        if (line.has(u"--json"_s)) {
            all << columnJson(column, isVerbose);
        } else {
            const QString text = columnLine(column, isVerbose);
            printText(text + u'\n');
        }
    }
    if (line.has(u"--json"_s)) {
        printJson(QJsonDocument(all));
    }
}

constexpr OptionInfo kHeadOptions[] = {
    {"-n", "ROWS", "number of rows (default 10)"},
    {"--json", "", "print an array with an object per row"},
    {"--all", "", "examine all rows for the types of the values, not only the first ones"},
};
constexpr OptionInfo kSchemaOptions[] = {
    {"--json", "", "print an array with an object per column"},
    {"--all", "", "examine all rows for the types, not only the first ones"},
};

} // namespace

CommandOptions headOptions()
{
    CommandOptions options = inputFileOptions();
    options.groups.prepend({"", kHeadOptions});
    return options;
}

CommandResult<void> headCommand(const CommandLine &line)
{
    const auto rows = headRowsOf(line);
    if (!rows) {
        return rows.fault();
    }
    // Readers that must look at all rows for the types of columns then look at this many.
    constexpr qint64 kFewRows = 1000;
    const bool isAll = line.has(u"--all"_s);
    const ReadExtent extent =
        *rows <= kFewRows && !isAll ? ReadExtent::FirstRows : ReadExtent::Whole;
    InputFacts facts;
    facts.extent = isAll ? ActionParameters::KindExtent::All : ActionParameters::KindExtent::Sample;
    InputFacts *const jsonFacts = line.has(u"--json"_s) ? &facts : nullptr;
    FirstRows printer(*rows, jsonFacts);
    const auto add = [&](const TableSchema &columns, const OneRow *row) {
        printer.add(columns, row);
        return true;
    };
    return readRows(u"head"_s, line, *rows, extent, add, jsonFacts);
}

CommandOptions schemaOptions()
{
    CommandOptions options = inputFileOptions();
    options.groups.prepend({"", kSchemaOptions});
    return options;
}

CommandResult<void> schemaCommand(const CommandLine &line)
{
    InputFacts facts;
    facts.extent = line.has(u"--all"_s) ? ActionParameters::KindExtent::All
                                        : ActionParameters::KindExtent::Sample;
    const auto show = [&](const TableSchema &columns, const OneRow *row) {
        // Print at the end, so that nothing is printed of a file that cannot be read.
        if (row == nullptr) {
            printSchema(line, columnsOf(columns, facts));
        }
        return true;
    };
    return readRows(u"schema"_s, line, 1, ReadExtent::Whole, show, &facts);
}
