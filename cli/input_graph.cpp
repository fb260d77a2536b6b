// The reader of the input file: its action, its table and the parameters that the file determines.
#include "input_graph.h"

#include "base/counted.h"
#include "column_types.h"
#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "file_types.h"
#include "visible_text.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr qsizetype kListedTables = 50;
constexpr qsizetype kBeginningChars = 60;

/// The table of --table, from 0; nothing without that option.
CommandResult<std::optional<int>> tableOf(const CommandLine &line)
{
    if (!line.values.contains(u"--table"_s)) {
        return std::optional<int>();
    }
    const int number = line.value(u"--table"_s, QString()).toInt();
    if (number < 1) {
        return badUsage(u"--table needs a table number, from 1"_s);
    }
    return std::optional(number - 1);
}

/// The names of sheets for a message, as many as are listed.
QString namesOf(const QVector<InputTable> &sheets)
{
    QStringList names;
    for (const InputTable &sheet : sheets.first(std::min(sheets.size(), kListedTables))) {
        names << u"'%1'"_s.arg(visibleText(sheet.path));
    }
    names += sheets.size() > kListedTables ? QStringList(u"..."_s) : QStringList();
    return names.join(u", "_s);
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

/// Whether a run creates a workbook, and does not update one.
bool createsWorkbook(const ActionParameters &writer)
{
    const auto formats = writer.fileFormats();
    const QVector<TargetUse> targets = writer.targets();
    return std::any_of(formats.begin(), formats.end(),
                       [](const FileFormat &format) {
                           return format.use == FileFormat::Write &&
                                  format.family == FileFormat::Workbook;
                       }) &&
           std::any_of(targets.begin(), targets.end(), [](const TargetUse &target) {
               return target.access == TargetUse::Access::Create;
           });
}

bool isSameFile(const QString &a, const QString &b)
{
    const QString name = QFileInfo(a).canonicalFilePath();
    return !name.isEmpty() && name == QFileInfo(b).canonicalFilePath();
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

/// Add the action that turns texts into numbers, and the link to it. Returns its id.
CommandResult<QString> addCast(const ActionRegistry &registry, const QStringList &casts,
                               CorvantaGraph *graph)
{
    const QString id = u"cast"_s;
    const auto action = makeAction(registry, u"cast"_s, {{u"types"_s, casts.join(u'\n')}});
    if (const auto added = addAction(graph, id, *action); !added) {
        return added.fault();
    }
    graph->links.append(CorvantaGraph::Link{{QString::fromLatin1(kInputId), 0}, {id, 0}});
    return id;
}

/// Find the kinds of the columns for the writer, and make the reader give numbers. Returns the
/// parameter of the action `cast` that must follow the reader, if any.
CommandResult<QStringList> prepareTypes(const ColumnTypes &types, const QString &fileName,
                                        ActionParameters *reader, ActionParameters *writer)
{
    if (!writer->needsColumnKinds()) {
        return QStringList();
    }
    const auto kinds = columnKindsOf(types, fileName, reader, ActionParameters::KindExtent::All);
    if (!kinds) {
        return kinds.fault();
    }
    writer->setColumnKinds(*kinds);
    return castsFor(*kinds, reader);
}

} // namespace

CommandOptions inputOptions()
{
    return {{u"--reader"_s, u"--table"_s, u"--sheet"_s, u"--types"_s}, {}};
}

CommandResult<QString> addInput(const CommandLine &line, const QString &fileName,
                                const ActionRegistry &registry, CorvantaGraph *graph,
                                ReadExtent extent, ActionParameters *writer, InputFacts *facts)
{
    const auto types = columnTypesOf(line);
    if (!types) {
        return types.fault();
    }
    const auto table = tableOf(line);
    if (!table) {
        return table.fault();
    }
    const auto action = makeFileAction(registry, FileFormat::Read, fileName,
                                       line.values.value(u"--reader"_s), extent);
    if (!action) {
        return action.fault();
    }
    // Not null: makeFileAction() chooses among actions that have parameters.
    auto *const parameters = dynamic_cast<ActionParameters *>(action->get());
    // Messages about the file look as if the running action had logged them.
    const LogScope scope({nullptr, QString::fromLatin1(kInputId)});
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
        if (auto prepared = prepareSheets(line, fileName, tables, writer); !prepared) {
            return prepared.fault();
        }
    }
    QStringList casts;
    if (writer != nullptr) {
        auto prepared = prepareTypes(*types, fileName, parameters, writer);
        if (!prepared) {
            return prepared.fault();
        }
        casts = *std::move(prepared);
    }
    if (writer != nullptr && writer->needsColumnLabels()) {
        writer->setColumnLabels(parameters->columnNotes());
    }
    if (facts != nullptr) {
        auto kinds = columnKindsOf(*types, fileName, parameters, facts->extent);
        if (!kinds) {
            return kinds.fault();
        }
        facts->kinds = *std::move(kinds);
        facts->notes = parameters->columnNotes();
    }
    if (const auto added = addAction(graph, QString::fromLatin1(kInputId), **action); !added) {
        return added.fault();
    }
    return casts.isEmpty() ? QString::fromLatin1(kInputId) : addCast(registry, casts, graph);
}
