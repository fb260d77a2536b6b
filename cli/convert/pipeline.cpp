// The actions that are linked in a chain:
//
//     reader ----------+
//     reader -> union -+-> filter -> sort -> select (rows) -> select (columns) -> writer
//
// Each of those between the readers and the writer exists only if an option needs it.
#include "cli/convert/pipeline.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "base/text/text_order.h"
#include "cli/column_types.h"
#include "cli/convert/file_arguments.h"
#include "cli/file_types.h"
#include "cli/input_graph.h"
#include "corvanta/main_ui.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// More readers than this are as many threads and open files; a pattern needs only one.
constexpr qsizetype kMaxInputs = 200;

/// A graph, the output pin that the next action reads, and what is known about its columns.
struct Chain
{
    CorvantaGraph graph;
    CorvantaGraph::Pin last;
    QVector<ColumnKind> kinds;
    QVector<ColumnNotes> notes;
    QStringList withoutValues; ///< columns that have no value in any input so far
    QStringList chosen;        ///< the columns of --select; empty: all
    QStringList mixedZones;    ///< columns that are texts because only some times end with Z
    QString causeOfMixed;      ///< what made the first of them a text
    QString decimalPoint;      ///< of the numbers in texts; empty: the usual one

    bool isWritten(const QString &column) const
    {
        return chosen.isEmpty() || chosen.contains(column);
    }
    void addMixedZones(const QString &column, const QString &cause)
    {
        if (isWritten(column) && !mixedZones.contains(column)) {
            causeOfMixed = mixedZones.isEmpty() ? cause : causeOfMixed;
            mixedZones << column;
        }
    }
    /// Add an action that reads `last`, and make its output the last one. The fault is a usage
    /// error.
    CommandResult<void> append(const QString &id, ActionItem &action)
    {
        if (auto added = addAction(&graph, id, action); !added) {
            return added;
        }
        graph.links.append(CorvantaGraph::Link{last, {id, 0}});
        last = {id, 0};
        return {};
    }
    /// The same with a new action of the type, which is also its id.
    CommandResult<void> append(const ActionRegistry &registry, const QString &type,
                               const QStringList &settings, const QString &id = {})
    {
        const auto action = makeAction(registry, type, settings);
        return action ? append(id.isEmpty() ? type : id, **action) : action.fault();
    }
};

/// Of the columns those that are written.
template <class Column> QVector<Column> writtenOf(QVector<Column> columns, const Chain &chain)
{
    columns.removeIf([&](const Column &column) { return !chain.isWritten(column.column); });
    return columns;
}

/// The names of a list such as `a,"b,c"`: quotes hold names with commas and blanks at their ends.
CommandResult<QStringList> namesOf(const CommandLine &line, const QString &option)
{
    QStringList names;
    for (const QString &text : line.values.value(option)) {
        QString name;
        bool isQuoted = false;
        bool wasQuoted = false;
        for (const QChar c : text + u',') {
            if (c == u'"') {
                isQuoted = !isQuoted;
                wasQuoted = true;
            } else if (c != u',' || isQuoted) {
                name += c;
            } else {
                names << (wasQuoted ? name : name.trimmed());
                name.clear();
                wasQuoted = false;
            }
        }
        if (isQuoted || names.contains(QString())) {
            return badUsage(
                u"%1 '%2': expected names of columns with commas between them"_s.arg(option, text));
        }
    }
    return names;
}

/// A range of rows, from 1, inclusive.
struct RowRange
{
    qint64 first = 1;
    qint64 last = std::numeric_limits<qint64>::max();
};

/// A whole number of at least `low`.
std::optional<qint64> numberOf(const QString &text, qint64 low)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    return isNumber && number >= low ? std::optional(number) : std::nullopt;
}

