// head and schema: run the reader of a file with a listener that stops it after the first rows.
#include "commands.h"
#include "corvanta/row_listener.h"
#include "input_graph.h"
#include "session.h"
#include "table_printer.h"
#include "visible_text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The options that head and schema share.
CommandOptions inputFileOptions()
{
    CommandOptions options = Session::options(inputOptions());
    options.arguments = 1;
    options.wrongArguments = u"one file is required"_s;
    return options;
}

/// Runs the reader of the file and passes its first `rows` rows, at least one, to `onRow`.
CommandResult<void> readFirstRows(const QString &command, const CommandLine &line, qint64 rows,
                                  ReadExtent extent, const RowListener::Callback &onRow,
                                  QVector<ColumnNotes> *notes = nullptr)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    CorvantaGraph graph;
    if (auto added = addInput(line, line.arguments[0], registry, &graph, extent, nullptr, notes);
        !added) {
        return added;
    }
    RunOptions options;
    options.listeners.push_back({command,
                                 {QString::fromLatin1(kInputId), 0},
                                 std::make_unique<RowListener>(onRow),
                                 // With 0 rows the reader would not run and declare no columns.
                                 qMax<qint64>(rows, 1)});
    return (*session)->run(graph, registry, std::move(options));
}

/// The number of rows of -n.
CommandResult<qint64> rowsOf(const CommandLine &line)
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
    explicit FirstRows(qint64 rows)
        : m_left(rows)
    {
    }
    void add(const TableSchema &columns, const OneRow *row)
    {
        // The columns are known with the first call, which may be the end of an empty table.
        if (!m_printer) {
            m_printer.emplace(columns, stdout);
        }
        if (row == nullptr) {
            m_printer->finish();
        } else if (m_left-- > 0) {
            m_printer->add(textsOf(*row));
        }
    }

private:
    qint64 m_left; // rows to print; the reader may send one more
    std::optional<TablePrinter> m_printer;
};

// ---- The columns of a file.

/// At most so many value labels are printed in a line, unless -v asks for all.
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

/// "NAME TYPE LABEL FORMAT VALUE=LABEL, ..." with tabs, without empty fields at the end.
QString columnLine(const QString &name, char letter, const ColumnNotes &notes, bool isVerbose)
{
    QStringList fields{name, QString(QLatin1Char(letter)), notes.label, notes.format,
                       labelsText(notes.valueLabels, isVerbose)};
    while (fields.last().isEmpty()) {
        fields.removeLast();
    }
    for (QString &field : fields) {
        field = visibleText(field);
    }
    return fields.join(u'\t');
}

/// The members that the file does not have are left out.
QJsonObject columnJson(const QString &name, char letter, const ColumnNotes &notes)
{
    const QString type = letter == 'K' ? u"integer"_s : letter == 'F' ? u"decimal"_s : u"text"_s;
    QJsonObject column{
        {u"name"_s, name}, {u"type"_s, type}, {u"letter"_s, QString(QLatin1Char(letter))}};
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

void printSchema(const CommandLine &line, const TableSchema &columns,
                 const QVector<ColumnNotes> &notes)
{
    QJsonArray all;
    for (qsizetype i = 0; i < columns.names.size(); ++i) {
        const char letter = columns.types[i].type();
        if (line.has(u"--json"_s)) {
            all << columnJson(columns.names[i], letter, notes.value(i));
        } else {
            const QString text =
                columnLine(columns.names[i], letter, notes.value(i), line.has(u"-v"_s));
            std::printf("%s\n", text.toUtf8().constData());
        }
    }
    if (line.has(u"--json"_s)) {
        std::fputs(QJsonDocument(all).toJson().constData(), stdout);
    }
}

} // namespace

CommandOptions headOptions()
{
    CommandOptions options = inputFileOptions();
    options.withValue << u"-n"_s;
    return options;
}

CommandResult<void> headCommand(const CommandLine &line)
{
    const auto rows = rowsOf(line);
    if (!rows) {
        return rows.fault();
    }
    // Readers that must look at all rows for the types of columns then look at this many.
    constexpr qint64 kFewRows = 1000;
    const ReadExtent extent = *rows <= kFewRows ? ReadExtent::FirstRows : ReadExtent::Whole;
    FirstRows printer(*rows);
    const auto add = [&](const TableSchema &columns, const OneRow *row) {
        printer.add(columns, row);
        return true;
    };
    return readFirstRows(u"head"_s, line, *rows, extent, add);
}

CommandOptions schemaOptions()
{
    CommandOptions options = inputFileOptions();
    options.flags << u"--json"_s << u"-v"_s;
    return options;
}

CommandResult<void> schemaCommand(const CommandLine &line)
{
    QVector<ColumnNotes> notes;
    const auto show = [&](const TableSchema &columns, const OneRow *row) {
        // Print at the end, so that nothing is printed of a file that cannot be read.
        if (row == nullptr) {
            printSchema(line, columns, notes);
        }
        return true;
    };
    return readFirstRows(u"schema"_s, line, 1, ReadExtent::Whole, show, &notes);
}
