// Of several actions for one extension the first family counts, see FileFormat::Family.
#include "studio/document/file_reader.h"

#include "base/text/packed_name.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/lists.h"

#include <QFileInfo>

#include <algorithm>
#include <sstream>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// A format that can be read, and its action.
struct Reader
{
    const ActionItem *prototype = nullptr; ///< null: there is none
    const FileFormat *format = nullptr;
};

/// The extension of the content, in lower case: "csv" for a.CSV.gz.
QString contentExtension(const QString &file)
{
    return QFileInfo(withoutPacking(file)).suffix().toLower();
}

/// The first format for an extension, in the order of the families and then of the actions.
Reader findReader(const ActionRegistry &registry, const QString &extension)
{
    Reader best;
    for (const auto &prototype : registry.prototypes()) {
        const auto *const parameters = dynamic_cast<const ActionParameters *>(prototype.get());
        for (const FileFormat &format :
             parameters != nullptr ? parameters->fileFormats() : std::span<const FileFormat>()) {
            const bool isEarlier = best.format == nullptr || format.family < best.format->family;
            if (format.use == FileFormat::Read && isEarlier &&
                wordsOf(format.extensions).contains(extension)) {
                best = {prototype.get(), &format};
            }
        }
    }
    return best;
}

/// Index of the parameter that names the input; every reader of files has one.
int inputParameter(const ActionParameters &parameters)
{
    const QVector<ParameterInfo> infos = parameters.parameters();
    const auto found = std::ranges::find(infos, ParameterInfo::File::Input, &ParameterInfo::file);
    return static_cast<int>(found - infos.begin());
}

} // namespace

// The name is enough; the file is not opened.
QString readerType(const ActionRegistry &registry, const QString &file)
{
    const Reader reader = findReader(registry, contentExtension(file));
    return reader.prototype == nullptr ? QString()
                                       : QString::fromLatin1(reader.prototype->getTypeName());
}

// The name of the file comes last, so that a compressed file does not change the defaults.
std::unique_ptr<ActionItem> makeReader(const ActionRegistry &registry, const QString &file,
                                       GlobalParameters *global)
{
    const QString extension = contentExtension(file);
    const auto [prototype, format] = findReader(registry, extension);
    const auto *const described = dynamic_cast<const ActionParameters *>(prototype);
    if (described == nullptr) {
        return nullptr;
    }
    const int index = inputParameter(*described);
    // A new action chooses defaults by the extension of its file, which a compressed file hides.
    const XMLNode element = parsedElement(
        u"<%1 %2='file.%3'/>"_s.arg(QString::fromLatin1(prototype->getTypeName()),
                                    described->parameters().value(index).name, extension));
    std::unique_ptr<ActionItem> action = registry.create(element, global);
    auto *const parameters = dynamic_cast<ActionParameters *>(action.get());
    if (parameters == nullptr) {
        return nullptr;
    }
    parameters->setParameterValue(index, QFileInfo(file).absoluteFilePath());
    for (const QString &setting : wordsOf(format->settings)) {
        const qsizetype equals = setting.indexOf(u'=');
        parameters->setParameterValue(parameters->indexOfParameter(setting.left(equals)),
                                      setting.mid(equals + 1));
    }
    return action;
}

// Text that XML cannot contain, such as control characters, gives an empty node.
XMLNode savedElement(ActionItem &action)
{
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // for lack of memory
    action.save(out, QString::fromLatin1(action.getTypeName()));
    return parsedElement(QString::fromStdWString(out.str()));
}

XMLNode parsedElement(const QString &text)
{
    const auto node = XMLNode::parse(text.toUtf8());
    return node ? *node : XMLNode();
}

} // namespace corvanta::studio