/// The rows of --rows FROM:TO, of which either may be left out, cut by --limit.
CommandResult<RowRange> rowsOf(const CommandLine &line)
{
    RowRange range;
    const QString rows = line.value(u"--rows"_s, u":"_s);
    const qsizetype colon = rows.indexOf(u':');
    const QString from = rows.left(colon);
    const QString to = rows.mid(colon + 1);
    const auto first = from.isEmpty() ? range.first : numberOf(from, 1);
    const auto last = to.isEmpty() ? range.last : numberOf(to, 1);
    if (colon < 0 || !first || !last || *last < *first) {
        return badUsage(u"--rows '%1': expected FROM:TO, rows from 1"_s.arg(rows));
    }
    range = {*first, *last};
    if (line.values.contains(u"--limit"_s)) {
        const auto limit = numberOf(line.value(u"--limit"_s, QString()), 0);
        if (!limit) {
            return badUsage(u"--limit needs a number of rows"_s);
        }
        // The sum cannot overflow: both are positive.
        range.last = *limit <= range.last - range.first ? range.first + *limit - 1 : range.last;
    }
    return range;
}

/// "column=kind" for the columns that are not texts, as the row actions have it.
QStringList kindSettings(const QVector<ColumnKind> &kinds)
{
    QStringList settings;
    for (const ColumnKind &kind : kinds) {
        if (kind.kind != ValueKind::Text) {
            settings << u"kinds=%1=%2"_s.arg(kind.column, kindName(kind.kind));
        }
    }
    return settings;
}

bool isDay(ValueKind kind)
{
    return kind == ValueKind::Date || kind == ValueKind::DateTime;
}

/// Whether the column of an input is a text because only some of its times end with Z.
bool hasMixedZones(const ColumnKind &kind)
{
    return kind.kind == ValueKind::Text && isDay(kind.before) &&
           kind.exception.endsWith(u'Z') != kind.isUtc &&
           parseMoment(kind.exception.toStdU16String());
}

/// The kind that values of both kinds have.
ColumnKind joined(const ColumnKind &a, const ColumnKind &b)
{
    ColumnKind result = a.exception.isEmpty() ? b : a;
    if (isNumber(a.kind) && isNumber(b.kind)) {
        result.kind = a.kind == b.kind ? a.kind : ValueKind::Decimal;
        result.letter = a.letter == b.letter                 ? a.letter
                        : a.letter == 'U' || b.letter == 'U' ? 'U'
                                                             : 'F';
    } else if (isDay(a.kind) && isDay(b.kind) && a.isUtc == b.isUtc) {
        result.kind = a.kind == b.kind ? a.kind : ValueKind::DateTime;
    } else if (a.kind != b.kind || a.letter != b.letter || a.isUtc != b.isUtc) {
        result.kind = ValueKind::Text;
        result.letter = 'U';
    }
    return result;
}

/// -1: none.
qsizetype indexOf(const QString &column, const QVector<ColumnKind> &kinds)
{
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const ColumnKind &kind) { return kind.column == column; });
    return found == kinds.end() ? -1 : found - kinds.begin();
}

/// Add the columns of the input `word` to those of the inputs before it. Columns without values
/// decide nothing; `isScanned`: they are texts without an exception.
void joinKinds(const QString &word, const QVector<ColumnKind> &more, bool isScanned, Chain *chain)
{
    for (const ColumnKind &kind : more) {
        if (hasMixedZones(kind)) {
            chain->addMixedZones(kind.column, u"'%1' in %2 of '%3'"_s.arg(
                                                  kind.exception, kind.exceptionPlace, word));
        }
        const bool isEmpty =
            isScanned && kind.kind == ValueKind::Text && kind.exceptionPlace.isEmpty();
        const qsizetype same = indexOf(kind.column, chain->kinds);
        if (same < 0) {
            chain->kinds.append(kind);
            chain->withoutValues << (isEmpty ? QStringList(kind.column) : QStringList());
        } else if (!isEmpty) {
            ColumnKind &all = chain->kinds[same];
            if (isDay(all.kind) && isDay(kind.kind) && all.isUtc != kind.isUtc) {
                chain->addMixedZones(kind.column, u"'%1'"_s.arg(word));
            }
            all = chain->withoutValues.removeAll(kind.column) > 0 ? kind : joined(all, kind);
        }
    }
}

