// Prints the help of the commands, wrapped for a terminal.
//
//   corvanta NAME ...          usage, one line per form
//   description                paragraphs
//     corvanta NAME ...        examples
//     reads, writes            extensions, one line each: scripts take the words of these lines
//   Title                      groups of options
//     --option VALUE           meaning, wrapped, from column 26
//   Exit status: ...
#include "cli/help/help_command.h"

#include "base/mapped.h"
#include "cli/file_types.h"
#include "cli/print/output.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr qsizetype kLineWidth = 100;
constexpr qsizetype kMeaningColumn = 26; ///< where the meanings of options begin

/// The words of `text` in lines; all lines but the first begin with `indent` blanks. The first
/// begins in that column, too.
QString wrapped(const QString &text, qsizetype indent)
{
    QString lines;
    qsizetype column = indent;
    for (const QString &word : text.split(u' ')) {
        if (column > indent && column + 1 + word.size() > kLineWidth) {
            lines += u'\n' + QString(indent, u' ');
            column = indent;
        } else if (column > indent) {
            lines += u' ';
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines + u'\n';
}

/// The texts of all items, one after the other.
template <class Items, class Item>
QString joined(const Items &items, QString (*textOf)(const Item &item))
{
    return mapped<QStringList>(items, textOf).join(QString());
}

QString paragraph(const QString &line)
{
    return wrapped(line, 0);
}

/// Each line of `text`, wrapped on its own.
QString paragraphs(const char *text)
{
    return joined(QString::fromUtf8(text).split(u'\n'), paragraph);
}

/// The lines of a text, each after `prefix`.
QString lines(const char *text, const QString &prefix)
{
    return prefix + QString::fromUtf8(text).replace(u'\n', u'\n' + prefix) + u'\n';
}

QString optionText(const OptionInfo &option)
{
    QString name = "  "_L1 + QString::fromUtf8(option.names);
    name += *option.value == '\0' ? QString() : u' ' + QString::fromUtf8(option.value);
    const bool fits = name.size() < kMeaningColumn;
    return (fits ? name.leftJustified(kMeaningColumn)
                 : name + u'\n' + QString(kMeaningColumn, u' ')) +
           wrapped(QString::fromUtf8(option.meaning), kMeaningColumn);
}

/// Groups without a title are one list.
QString groupText(const OptionGroup &group)
{
    const QString title = QString::fromUtf8(group.title);
    return (title.isEmpty() ? title : u"\n%1\n"_s.arg(title)) + joined(group.options, optionText);
}

/// The extensions that some action handles, one line for each use.
QString extensionsText()
{
    ActionRegistry registry;
    registry.loadAll();
    return u"\n  reads                   %1\n  writes                  %2\n"_s.arg(
        knownExtensions(registry, FileFormat::Read), knownExtensions(registry, FileFormat::Write));
}

/// What "corvanta help COMMAND" and "corvanta COMMAND --help" print.
QString helpText(const Command &command)
{
    QString text = lines(command.usage, u"corvanta "_s) + u'\n' + paragraphs(command.description);
    if (*command.examples != '\0') {
        text += u'\n' + lines(command.examples, u"  corvanta "_s);
    }
    // Loading the plug-ins takes time, which other help texts do not need.
    text += command.handlesFiles ? extensionsText() : QString();
    const CommandOptions options = optionsOf(command);
    const bool hasTitle = options.groups.isEmpty() || *options.groups.first().title != '\0';
    text += (hasTitle ? QString() : u"\n"_s) + joined(options.groups, groupText);
    if (*command.exitStatus != '\0') {
        text += u'\n' + wrapped(u"Exit status: "_s + QString::fromUtf8(command.exitStatus), 0);
    }
    return text;
}

void printCommands()
{
    printBytes("corvanta runs data-flow graphs that read and write files.\n\nCommands\n");
    for (const Command &command : allCommands()) {
        printBytes("  " + QByteArray(command.name).leftJustified(11) + command.summary + '\n');
    }
    printBytes("  help       this text, or \"corvanta help COMMAND\"\n\n\"corvanta --version\" "
               "prints the version.\n");
}

/// The value is empty for a flag and for a form of arguments.
QJsonObject optionJson(const OptionInfo &option)
{
    return {
        {u"names"_s, QJsonArray::fromStringList(QString::fromUtf8(option.names).split(u", "_s))},
        {u"value"_s, QString::fromUtf8(option.value)},
        {u"meaning"_s, QString::fromUtf8(option.meaning)}};
}

/// The options are in the order of the help text.
QJsonObject groupJson(const OptionGroup &group)
{
    return {{u"title"_s, QString::fromUtf8(group.title)},
            {u"options"_s, mapped<QJsonArray>(group.options, optionJson)}};
}

/// The lines of a text; none of an empty one.
QJsonArray linesJson(const char *text)
{
    return QJsonArray::fromStringList(QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts));
}

/// What docs/generate/generate.py makes the manual page and the completions of the command from.
QJsonObject commandJson(const Command &command)
{
    return {{u"name"_s, QString::fromUtf8(command.name)},
            {u"summary"_s, QString::fromUtf8(command.summary)},
            {u"usage"_s, linesJson(command.usage)},
            {u"description"_s, linesJson(command.description)},
            {u"examples"_s, linesJson(command.examples)},
            {u"exitStatus"_s, QString::fromUtf8(command.exitStatus)},
            {u"handlesFiles"_s, command.handlesFiles},
            {u"optionGroups"_s, mapped<QJsonArray>(optionsOf(command).groups, groupJson)}};
}

/// All commands, and the extensions of the files that they handle.
void printHelpAsJson()
{
    ActionRegistry registry;
    registry.loadAll();
    QJsonArray commands;
    for (const Command &command : allCommands()) {
        commands << commandJson(command);
    }
    const auto extensions = [&](FileFormat::Use use) {
        return QJsonArray::fromStringList(knownExtensions(registry, use).split(u' '));
    };
    const QJsonObject all{{u"version"_s, QStringLiteral(CORVANTA_VERSION)},
                          {u"commands"_s, commands},
                          {u"reads"_s, extensions(FileFormat::Read)},
                          {u"writes"_s, extensions(FileFormat::Write)}};
    printJson(QJsonDocument(all));
}

} // namespace

bool isHelp(const QString &word)
{
    return word == "help"_L1 || word == "--help"_L1 || word == "-h"_L1;
}

CommandResult<void> help(const QStringList &words)
{
    if (words.contains(u"--json"_s)) {
        printHelpAsJson();
        return {};
    }
    if (words.isEmpty() || isHelp(words[0])) {
        printCommands();
        return {};
    }
    const Command *const command = findCommand(words[0]);
    if (command == nullptr) {
        return unknownCommand(words[0]);
    }
    printText(helpText(*command));
    return {};
}
