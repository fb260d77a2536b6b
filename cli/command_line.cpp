#include "command_line.h"

#include <cstdio>

using namespace Qt::StringLiterals;

corvanta::Fault<ExitStatus> badUsage(const QString &text)
{
    return {kUsage, text};
}

ExitStatus reportResult(const QString &command, const CommandResult<void> &result)
{
    if (result) {
        return kDone;
    }
    const QString &text = result.fault().detail;
    if (!text.isEmpty()) {
        const QString suffix = command.isEmpty() ? QString() : u' ' + command;
        std::fprintf(stderr, "corvanta%s: %s\nSee \"corvanta help%s\".\n", qPrintable(suffix),
                     qPrintable(text), qPrintable(suffix));
    }
    return result.fault().code;
}

QString CommandLine::value(const QString &name, const QString &defaultValue) const
{
    const QStringList given = values.value(name);
    return given.isEmpty() ? defaultValue : given.last();
}

CommandResult<CommandLine> CommandLine::parse(const QStringList &words,
                                              const CommandOptions &options)
{
    CommandLine line;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString &word = words[i];
        if (word == "--"_L1) {
            line.arguments += words.mid(i + 1);
            break;
        }
        if (!word.startsWith(u'-') || word == "-"_L1) {
            line.arguments << word;
            continue;
        }
        const qsizetype equals = word.startsWith("--"_L1) ? word.indexOf(u'=') : -1;
        const QString name = equals < 0 ? word : word.left(equals);
        if (options.withValue.contains(name)) {
            if (equals < 0 && i + 1 == words.size()) {
                return badUsage(u"the option '%1' needs a value"_s.arg(name));
            }
            line.values[name] << (equals < 0 ? words[++i] : word.mid(equals + 1));
        } else if (options.flags.contains(name) && equals < 0) {
            line.flags << name;
        } else {
            return badUsage(u"unknown option '%1'"_s.arg(word));
        }
    }
    if (line.arguments.size() != options.arguments) {
        return badUsage(options.wrongArguments);
    }
    return line;
}

CommandResult<Assignment> Assignment::parse(const QString &text)
{
    const qsizetype equals = text.indexOf(u'=');
    if (equals <= 0) {
        return badUsage(u"'%1' is not of the form NAME=VALUE"_s.arg(text));
    }
    return Assignment{text.left(equals), text.mid(equals + 1)};
}