/// Give the columns the names that --rename gives them.
CommandResult<QStringList> renameColumns(const CommandLine &line, Chain *chain)
{
    QStringList settings;
    for (const QString &text : line.values.value(u"--rename"_s)) {
        const auto names = Assignment::parse(text);
        if (!names) {
            return badUsage(u"--rename '%1' is not of the form OLD=NEW"_s.arg(text));
        }
        settings << u"rename="_s + text;
        for (ColumnKind &kind : chain->kinds) {
            kind.column = kind.column == names->name ? names->value : kind.column;
        }
        for (ColumnNotes &notes : chain->notes) {
            notes.column = notes.column == names->name ? names->value : notes.column;
        }
    }
    return settings;
}

/// Check the syntax of --where before anything is read. Variables of a graph have no values yet.
CommandResult<void> checkExpression(const ActionRegistry &registry, const QString &where)
{
    const auto filter = makeAction(registry, u"filter"_s, {u"where="_s + where});
    if (!filter || where.contains("${"_L1)) {
        return filter ? CommandResult<void>() : filter.fault();
    }
    const auto problems = dynamic_cast<const ActionParameters &>(**filter).problems();
    return problems.isEmpty() ? CommandResult<void>()
                              : badUsage(u"--where '%1': %2"_s.arg(where, problems[0].text));
}

/// Add the actions for --where, --sort, --rows, --limit, --select and --rename, in this order.
CommandResult<void> appendRowActions(const CommandLine &line, const ActionRegistry &registry,
                                     Chain *chain)
{
    const auto keys = namesOf(line, u"--sort"_s);
    const auto range = rowsOf(line);
    if (!keys || !range) {
        return !keys ? keys.fault() : range.fault();
    }
    QStringList kinds = kindSettings(chain->kinds);
    if (!chain->decimalPoint.isEmpty()) {
        kinds << u"decimal="_s + chain->decimalPoint;
    }
    for (const QString &where : line.values.value(u"--where"_s)) {
        const QString id = chain->graph.indexOf(u"filter"_s) < 0
                               ? u"filter"_s
                               : u"filter%1"_s.arg(chain->graph.actions.size());
        if (auto added =
                chain->append(registry, u"filter"_s, kinds + QStringList(u"where="_s + where), id);
            !added) {
            return added;
        }
    }
    if (!keys->isEmpty()) {
        if (auto added = chain->append(registry, u"sort"_s, settingsOf(u"keys"_s, *keys) + kinds);
            !added) {
            return added;
        }
    }
    QStringList select = settingsOf(u"columns"_s, chain->chosen);
    chain->kinds = writtenOf(chain->kinds, *chain);
    chain->notes = writtenOf(chain->notes, *chain);
    const auto renamed = renameColumns(line, chain);
    if (!renamed) {
        return renamed.fault();
    }
    select += *renamed;
    if (line.values.contains(u"--rows"_s) || line.values.contains(u"--limit"_s)) {
        select << u"firstRow="_s + QString::number(range->first);
        if (range->last < RowRange().last) {
            select << u"lastRow="_s + QString::number(range->last);
        }
    }
    return select.isEmpty() ? CommandResult<void>() : chain->append(registry, u"select"_s, select);
}

/// Whether the user has given the types of the columns: then the values are checked, whatever the
/// output is.
bool hasLetters(const CommandLine &line)
{
    const auto types = columnTypesOf(line);
    return !types ||
           types->rule == ColumnTypes::Rule::Letters; // a fault is reported by inputKinds()
}

/// Whether the kinds of the columns must be known, which may need a scan of the input.
bool needsKinds(const CommandLine &line, const ActionParameters &writer)
{
    return writer.needsColumnKinds() || hasLetters(line) || line.values.contains(u"--where"_s) ||
           line.values.contains(u"--sort"_s);
}

/// How many rows decide about the kinds: rows that are not read do not count.
ActionParameters::KindExtent rowsThatDecide(const CommandLine &line)
{
    constexpr qint64 kSampleRows = 1000; // what a sample has at least
    const auto range = rowsOf(line);
    const bool isSample = range && range->last <= kSampleRows &&
                          !line.values.contains(u"--where"_s) && !line.values.contains(u"--sort"_s);
    return isSample ? ActionParameters::KindExtent::Sample : ActionParameters::KindExtent::All;
}

