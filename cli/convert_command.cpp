#include "commands.h"
#include "corvanta/action_parameters.h"
#include "corvanta/row_listener.h"
#include "file_types.h"
#include "input_graph.h"
#include "session.h"

#include <cmath>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Columns and, for texts, the bytes of UTF-8 of the longest one.
struct Widths
{
    TableSchema columns;
    QVector<qsizetype> longest;

    void add(const OneRow &row)
    {
        longest.resize(columns.names.size());
        for (int i = 0; i < row.numberOfColumns(); ++i) {
            const bool isText = columns.types[i].type() == MetaInfo::Unknown;
            const qsizetype bytes = isText ? row.text(i).toUtf8().size() : 0;
            longest[i] = std::max(longest[i], bytes);
        }
    }
};

/// The declarations of a format that stores texts in fixed widths: the longest text, times f1, plus
/// f2 bytes.
QString declarations(const Widths &widths, const ActionParameters &writer)
{
    const auto valueOf = [&](const QString &name, double without) {
        const int index = writer.indexOfParameter(name);
        return index < 0 ? without : writer.parameterValue(index).toDouble();
    };
    const double factor = valueOf(u"f1"_s, 1);
    const double extra = valueOf(u"f2"_s, 0);
    ToXMLStringTool tool;
    QString xml = u"<StringColDef>"_s;
    for (qsizetype i = 0; i < widths.columns.names.size(); ++i) {
        if (widths.columns.types[i].type() == MetaInfo::Unknown) {
            const qsizetype longest = widths.longest.value(i);
            const auto width =
                static_cast<qint64>(std::ceil(static_cast<double>(longest) * factor + extra));
            xml += u"<CD n='%1' l='%2' ol='%3'/>"_s.arg(
                QString::fromWCharArray(tool.toXML(widths.columns.names[i])),
                QString::number(std::max<qint64>(width, 1)), QString::number(longest));
        }
    }
    return xml + "</StringColDef>"_L1;
}

/// Read the input once for the widths of its texts, if the writer wants them declared and nobody
/// has.
int declareWidths(Session &session, const CorvantaGraph &input, const ActionRegistry &registry,
                  ActionParameters *writer)
{
    const int index = writer->indexOfParameter(u"StringColDef"_s);
    if (index < 0 || !writer->parameterValue(index).isEmpty()) {
        return kDone;
    }
    Widths widths;
    const auto measure = [&](const TableSchema &columns, const OneRow *row) {
        widths.columns = columns;
        if (row != nullptr) {
            widths.add(*row);
        }
        return true;
    };
    RunOptions options;
    options.listeners.push_back(
        {u"widths"_s, {QString::fromLatin1(kInputId), 0}, std::make_unique<RowListener>(measure)});
    const int status = session.run(input, registry, std::move(options));
    writer->setParameterValue(index, declarations(widths, *writer));
    return status;
}

} // namespace

int convertCommand(const QStringList &words)
{
    const QString command = u"convert"_s;
    CommandLine line;
    QString error;
    CommandOptions accepted = Session::options(inputOptions());
    accepted.withValue << u"--writer"_s;
    accepted.flags << u"--print-graph"_s;
    if (!CommandLine::parse(words, accepted, &line, &error)) {
        return usageError(command, error);
    }
    if (line.arguments.size() != 2) {
        return usageError(command, u"an input and an output file are needed"_s);
    }
    const std::unique_ptr<Session> session = Session::open(line, &error);
    if (!session) {
        return usageError(command, error);
    }
    ActionRegistry registry;
    registry.loadAll();
    const QString outputId = u"output"_s;
    const std::unique_ptr<ActionItem> writer = makeFileAction(
        registry, FileFormat::Write, line.arguments[1], line.values.value(u"--writer"_s), &error);
    if (!writer) {
        return usageError(command, error);
    }
    CorvantaGraph graph;
    if (const int status = addInput(line, line.arguments[0], registry, &graph, &error);
        status != kDone) {
        return error.isEmpty() ? status : usageError(command, error);
    }
    auto *const parameters = dynamic_cast<ActionParameters *>(writer.get());
    if (const int status = declareWidths(*session, graph, registry, parameters); status != kDone) {
        return status;
    }
    if (!addAction(&graph, outputId, *writer, &error)) {
        return usageError(command, error);
    }
    graph.links.append(CorvantaGraph::Link{{QString::fromLatin1(kInputId), 0}, {outputId, 0}});
    if (line.has(u"--print-graph"_s)) {
        std::fputs(graph.toXml().constData(), stdout);
        return kDone;
    }
    return session->run(graph, registry, {});
}
