// The corvanta program: chooses the command and prints help.
#include "base/nearest_name.h"
#include "base/platform/terminal.h"
#include "base/system_error.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "file_types.h"
#include "log_sinks.h"
#include "stop_signals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr QLatin1StringView kPluginPath("--plugin-path");

/// One command. In its help text {reads} and {writes} are replaced by the known extensions.
struct Command
{
    const char *name;
    CommandOptions (*options)();
    CommandResult<void> (*run)(const CommandLine &line);
    const char *summary;
    const char *help;
};

/// In the order in which help lists them.
constexpr Command kCommands[] = {
    {"run", runOptions, runCommand, "run a graph",
     "corvanta run GRAPH [options]\n\n"
     "Runs the graph file GRAPH, or the graph from standard input if GRAPH is -.\n\n"
     "  --set NAME=VALUE        set a graph variable (repeatable); overrides the graph's value\n"
     "  --out-dir DIR           folder for relative output names (default: the graph's folder); "
     "created if it is missing\n"
     "  --tap ID:PIN=FILE.csv   also write the rows of an output pin as CSV (repeatable)\n"
     "  --log-format text|json  write messages as text, or as one JSON object per line\n"
     "  --progress auto|always|never|lines\n"
     "                          show a progress line, and a summary at the end; auto: on a "
     "terminal only; lines: for\n"
     "                          programs, with --log-format json, an object with the state of all "
     "actions every 0.2 s\n"
     "  --name FILE             for -: the name for messages; relative names are relative to its "
     "folder\n"
     "  --system-encoding NAME  8-bit encoding of files in the \"system\" encoding\n"
     "  --compression LEVEL     compression of packages: isal-2 (fast, the default), isal-3, "
     "zlib-1 "
     "to zlib-9 (smallest)\n"
     "  -q, --quiet             show only errors and warnings, with their reasons\n"
     "  -v                      also show how many rows each action took and sent\n"
     "  --log-file FILE         write all messages to FILE as well\n"
     "  --color auto|always|never\n"
     "                          colors of errors and warnings; auto: on a terminal, unless "
     "NO_COLOR "
     "is set\n"
     "  --strict                unknown names and wrong values in GRAPH are errors, not "
     "warnings\n\n"
     "Exit status: 0 done (warnings allowed), 1 failed, 2 bad usage or an invalid graph; 129, 130, "
     "131 or 143 ended by\n"
     "SIGHUP, SIGINT (Ctrl-C), SIGQUIT or SIGTERM. These signals stop the run cleanly; a second "
     "Ctrl-C ends the program immediately.\n"},
    {"check", checkOptions, checkCommand, "validate a graph without running it",
     "corvanta check GRAPH [options]\n"
     "corvanta check --template FILE [--json]\n\n"
     "Reports everything that makes GRAPH invalid; unknown names and wrong values of parameters, "
     "which a run ignores; and\n"
     "missing files, folders and values. Warnings name what is probably not intended.\n\n"
     "  --set NAME=VALUE, --out-dir DIR, --name FILE, --log-format text|json\n"
     "                          as for \"corvanta run\"\n"
     "  --list-outputs          print the files that a run would write, one per line\n"
     "  --template              list the markers and chart tags of the Office template FILE, and "
     "those that a run does not find;\n"
     "                          '>NAME' is a template that the program includes "
     "(\"corvanta describe writeReport\" lists them)\n"
     "  --json                  print the problems, the files or the markers as a JSON array\n\n"
     "Exit status: 0 if there are at most warnings, else 2.\n"},
    {"convert", convertOptions, convertCommand, "convert files, choose and sort rows and columns",
     "corvanta convert INPUT... OUTPUT [options]\n\n"
     "Reads INPUT and writes OUTPUT. The file extensions choose the formats; .gz and .Z inputs and "
     ".gz outputs are compressed.\n\n"
     "  corvanta convert orders.csv orders.xlsx\n"
     "  corvanta convert orders.csv dear.csv --where 'price > 10' --sort -price --limit 100\n"
     "  corvanta convert orders.csv - --to jsonl --select order,price --rename price=amount\n"
     "  corvanta convert '2026-*.csv' year.parquet --add-file-name\n"
     "  corvanta convert dump.json tables/\n\n"
     "  reads                   {reads}\n"
     "  writes                  {writes}\n\n"
     "Inputs and outputs\n"
     "  -                       standard input or output; --from or --to then names the format\n"
     "  --from FORMAT, --to FORMAT\n"
     "                          the format in place of the extension (csv, jsonl, xlsx, ...)\n"
     "  'PATTERN', several INPUTs\n"
     "                          are joined; all must have the same columns\n"
     "  --union                 join columns by name; a missing one is empty\n"
     "  --add-file-name         add the column _FileNames\n"
     "  ARCHIVE.zip@MEMBER      a file in an archive; without MEMBER the only one that can be "
     "read\n"
     "  FOLDER/                 as OUTPUT: one CSV file per table of a JSON or XML file, with the "
     "columns that join it to\n"
     "                          its parent, or one per sheet of a workbook\n"
     "  --encoding NAME         encoding of the input, such as windows-1252\n"
     "  --separator CHAR|auto   between the fields of the input\n"
     "  --types auto|text|K,F,U types of the columns of a text file, where the output has types: "
     "from "
     "all values (auto), texts,\n"
     "                          or one letter per column: K integer, F decimal number, U text\n"
     "  --table NUMBER|NAME     read another table of JSON, XML or HTML than the largest one\n"
     "  --sheet NAME|NUMBER     read another sheet of a workbook than the first one\n\n"
     "Rows and columns, in this order\n"
     "  --where EXPRESSION      keep the rows for which it is true: columns, numbers and 'texts' "
     "with = != < <= > >=,\n"
     "                          is null, is not null, and, or, not and parentheses; \"a name\" "
     "with "
     "blanks in quotes\n"
     "  --sort A,-B             sort on columns, -B in descending order; missing values come last\n"
     "  --rows FROM:TO          keep these rows, from 1\n"
     "  --limit N               keep the first N rows\n"
     "  --select A,B            keep these columns, in this order\n"
     "  --rename OLD=NEW        rename a column (repeatable)\n\n"
     "How to write\n"
     "  --no-clobber            fail if OUTPUT exists\n"
     "  --keep-partial          after an error or an interrupt, keep the rows before it (the "
     "status "
     "still tells)\n"
     "  --reader NAME=VALUE, --writer NAME=VALUE\n"
     "                          set a parameter of the reader or the writer (repeatable, also for "
     "each text of a list;\n"
     "                          \"corvanta describe\" lists them)\n"
     "  --print-graph           print the graph instead of running it\n"
     "  --log-format, --log-file, --progress, --color, --system-encoding, -q, -v\n"
     "                          as for \"corvanta run\"\n\n"
     "Exit status: 0 done (warnings allowed), 1 failed, 2 bad usage or an unsupported "
     "extension;\n"
     "129, 130, 131 or 143 as for \"corvanta run\".\n"},
    {"head", headOptions, headCommand, "print the first rows of a file as a table",
     "corvanta head INPUT [-n ROWS] [--json] [--all] [options]\n\n"
     "Prints the first ROWS rows (default 10) as a table. A missing cell is blank, an empty text "
     "is \"\". On a terminal,\n"
     "long cells are cut, and columns that do not fit are named at the end. --json prints an array "
     "with an object per row;\n"
     "the types of the values are those of the first rows, with --all those of all rows.\n\n"
     "Inputs, other options and exit statuses are those of \"corvanta convert\".\n"},
    {"schema", schemaOptions, schemaCommand, "print the columns of a file",
     "corvanta schema INPUT [--json] [-v] [--all] [options]\n\n"
     "Prints one line per column: its name, a tab and its type, which is K (integer), F (decimal "
     "number) or U (text).\n"
     "The types of files of texts are those of the values in the first rows; --all examines all "
     "rows. The label, the\n"
     "format and the value labels of a variable follow, where the file has them. -v prints more "
     "than ten value labels,\n"
     "and which value made a column a text. --json prints an array with an object per column.\n\n"
     "Inputs, options and exit statuses are those of \"corvanta convert\".\n"},
    {"stats", statsOptions, statsCommand, "print counts and ranges of the columns of a file",
     "corvanta stats INPUT [--json] [options]\n\n"
     "Reads the whole file and prints one line per column: its type, the number of rows, of "
     "missing "
     "cells and of distinct\n"
     "values, the smallest and the largest value, the mean of numbers, and the number of "
     "characters "
     "of the longest text.\n"
     "Texts are compared by their characters' codes. \"over N\" is a number of distinct values "
     "that "
     "is not counted further.\n"
     "--json prints an array with an object per column.\n\n"
     "Inputs, options and exit statuses are those of \"corvanta convert\".\n"},
    {"actions", actionsOptions, actionsCommand, "list the actions",
     "corvanta actions [--json]\n\nLists the actions of all plug-ins. --json prints all their "
     "properties.\n"},
    {"describe", describeOptions, describeCommand, "print an action's pins and parameters",
     "corvanta describe TYPE [--json]\n\nPrints the pins of the action TYPE and its parameters "
     "with type, default and meaning.\n\"corvanta actions\" lists the types.\n"},
    {"plugins", pluginsOptions, pluginsCommand, "list the plug-in modules that were found",
     "corvanta plugins [--json]\n\nLists the plug-in modules with their actions, those that were "
     "refused with the reason, and the\nfolders that were searched, in order: those of "
     "--plugin-path, of the environment variable\nCORVANTA_PLUGIN_PATH (separated by colons), of "
     "the user, of the installation and of the program.\n--json prints an array with an object per "
     "module.\n"},
};

