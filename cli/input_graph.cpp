// The reader of the input file: its action, its table and the parameters that the file determines.
#include "input_graph.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "base/text/packed_name.h"
#include "column_types.h"
#include "corvanta/action_parameters.h"
#include "corvanta/lists.h"
#include "corvanta/main_ui.h"
#include "corvanta/system.h"
#include "file_types.h"
#include "visible_text.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr int kListedTables = 50;
constexpr qsizetype kBeginningChars = 60;

/// The names of tables or sheets for a message, as many as are listed.
QString namesOf(const QVector<InputTable> &tables)
{
    const auto nameOf = [](const InputTable &table) { return visibleText(table.path); };
    return stringFromStringList(mapped<QStringList>(tables, nameOf), kListedTables);
}

/// The table of --table, from 0, a number or the name that the list shows; nothing without that
/// option.
CommandResult<std::optional<int>> tableOf(const CommandLine &line, ActionParameters *parameters)
{
    if (!line.values.contains(u"--table"_s)) {
        return std::optional<int>();
    }
    const QString wanted = line.value(u"--table"_s, QString());
    bool isNumber = false;
    const int number = wanted.toInt(&isNumber);
    if (number >= 1) {
        return std::optional(number - 1);
    }
    if (isNumber) {
        return badUsage(u"--table needs a table number, from 1"_s);
    }
    const QVector<InputTable> tables = parameters->inputTables();
    const auto found = std::find_if(tables.begin(), tables.end(),
                                    [&](const InputTable &table) { return table.path == wanted; });
    if (found == tables.end()) {
        const QString names = tables.isEmpty() ? QString() : u": "_s + namesOf(tables);
        return badUsage(
            u"--table: there is no table '%1' in the list of tables%2"_s.arg(wanted, names));
    }
    return std::optional(static_cast<int>(found - tables.begin()));
}

/// Whether the tables are sheets of a workbook.
bool areSheets(const QVector<InputTable> &tables)
{
    return !tables.isEmpty() && tables[0].rows == InputTable::kRowsNotKnown;
}

/// Index of the sheet of --sheet, a name or a number from 1; nothing without that option.
CommandResult<std::optional<int>> sheetOf(const CommandLine &line, const QString &fileName,
                                          ActionParameters *parameters)
{
    if (!line.values.contains(u"--sheet"_s)) {
        return std::optional<int>();
    }
    const QString wanted = line.value(u"--sheet"_s, QString());
    const bool isOneFile = fileName != "-"_L1 && !fileName.contains(u'*') &&
                           !fileName.contains(u'?') && !fileName.contains(u'@');
    if (isOneFile && !QFileInfo::exists(fileName)) {
        return std::optional<int>(); // the reader reports that the file is missing
    }
    const QVector<InputTable> tables = parameters->inputTables();
    if (!areSheets(tables)) {
        return badUsage(u"--sheet: '%1' is not a workbook that can be read"_s.arg(fileName));
    }
    // A name comes first: sheets may be named "2024".
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (int i = 0; i < tables.size(); ++i) {
            if (tables[i].path.compare(wanted, sensitivity) == 0) {
                return std::optional(i);
            }
        }
    }
    const int number = wanted.toInt();
    if (number < 1 || number > tables.size()) {
        const QString names = namesOf(tables);
        return badUsage(u"--sheet: '%1' has no sheet '%2'; its %3"_s.arg(
            fileName, wanted,
            tables.size() == 1 ? u"only sheet is "_s + names : u"sheets are "_s + names));
    }
    return std::optional(number - 1);
}

/// One line of the list of sheets.
QString describeSheet(const InputTable &sheet, qsizetype number)
{
    const QString notes = sheet.beginning.isEmpty() ? QString() : u" (%1)"_s.arg(sheet.beginning);
    return u"\n%1 %2: %3%4"_s.arg(sheet.isChosen ? u"*"_s : u" "_s,
                                  QString::number(number).rightJustified(3),
                                  visibleText(sheet.path), notes);
}

/// One line of the list of tables; `number` is the one that --table takes.
QString describe(const InputTable &table, qsizetype number)
{
    if (table.rows == InputTable::kRowsNotKnown) {
        return describeSheet(table, number);
    }
    const QString cut = table.beginning.size() > kBeginningChars ? u"..."_s : QString();
    return u"\n%1 %2: %3 x %4: %5 (%6)"_s.arg(
        table.isChosen ? u"*"_s : u" "_s, QString::number(number).rightJustified(3),
        counted(table.rows, u"row"_s), counted(table.columns, u"column"_s),
        visibleText(table.beginning.left(kBeginningChars) + cut), visibleText(table.path));
}

