// Writes a new workbook (ECMA-376 part 1; the transitional family).
//
// The sheets are written before the workbook part, because a named range is known only after the
// rows.
#pragma once
#include "codecs/xlsx/workbook_target.h"

namespace corvanta::xlsx {

/// The parts are those of fixed_parts.h. An update adds the same parts to a workbook that lacks
/// them. Threads: one at a time.
class NewWorkbook final : public WorkbookTarget
{
public:
    /// `dateFormat` as for numberFormatId(). The name of the sheet is not shortened or checked; see
    /// newWorkbook() and shortSheetName().
    NewWorkbook(const QString &sheetName, int dateFormat, const MoreFormats &more)
        : m_dateFormat(dateFormat)
        , m_more(more)
    {
        m_sheetName = sheetName;
        m_sheetNames << sheetName;
    }

    // See WorkbookTarget. The default options have the other cell formats of a new workbook.
    QStringList sheetNames() const override { return m_sheetNames; }
    bool isNewSheet() const override { return true; }
    void setCellFormats(sheet::SheetOptions *options) const override;
    Result<void, opc::Error> begin(opc::MemberWriter &output) override;
    Result<void, opc::Error> openSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> finishSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> nextSheet(const sheet::SheetWriter &sheet,
                                       const QString &name) override;
    Result<void, opc::Error> finish(const sheet::SheetWriter &sheet,
                                    const WorkbookEnd &end) override;

private:
    QByteArray currentPart() const { return sheetPart(static_cast<int>(m_sheetNames.size())); }
    Result<void, opc::Error> writePackageMembers();
    Result<void, opc::Error> writeSheetRelationships(const sheet::SheetWriter &sheet);

    QStringList m_sheetNames;
    int m_dateFormat;
    MoreFormats m_more;
};

} // namespace corvanta::xlsx