/// An input that is open, and what its values are.
struct Input
{
    QString id;
    std::unique_ptr<ActionItem> reader;
    QVector<ColumnKind> kinds;
};

/// Find the kinds of the columns of all inputs, in the order of `words`.
CommandResult<void> findKinds(const CommandLine &line, const QStringList &words,
                              ActionParameters &writer, std::vector<Input> *inputs, Chain *chain)
{
    const bool isJson = std::ranges::all_of(
        *inputs, [&](const Input &input) { return copiesJson(line, *input.reader, writer); });
    const auto extent = isJson && !comparesValues(line) ? ActionParameters::KindExtent::Sample
                                                        : rowsThatDecide(line);
    for (size_t i = 0; i < inputs->size(); ++i) {
        Input &input = (*inputs)[i];
        const QString &word = words[static_cast<qsizetype>(i)];
        auto kinds = inputKinds(line, word, input.reader.get(), extent);
        if (!kinds) {
            return kinds.fault();
        }
        input.kinds = isJson ? jsonKinds(line, *std::move(kinds)) : *std::move(kinds);
        if (writer.needsColumnKinds()) {
            noteValuesAmongTexts(word, writtenOf(input.kinds, *chain));
        }
        joinKinds(word, input.kinds, hasScannedKinds(line, *input.reader), chain);
    }
    const qsizetype mixed = chain->mixedZones.size();
    if (mixed > 0 && writer.needsColumnKinds()) {
        MainUI::addLog(
            MainUI::Info,
            u"%1 %2 text, because only some of the times end with Z; the first is '%3', because of %4"_s
                .arg(counted(mixed, u"column"_s), isOrAre(mixed), chain->mixedZones.first(),
                     chain->causeOfMixed));
    }
    return {};
}

/// Open all inputs, and find the kinds and notes of their columns as far as they are needed.
CommandResult<std::vector<Input>> openInputs(const CommandLine &line, const QStringList &words,
                                             const ActionRegistry &registry,
                                             ActionParameters *writer, Chain *chain)
{
    std::vector<Input> inputs;
    const QString id = QString::fromLatin1(kInputId);
    const bool isOne = words.size() == 1;
    for (qsizetype i = 0; i < words.size(); ++i) {
        Input input{isOne ? id : id + QString::number(i + 1), {}, {}};
        auto opened = openInput(line, words[i], registry, ReadExtent::Whole, input.id,
                                isOne ? writer : nullptr);
        if (!opened) {
            return opened.fault();
        }
        input.reader = *std::move(opened);
        chain->decimalPoint = decimalPointOf(*input.reader);
        if (isOne && writer->needsColumnLabels()) {
            chain->notes = dynamic_cast<ActionParameters &>(*input.reader).columnNotes();
        }
        inputs.push_back(std::move(input));
    }
    if (needsKinds(line, *writer)) {
        if (const auto found = findKinds(line, words, *writer, &inputs, chain); !found) {
            return found.fault();
        }
    }
    return inputs;
}

/// The columns of an input with the kinds that they have in all inputs.
QVector<ColumnKind> kindsInAll(const QVector<ColumnKind> &kinds, const QVector<ColumnKind> &all)
{
    return mapped<QVector<ColumnKind>>(
        kinds, [&](const ColumnKind &kind) { return all.value(indexOf(kind.column, all), kind); });
}

/// Add the readers, and the action that joins several.
CommandResult<void> addInputs(const CommandLine &line, const QStringList &words,
                              const ActionRegistry &registry, ActionParameters *writer,
                              Chain *chain)
{
    const auto inputs = openInputs(line, words, registry, writer, chain);
    if (!inputs) {
        return inputs.fault();
    }
    const QString joinId = u"union"_s;
    int pin = 0;
    for (const Input &input : *inputs) {
        // Where the output has no types, the cells stay the texts that they are.
        const QVector<ColumnKind> numbers = writer->needsColumnKinds() || hasLetters(line)
                                                ? kindsInAll(input.kinds, chain->kinds)
                                                : QVector<ColumnKind>();
        const auto last = addReader(registry, input.reader.get(), numbers, input.id, &chain->graph);
        if (!last) {
            return last.fault();
        }
        chain->last = {*last, 0};
        if (inputs->size() > 1) {
            chain->graph.links.append(CorvantaGraph::Link{chain->last, {joinId, pin++}});
        }
    }
    if (inputs->size() == 1) {
        return {};
    }
    chain->last = {joinId, 0};
    QStringList settings{line.has(u"--union"_s) ? u"match=0"_s : u"match=2"_s};
    if (line.has(u"--add-file-name"_s)) {
        settings << u"lastColumn=_FileNames"_s;
    }
    const auto join = makeAction(registry, joinId, settings);
    return join ? addAction(&chain->graph, joinId, **join) : join.fault();
}

