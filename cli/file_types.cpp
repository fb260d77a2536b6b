#include "file_types.h"

#include "command_line.h"
#include "corvanta/action_parameters.h"

#include <QDir>
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

/// The formats of all actions, in the order of their families.
std::vector<FileAction> fileActions(const ActionRegistry &registry, FileFormat::Use use)
{
    std::vector<FileAction> all;
    for (const auto &action : registry.prototypes()) {
        const auto *const parameters = dynamic_cast<const ActionParameters *>(action.get());
        for (const FileFormat &format :
             parameters != nullptr ? parameters->fileFormats() : std::span<const FileFormat>()) {
            if (format.use == use) {
                all.push_back({action->getTypeName(), &format});
            }
        }
    }
    std::stable_sort(all.begin(), all.end(), [](const FileAction &a, const FileAction &b) {
        return a.format->family < b.format->family;
    });
    return all;
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

/// In lower case. The extension of a compressed input is that of its content.
QString extensionOf(FileFormat::Use use, QString name)
{
    for (const auto packed : {".gz"_L1, ".Z"_L1}) {
        if (use == FileFormat::Read && name.endsWith(packed)) {
            name.chop(packed.size());
            break;
        }
    }
    return name.mid(name.lastIndexOf(u'.') + 1).toLower();
}

std::optional<FileAction> find(const ActionRegistry &registry, FileFormat::Use use,
                               const QString &extension)
{
    const std::vector<FileAction> all = fileActions(registry, use);
    const auto found = std::find_if(all.begin(), all.end(), [&](const FileAction &action) {
        return words(action.format->extensions).contains(extension);
    });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

XMLNode parsed(const QString &element)
{
    const auto node = XMLNode::parse(element.toUtf8());
    return node ? *node : XMLNode::emptyNode();
}

/// Set the parameters that NAME=VALUE words name; several values of a list are its strings.
bool apply(const QStringList &settings, ActionParameters *parameters, QString *problem)
{
    const QVector<ParameterInfo> infos = parameters->parameters();
    QStringList seen;
    for (const QString &setting : settings) {
        QString name;
        QString value;
        if (!splitAssignment(setting, &name, &value)) {
            *problem = u"'%1' is not of the form NAME=VALUE"_s.arg(setting);
            return false;
        }
        const int index = parameters->indexOfParameter(name);
        if (index < 0) {
            *problem = u"there is no parameter '%1'"_s.arg(name);
            return false;
        }
        if (infos[index].type == ParameterInfo::Type::Strings && seen.contains(name)) {
            value = parameters->parameterValue(index) + u'\n' + value;
        }
        seen << name;
        if (!parameters->setParameterValue(index, value)) {
            *problem = u"'%1' is no value of the parameter '%2' (%3)"_s.arg(
                value, name, ActionParameters::typeName(infos[index].type));
            return false;
        }
    }
    return true;
}

int fileParameter(const ActionParameters &parameters, FileFormat::Use use)
{
    const ParameterInfo::File wanted =
        use == FileFormat::Read ? ParameterInfo::File::Input : ParameterInfo::File::Output;
    const QVector<ParameterInfo> infos = parameters.parameters();
    const auto found = std::find_if(infos.begin(), infos.end(),
                                    [&](const ParameterInfo &info) { return info.file == wanted; });
    return static_cast<int>(found - infos.begin());
}

} // namespace

std::unique_ptr<ActionItem> makeFileAction(const ActionRegistry &registry, FileFormat::Use use,
                                           const QString &fileName, const QStringList &settings,
                                           QString *problem)
{
    const QString extension = extensionOf(use, fileName);
    const std::optional<FileAction> found = find(registry, use, extension);
    if (!found) {
        *problem = u"nothing %1 files with the extension of '%2' (known are: %3)"_s.arg(
            use == FileFormat::Read ? u"reads"_s : u"writes"_s, fileName,
            knownExtensions(registry, use));
        return nullptr;
    }
    const QString type = QString::fromLatin1(found->type);
    // A new action looks at the ending of its file (HTML, say), which a packed file does not show.
    const XMLNode element = parsed(u"<%1 fileName='file.%2'/>"_s.arg(type, extension));
    std::unique_ptr<ActionItem> action = registry.create(element, nullptr);
    auto *const parameters = dynamic_cast<ActionParameters *>(action.get());
    parameters->setParameterValue(fileParameter(*parameters, use),
                                  QDir::current().absoluteFilePath(fileName));
    return apply(words(found->format->settings), parameters, problem) &&
                   apply(settings, parameters, problem)
               ? std::move(action)
               : nullptr;
}

bool addAction(CorvantaGraph *graph, const QString &id, ActionItem &action, QString *problem)
{
    std::wostringstream out;
    action.save(out, QString::fromLatin1(action.getTypeName()));
    const QString element = QString::fromStdWString(out.str());
    CorvantaGraph::Action added;
    added.id = id;
    added.parameters = parsed(element);
    if (added.parameters.isEmpty()) {
        *problem = u"a name or value has characters that a graph cannot hold"_s;
        return false;
    }
    graph->actions.append(added);
    static const QRegularExpression variable(u"\\$\\{([^}]*)\\}"_s);
    for (const QRegularExpressionMatch &match : variable.globalMatch(element)) {
        graph->variables.insert(match.captured(1), match.captured());
    }
    return true;
}

QString knownExtensions(const ActionRegistry &registry, FileFormat::Use use)
{
    QStringList all;
    for (const FileAction &action : fileActions(registry, use)) {
        all << words(action.format->extensions);
    }
    return all.join(u' ');
}
