#include "commands.h"
#include "corvanta/row_listener.h"
#include "input_graph.h"
#include "session.h"
#include "table_printer.h"

#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

CommandOptions headOptions()
{
    CommandOptions options = Session::options(inputOptions());
    options.arguments = 1;
    options.wrongArguments = u"one file is required"_s;
    return options;
}

/// Runs the reader of the file and passes its first `rows` rows, at least one, to `onRow`.
CommandResult<void> readFirstRows(const QString &command, const CommandLine &line, qint64 rows,
                                  const RowListener::Callback &onRow)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    CorvantaGraph graph;
    if (const auto added = addInput(line, line.arguments[0], registry, &graph); !added) {
        return added;
    }
    RunOptions options;
    options.listeners.push_back({command,
                                 {QString::fromLatin1(kInputId), 0},
                                 std::make_unique<RowListener>(onRow),
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

} // namespace

CommandResult<void> headCommand(const QStringList &words)
{
    CommandOptions accepted = headOptions();
    accepted.withValue << u"-n"_s;
    const auto line = CommandLine::parse(words, accepted);
    if (!line) {
        return line.fault();
    }
    const auto rows = rowsOf(*line);
    if (!rows) {
        return rows.fault();
    }
    std::optional<TablePrinter> printer;
    qint64 shown = 0;
    const auto show = [&](const TableSchema &columns, const OneRow *row) {
        if (!printer) {
            printer.emplace(columns, stdout);
        }
        if (row == nullptr) {
            printer->finish();
        } else if (shown++ < *rows) {
            QStringList cells;
            for (int i = 0; i < row->numberOfColumns(); ++i) {
                cells << row->text(i);
            }
            printer->add(cells);
        }
        return true;
    };
    return readFirstRows(u"head"_s, *line, *rows, show);
}

CommandResult<void> schemaCommand(const QStringList &words)
{
    const auto line = CommandLine::parse(words, headOptions());
    if (!line) {
        return line.fault();
    }
    const auto show = [](const TableSchema &columns, const OneRow *row) {
        for (qsizetype i = 0; row == nullptr && i < columns.names.size(); ++i) {
            std::printf("%s\t%c\n", visibleText(columns.names[i]).toUtf8().constData(),
                        columns.types[i].type());
        }
        return true;
    };
    return readFirstRows(u"schema"_s, *line, 1, show);
}