constexpr OptionInfo kJoinOptions[] = {
    {"'PATTERN', several INPUTs", "", "are joined; all must have the same columns"},
    {"--union", "", "join columns by name; a missing one is empty"},
    {"--add-file-name", "", "add the column _FileNames"},
};
constexpr OptionInfo kRowOptions[] = {
    {"--where", "EXPRESSION",
     "keep the rows for which it is true: columns, numbers and 'texts' with = != < <= > >=, is "
     "null, is not null, and, or, not and parentheses; \"a name\" with blanks in quotes"},
    {"--sort", "A,-B", "sort on columns, -B in descending order; missing values come last"},
    {"--rows", "FROM:TO", "keep these rows, from 1"},
    {"--limit", "N", "keep the first N rows"},
    {"--select", "A,B", "keep these columns, in this order"},
    {"--rename", "OLD=NEW", "rename a column (repeatable)"},
};
constexpr OptionInfo kOutputOptions[] = {
    {"FOLDER/", "",
     "one CSV file per table of a JSON or XML file, with the columns that join it to its parent, "
     "or one per sheet of a workbook"},
    {"--to", "FORMAT", "the format in place of the extension of OUTPUT"},
    {"--writer", "NAME=VALUE", "set a parameter of the writer, as --reader does"},
};

} // namespace

/// The options that add actions between the input and the output.
CommandOptions pipelineOptions()
{
    CommandOptions options = inputOptions();
    options.groups << OptionGroup{"Several inputs", kJoinOptions}
                   << OptionGroup{"Rows and columns, in this order", kRowOptions}
                   << OptionGroup{"Outputs", kOutputOptions};
    return options;
}

CommandResult<CorvantaGraph> makePipeline(const CommandLine &line, const ActionRegistry &registry)
{
    const auto output = outputFile(line, line.arguments.last(), registry);
    if (!output) {
        return output.fault();
    }
    const auto writer =
        makeFileAction(registry, FileFormat::Write, *output, line.values.value(u"--writer"_s));
    if (!writer) {
        return writer.fault();
    }
    // Not null: makeFileAction() chooses among actions that have parameters.
    auto *const parameters = dynamic_cast<ActionParameters *>(writer->get());
    const QStringList words = inputWords(line);
    if (words.size() > kMaxInputs) {
        return badUsage(u"%1 inputs are too many (at most %2); a pattern in quotes, such as "
                        "'*.csv', reads any number of files of one format"_s.arg(
                            QString::number(words.size()), QString::number(kMaxInputs)));
    }
    for (const QString &where : line.values.value(u"--where"_s)) {
        if (const auto checked = checkExpression(registry, where); !checked) {
            return checked.fault();
        }
    }
    auto chosen = namesOf(line, u"--select"_s);
    if (!chosen) {
        return chosen.fault();
    }
    Chain chain;
    chain.chosen = *std::move(chosen);
    if (const auto added = addInputs(line, words, registry, parameters, &chain); !added) {
        return added.fault();
    }
    if (const auto added = appendRowActions(line, registry, &chain); !added) {
        return added.fault();
    }
    if (parameters->needsColumnKinds()) {
        parameters->setColumnKinds(losslessKinds(chain.kinds));
    }
    if (parameters->needsColumnLabels()) {
        parameters->setColumnLabels(chain.notes);
    }
    if (const auto added = chain.append(u"output"_s, **writer); !added) {
        return added.fault();
    }
    return std::move(chain.graph);
}
