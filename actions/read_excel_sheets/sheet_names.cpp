#include "actions/read_excel_sheets/sheet_names.h"

#include "codecs/xls/legacy_workbook.h"
#include "codecs/xlsx/sheet_list.h"
#include "io/input/whole_input.h"
#include "io/package_file/package_file.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Log the error for a package without a usable list; always std::nullopt.
std::optional<QStringList> failed(ActionBase &action, const QString &path,
                                  const Fault<xlsx::SheetListError> &fault)
{
    switch (fault.code) {
    case xlsx::SheetListError::NoWorkbook:
        action.fail(u"Excel File '%1':Structure Error (3). File is corrupted?"_s.arg(path),
                    fault.detail);
        break;
    case xlsx::SheetListError::NoSheets:
        action.fail(u"Excel File '%1':Structure Error (4). File is corrupted?"_s.arg(path),
                    fault.detail);
        break;
    case xlsx::SheetListError::NotAnElement:
        action.fail(u"Excel File '%1':Structure Error (6). File is corrupted?"_s.arg(path),
                    fault.detail);
        break;
    }
    return std::nullopt;
}

std::optional<QStringList> namesOfPackage(ActionBase &action, const QString &path)
{
    auto package = PackageInput::open(action.globalParameters(), path);
    if (!package) {
        action.warn(u"Could not open file '%1'."_s.arg(path), package.fault().detail);
        return std::nullopt;
    }
    auto names = xlsx::readSheetList((*package)->reader());
    if (!names) {
        return failed(action, path, names.fault());
    }
    return *std::move(names);
}

/// Why a legacy workbook cannot be read, with the remedy.
QString reasonOf(const Fault<sheet::WorkbookError> &fault, const ByteSource &source)
{
    switch (fault.code) {
    case sheet::WorkbookError::Encrypted:
        return u"it is encrypted (%1): save it without a password"_s.arg(fault.detail);
    case sheet::WorkbookError::NotAWorkbook:
        return fault.detail.isEmpty()
                   ? u"it is not a legacy workbook (.xls)"_s
                   : u"it is not a legacy workbook (.xls), but %1"_s.arg(fault.detail);
    case sheet::WorkbookError::ReadFailed:
        return readFailure(source);
    default:
        return u"the workbook is damaged: %1"_s.arg(fault.detail);
    }
}

QStringList noNames(ActionBase &action, const QString &path, const QString &reason)
{
    if (action.runIsGood()) {
        action.warn(u"Warning: no sheet names are read from '%1'.\n"_s.arg(path), reason);
    }
    return {};
}

QStringList namesOfLegacy(ActionBase &action, const QString &path)
{
    auto input =
        std::make_unique<RunInput>(action.globalParameters(), action.control(), path, false);
    if (!input->file.isOpen()) {
        return noNames(action, path, input->file.reason());
    }
    auto source = randomAccess(std::move(input));
    if (!source) {
        return noNames(action, path, source.fault().detail);
    }
    auto workbook = xls::LegacyWorkbook::open(**source);
    if (!workbook) {
        return noNames(action, path, reasonOf(workbook.fault(), **source));
    }
    QStringList names;
    for (const sheet::SheetInfo &info : (*workbook)->sheets()) {
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
