// cli/main.cpp
// The corvanta command: picks the command and prints help.
#include "command_line.h"
#include "commands.h"
#include "file_types.h"

#include <QCoreApplication>

#include <clocale>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct Command
{
    const char *name;
    int (*run)(const QStringList &words);
    const char *summary;
    const char *help;
};

constexpr Command kCommands[] = {
    {"run", runCommand, "run a graph",
     "corvanta run GRAPH [options]\n\n"
     "Runs the graph file GRAPH.\n\n"
     "  --set NAME=VALUE        set a graph variable (repeatable); wins over the graph's own\n"
     "  --out-dir DIR           folder for relative output names (default: the graph's folder)\n"
     "  --tap ID:PIN=FILE.csv   also write the rows of an output pin as CSV (repeatable)\n"
     "  --log-format text|json  messages on standard error for people, or one JSON object a line\n"
     "  --progress auto|always|never\n"
     "                          progress line; auto: on a terminal only\n"
     "  --system-encoding NAME  8-bit encoding that files in the \"system\" encoding have\n"
     "  --compression LEVEL     of packages: isal-2 (fast, the default), isal-3, zlib-1 to zlib-9 "
     "(smallest)\n"
     "  --quiet                 errors and warnings only\n\n"
     "Exit status: 0 done (warnings allowed), 1 failed, 2 bad usage or an invalid graph, 130 "
     "interrupted.\n"
     "Ctrl-C stops the run cleanly; a second one ends the program at once.\n"},
    {"check", checkCommand, "validate a graph without running it",
     "corvanta check GRAPH [--set NAME=VALUE]... [--log-format text|json]\n\n"
     "Reports everything that would keep GRAPH from running: exit status 0 when there is nothing, "
     "else 2.\n"},
    {"convert", convertCommand, "convert a file into another format",
     "corvanta convert INPUT OUTPUT [options]\n\n"
     "Reads INPUT and writes OUTPUT; the file extensions say how. Packed inputs (.gz, .Z) are read "
     "as what they hold.\n\n"
     "  reads                   {reads}\n"
     "  writes                  {writes}\n\n"
     "For JSON, XML and HTML the levels are derived from the beginning of the file. Where it holds "
     "several tables the\n"
     "largest is read, and the others are listed.\n\n"
     "  --table NUMBER          read another of the listed tables\n"
     "  --reader NAME=VALUE     set a parameter of the reader (repeatable; \"corvanta describe\" "
     "lists them). The types of\n"
     "                          a text file, for example: --reader types=K,F,U; else all its "
     "columns are texts\n"
     "  --writer NAME=VALUE     the same for the writer\n"
     "  --print-graph           print the graph that does it instead of running it\n"
     "  --log-format, --progress, --system-encoding, --quiet\n"
     "                          as for \"corvanta run\"\n\n"
     "Exit status: 0 done (warnings allowed), 1 failed, 2 bad usage or an extension that nobody "
     "reads or writes,\n"
     "130 interrupted.\n"},
    {"head", headCommand, "print the first rows of a file as a table",
     "corvanta head INPUT [-n ROWS] [options]\n\n"
     "Prints the first ROWS rows (default 10) as a table and reads no further. A missing cell is "
     "blank, an empty text \"\".\n"
     "On a terminal long cells are cut, and columns that do not fit are named at the end.\n\n"
     "Inputs, other options and exit statuses are those of \"corvanta convert\".\n"},
    {"schema", schemaCommand, "print the columns of a file",
     "corvanta schema INPUT [options]\n\n"
     "Prints a line per column: its name, a tab and its type: K (whole number), F (decimal number) "
     "or U (text).\n\n"
     "Inputs, options and exit statuses are those of \"corvanta convert\".\n"},
    {"actions", actionsCommand, "list the actions",
     "corvanta actions [--json]\n\nLists the actions of all plug-ins; --json with all they say of "
     "themselves.\n"},
    {"describe", describeCommand, "print an action's pins and parameters",
     "corvanta describe TYPE [--json]\n\nPrints the pins of the action TYPE and its parameters "
     "with type, default and meaning.\n"},
};

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
    if (text.contains("{reads}"_L1)) {
        corvanta::ActionRegistry registry;
        registry.loadAll();
        text.replace("{reads}"_L1, knownExtensions(registry, FileFormat::Read));
        text.replace("{writes}"_L1, knownExtensions(registry, FileFormat::Write));
    }
    return text;
}

int help(const QStringList &words)
{
    if (!words.isEmpty()) {
        const Command *const command = find(words[0]);
        if (command == nullptr) {
            return usageError(QString(), u"there is no command '%1'"_s.arg(words[0]));
        }
        std::fputs(helpText(*command).toUtf8().constData(), stdout);
        return kDone;
    }
    std::puts("corvanta runs data-flow graphs that read and write files.\n\nCommands");
    for (const Command &command : kCommands) {
        std::printf("  %-10s %s\n", command.name, command.summary);
    }
    std::puts("  help       this text, or \"corvanta help COMMAND\"\n\n\"corvanta --version\" "
              "prints the version.");
    return kDone;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    // The application object takes the locale from the environment; numbers in files must not
    // follow it.
    std::setlocale(LC_NUMERIC, "C");
    const QStringList words = QCoreApplication::arguments().mid(1);
    const QString first = words.value(0);
    if (first == "--version"_L1) {
        std::puts("corvanta " CORVANTA_VERSION);
        return kDone;
    }
    if (first == "help"_L1 || first == "--help"_L1 || first == "-h"_L1) {
        return help(words.mid(1));
    }
    if (words.isEmpty()) {
        return usageError(QString(), u"a command is needed"_s);
    }
    const Command *const command = find(first);
    if (command == nullptr) {
        return usageError(QString(), u"there is no command '%1'"_s.arg(first));
    }
    if (words.contains(u"--help"_s) || words.contains(u"-h"_s)) {
        return help({first});
    }
    return command->run(words.mid(1));
}
