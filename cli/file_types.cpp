// Chooses actions by file extension, from the file formats that the actions declare.
#include "file_types.h"

#include "base/mapped.h"
#include "base/nearest_name.h"
#include "corvanta/action_parameters.h"
#include "corvanta/lists.h"
#include "corvanta/params/saved_form.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <sstream>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A format and the action that handles it.
struct FileAction
{
    const char *type = nullptr;
    const FileFormat *format = nullptr;
};

/// The mark of the parameter that names the file to read or write.
ParameterInfo::File fileMark(FileFormat::Use use)
{
    return use == FileFormat::Read ? ParameterInfo::File::Input : ParameterInfo::File::Output;
}

/// Index of the parameter that names the file to read or write; -1 if there is none.
int fileParameter(const ActionParameters &parameters, FileFormat::Use use)
{
    const QVector<ParameterInfo> infos = parameters.parameters();
    const auto isWanted = [&](const ParameterInfo &info) { return info.file == fileMark(use); };
    const auto found = std::find_if(infos.begin(), infos.end(), isWanted);
    return found == infos.end() ? -1 : static_cast<int>(found - infos.begin());
}

/// The formats of all actions, in the order of their families.
std::vector<FileAction> fileActions(const ActionRegistry &registry, FileFormat::Use use)
{
    std::vector<FileAction> all;
    for (const auto &action : registry.prototypes()) {
        const auto *const parameters = dynamic_cast<const ActionParameters *>(action.get());
        for (const FileFormat &format :
             parameters != nullptr ? parameters->fileFormats() : std::span<const FileFormat>()) {
            // A module of others may declare a format without a parameter for the file.
            if (format.use == use && fileParameter(*parameters, use) >= 0) {
                all.push_back({action->getTypeName(), &format});
            }
        }
    }
    // Stable: within a family the order of the catalogue counts.
    std::stable_sort(all.begin(), all.end(), [](const FileAction &a, const FileAction &b) {
        return a.format->family < b.format->family;
    });
    return all;
}

/// Whether the format of the action has this extension, which is in lower case.
bool handles(const FileAction &action, const QString &extension)
{
    return wordsOf(action.format->extensions).contains(extension);
}

/// The action for an extension; nothing when there is none.
std::optional<FileAction> find(const ActionRegistry &registry, FileFormat::Use use,
                               const QString &extension)
{
    const std::vector<FileAction> all = fileActions(registry, use);
    // The first one counts, see FileFormat::Family.
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const FileAction &one) { return handles(one, extension); });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

/// The parsed element, empty if XML cannot contain a character of it.
XMLNode parsed(const QString &element)
{
    const auto node = XMLNode::parse(element.toUtf8());
    return node ? *node : XMLNode::emptyNode();
}

/// Why the text is not a value of the parameter, or an empty text. Unlike reading, which accepts
/// any text, the command takes only values that are allowed.
QString problemOf(const ParameterInfo &info, const QString &text)
{
    if (info.type != ParameterInfo::Type::Structure) {
        return isAllowedValue(info, text) ? QString() : u"allowed: "_s + allowedValues(info);
    }
    // The text holds the elements without their parent, so give them one.
    const XMLNode parent = parsed(u"<%1>%2</%1>"_s.arg(u"value"_s, text));
    if (parent.isEmpty()) {
        return u"expected "_s + allowedValues(info);
    }
    const QVector<SavedFormProblem> problems = savedFormProblems(parent, {info}, nullptr);
    return problems.isEmpty() ? QString()
                              : u"%1; expected %2"_s.arg(problems[0].text, allowedValues(info));
}

/// The names that a misspelled one is compared with.
QStringList namesOf(const QVector<ParameterInfo> &infos)
{
    QStringList names;
    std::transform(infos.begin(), infos.end(), std::back_inserter(names),
                   [](const ParameterInfo &info) { return info.name; });
    return names;
}

/// Sets the parameters of NAME=VALUE settings; several values of a list parameter are its strings.
CommandResult<void> apply(const QStringList &settings, const QString &type,
                          ActionParameters *parameters)
{
    const QVector<ParameterInfo> infos = parameters->parameters();
    QStringList seen;
    for (const QString &setting : settings) {
        const auto assignment = Assignment::parse(setting);
        if (!assignment) {
            return assignment.fault();
        }
        const auto &[name, value] = *assignment;
        const int index = parameters->indexOfParameter(name);
        if (index < 0) {
            return badUsage(u"unknown parameter '%1' of %2%3"_s.arg(
                name, type, nearestNameHint(name, namesOf(infos))));
        }
        // The second and later settings of a list append to it; the first one replaces it.
        const bool isNextString =
            infos[index].type == ParameterInfo::Type::Strings && seen.contains(name);
        const QString before = isNextString ? parameters->parameterValue(index) + u'\n' : QString();
        seen << name;
        const QString problem = problemOf(infos[index], value);
        if (!problem.isEmpty() || !parameters->setParameterValue(index, before + value)) {
            return badUsage(u"invalid value '%1' for parameter '%2' of %3 (%4)"_s.arg(
                value, name, type, problem));
        }
    }
    return {};
}

/// The name of that parameter of a type of action.
QString fileAttribute(const ActionRegistry &registry, const QString &type, FileFormat::Use use)
{
    const auto action = registry.create(parsed(u"<%1/>"_s.arg(type)), nullptr);
    const auto &parameters = dynamic_cast<const ActionParameters &>(*action);
    return parameters.parameters()[fileParameter(parameters, use)].name;
}

