// The reader of the input file: its action, its table and the parameters that the file determines.
#include "input_graph.h"

#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "file_types.h"
#include "visible_text.h"

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

/// Index of the sheet of --sheet, a name or a number from 1; nothing without that option.
CommandResult<std::optional<int>> sheetOf(const CommandLine &line, const QString &fileName,
                                          ActionParameters *parameters)
{
    if (!line.values.contains(u"--sheet"_s)) {
        return std::optional<int>();
    }
    const QString wanted = line.value(u"--sheet"_s, QString());
    const QVector<InputTable> tables = parameters->inputTables();
    if (tables.isEmpty() || tables[0].rows != InputTable::kRowsNotKnown) {
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
        QStringList names;
        for (const InputTable &table : tables.first(std::min(tables.size(), kListedTables))) {
            names << u"'%1'"_s.arg(visibleText(table.path));
        }
        return badUsage(u"--sheet: '%1' has no sheet '%2'; its sheets are %3"_s.arg(
            fileName, wanted, names.join(u", "_s)));
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
    return u"\n%1 %2: %3 rows x %4 columns: %5 (%6)"_s.arg(
        table.isChosen ? u"*"_s : u" "_s, QString::number(number).rightJustified(3),
        QString::number(table.rows), QString::number(table.columns),
        visibleText(table.beginning.left(kBeginningChars) + cut), visibleText(table.path));
}

/// Logs the list of tables, from which the user can choose another one.
void logTables(const QVector<InputTable> &tables)
{
    if (tables.size() < 2) {
        return;
    }
    const bool areSheets = tables[0].rows == InputTable::kRowsNotKnown;
    const bool isOneChosen = std::any_of(tables.begin(), tables.end(),
                                         [](const InputTable &table) { return table.isChosen; });
    QString text =
        areSheets && !isOneChosen
            ? u"The file contains %1 sheets (--sheet NAME or NUMBER reads one):"_s
        : areSheets
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

} // namespace

CommandOptions inputOptions()
{
    return {{u"--reader"_s, u"--table"_s, u"--sheet"_s}, {}};
}

CommandResult<void> addInput(const CommandLine &line, const QString &fileName,
                             const ActionRegistry &registry, CorvantaGraph *graph,
                             ReadExtent extent, ActionParameters *writer,
                             QVector<ColumnNotes> *notes)
{
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
    if (writer != nullptr && writer->needsDateColumns()) {
        writer->setDateColumns(parameters->dateColumns());
    }
    if (notes != nullptr) {
        *notes = parameters->columnNotes();
    }
    return addAction(graph, QString::fromLatin1(kInputId), **action);
}
