// Writes a new workbook with one sheet.
#pragma once
#include "codecs/xlsx/workbook_target.h"

namespace corvanta::xlsx {

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

    void setCellFormats(sheet::SheetOptions *) const override {} // the defaults
    Result<void, opc::Error> begin(opc::MemberWriter &output) override;
    Result<void, opc::Error> openSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> finishSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> finish(const sheet::SheetWriter &sheet,
                                    const WorkbookEnd &end) override;

private:
    int m_dateFormat;
};

} // namespace corvanta::xlsx
