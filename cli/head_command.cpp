#include "commands.h"
#include "corvanta/row_listener.h"
#include "input_graph.h"
#include "session.h"
#include "table_printer.h"

#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Run the reader of the one file of a command line and show its first `rows` rows, at least one.
int readFirstRows(const QString &command, const CommandLine &line, qint64 rows,
                  const RowListener::See &see)
{
    QString error;
    if (line.arguments.size() != 1) {
        return usageError(command, u"one file is needed"_s);
    }
    const std::unique_ptr<Session> session = Session::open(line, &error);
    if (!session) {
        return usageError(command, error);
    }
    ActionRegistry registry;
    registry.loadAll();
    CorvantaGraph graph;
    if (const int status = addInput(line, line.arguments[0], registry, &graph, &error);
        status != kDone) {
        return error.isEmpty() ? status : usageError(command, error);
    }
    RunOptions options;
    options.listeners.push_back({command,
                                 {QString::fromLatin1(kInputId), 0},
                                 std::make_unique<RowListener>(see),
                                 qMax<qint64>(rows, 1)});
    return session->run(graph, registry, std::move(options));
}

} // namespace

int headCommand(const QStringList &words)
{
    constexpr qint64 kUsualRows = 10;
    CommandLine line;
    QString error;
    CommandOptions accepted = Session::options(inputOptions());
    accepted.withValue << u"-n"_s;
    if (!CommandLine::parse(words, accepted, &line, &error)) {
        return usageError(u"head"_s, error);
    }
    bool isNumber = true;
    const qint64 rows = line.value(u"-n"_s, QString::number(kUsualRows)).toLongLong(&isNumber);
    if (!isNumber || rows < 0) {
        return usageError(u"head"_s, u"-n is a number of rows"_s);
    }
    std::optional<TablePrinter> printer;
    qint64 shown = 0;
    const auto show = [&](const TableSchema &columns, const OneRow *row) {
        if (!printer) {
            printer.emplace(columns, stdout);
        }
        if (row == nullptr) {
            printer->finish();
        } else if (shown++ < rows) {
            QStringList cells;
            for (int i = 0; i < row->numberOfColumns(); ++i) {
                cells << row->text(i);
            }
            printer->add(cells);
        }
        return true;
    };
    return readFirstRows(u"head"_s, line, rows, show);
}

int schemaCommand(const QStringList &words)
{
    CommandLine line;
    QString error;
    if (!CommandLine::parse(words, Session::options(inputOptions()), &line, &error)) {
        return usageError(u"schema"_s, error);
    }
    const auto show = [](const TableSchema &columns, const OneRow *row) {
        for (qsizetype i = 0; row == nullptr && i < columns.names.size(); ++i) {
            std::printf("%s\t%c\n", visibleText(columns.names[i]).toUtf8().constData(),
                        columns.types[i].type());
        }
        return true;
    };
    return readFirstRows(u"schema"_s, line, 1, show);
}
