// The corvanta program: chooses the command and runs it.
#include "base/platform/terminal.h"
#include "cli/print/output.h"
#include "command_line.h"
#include "corvanta/action_registry.h"
#include "failure.h"
#include "help/help_command.h"
#include "log_sinks.h"
#include "stop_signals.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <clocale>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Runs a command with its words, without its name.
CommandResult<void> run(const Command &command, const QStringList &words)
{
    const auto line = CommandLine::parse(words, optionsOf(command));
    if (!line) {
        return line.fault();
    }
    const QString option = QString::fromLatin1(kPluginPath);
    for (const QString &path : line->values.value(option)) {
        for (const QString &folder : path.split(QDir::listSeparator(), Qt::SkipEmptyParts)) {
            if (!QFileInfo(folder).isDir()) {
                return badUsage(u"there is no folder '%1' (%2)"_s.arg(folder, option));
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
        printBytes("corvanta " CORVANTA_VERSION "\n");
        return {};
    }
    if (isHelp(first)) {
        return help(words.mid(1));
    }
    if (words.isEmpty()) {
        return badUsage(u"a command is required"_s);
    }
    const Command *const command = findCommand(first);
    if (command == nullptr) {
        return unknownCommand(first);
    }
    *name = first;
    // Also after other words, and even if those are wrong.
    const bool asksForHelp = words.contains(u"--help"_s) || words.contains(u"-h"_s);
    return asksForHelp ? help({first}) : run(*command, words.mid(1));
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