/// Logs the list of tables, from which the user can choose another one.
void logTables(const QVector<InputTable> &tables)
{
    if (tables.size() < 2) {
        return;
    }
    const bool isOneChosen = std::any_of(tables.begin(), tables.end(),
                                         [](const InputTable &table) { return table.isChosen; });
    QString text =
        areSheets(tables) && !isOneChosen
            ? u"The file contains %1 sheets (--sheet NAME or NUMBER reads one):"_s
        : areSheets(tables)
            ? u"The file contains %1 sheets; the marked one is read (--sheet NAME or NUMBER reads another):"_s
            : u"The file contains %1 tables; the marked one is read (--table NUMBER reads another):"_s;
    text = text.arg(tables.size());
    for (qsizetype i = 0; i < tables.size(); ++i) {
        // The marked table is always listed, so that the user can see which one is read.
        if (i < kListedTables || tables[i].isChosen) {
            text += describe(tables[i], i + 1);
        }
    }
    text += tables.size() > kListedTables ? u"\n      ..."_s : QString();
    MainUI::addLog(MainUI::Info, text);
}

// ---- The sheet of a workbook that is written from a workbook.

bool isWrittenWorkbook(const FileFormat &format)
{
    return format.use == FileFormat::Write && format.family == FileFormat::Workbook;
}

bool isCreated(const TargetUse &target)
{
    return target.access == TargetUse::Access::Create;
}

/// Whether a run creates a workbook, and does not update one.
bool createsWorkbook(const ActionParameters &writer)
{
    return std::ranges::any_of(writer.fileFormats(), isWrittenWorkbook) &&
           std::ranges::any_of(writer.targets(), isCreated);
}

/// Name the sheet of the new workbook after the one that is read, and warn about all others.
void keepSheet(const CommandLine &line, const QString &fileName, QVector<InputTable> sheets,
               ActionParameters *writer)
{
    const auto chosen = std::find_if(sheets.begin(), sheets.end(),
                                     [](const InputTable &sheet) { return sheet.isChosen; });
    if (chosen == sheets.end()) {
        return; // several sheets are joined
    }
    const int parameter = writer->indexOfParameter(ParameterInfo::Role::SheetName);
    const QString assignment = writer->parameters().at(parameter).name + u'=';
    const QStringList settings = line.values.value(u"--writer"_s);
    const bool hasName = std::any_of(settings.begin(), settings.end(), [&](const QString &setting) {
        return setting.startsWith(assignment);
    });
    if (!hasName) {
        writer->setParameterValue(parameter, chosen->path);
    }
    sheets.erase(chosen);
    if (!sheets.isEmpty()) {
        MainUI::addLog(MainUI::Warning,
                       u"Warning: %1 of '%2' %3 not copied (--sheet reads another one): %4"_s.arg(
                           counted(sheets.size(), u"sheet"_s), fileName,
                           sheets.size() == 1 ? u"is"_s : u"are"_s, namesOf(sheets)));
    }
}

// ---- The settings of the reader.

/// An option of the command that sets a parameter of the reader.
struct ReaderOption
{
    QString option;
    QString parameter;
    QString value;
};

QVector<ReaderOption> readerOptions(const CommandLine &line)
{
    QVector<ReaderOption> options;
    for (const QString &name : {u"encoding"_s, u"separator"_s}) {
        const QString option = u"--"_s + name;
        if (line.values.contains(option)) {
            options.append({option, name, line.value(option, QString())});
        }
    }
    if (line.has(u"--add-file-name"_s)) {
        options.append({u"--add-file-name"_s, u"outputFilenames"_s, u"1"_s});
    }
    return options;
}

/// Index of the encoding of the system in the choices of a parameter; -1 if it has none.
qsizetype systemChoice(const ActionItem &reader, const QString &parameter)
{
    const auto &parameters = dynamic_cast<const ActionParameters &>(reader);
    const int index = parameters.indexOfParameter(parameter);
    return index < 0
               ? -1
               : parameters.parameters().at(index).choices.indexOf(u"encoding of the system"_s);
}