/// The fault of an unknown command.
Fault<ExitStatus> unknownCommand(const QString &name)
{
    QStringList known{u"help"_s};
    for (const Command &command : kCommands) {
        known << QString::fromLatin1(command.name);
    }
    return badUsage(u"unknown command '%1'%2"_s.arg(name, closeNameHint(name, known)));
}

const Command *find(const QString &name)
{
    for (const Command &command : kCommands) {
        if (name == QLatin1StringView(command.name)) {
            return &command;
        }
    }
    return nullptr;
}

/// The help of a command with the extensions that the actions handle.
QString helpText(const Command &command)
{
    QString text = QString::fromUtf8(command.help);
    // Loading the plug-ins takes time, which other help texts do not need.
    if (text.contains("{reads}"_L1)) {
        ActionRegistry registry;
        registry.loadAll();
        text.replace("{reads}"_L1, knownExtensions(registry, FileFormat::Read));
        text.replace("{writes}"_L1, knownExtensions(registry, FileFormat::Write));
    }
    return text;
}

void printCommands()
{
    std::puts("corvanta runs data-flow graphs that read and write files.\n\nCommands");
    for (const Command &command : kCommands) {
        std::printf("  %-10s %s\n", command.name, command.summary);
    }
    std::puts("  help       this text, or \"corvanta help COMMAND\"\n\n\"corvanta --version\" "
              "prints the version. All commands accept --plugin-path DIR (repeatable),\na folder "
              "with plug-in modules.");
}

