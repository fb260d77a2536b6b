// The folder of the charts follows from the kind of the document (ECMA-376 part 1, 14.2.1);
// programs choose it by convention, and it is the same in all known ones.
#include "actions/write_report/chart_parts.h"

#include "codecs/opc/markup_scan.h"
#include "codecs/opc/member_writer.h"

#include <array>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Whether the member is directly or deeper in the folder. Some packers write "\" for "/".
bool isInFolder(QByteArray member, const QByteArray &folder)
{
    member.replace('\\', '/');
    return member.size() > folder.size() &&
           member.first(folder.size()).compare(folder, Qt::CaseInsensitive) == 0;
}

/// Keep a part if it has tags.
Result<void, opc::Error> addPart(zip::PackageReader &reader, const zip::Member &member,
                                 TemplateCharts *found)
{
    auto text = reader.readWhole(member);
    if (!text) {
        return opc::memberFault(text.fault().code, member.name);
    }
    if (!opc::isUtf8Text(*text)) {
        found->otherEncodings << QString::fromUtf8(member.name);
        return {};
    }
    ChartPart part{member.name, *std::move(text), {}};
    auto tags = charts::findTags(part.text);
    if (!tags) {
        return Fault{tags.fault().code, QString::fromUtf8(member.name)};
    }
    part.tags = *std::move(tags);
    if (!part.tags.empty()) {
        found->parts.push_back(std::move(part));
    }
    return {};
}

} // namespace

QByteArray chartFolderOf(const QString &fileName)
{
    struct Folder
    {
        QLatin1StringView extension;
        const char *folder;
    };
    constexpr std::array<Folder, 3> kFolders{
        {{".xlsx"_L1, "xl/charts/"}, {".docx"_L1, "word/charts/"}, {".pptx"_L1, "ppt/charts/"}}};
    for (const Folder &folder : kFolders) {
        if (fileName.endsWith(folder.extension, Qt::CaseInsensitive)) {
            return folder.folder;
        }
    }
    return {};
}

Result<TemplateCharts, opc::Error> readCharts(zip::PackageReader &reader, const QByteArray &folder)
{
    TemplateCharts found;
    const QByteArray top = folder.first(folder.indexOf('/') + 1);
    for (const zip::Member &member : reader.members()) {
        found.isOfKind = found.isOfKind || isInFolder(member.name, top);
        // Of several members of one name the first counts.
        const bool isFirst = reader.find(member.name) == &member;
        if (isFirst && isInFolder(member.name, folder) && member.name.endsWith(".xml")) {
            if (const auto added = addPart(reader, member, &found); !added) {
                return added.fault();
            }
        }
    }
    return found;
}

} // namespace corvanta