/// Give a reader that has only a few encodings all that are known: the system's becomes the one
/// that is named.
CommandResult<void> nameEncoding(const CommandLine &line, const ActionItem &reader,
                                 ReaderOption *option)
{
    const qsizetype system = systemChoice(reader, option->parameter);
    bool isNumber = false;
    option->value.toInt(&isNumber);
    if (system < 0 || isNumber) {
        return {}; // a name or the number of a choice, which is checked later
    }
    if (!isKnownEncoding(option->value)) {
        return badUsage(u"%1: the encoding '%2' is unknown (windows-1252 is an example)"_s.arg(
            option->option, option->value));
    }
    if (line.has(u"--print-graph"_s)) {
        MainUI::addLog(MainUI::Info,
                       u"The graph needs the option --system-encoding %1"_s.arg(option->value));
    }
    setSystemEncoding(option->value);
    option->value = QString::number(system);
    return {};
}

/// Whether a file of this extension is text.
bool isText(const QString &extension)
{
    static const QStringList all{u"csv"_s,  u"txt"_s,   u"tsv"_s,    u"tab"_s,
                                 u"json"_s, u"jsonl"_s, u"ndjson"_s, u"geojson"_s,
                                 u"xml"_s,  u"html"_s,  u"htm"_s};
    return all.contains(extension);
}

/// Check that a text file is not of another format. The fault is kFailed.
CommandResult<void> checkContent(const CommandLine &line, const FileArgument &file)
{
    const QStringList settings = line.values.value(u"--reader"_s);
    const bool isEncodingGiven =
        line.values.contains(u"--encoding"_s) ||
        std::any_of(settings.begin(), settings.end(),
                    [](const QString &setting) { return setting.startsWith("encoding="_L1); });
    const bool isPacked = withoutPacking(file.name) != file.name || file.name.endsWith(".rar"_L1);
    const QString content = isText(file.extension) && !isPacked && !isEncodingGiven
                                ? binaryContent(file.name)
                                : QString();
    if (!content.isEmpty()) {
        return Fault{kFailed,
                     u"'%1' is not a %2 file: %3"_s.arg(file.name, file.extension, content)};
    }
    return {};
}

/// Prepare the writer for the sheets of the input. The fault is a usage error: the input would lose
/// sheets.
CommandResult<void> prepareSheets(const CommandLine &line, const QString &fileName,
                                  const QVector<InputTable> &tables, ActionParameters *writer)
{
    if (!areSheets(tables) || !createsWorkbook(*writer)) {
        return {};
    }
    if (tables.size() > 1 && isSameFile(fileName, line.arguments.last())) {
        return badUsage(u"'%1' has %2 sheets, and the output would have only one; use another "
                        "output name"_s.arg(fileName, QString::number(tables.size())));
    }
    keepSheet(line, fileName, tables, writer);
    return {};
}

constexpr OptionInfo kInputOptions[] = {
    {"-", "", "standard input or output; --from or --to then names the format"},
    {"ARCHIVE.zip@MEMBER", "",
     "a file in an archive; without MEMBER the only one that can be read"},
    {"--from", "FORMAT", "the format in place of the extension (csv, jsonl, xlsx, ...)"},
    {"--encoding", "NAME", "encoding of the input, such as windows-1252"},
    {"--separator", "CHAR|auto", "between the fields of the input"},
    {"--types", "auto|text|K,F,U",
     "types of the columns of a text file, where the output has types: from all values (auto), "
     "texts, or one letter per column: K integer, F decimal number, U text"},
    {"--table", "NUMBER|NAME", "read another table of JSON, XML or HTML than the largest one"},
    {"--sheet", "NAME|NUMBER", "read another sheet of a workbook than the first one"},
    {"--reader", "NAME=VALUE",
     "set a parameter of the reader (repeatable, also for each text of a list; \"corvanta "
     "describe\" lists them)"},
};

} // namespace

/// The options of every command that reads an input.
CommandOptions inputOptions()
{
    return {{{"Inputs", kInputOptions}}};
}

CommandResult<std::unique_ptr<ActionItem>> makeInput(const CommandLine &line,
                                                     const QString &fileName,
                                                     const ActionRegistry &registry,
                                                     ReadExtent extent)
{
    const auto file = inputFile(line, fileName, registry);
    if (!file) {
        return file.fault();
    }
    const auto plain = makeFileAction(registry, FileFormat::Read, *file, {}, extent);
    if (!plain) {
        return plain.fault();
    }
    QStringList settings;
    QVector<ReaderOption> options = readerOptions(line);
    for (ReaderOption &option : options) {
        if (!hasParameter(**plain, option.parameter)) {
            return badUsage(u"%1: %2 has no such choice"_s.arg(
                option.option, QString::fromLatin1((*plain)->getTypeName())));
        }
        if (const auto named = nameEncoding(line, **plain, &option); !named) {
            return named.fault();
        }
        settings << option.parameter + u'=' + option.value;
    }
    if (const auto checked = checkContent(line, *file); !checked) {
        return checked.fault();
    }
    // The settings of --reader come last and win.
    return makeFileAction(registry, FileFormat::Read, *file,
                          settings + line.values.value(u"--reader"_s), extent);
}

