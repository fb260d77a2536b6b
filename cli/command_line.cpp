// Parses command lines.
//
// Options and arguments may be mixed. An option that takes a value takes the next word, whatever it
// looks like, so that values may begin with "-".
#include "command_line.h"

#include "base/nearest_name.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace {

/// The names of the options that take a value, or of those that take none.
QStringList namesOf(const QVector<OptionGroup> &groups, bool withValue)
{
    QStringList names;
    for (const OptionGroup &group : groups) {
        for (const OptionInfo &option : group.options) {
            // Other lines describe forms of arguments, of which "-" is one.
            const bool isOption = option.names[0] == '-' && option.names[1] != '\0';
            if (isOption && (std::strlen(option.value) > 0) == withValue) {
                names << QString::fromLatin1(option.names).split(u", "_s);
            }
        }
    }
    return names;
}

} // namespace

QStringList CommandOptions::withValue() const
{
    return namesOf(groups, true);
}

QStringList CommandOptions::flags() const
{
    return namesOf(groups, false);
}

/// The text goes to the user as it is, after the name of the command.
corvanta::Fault<ExitStatus> badUsage(const QString &text)
{
    return {kUsage, text};
}

/// The last one counts, so that a script can append options that replace earlier ones.
QString CommandLine::value(const QString &name, const QString &defaultValue) const
{
    const QStringList given = values.value(name);
    return given.isEmpty() ? defaultValue : given.last();
}

/// Adds the option `words[i]`. Returns the index of its last word, which may be that of its value.
CommandResult<qsizetype> CommandLine::addOption(const QStringList &words, qsizetype i,
                                                const CommandOptions &options)
{
    const QString &word = words[i];
    // Short options such as -n have no form with "=".
    const qsizetype equals = word.startsWith("--"_L1) ? word.indexOf(u'=') : -1;
    const QString name = equals < 0 ? word : word.left(equals);
    if (equals < 0 && options.flags().contains(name)) {
        flags << name;
        return i;
    }
    if (!options.withValue().contains(name)) {
        return badUsage(u"unknown option '%1'%2"_s.arg(
            word, corvanta::nearestNameHint(name, options.withValue() + options.flags())));
    }
    if (equals >= 0) {
        values[name] << word.mid(equals + 1);
        return i;
    }
    if (i + 1 == words.size()) {
        return badUsage(u"the option '%1' needs a value"_s.arg(name));
    }
    values[name] << words[i + 1];
    return i + 1;
}

CommandResult<CommandLine> CommandLine::parse(const QStringList &words,
                                              const CommandOptions &options)
{
    CommandLine line;
    // Arguments that begin with "-" can follow "--". "-" alone is an argument by convention.
    bool hasOptions = true;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (hasOptions && words[i] == "--"_L1) {
            hasOptions = false;
        } else if (!hasOptions || !words[i].startsWith(u'-') || words[i] == "-"_L1) {
            line.arguments << words[i];
        } else if (const auto last = line.addOption(words, i, options); last) {
            i = *last;
        } else {
            return last.fault();
        }
    }
    const bool areTooMany = line.arguments.size() > options.arguments && !options.hasMoreArguments;
    if (areTooMany || line.arguments.size() < options.arguments) {
        // The first one too many shows a name with blanks that is not quoted.
        return badUsage(
            areTooMany && options.arguments > 0
                ? u"%1, and '%2' is one too many; put names with blanks, and patterns, "
                  "in quotes"_s.arg(options.wrongArguments, line.arguments.at(options.arguments))
                : options.wrongArguments);
    }
    return line;
}

/// The value may contain "=" and may be empty; the name may not.
CommandResult<Assignment> Assignment::parse(const QString &text)
{
    if (const qsizetype equals = text.indexOf(u'='); equals > 0) {
        return Assignment{text.left(equals), text.mid(equals + 1)};
    }
    return badUsage(u"'%1' is not of the form NAME=VALUE"_s.arg(text));
}
