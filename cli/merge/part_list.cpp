#include "cli/merge/part_list.h"

#include "cli/convert/file_arguments.h"

#include <QDir>

#include <set>

using namespace Qt::StringLiterals;

namespace {

/// Nothing is joined twice, and the output is not read.
CommandResult<void> checkParts(const QStringList &parts, const QString &output)
{
    std::set<QString> names;
    for (const QString &part : parts) {
        if (!names.insert(QDir::cleanPath(QDir::current().absoluteFilePath(part))).second) {
            return badUsage(u"the part '%1' is named twice"_s.arg(part));
        }
        if (isSameFile(part, output)) {
            return badUsage(u"the output '%1' is also a part"_s.arg(part));
        }
    }
    return {};
}

} // namespace

CommandResult<QStringList> readParts(const CommandLine &line)
{
    const QString &output = line.arguments.first();
    QStringList parts = expandedPatterns(line.arguments.mid(1));
    if (line.values.contains(u"--parts-from"_s)) {
        const auto listed =
            namesInList(line.value(u"--parts-from"_s, QString()), u"--parts-from"_s);
        if (!listed) {
            return listed.fault();
        }
        for (const ListedName &item : *listed) {
            parts << item.name;
        }
    }
    if (parts.isEmpty()) {
        return badUsage(u"an output file and its parts are required"_s);
    }
    if (const auto checked = checkParts(parts, output); !checked) {
        return checked.fault();
    }
    return parts;
}
