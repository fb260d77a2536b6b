#include "input_graph.h"

#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "file_types.h"
#include "table_printer.h"

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr qsizetype kListedTables = 50;
constexpr qsizetype kBeginningChars = 60;

/// --table as fillFromInput() takes it; false when it is no number.
bool tableOf(const CommandLine &line, int *table)
{
    *table = -1;
    if (!line.values.contains(u"--table"_s)) {
        return true;
    }
    bool isNumber = false;
    *table = line.value(u"--table"_s, QString()).toInt(&isNumber) - 1;
    return isNumber && *table >= 0;
}

QString describe(const InputTable &table, qsizetype number)
{
    const QString cut = table.beginning.size() > kBeginningChars ? u"..."_s : QString();
    return u"\n%1 %2: %3 rows x %4 columns: %5 (%6)"_s.arg(
        table.isChosen ? u"*"_s : u" "_s, QString::number(number).rightJustified(3),
        QString::number(table.rows), QString::number(table.columns),
        visibleText(table.beginning.left(kBeginningChars) + cut), visibleText(table.path));
}

/// Say which tables there are, so that somebody can choose another.
void tellTables(const QVector<InputTable> &tables)
{
    if (tables.size() < 2) {
        return;
    }
    QString text =
        u"The file holds %1 tables; the marked one is read (--table NUMBER reads another):"_s.arg(
            tables.size());
    for (qsizetype i = 0; i < tables.size(); ++i) {
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

int addInput(const CommandLine &line, const QString &fileName, const ActionRegistry &registry,
             CorvantaGraph *graph, QString *usage)
{
    int table = 0;
    if (!tableOf(line, &table)) {
        *usage = u"--table is the number of a table, from 1"_s;
        return kUsage;
    }
    const std::unique_ptr<ActionItem> action = makeFileAction(
        registry, FileFormat::Read, fileName, line.values.value(u"--reader"_s), usage);
    if (!action) {
        return kUsage;
    }
    auto *const parameters = dynamic_cast<ActionParameters *>(action.get());
    const LogScope scope({nullptr, QString::fromLatin1(kInputId)});
    if (!parameters->fillFromInput(table)) {
        return kFailed;
    }
    const QVector<InputTable> tables = parameters->inputTables();
    if (table >= 0 && tables.isEmpty()) {
        *usage = u"--table: '%1' holds no tables to choose from"_s.arg(fileName);
        return kUsage;
    }
    tellTables(tables);
    return addAction(graph, QString::fromLatin1(kInputId), *action, usage) ? kDone : kUsage;
}
