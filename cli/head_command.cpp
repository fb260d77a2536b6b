// head and schema: run the reader of a file with a listener that stops it after the first rows.
#include "commands.h"
#include "corvanta/row_listener.h"
#include "input_graph.h"
#include "session.h"
#include "table_printer.h"
#include "visible_text.h"

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
                                  ReadExtent extent, const RowListener::Callback &onRow)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    CorvantaGraph graph;
    if (auto added = addInput(line, line.arguments[0], registry, &graph, extent); !added) {
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
    return inputFileOptions();
}

CommandResult<void> schemaCommand(const CommandLine &line)
{
    const auto show = [](const TableSchema &columns, const OneRow *row) {
        // Print at the end, so that nothing is printed of a file that cannot be read.
        for (qsizetype i = 0; row == nullptr && i < columns.names.size(); ++i) {
            std::printf("%s\t%c\n", visibleText(columns.names[i]).toUtf8().constData(),
                        columns.types[i].type());
        }
        return true;
    };
    return readFirstRows(u"schema"_s, line, 1, ReadExtent::Whole, show);
}
