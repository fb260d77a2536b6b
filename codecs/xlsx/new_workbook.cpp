// The members and their order: see fixed_parts.cpp.
#include "codecs/xlsx/new_workbook.h"

#include "codecs/opc/part_names.h"

namespace corvanta::xlsx {

using opc::Error;

/// Updates have only one format for dates: each further one would let the styles of a book grow.
void NewWorkbook::setCellFormats(sheet::SheetOptions *options) const
{
    if (m_hasDays) {
        options->dayStyle = kDayStyle;
    }
}

/// Writes the members before the sheet, and begins the member of the sheet: its rows are streamed.
Result<void, Error> NewWorkbook::begin(opc::MemberWriter &output)
{
    m_output = &output;
    for (const FixedMember &member : leadingMembers(m_dateFormat, m_hasDays)) {
        if (auto written = output.write(member.name, member.content); !written) {
            return written;
        }
    }
    return output.open(kSheetPart);
}

Result<void, Error> NewWorkbook::openSheet(sheet::SheetWriter &sheet)
{
    return put(sheet, newSheetHead(kTransitional, m_columnWidths));
}

Result<void, Error> NewWorkbook::finishSheet(sheet::SheetWriter &sheet)
{
    return putTail(sheet, newSheetTail(), newSheetRoot(kTransitional), kTransitional, 0);
}

/// The defined name and the addresses of links are known only after the last row.
Result<void, Error> NewWorkbook::finish(const sheet::SheetWriter &sheet, const WorkbookEnd &end)
{
    auto done = m_output->write(kWorkbookPart, newWorkbook(m_sheetName, end.range));
    if (done && !sheet.urls().isEmpty()) {
        opc::Relationships relationships;
        addAddresses(&relationships, sheet, kTransitional, 0);
        done = m_output->write(opc::relationshipPartOf(kSheetPart), relationships.text());
    }
    return done ? m_output->finish() : done;
}

} // namespace corvanta::xlsx
