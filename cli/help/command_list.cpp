// The commands and their texts.
//
// The texts hold no line breaks but those between paragraphs, because each form of the help has its
// own width. An example has no name of the program: the manual pages print it in bold. Words in
// capitals in the usage choose what the completions offer (GRAPH, INPUT, OUTPUT, FILE, TYPE).
#include "cli/help/command_list.h"

#include "base/nearest_name.h"
#include "cli/commands.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

constexpr char kFileStatus[] =
    "0 done (warnings allowed), 1 failed, 2 bad usage or an unsupported extension; 129, 130, 131 "
    "or 143 ended by SIGHUP, SIGINT (Ctrl-C), SIGQUIT or SIGTERM.";

constexpr Command kCommands[] = {
    {"run", runOptions, runCommand, "run a graph", "run GRAPH [options]",
     "Runs the graph file GRAPH, or the graph from standard input if GRAPH is -.\n\n"
     "With --inputs it runs once for each of many files. A journal keeps what is done, so that the "
     "same command continues after a failure or a kill. The exit status is that of the worst run.",
     "run orders.graph --set year=2026 --tap table:0=seen.csv\n"
     "run orders.graph --inputs 'in/*.json' --shard 2/10",
     "0 done (warnings allowed), 1 failed, 2 bad usage or an invalid graph; 129, 130, 131 or 143 "
     "ended by SIGHUP, SIGINT (Ctrl-C), SIGQUIT or SIGTERM. These signals stop the run cleanly; a "
     "second Ctrl-C ends the program immediately.",
     false},
    {"batch", batchOptions, batchCommand, "run a graph for many inputs, on a scheduler",
     "batch GRAPH --inputs LIST [options]\nbatch --status FOLDER [--json]",
     "Runs GRAPH once for each file of LIST, in tasks of several inputs: local processes, a Slurm "
     "job array, or GNU parallel. Waits and prints the inputs that failed as a table: input, "
     "cause, line of the log, command that repeats it.\n\n"
     "The same command again runs what is missing: inputs that failed, have changed, or are new. "
     "A changed graph runs again for all.",
     "batch orders.graph --inputs 'in/*.json' --out-dir out\n"
     "batch orders.graph --inputs list.txt --backend slurm --per-task 50 --retries 2 --max-running "
     "100 --detach\n"
     "batch --status out/orders.batch",
     "the worst one of all runs: 0 done, 1 failed, 2 bad usage or an invalid graph; 129, 130, 131 "
     "or 143 ended by SIGHUP, SIGINT (Ctrl-C), SIGQUIT or SIGTERM, which end the tasks, too.",
     false},
    {"check", checkOptions, checkCommand, "validate a graph without running it",
     "check GRAPH [options]\ncheck --template FILE [--json]",
     "Reports everything that makes GRAPH invalid; unknown names and wrong values of parameters, "
     "which a run ignores; and missing files, folders and values. Warnings name what is probably "
     "not intended.",
     "check orders.graph --set year=2026\ncheck --template letter.docx",
     "0 if there are at most warnings, else 2.", false},
    {"convert", convertOptions, convertCommand, "convert files, choose and sort rows and columns",
     "convert INPUT... OUTPUT [options]",
     "Reads INPUT and writes OUTPUT. The file extensions choose the formats; .gz and .Z inputs and "
     ".gz outputs are compressed.",
     "convert orders.csv orders.xlsx\n"
     "convert orders.csv dear.csv --where 'price > 10' --sort -price --limit 100\n"
     "convert orders.csv - --to jsonl --select order,price --rename price=amount\n"
     "convert '2026-*.csv' year.parquet --add-file-name\n"
     "convert dump.json tables/",
     kFileStatus, true},
    {"merge", mergeOptions, mergeCommand, "join files of one format",
     "merge OUTPUT INPUT... [--union] [options]",
     "Joins the files INPUT, in this order, to the file OUTPUT of the same format: Parquet files "
     "by their row groups, which are not decoded, texts with separators (csv, tsv) with one "
     "header, and JSON by its lines (jsonl) or arrays (json). The columns must be equal, or "
     "--union joins them by name. If OUTPUT is a workbook (xlsx), it gets a sheet for each INPUT, "
     "of any format.",
     "merge year.parquet '2026-*.parquet'\n"
     "merge all.csv.gz north.csv south.csv --union\n"
     "merge --parts-from list.txt all.jsonl\n"
     "merge months.xlsx january.csv february.csv",
     kFileStatus, false},
    {"head", headOptions, headCommand, "print the first rows of a file as a table",
     "head INPUT [-n ROWS] [--json] [--all] [options]",
     "Prints the first ROWS rows as a table. A missing cell is blank, an empty text is \"\". On a "
     "terminal, long cells are cut, and columns that do not fit are named at the end.\n\n"
     "With --json the types of the values are those of the first rows, with --all those of all "
     "rows.",
     "head orders.csv -n 3\nhead book.xlsx --sheet Orders --json", kFileStatus, true},
    {"schema", schemaOptions, schemaCommand, "print the columns of a file",
     "schema INPUT [--json] [-v] [--all] [options]",
     "Prints one line per column: its name, a tab and its type, which is K (integer), F (decimal "
     "number) or U (text). The types of files of texts are those of the values in the first rows; "
     "--all examines all rows. The label, the format and the value labels of a variable follow, "
     "where the file has them. -v prints more than ten value labels, and which value made a column "
     "a text.",
     "schema orders.parquet\nschema survey.sav --json", kFileStatus, true},
    {"stats", statsOptions, statsCommand, "print counts and ranges of the columns of a file",
     "stats INPUT [--json] [options]",
     "Reads the whole file and prints one line per column: its type, the number of rows, of "
     "missing cells and of distinct values, the smallest and the largest value, the mean of "
     "numbers, and the number of characters of the longest text. Texts are compared by their "
     "characters' codes. \"over N\" is a number of distinct values that is not counted further.",
     "stats orders.csv", kFileStatus, true},
    {"actions", actionsOptions, actionsCommand, "list the actions", "actions [--json]",
     "Lists the actions of all plug-ins.", "", "", false},
    {"describe", describeOptions, describeCommand, "print an action's pins and parameters",
     "describe TYPE [--json]",
     "Prints the pins of the action TYPE, its parameters with type, default and meaning, and "
     "examples. \"corvanta actions\" lists the types.",
     "describe writeExcel", "", false},
    {"plugins", pluginsOptions, pluginsCommand, "list the plug-in modules that were found",
     "plugins [--json]",
     "Lists the plug-in modules with their actions, those that were refused with the reason, and "
     "the folders that were searched, in order: those of --plugin-path, of the environment "
     "variable CORVANTA_PLUGIN_PATH (separated by colons), of the user, of the installation and of "
     "the program.",
     "", "", false},
};

constexpr OptionInfo kCommonOptions[] = {
    {kPluginPath, "DIR", "search DIR for plug-in modules first (repeatable)"},
};

} // namespace

std::span<const Command> allCommands()
{
    return kCommands;
}

CommandOptions optionsOf(const Command &command)
{
    CommandOptions options = command.options();
    options.groups << OptionGroup{"Modules", kCommonOptions};
    return options;
}

const Command *findCommand(const QString &name)
{
    const auto *const found = std::ranges::find_if(
        kCommands, [&](const Command &command) { return name == QLatin1StringView(command.name); });
    return found == std::end(kCommands) ? nullptr : found;
}

corvanta::Fault<ExitStatus> unknownCommand(const QString &name)
{
    QStringList known{u"help"_s};
    std::ranges::transform(kCommands, std::back_inserter(known),
                           [](const Command &command) { return QLatin1StringView(command.name); });
    return badUsage(u"unknown command '%1'%2"_s.arg(name, corvanta::nearestNameHint(name, known)));
}
