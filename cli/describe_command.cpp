// actions and describe: print what the prototypes of the actions say about themselves.
#include "base/counted.h"
#include "base/nearest_name.h"
#include "cli/print/output.h"
#include "commands.h"
#include "corvanta/action_base.h"
#include "corvanta/action_registry.h"
#include "corvanta/params/saved_form.h"
#include "help/example_list.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The properties that `actions --json` prints.
QJsonObject catalogueEntry(ActionItem &action)
{
    QJsonObject entry{{u"type"_s, QString::fromLatin1(action.getTypeName())},
                      {u"description"_s, action.getDescription()},
                      {u"fileTypes"_s, QJsonArray::fromStringList(action.getFileTypes())},
                      {u"tags"_s, QJsonArray::fromStringList(action.getTags())},
                      {u"keywords"_s, QJsonArray::fromStringList(action.getKeywords())}};
    // Plug-ins of others may implement only the contract.
    if (const auto *const ours = dynamic_cast<const ActionBase *>(&action)) {
        entry[u"helpPage"_s] = QString::fromLatin1(ours->entry().helpPage);
        entry[u"icon"_s] = QString::fromLatin1(ours->entry().icon);
        entry[u"saveVersion"_s] = ours->entry().saveVersion;
    }
    return entry;
}

/// Recursive, because members of lists may be lists.
QJsonArray parameterEntries(const QVector<ParameterInfo> &infos,
                            const ExampleWriter &examples); // members of a structure

/// "mode is 2 or 4", with the values as they are saved.
QString conditionText(const ParameterInfo::Condition &condition)
{
    QStringList values;
    for (const QString &value : condition.values) {
        values << (value.isEmpty() ? u"empty"_s : value);
    }
    QString text = u"%1 %2 %3"_s.arg(
        condition.parameter, condition.isExcluded ? u"is not"_s : u"is"_s, values.join(u" or "_s));
    for (const ParameterInfo::Condition &alternative : condition.alternatives) {
        text += u" or "_s + conditionText(alternative);
    }
    return text;
}

/// One text per condition; all must hold.
QStringList conditionTexts(const ParameterInfo &info)
{
    QStringList texts;
    std::transform(info.conditions.begin(), info.conditions.end(), std::back_inserter(texts),
                   conditionText);
    return texts;
}

/// Adds the bounds that the parameter declares; those of its C++ type are not of interest.
void addRange(const ParameterInfo &info, QJsonObject *entry)
{
    if (info.type != ParameterInfo::Type::Integer && !info.isNumberText) {
        return;
    }
    if (info.low > std::numeric_limits<int>::min()) {
        entry->insert(u"low"_s, info.low);
    }
    if (info.high < std::numeric_limits<int>::max()) {
        entry->insert(u"high"_s, info.high);
    }
    if (!info.lowMeaning.isEmpty()) {
        entry->insert(u"lowMeans"_s, info.lowMeaning);
    }
}

/// One parameter; "low", "high", "lowMeans", "required", "choices", "explanations",
/// "choiceExamples", "unit", "usedWhen", "element" and "members" only where they apply.
QJsonObject parameterEntry(const ParameterInfo &info, const ExampleWriter &examples)
{
    QJsonObject entry{{u"name"_s, info.name},
                      {u"type"_s, ActionParameters::typeName(info.type)},
                      {u"default"_s, info.defaultValue},
                      {u"label"_s, info.label},
                      {u"meaning"_s, info.meaning},
                      {u"example"_s, examples.elementWith(info)}};
    addRange(info, &entry);
    if (info.isRequired) {
        entry[u"required"_s] = true;
    }
    if (!info.choices.isEmpty()) {
        entry[u"choices"_s] = QJsonArray::fromStringList(info.choices);
        entry[u"choiceExamples"_s] = QJsonArray::fromStringList(examples.elementsWithChoices(info));
    }
    if (!info.explanations.isEmpty()) {
        entry[u"explanations"_s] = QJsonArray::fromStringList(info.explanations);
    }
    if (!info.unit.isEmpty()) {
        entry[u"unit"_s] = info.unit;
    }
    if (!info.conditions.isEmpty()) {
        entry[u"usedWhen"_s] = QJsonArray::fromStringList(conditionTexts(info));
    }
    if (info.type == ParameterInfo::Type::Structure) {
        entry[u"element"_s] = info.itemElement;
        entry[u"members"_s] = parameterEntries(info.members, examples.ofItem(info));
    }
    return entry;
}

