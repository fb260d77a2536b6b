// convert: makes a graph of a reader and a writer and runs it.
//
// Writers that store texts in fixed widths need the widths before the first row. For them the input
// is read twice, the first time only to measure its texts.
#include "commands.h"
#include "corvanta/action_parameters.h"
#include "corvanta/row_listener.h"
#include "file_types.h"
#include "input_graph.h"
#include "session.h"

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Columns and, for texts, the length of the longest one in bytes of UTF-8, the encoding in which
/// the formats with fixed widths store texts.
struct Lengths
{
    TableSchema columns;
    QVector<qsizetype> longest;

    void add(const OneRow &row)
    {
        longest.resize(columns.names.size());
        for (int i = 0; i < row.numberOfColumns(); ++i) {
            const bool isText = columns.types[i].type() == MetaInfo::Unknown;
            longest[i] = std::max(longest[i], isText ? row.text(i).toUtf8().size() : 0);
        }
    }
    QVector<TextLength> ofTexts() const
    {
        QVector<TextLength> texts;
        for (qsizetype i = 0; i < columns.names.size(); ++i) {
            if (columns.types[i].type() == MetaInfo::Unknown) {
                texts.push_back({columns.names[i], longest.value(i)});
            }
        }
        return texts;
    }
};

/// Reads the input once and measures its texts.
CommandResult<Lengths> measure(Session &session, const CorvantaGraph &input,
                               const ActionRegistry &registry)
{
    Lengths lengths;
    // Called on the listener's thread, which has ended when session.run() returns.
    const auto addRow = [&](const TableSchema &columns, const OneRow *row) {
        lengths.columns = columns;
        if (row != nullptr) {
            lengths.add(*row);
        }
        return true;
    };
    RunOptions options;
    options.listeners.push_back(
        {u"widths"_s, {QString::fromLatin1(kInputId), 0}, std::make_unique<RowListener>(addRow)});
    if (const auto done = session.run(input, registry, std::move(options)); !done) {
        return done.fault();
    }
    return lengths;
}

/// Reads the input once and declares the widths of its texts, if the writer needs declarations and
/// has none.
CommandResult<void> declareWidths(Session &session, const CorvantaGraph &input,
                                  const ActionRegistry &registry, ActionParameters *writer)
{
    // Declarations that the user gave are used unchanged.
    if (!writer->needsTextLengths()) {
        return {};
    }
    const auto lengths = measure(session, input, registry);
    if (!lengths) {
        return lengths.fault();
    }
    writer->setTextLengths(lengths->ofTexts());
    return {};
}

/// Makes the graph that reads the input and writes the output.
CommandResult<CorvantaGraph> makeGraph(const CommandLine &line, Session &session,
                                       const ActionRegistry &registry)
{
    const QString inputId = QString::fromLatin1(kInputId);
    const QString outputId = u"output"_s;
    const auto writer = makeFileAction(registry, FileFormat::Write, line.arguments[1],
                                       line.values.value(u"--writer"_s));
    if (!writer) {
        return writer.fault();
    }
    CorvantaGraph graph;
    if (const auto added = addInput(line, line.arguments[0], registry, &graph); !added) {
        return added.fault();
    }
    // Not null: makeFileAction() chooses among actions that have parameters.
    auto *const parameters = dynamic_cast<ActionParameters *>(writer->get());
    if (const auto declared = declareWidths(session, graph, registry, parameters); !declared) {
        return declared.fault();
    }
    if (const auto added = addAction(&graph, outputId, **writer); !added) {
        return added.fault();
    }
    graph.links.append(CorvantaGraph::Link{{inputId, 0}, {outputId, 0}});
    return graph;
}

} // namespace

CommandOptions convertOptions()
{
    CommandOptions options = Session::options(inputOptions());
    options.withValue << u"--writer"_s;
    options.flags << u"--print-graph"_s;
    options.arguments = 2;
    options.wrongArguments = u"an input and an output file are required"_s;
    return options;
}

CommandResult<void> convertCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    const auto graph = makeGraph(line, **session, registry);
    if (!graph) {
        return graph.fault();
    }
    // The printed graph also has what was derived from the input: levels, tables and widths.
    if (line.has(u"--print-graph"_s)) {
        std::fputs(graph->toXml().constData(), stdout);
        return {};
    }
    return (*session)->run(*graph, registry, {});
}