/// The file is an argument of the command, and no setting may name another one.
CommandResult<void> checkFileSetting(const QStringList &settings, const QString &attribute,
                                     FileFormat::Use use, const QString &fileName)
{
    for (const QString &setting : settings) {
        if (setting.startsWith(attribute + u'=')) {
            return badUsage(
                u"'%1': the file to %2 is the argument '%3'; %4 cannot replace it"_s.arg(
                    setting, use == FileFormat::Read ? u"read"_s : u"write"_s, fileName,
                    use == FileFormat::Read ? u"--reader"_s : u"--writer"_s));
        }
    }
    return {};
}

/// Why no action has the extension of a file.
Fault<ExitStatus> unknownFile(const ActionRegistry &registry, FileFormat::Use use,
                              const QString &fileName)
{
    const bool isRead = use == FileFormat::Read;
    if (QFileInfo(fileName).isDir()) {
        return badUsage(isRead ? u"'%1' is a folder, not a file"_s.arg(fileName)
                               : u"'%1' is a folder, not a file; '%1/' writes a CSV file per table "
                                 "into it"_s.arg(fileName));
    }
    return badUsage(u"no action %1 files with the extension of '%2' (supported: %3; %4 FORMAT "
                    "names the format of a file with another name)"_s.arg(
                        isRead ? u"reads"_s : u"writes"_s, fileName, knownExtensions(registry, use),
                        isRead ? u"--from"_s : u"--to"_s));
}

/// Set the parameters of a new action. Later settings win.
CommandResult<void> applyAll(const QVector<QStringList> &settings, const QString &type,
                             ActionParameters *parameters)
{
    for (const QStringList &some : settings) {
        if (auto applied = apply(some, type, parameters); !applied) {
            return applied;
        }
    }
    return {};
}

} // namespace

CommandResult<std::unique_ptr<ActionItem>>
makeFileAction(const ActionRegistry &registry, FileFormat::Use use, const FileArgument &file,
               const QStringList &settings, ReadExtent extent)
{
    const auto &[fileName, extension] = file;
    const std::optional<FileAction> found = find(registry, use, extension);
    if (!found) {
        return unknownFile(registry, use, fileName);
    }
    const QString type = QString::fromLatin1(found->type);
    // A new action chooses defaults by the extension of its file, which a compressed file hides.
    const QString attribute = fileAttribute(registry, type, use);
    const XMLNode element = parsed(u"<%1 %2='file.%3'/>"_s.arg(type, attribute, extension));
    std::unique_ptr<ActionItem> action = registry.create(element, nullptr);
    auto *const parameters = dynamic_cast<ActionParameters *>(action.get());
    // Absolute, because the graph has no file whose folder a relative name could start from.
    parameters->setParameterValue(fileParameter(*parameters, use),
                                  QDir::current().absoluteFilePath(fileName));
    if (const auto checked = checkFileSetting(settings, attribute, use, fileName); !checked) {
        return checked.fault();
    }
    const QStringList early =
        extent == ReadExtent::FirstRows ? wordsOf(found->format->firstRowsSettings) : QStringList();
    const auto applied =
        applyAll({wordsOf(found->format->settings), early, settings}, type, parameters);
    if (!applied) {
        return applied.fault();
    }
    return action;
}

CommandResult<std::unique_ptr<ActionItem>>
makeAction(const ActionRegistry &registry, const QString &type, const QStringList &settings)
{
    std::unique_ptr<ActionItem> action = registry.create(parsed(u"<%1/>"_s.arg(type)), nullptr);
    if (!action) {
        return badUsage(u"no module has the action '%1'"_s.arg(type));
    }
    if (const auto applied = apply(settings, type, dynamic_cast<ActionParameters *>(action.get()));
        !applied) {
        return applied.fault();
    }
    return action;
}

CommandResult<std::unique_ptr<ActionItem>> makeWriter(const ActionRegistry &registry,
                                                      const QString &type, const QString &fileName,
                                                      const QStringList &settings)
{
    auto action = makeAction(registry, type, settings);
    if (action) {
        auto &parameters = dynamic_cast<ActionParameters &>(**action);
        parameters.setParameterValue(fileParameter(parameters, FileFormat::Write), fileName);
    }
    return action;
}

/// Settings have the form NAME=VALUE.
QStringList settingsOf(const QString &parameter, const QStringList &values)
{
    return mapped<QStringList>(values,
                               [&](const QString &value) { return parameter + u'=' + value; });
}

bool hasParameter(const ActionItem &action, const QString &name)
{
    const auto *const parameters = dynamic_cast<const ActionParameters *>(&action);
    return parameters != nullptr && parameters->indexOfParameter(name) >= 0;
}

CommandResult<void> addAction(CorvantaGraph *graph, const QString &id, ActionItem &action)
{
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    action.save(out, QString::fromLatin1(action.getTypeName()));
    const QString element = QString::fromStdWString(out.str());
    CorvantaGraph::Action added;
    added.id = id;
    added.parameters = parsed(element);
    if (added.parameters.isEmpty()) {
        return badUsage(u"a name or value contains characters that a graph cannot contain"_s);
    }
    graph->actions.append(added);
    // A variable whose value is its own reference expands to itself.
    static const QRegularExpression variable(u"\\$\\{([^}]*)\\}"_s);
    for (const QRegularExpressionMatch &match : variable.globalMatch(element)) {
        graph->variables.insert(match.captured(1), match.captured());
    }
    return {};
}

/// For messages, in the order of the catalogue.
QString knownExtensions(const ActionRegistry &registry, FileFormat::Use use)
{
    QStringList all;
    for (const FileAction &action : fileActions(registry, use)) {
        all << wordsOf(action.format->extensions);
    }
    return all.join(u' ');
}