QJsonArray parameterEntries(const QVector<ParameterInfo> &infos, const ExampleWriter &examples)
{
    QJsonArray entries;
    std::transform(infos.begin(), infos.end(), std::back_inserter(entries),
                   [&](const ParameterInfo &info) { return parameterEntry(info, examples); });
    return entries;
}

/// The number of pins, for people.
QString pinText(const ActionItem &action)
{
    const int in = action.maxPinIn();
    const QString inputs = in > 2 ? u"any number of input pins"_s : counted(in, u"input pin"_s);
    return inputs + ", "_L1 + counted(action.pinOutCount(), u"output pin"_s);
}

/// How a list of texts is saved; all other values are attributes or structures.
void printForm(const ParameterInfo &info, const QString &indent)
{
    if (info.type != ParameterInfo::Type::Strings) {
        return;
    }
    const bool isContent = info.place == ParameterInfo::Place::Content;
    printText(indent + (isContent
                            ? u"Saved as <s>TEXT</s> for each text, directly in the element.\n"_s
                            : u"Saved as the element <%1><s>TEXT</s>...</%1>.\n"_s.arg(info.name)));
}

/// An element on one line.
QString onOneLine(QString element)
{
    return element.remove(QRegularExpression(u"\\n *"_s));
}

/// One line per choice, with the sentence about it. `elements` are examples, empty for none.
void printChoices(const ParameterInfo &info, const QString &indent, const QStringList &elements)
{
    for (qsizetype i = 0; i < info.choices.size(); ++i) {
        const QString sentence = info.explanations.value(i);
        printText(u"%1%2 = %3%4\n"_s.arg(indent, QString::number(i), info.choices[i],
                                         sentence.isEmpty() ? sentence : ": "_L1 + sentence));
        if (const QString element = elements.value(i); !element.isEmpty()) {
            printText(u"%1    Example: %2\n"_s.arg(indent, onOneLine(element)));
        }
    }
}

/// Recursive, because members of lists may be lists.
void printMembers(const ParameterInfo &info, const QString &indent, const ExampleWriter &examples);

/// Name, type and default, then the meaning, the choices and the members of a structure, indented.
/// `isMember`: each choice has its example.
void printParameter(const ParameterInfo &info, const QString &indent, const ExampleWriter &examples,
                    bool isMember)
{
    const QString inner = indent + "    "_L1;
    // An empty default would leave nothing to read after the word.
    const QString defaultText = info.defaultValue.isEmpty() ? u"\"\""_s : info.defaultValue;
    printText(u"%1%2 (%3, %4default %5)\n"_s.arg(
        indent, info.name, ActionParameters::typeName(info.type),
        info.isRequired ? u"required, "_s : QString(), defaultText));
    printText(u"%1%2\n"_s.arg(inner, info.meaning));
    const bool isInteger = info.type == ParameterInfo::Type::Integer && info.choices.isEmpty();
    if (isInteger || info.isNumberText) {
        printText(u"%1Allowed: %2.\n"_s.arg(inner, allowedValues(info)));
    }
    if (info.isRequired) {
        printText(u"%1Required: must not be empty.\n"_s.arg(inner));
    }
    if (!info.unit.isEmpty()) {
        printText(u"%1Unit: %2.\n"_s.arg(inner, info.unit));
    }
    if (!info.conditions.isEmpty()) {
        printText(u"%1Used only when %2.\n"_s.arg(inner, conditionTexts(info).join(u", and "_s)));
    }
    printForm(info, inner);
    const QStringList elements = isMember ? examples.elementsWithChoices(info) : QStringList();
    printChoices(info, inner, elements);
    // The examples at the end show structures.
    if (info.type != ParameterInfo::Type::Structure && elements.join(QString()).isEmpty()) {
        printText(u"%1Example: %2\n"_s.arg(inner, onOneLine(examples.elementWith(info))));
    }
    printMembers(info, inner, examples);
}

void printMembers(const ParameterInfo &info, const QString &indent, const ExampleWriter &examples)
{
    if (info.members.isEmpty()) {
        return;
    }
    printText(u"%1Each element '%2' holds\n"_s.arg(indent, info.itemElement));
    const ExampleWriter ofItem = examples.ofItem(info);
    for (const ParameterInfo &member : info.members) {
        printParameter(member, indent + "  "_L1, ofItem, true);
    }
}

/// What follows the first lines of a description.
void printDetails(const QString &type, const QVector<ParameterInfo> &infos,
                  const QStringList &templates)
{
    const QVector<Example> all = examplesOf(type);
    const ExampleWriter examples(type, infos, all);
    printText(u"Parameters\n"_s);
    for (const ParameterInfo &info : infos) {
        printParameter(info, u"  "_s, examples, false);
    }
    if (!templates.isEmpty()) {
        printText(u"\nIncluded templates\n  %1\n"_s.arg(templates.join(u"\n  "_s)));
    }
    for (const Example &example : all) {
        const QString element = QString(example.element).replace(u'\n', "\n    "_L1);
        printText(u"\nExample: %1\n    %2\n"_s.arg(example.title, element));
    }
}

