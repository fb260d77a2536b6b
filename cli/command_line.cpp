#include "command_line.h"

#include <cstdio>

using namespace Qt::StringLiterals;

QString CommandLine::value(const QString &name, const QString &defaultValue) const
{
    const QStringList given = values.value(name);
    return given.isEmpty() ? defaultValue : given.last();
}

bool CommandLine::parse(const QStringList &words, const CommandOptions &options, CommandLine *line,
                        QString *error)
{
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString &word = words[i];
        if (word == "--"_L1) {
            line->arguments += words.mid(i + 1);
            return true;
        }
        if (!word.startsWith(u'-') || word == "-"_L1) {
            line->arguments << word;
            continue;
        }
        const qsizetype equals = word.startsWith("--"_L1) ? word.indexOf(u'=') : -1;
        const QString name = equals < 0 ? word : word.left(equals);
        if (options.withValue.contains(name)) {
            if (equals < 0 && i + 1 == words.size()) {
                *error = u"the option '%1' needs a value"_s.arg(name);
                return false;
            }
            line->values[name] << (equals < 0 ? words[++i] : word.mid(equals + 1));
        } else if (options.flags.contains(name) && equals < 0) {
            line->flags << name;
        } else {
            *error = u"unknown option '%1'"_s.arg(word);
            return false;
        }
    }
    return true;
}

int usageError(const QString &command, const QString &text)
{
    const QString help =
        command.isEmpty() ? u"corvanta help"_s : u"corvanta help %1"_s.arg(command);
    std::fprintf(stderr, "corvanta%s: %s\nSee \"%s\".\n",
                 qPrintable(command.isEmpty() ? command : u' ' + command), qPrintable(text),
                 qPrintable(help));
    return kUsage;
}

bool splitAssignment(const QString &text, QString *name, QString *value)
{
    const qsizetype equals = text.indexOf(u'=');
    *name = text.left(qMax<qsizetype>(equals, 0));
    *value = text.mid(equals + 1);
    return equals > 0;
}
