// The members and their order: see fixed_parts.cpp.
#include "codecs/xlsx/new_workbook.h"

#include "codecs/opc/part_names.h"

namespace corvanta::xlsx {

using opc::Error;

void NewWorkbook::setCellFormats(sheet::SheetOptions *options) const
{
    setMoreStyles(m_more, options);
    setLookStyles(options);
}

// They list the sheets, but not their relationships, which programs find by name.
Result<void, Error> NewWorkbook::writePackageMembers()
{
    for (const FixedMember &member : packageMembers(static_cast<int>(m_sheetNames.size()))) {
        if (auto written = m_output->write(member.name, member.content); !written) {
            return written;
        }
    }
    return {};
}

/// Writes the members before the sheet, and begins the member of the sheet: its rows are streamed.
Result<void, Error> NewWorkbook::begin(opc::MemberWriter &output)
{
    m_output = &output;
    // How many sheets there will be is known only at the end.
    auto done = m_look.mayContinue ? Result<void, Error>() : writePackageMembers();
    if (done) {
        QByteArray styles = newStyles(m_dateFormat, m_more);
        addLookTo(&styles); // these styles can be read
        done = output.write(kStylesPart, styles);
    }
    return done ? output.open(currentPart()) : done;
}

Result<void, Error> NewWorkbook::openSheet(sheet::SheetWriter &sheet)
{
    return put(sheet, newSheetHead(kTransitional, m_look));
}

Result<void, Error> NewWorkbook::finishSheet(sheet::SheetWriter &sheet)
{
    return putTail(sheet, tailOf(sheet), newSheetRoot(kTransitional), kTransitional, 0);
}

/// The addresses of links are known only after the last row.
Result<void, Error> NewWorkbook::writeSheetRelationships(const sheet::SheetWriter &sheet)
{
    if (sheet.urls().isEmpty()) {
        return {};
    }
    opc::Relationships relationships;
    addAddresses(&relationships, sheet, kTransitional, 0);
    return m_output->write(opc::relationshipPartOf(currentPart()), relationships.text());
}

// The relationships of a sheet are written while the name of its part is the current one.
Result<void, Error> NewWorkbook::nextSheet(const sheet::SheetWriter &sheet, const QString &name)
{
    const auto done = writeSheetRelationships(sheet);
    m_sheetName = name;
    m_sheetNames << name;
    return done ? m_output->open(currentPart()) : done;
}

Result<void, Error> NewWorkbook::finish(const sheet::SheetWriter &sheet, const WorkbookEnd &end)
{
    auto done = m_output->write(kWorkbookPart, newWorkbook(m_sheetNames, definedNames(end)));
    done = done ? writeSheetRelationships(sheet) : done;
    done = done && m_look.mayContinue ? writePackageMembers() : done;
    return done ? m_output->finish() : done;
}

} // namespace corvanta::xlsx
