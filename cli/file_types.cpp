#include "file_types.h"

#include "command_line.h"
#include "corvanta/action_parameters.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <sstream>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// What reads or writes a file: an action with some of its parameters set.
struct FileAction
{
    const char *type = nullptr; ///< null: there is none
    const char *settings[5] = {};
};

struct FileType
{
    const char *extensions;
    FileAction reader;
    FileAction writer;
};

/// There are no old graphs to keep here, so what an action reads or writes better on request is
/// requested.
constexpr FileType kFileTypes[] = {
    {"csv txt", {"readCSV"}, {"writeCSV"}},
    {"tsv tab", {"readCSV", {"separator=\\t"}}, {"writeCSV", {"separator=\\t"}}},
    {"json",
     {"readJSON", {"autoFillNRows=10000"}},
     {"writeJSON", {"floatToString=", "escapeControls=1", "alwaysWrite=1"}}},
    {"jsonl ndjson geojson", {"readJSON", {"autoFillNRows=10000"}}, {}},
    {"xml",
     {"readXML", {"autoFillNRows=10000", "readClearTags=1", "ignoreUnknownEntities=1"}},
     {"writeXML", {"floatToString=", "wellFormed=1", "alwaysWrite=1"}}},
    {"html htm", {"readXML", {"autoFillNRows=10000", "readClearTags=1"}}, {}},
    {"parquet",
     {"readParquet",
      {"extendedEncodings=1", "logicalTypes=1", "skipUnreadable=1", "allowEmpty=1",
       "pageChecksums=1"}},
     {"writeParquet", {"dictionaryPages=1", "statistics=1"}}},
    {"xlsx", {"readExcel"}, {"writeExcel", {"floatToString=", "alwaysWrite=1"}}},
    {"xlsm", {"readExcel"}, {}},
    {"xls xlt", {"readExcelOld"}, {}},
    {"dbf", {"ReadXBF"}, {}},
    {"sas7bdat", {"readStat"}, {"writeSAS"}},
    {"xpt", {}, {"writeSASXPT"}},
    {"sav por dta", {"readStat"}, {}},
};

/// In lower case; a packed input is what it unpacks to.
QString extensionOf(FileUse use, QString name)
{
    for (const auto packed : {".gz"_L1, ".Z"_L1}) {
        if (use == FileUse::Read && name.endsWith(packed)) {
            name.chop(packed.size());
            break;
        }
    }
    return name.mid(name.lastIndexOf(u'.') + 1).toLower();
}

const FileAction &sideOf(const FileType &type, FileUse use)
{
    return use == FileUse::Read ? type.reader : type.writer;
}

QStringList extensionsOf(const FileType &type)
{
    return QString::fromLatin1(type.extensions).split(u' ');
}

const FileAction *find(FileUse use, const QString &extension)
{
    const auto found =
        std::find_if(std::begin(kFileTypes), std::end(kFileTypes), [&](const FileType &type) {
            return sideOf(type, use).type != nullptr && extensionsOf(type).contains(extension);
        });
    return found == std::end(kFileTypes) ? nullptr : &sideOf(*found, use);
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

int fileParameter(const ActionParameters &parameters, FileUse use)
{
    const ParameterInfo::File wanted =
        use == FileUse::Read ? ParameterInfo::File::Input : ParameterInfo::File::Output;
    const QVector<ParameterInfo> infos = parameters.parameters();
    const auto found = std::find_if(infos.begin(), infos.end(),
                                    [&](const ParameterInfo &info) { return info.file == wanted; });
    return static_cast<int>(found - infos.begin());
}

} // namespace

std::unique_ptr<ActionItem> makeFileAction(const ActionRegistry &registry, FileUse use,
                                           const QString &fileName, const QStringList &settings,
                                           QString *problem)
{
    const QString extension = extensionOf(use, fileName);
    const FileAction *const found = find(use, extension);
    if (found == nullptr) {
        *problem = u"nothing %1 files with the extension of '%2' (known are: %3)"_s.arg(
            use == FileUse::Read ? u"reads"_s : u"writes"_s, fileName, knownExtensions(use));
        return nullptr;
    }
    const QString type = QString::fromLatin1(found->type);
    // A new action looks at the ending of its file (HTML, say), which a packed file does not show.
    const XMLNode element = parsed(u"<%1 fileName='file.%2'/>"_s.arg(type, extension));
    std::unique_ptr<ActionItem> action = registry.create(element, nullptr);
    auto *const parameters = dynamic_cast<ActionParameters *>(action.get());
    if (parameters == nullptr) {
        *problem = u"the action '%1' is not there"_s.arg(type);
        return nullptr;
    }
    parameters->setParameterValue(fileParameter(*parameters, use),
                                  QDir::current().absoluteFilePath(fileName));
    QStringList usual;
    for (const char *setting : found->settings) {
        usual << (setting != nullptr ? QStringList(QString::fromLatin1(setting)) : QStringList());
    }
    return apply(usual, parameters, problem) && apply(settings, parameters, problem)
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

QString knownExtensions(FileUse use)
{
    QStringList all;
    for (const FileType &type : kFileTypes) {
        all << (sideOf(type, use).type != nullptr ? extensionsOf(type) : QStringList());
    }
    return all.join(u' ');
}