bool isHelp(const QString &word)
{
    return word == "help"_L1 || word == "--help"_L1 || word == "-h"_L1;
}

/// Prints the list of commands, or the help of the command that is named.
CommandResult<void> help(const QStringList &words)
{
    if (words.isEmpty() || isHelp(words[0])) {
        printCommands();
        return {};
    }
    const Command *const command = find(words[0]);
    if (command == nullptr) {
        return unknownCommand(words[0]);
    }
    std::fputs(helpText(*command).toUtf8().constData(), stdout);
    return {};
}

/// Runs a command with its words, without its name. All commands accept folders of plug-ins.
CommandResult<void> run(const Command &command, const QStringList &words)
{
    CommandOptions options = command.options();
    options.withValue << kPluginPath;
    const auto line = CommandLine::parse(words, options);
    if (!line) {
        return line.fault();
    }
    for (const QString &path : line->values.value(kPluginPath)) {
        for (const QString &folder : path.split(QDir::listSeparator(), Qt::SkipEmptyParts)) {
            if (!QFileInfo(folder).isDir()) {
                return badUsage(u"there is no folder '%1' (%2)"_s.arg(folder, kPluginPath));
            }
            ActionRegistry::addSearchFolder(folder);
        }
    }
    return command.run(*line);
}

/// Carries out the words of the command line. Sets `name` to the command, for messages.
CommandResult<void> execute(const QStringList &words, QString *name)
{
    const QString first = words.value(0);
    if (first == "--version"_L1) {
        std::puts("corvanta " CORVANTA_VERSION);
        return {};
    }
    if (isHelp(first)) {
        return help(words.mid(1));
    }
    if (words.isEmpty()) {
        return badUsage(u"a command is required"_s);
    }
    const Command *const command = find(first);
    if (command == nullptr) {
        return unknownCommand(first);
    }
    *name = first;
    // Also after other words, and even if those are wrong.
    const bool asksForHelp = words.contains(u"--help"_s) || words.contains(u"-h"_s);
    return asksForHelp ? help({first}) : run(*command, words.mid(1));
}

/// Writes what is left in the buffer of standard output. The fault is kFailed: a program that reads
/// the output must not take a part of it for the whole.
CommandResult<void> flushOutput()
{
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
        return {};
    }
    // An earlier failure has left no reason.
    const SystemError error = SystemError::ofLastCall();
    const QString reason = error ? ": "_L1 + error.text() : QString();
    return Fault{kFailed, u"cannot write to standard output%1"_s.arg(reason)};
}

/// Runs the program; what it throws is reported by main().
ExitStatus runProgram(int argc, char **argv)
{
    platform::occupyStandardStreams();
    catchStopSignals();
    // Without this Qt uses a library that ends the program when there is no memory.
    qputenv("QT_NO_GLIB", "1");
    const QCoreApplication application(argc, argv);
    // The application object takes the locale from the environment; numbers in files must not
    // follow it.
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): no other thread runs yet
    const QStringList words = QCoreApplication::arguments().mid(1);
    QString command;
    const CommandResult<void> done = execute(words, &command);
    const ExitStatus status = reportResult(command, words, done);
    const auto flushed = flushOutput();
    return status == kDone && !flushed ? reportResult(command, words, flushed) : status;
}

} // namespace

int main(int argc, char **argv)
{
    reportUncaughtExceptions();
    try {
        return runProgram(argc, argv);
    } catch (...) {
        reportException();
        // Without the destructors of libraries, which may hang after an allocation has failed.
        std::fflush(stdout);
        std::_Exit(kFailed);
    }
}
