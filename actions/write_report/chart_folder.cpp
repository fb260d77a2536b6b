// The folder of the charts follows from the kind of the document (ECMA-376 part 1, 14.2.1);
// programs choose it by convention, and it is the same in all known ones.
#include "actions/write_report/chart_folder.h"

#include <array>

using namespace Qt::StringLiterals;

namespace corvanta {

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

} // namespace corvanta
