#include "actions/read_excel_sheets/sheet_names.h"

#include "actions/workbook/workbook_formats.h"
#include "codecs/xlsx/sheet_list.h"
#include "corvanta/failure_reason.h"
#include "io/package_file/package_file.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Log the error for a package without a usable list; always std::nullopt.
std::optional<QStringList> failed(ActionBase &action, const QString &path,
                                  xlsx::SheetListError error, const QString &reason)
{
    switch (error) {
    case xlsx::SheetListError::NoWorkbook:
        action.fail(u"Excel File '%1':Structure Error (3). File is corrupted?"_s.arg(path), reason);
        break;
    case xlsx::SheetListError::NoSheets:
        action.fail(u"Excel File '%1':Structure Error (4). File is corrupted?"_s.arg(path), reason);
        break;
    case xlsx::SheetListError::NotAnElement:
        action.fail(u"Excel File '%1':Structure Error (6). File is corrupted?"_s.arg(path), reason);
        break;
    }
    return std::nullopt;
}

/// The names in a package. Only its list of sheets is read, never a sheet.
std::optional<QStringList> namesOfPackage(ActionBase &action, const QString &path)
{
    auto package = PackageInput::open(action.globalParameters(), path);
    if (!package) {
        action.warn(u"Could not open file '%1'."_s.arg(path), package.fault().detail);
        return std::nullopt;
    }
    auto names = xlsx::readSheetList((*package)->reader());
    if (!names) {
        const QString refused = failureReason(path, FileUse::Read, (*package)->error());
        return failed(action, path, names.fault().code,
                      refused.isEmpty() ? names.fault().detail : refused);
    }
    return *std::move(names);
}

/// The names in a legacy workbook. Charts and modules are in its list too.
QStringList namesOfLegacy(ActionBase &action, const QString &path)
{
    QStringList names;
    auto workbook = openWorkbook(action, kLegacyWorkbookFormat, path, InputFile::Report::Failure);
    if (!workbook) {
        if (action.runIsGood()) {
            action.warn(u"Warning: no sheet names are read from '%1'.\n"_s.arg(path),
                        workbook.fault().detail);
        }
        return names;
    }
    for (const sheet::SheetInfo &info : workbook->reader->sheets()) {
        names << info.name;
    }
    return names;
}

} // namespace

std::optional<QStringList> sheetNamesOf(ActionBase &action, const QString &path)
{
    // Kept for saved graphs: letter case counts, so data.XLSX is read as a legacy workbook.
    if (path.endsWith(u".xlsx")) {
        return namesOfPackage(action, path);
    }
    return namesOfLegacy(action, path);
}

} // namespace corvanta
