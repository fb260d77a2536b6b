// cli/command_line.h
// Options and arguments of a command.
#pragma once
#include <QMap>
#include <QStringList>

/// Exit statuses, fixed for scripts.
enum ExitStatus { kDone = 0, kFailed = 1, kUsage = 2, kInterrupted = 130 };

/// What a command accepts: options with a value and options without, by name with the dashes.
struct CommandOptions
{
    QStringList withValue;
    QStringList flags;
};

/// The command line of one command, taken apart. "--name=value" and "--name value" are the same;
/// "--" ends the options.
struct CommandLine
{
    QStringList arguments;
    QMap<QString, QStringList> values; ///< in the order given
    QStringList flags;

    QString value(const QString &name, const QString &defaultValue) const;
    bool has(const QString &flag) const { return flags.contains(flag); }

    /// False, and `error` filled, for an unknown option or a missing value.
    static bool parse(const QStringList &words, const CommandOptions &options, CommandLine *line,
                      QString *error);
};

/// Print "corvanta COMMAND: text" and how to get help; answers kUsage.
int usageError(const QString &command, const QString &text);

/// NAME=VALUE taken apart; false without a "=" or with an empty name.
bool splitAssignment(const QString &text, QString *name, QString *value);