QJsonObject exampleEntry(const Example &example)
{
    return {{u"title"_s, example.title}, {u"element"_s, example.element}};
}

QJsonArray exampleEntries(const QVector<Example> &examples)
{
    QJsonArray entries;
    std::transform(examples.begin(), examples.end(), std::back_inserter(entries), exampleEntry);
    return entries;
}

/// Adds the numbers of pins; a reader of the JSON needs no text such as pinText().
void addPins(const ActionItem &action, QJsonObject *entry)
{
    entry->insert(u"pinsIn"_s, action.maxPinIn());
    entry->insert(u"pinsOut"_s, action.pinOutCount());
}

/// One group of files that commands use an action for, with the settings that they start with.
QJsonObject formatEntry(const FileFormat &format)
{
    return {{u"use"_s, format.use == FileFormat::Read ? u"read"_s : u"write"_s},
            {u"extensions"_s, QString::fromLatin1(format.extensions)},
            {u"settings"_s, QString::fromUtf8(format.settings)}};
}

QJsonArray formatEntries(std::span<const FileFormat> formats)
{
    QJsonArray entries;
    std::transform(formats.begin(), formats.end(), std::back_inserter(entries), formatEntry);
    return entries;
}

/// What `actions --json` prints of the action, its files, its pins, its parameters, examples, and
/// included templates if there are any.
QJsonObject descriptionJson(ActionItem &action, const QVector<ParameterInfo> &infos,
                            const QStringList &templates)
{
    QJsonObject entry = catalogueEntry(action);
    addPins(action, &entry);
    if (const auto *const declared = dynamic_cast<const ActionParameters *>(&action)) {
        entry[u"formats"_s] = formatEntries(declared->fileFormats());
    }
    const QString type = QString::fromLatin1(action.getTypeName());
    const QVector<Example> examples = examplesOf(type);
    entry[u"parameters"_s] = parameterEntries(infos, ExampleWriter(type, infos, examples));
    entry[u"examples"_s] = exampleEntries(examples);
    if (!templates.isEmpty()) {
        entry[u"includedTemplates"_s] = QJsonArray::fromStringList(templates);
    }
    return entry;
}

constexpr OptionInfo kActionsOptions[] = {
    {"--json", "", "print all properties of the actions as a JSON array"},
};
constexpr OptionInfo kDescribeOptions[] = {
    {"--json", "", "print a JSON object"},
};

} // namespace

CommandOptions actionsOptions()
{
    return {{{"", kActionsOptions}}, 0, u"no argument is expected"_s};
}

CommandResult<void> actionsCommand(const CommandLine &line)
{
    ActionRegistry registry;
    registry.loadAll();
    QJsonArray entries;
    for (const auto &action : registry.prototypes()) {
        if (line.has(u"--json"_s)) {
            entries << catalogueEntry(*action);
        } else {
            printText(QString::fromLatin1(action->getTypeName()).leftJustified(16) + u' ' +
                      action->getDescription() + u'\n');
        }
    }
    if (line.has(u"--json"_s)) {
        printJson(QJsonDocument(entries));
    }
    return {};
}

CommandOptions describeOptions()
{
    return {{{"", kDescribeOptions}}, 1, u"one action type is required"_s};
}

/// An action of a plug-in that declares no parameters is described without them.
CommandResult<void> describeCommand(const CommandLine &line)
{
    ActionRegistry registry;
    registry.loadAll();
    const QString type = line.arguments[0];
    ActionItem *const action = registry.prototype(type);
    if (action == nullptr) {
        return badUsage(u"unknown action '%1'%2 (\"corvanta actions\" lists all actions)"_s.arg(
            type, nearestNameHint(type, registry.typeNames())));
    }
    const auto *const declared = dynamic_cast<const ActionParameters *>(action);
    const QVector<ParameterInfo> infos =
        declared != nullptr ? declared->parameters() : QVector<ParameterInfo>();
    const QStringList templates =
        declared != nullptr ? declared->includedTemplates() : QStringList();
    if (line.has(u"--json"_s)) {
        printJson(QJsonDocument(descriptionJson(*action, infos, templates)));
        return {};
    }
    printText(u"%1: %2\n%3\n\n"_s.arg(type, action->getDescription(), pinText(*action)));
    printDetails(type, infos, templates);
    return {};
}