CommandResult<std::unique_ptr<ActionItem>>
openInput(const CommandLine &line, const QString &fileName, const ActionRegistry &registry,
          ReadExtent extent, const QString &id, ActionParameters *writer)
{
    auto action = makeInput(line, fileName, registry, extent);
    if (!action) {
        return action;
    }
    // Not null: makeFileAction() chooses among actions that have parameters.
    auto *const parameters = dynamic_cast<ActionParameters *>(action->get());
    // Messages about the file look as if the running action had logged them.
    const LogScope scope({nullptr, id});
    const auto table = tableOf(line, parameters);
    if (!table) {
        return table.fault();
    }
    const auto sheet = sheetOf(line, fileName, parameters);
    if (!sheet) {
        return sheet.fault();
    }
    constexpr int kMostLikely = -1;
    if (!parameters->fillFromInput(sheet->value_or(table->value_or(kMostLikely)))) {
        return Fault{kFailed};
    }
    const QVector<InputTable> tables = parameters->inputTables();
    if (table->has_value() && tables.isEmpty()) {
        return badUsage(u"--table: '%1' does not contain several tables"_s.arg(fileName));
    }
    logTables(tables);
    if (writer != nullptr) {
        if (const auto prepared = prepareSheets(line, fileName, tables, writer); !prepared) {
            return prepared.fault();
        }
    }
    return action;
}

CommandResult<QVector<ColumnKind>> inputKinds(const CommandLine &line, const QString &fileName,
                                              ActionItem *input,
                                              ActionParameters::KindExtent extent)
{
    const auto types = columnTypesOf(line);
    return types ? columnKindsOf(*types, fileName, dynamic_cast<ActionParameters *>(input), extent)
                 : types.fault();
}

CommandResult<QString> addReader(const ActionRegistry &registry, ActionItem *input,
                                 const QVector<ColumnKind> &numbers, const QString &id,
                                 CorvantaGraph *graph)
{
    const QStringList casts = castsFor(numbers, dynamic_cast<ActionParameters *>(input));
    if (const auto added = addAction(graph, id, *input); !added) {
        return added.fault();
    }
    if (casts.isEmpty()) {
        return id;
    }
    const QString castId = id == QLatin1StringView(kInputId) ? u"cast"_s : u"cast "_s + id;
    const auto cast = makeAction(registry, u"cast"_s, settingsOf(u"types"_s, casts));
    const auto added = cast ? addAction(graph, castId, **cast) : cast.fault();
    if (!added) {
        return added.fault();
    }
    graph->links.append(CorvantaGraph::Link{{id, 0}, {castId, 0}});
    return castId;
}

QString decimalPointOf(const ActionItem &reader)
{
    const auto &parameters = dynamic_cast<const ActionParameters &>(reader);
    const int index = parameters.indexOfParameter(u"decimal"_s);
    return index < 0 ? QString() : parameters.parameterValue(index);
}

CommandResult<void> addInput(const CommandLine &line, const QString &fileName,
                             const ActionRegistry &registry, CorvantaGraph *graph,
                             ReadExtent extent, InputFacts *facts)
{
    const QString id = QString::fromLatin1(kInputId);
    const auto input = openInput(line, fileName, registry, extent, id);
    if (!input) {
        return input.fault();
    }
    if (facts != nullptr) {
        auto kinds = inputKinds(line, fileName, input->get(), facts->extent);
        if (!kinds) {
            return kinds.fault();
        }
        // Without columns the file cannot be read, which the run reports.
        if (facts->extent == ActionParameters::KindExtent::Sample && !kinds->isEmpty()) {
            noteSample(line, fileName, **input);
        }
        auto *const parameters = dynamic_cast<ActionParameters *>(input->get());
        // Who gets the rows parses numbers with a point only.
        const QString point = decimalPointOf(**input);
        if (!point.isEmpty() && point != "."_L1) {
            parameters->readColumnsAs(*kinds);
        }
        for (const ColumnKind &kind : *kinds) {
            const bool isNumber =
                kind.kind == ValueKind::Integer || kind.kind == ValueKind::Decimal;
            if (isNumber && !kind.exception.isEmpty()) {
                facts->longNumbers << kind.column;
            }
        }
        facts->kinds = losslessKinds(*std::move(kinds));
        facts->notes = parameters->columnNotes();
    }
    return addAction(graph, id, **input);
}
