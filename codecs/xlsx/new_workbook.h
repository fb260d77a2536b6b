// Writes a new workbook with one sheet.
#pragma once
#include "codecs/xlsx/workbook_target.h"

namespace corvanta::xlsx {

/// The parts are those of fixed_parts.h. An update adds the same parts to a workbook that lacks
/// them. Threads: one at a time.
class NewWorkbook final : public WorkbookTarget
{
public:
    /// `dateFormat` as for numberFormatId(). The name of the sheet is written as it is; see
    /// newWorkbook().
    NewWorkbook(const QString &sheetName, int dateFormat)
        : m_dateFormat(dateFormat)
    {
        m_sheetName = sheetName;
    }

    // See WorkbookTarget. The default options have the cell formats of a new workbook.
    void setCellFormats(sheet::SheetOptions *) const override {}
    Result<void, opc::Error> begin(opc::MemberWriter &output) override;
    Result<void, opc::Error> openSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> finishSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> finish(const sheet::SheetWriter &sheet,
                                    const WorkbookEnd &end) override;

private:
    int m_dateFormat;
};

} // namespace corvanta::xlsx
