// The words of a command: options and arguments, and how a command ends.
#pragma once
#include "base/result.h"

#include <QMap>
#include <QStringList>
#include <QVector>

#include <span>

/// Exit statuses, fixed for scripts.
enum ExitStatus : int {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kEndedBySignal = 128 ///< plus the number of the signal, 130 for Ctrl-C for example
};

/// A value, or the exit status with which the command ends. The detail of the fault is the text of
/// a usage error; it is empty if the reason has already been reported.
template <class T> using CommandResult = corvanta::Result<T, ExitStatus>;

/// The fault of a command line that cannot be carried out; `text` says why.
corvanta::Fault<ExitStatus> badUsage(const QString &text);

/// One option, as it is parsed, and as the help, the manual pages and the completions describe it.
struct OptionInfo
{
    const char *names;   ///< with their dashes: "-q, --quiet"; else a form of argument: "FOLDER/"
    const char *value;   ///< what the value is, "DIR" or "auto|never" for example; empty: a flag
    const char *meaning; ///< what it does, without a full stop
};

/// Options under one title of the help. The table is a constant.
struct OptionGroup
{
    const char *title; ///< empty: none
    std::span<const OptionInfo> options;
};

/// What a command accepts.
struct CommandOptions
{
    QVector<OptionGroup> groups;
    qsizetype arguments = 0;
    QString wrongArguments = {};   ///< usage error for any other number of arguments
    bool hasMoreArguments = false; ///< more than `arguments` are accepted

    /// The names of all options that take a value, and of those that take none.
    QStringList withValue() const;
    QStringList flags() const;
};

/// The parsed words of one command. "--name=value" equals "--name value"; "--" ends the options.
struct CommandLine
{
    QStringList arguments;             ///< as many as the command accepts
    QMap<QString, QStringList> values; ///< by option, in the given order
    QStringList flags;

    /// The last value of an option.
    QString value(const QString &name, const QString &defaultValue) const;
    /// True if the flag was given.
    bool has(const QString &flag) const { return flags.contains(flag); }

    /// Parse the words after the name of the command. The fault is a usage error: an unknown
    /// option, an option without its value, or a wrong number of arguments.
    static CommandResult<CommandLine> parse(const QStringList &words,
                                            const CommandOptions &options);

private:
    CommandResult<qsizetype> addOption(const QStringList &words, qsizetype i,
                                       const CommandOptions &options);
};

/// A NAME=VALUE word; the name is not empty.
struct Assignment
{
    QString name;
    QString value;

    /// Split at the first "=", so that a value may contain more of them. The fault is a usage
    /// error.
    static CommandResult<Assignment> parse(const QString &text);
};
