// The reader of the input file: its action, its table and the parameters that the file determines.
#include "input_graph.h"

#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "file_types.h"
#include "visible_text.h"

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

/// One line of the list of tables; `number` is the one that --table takes.
QString describe(const InputTable &table, qsizetype number)
{
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
    QString text =
        u"The file contains %1 tables; the marked one is read (--table NUMBER reads another):"_s
            .arg(tables.size());
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
    return {{u"--reader"_s, u"--table"_s}, {}};
}

CommandResult<void> addInput(const CommandLine &line, const QString &fileName,
                             const ActionRegistry &registry, CorvantaGraph *graph)
{
    const auto table = tableOf(line);
    if (!table) {
        return table.fault();
    }
    const auto action =
        makeFileAction(registry, FileFormat::Read, fileName, line.values.value(u"--reader"_s));
    if (!action) {
        return action.fault();
    }
    // Not null: makeFileAction() chooses among actions that have parameters.
    auto *const parameters = dynamic_cast<ActionParameters *>(action->get());
    // Messages about the file look as if the running action had logged them.
    const LogScope scope({nullptr, QString::fromLatin1(kInputId)});
    constexpr int kMostLikely = -1;
    if (!parameters->fillFromInput(table->value_or(kMostLikely))) {
        return Fault{kFailed};
    }
    const QVector<InputTable> tables = parameters->inputTables();
    if (table->has_value() && tables.isEmpty()) {
        return badUsage(u"--table: '%1' does not contain several tables"_s.arg(fileName));
    }
    logTables(tables);
    return addAction(graph, QString::fromLatin1(kInputId), **action);
}
