// Updates an existing workbook: copies its package to a new one and edits only the parts that
// change. Those parts are edited as text; all other members are copied unmodified.
#pragma once
#include "codecs/opc/package_copy.h"
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/row_styles.h"
#include "codecs/xlsx/sheet_splitter.h"
#include "codecs/xlsx/workbook_part.h"
#include "codecs/xlsx/workbook_target.h"

#include <functional>
#include <memory>

namespace corvanta::xlsx {

/// Call addSheet() or changeSheet(), then addCellFormats(), before the calls of WorkbookTarget.
/// What is written: docs/formats/xlsx-update.md.
class UpdatedWorkbook final : public WorkbookTarget
{
public:
    /// Read the parts that an update changes; nothing is written before begin(). `source` must
    /// outlive the workbook. `isRunning` as for opc::PackageCopy. Errors: NoMember, Damaged, and
    /// those of the texts of the parts.
    static Result<std::unique_ptr<UpdatedWorkbook>, opc::Error>
    open(zip::PackageReader &source, std::function<bool()> isRunning);

    /// The workbook as read.
    const Workbook &workbook() const { return m_workbook; }

    /// The kind of sheet `index` (from 0), the last word of its relationship's type: "worksheet",
    /// "chartsheet" and so on; empty if it has no relationship.
    QString sheetKind(size_t index) const;

    /// Rows go into a new sheet after the others. `name` must be free in the workbook and short
    /// enough; see freeSheetName().
    void addSheet(const QString &name);
    /// Rows go into sheet `index` (from 0): from row `startRow1` (1-based) on, or after the last
    /// row for SheetSplitter::kAppend. Errors: Unexpected (the sheet has no relationship to a
    /// part), NoMember, Damaged, and those of the texts.
    Result<void, opc::Error> changeSheet(size_t index, quint64 startRow1);

    /// Appended rows get the cell formats of the last row, as far as it has them. Call it before
    /// addCellFormats().
    void keepRowStyles() { m_rowStyles.emplace(); }

    enum class CellFormats : quint8 {
        Added,
        AddedTable, ///< the part had no table of cell formats
        NotAdded,   ///< no styles part (one is added), or one that cannot be read
    };
    /// Add the formats of date and hyperlink cells. Does not fail: with NotAdded the update
    /// continues, and cells have the formats 1 and 2 of the workbook, whatever these are.
    /// `dateFormat` as for dateFormatAt(). The format of `more` for days is not added.
    CellFormats addCellFormats(int dateFormat, const MoreFormats &more);

    // See WorkbookTarget.
    QStringList sheetNames() const override;
    bool isNewSheet() const override { return !m_splitter; }
    void setCellFormats(sheet::SheetOptions *options) const override;
    Result<void, opc::Error> begin(opc::MemberWriter &output) override;
    Result<void, opc::Error> openSheet(sheet::SheetWriter &sheet) override;
    SheetConflicts conflicts(const WrittenCells &written) const override;
    bool removesOlderRows() const override { return m_splitter && m_splitter->dropsRows(); }
    Result<void, opc::Error> finishSheet(sheet::SheetWriter &sheet) override;
    Result<void, opc::Error> nextSheet(const sheet::SheetWriter &sheet,
                                       const QString &name) override;
    Result<void, opc::Error> finish(const sheet::SheetWriter &sheet,
                                    const WorkbookEnd &end) override;

private:
    UpdatedWorkbook(zip::PackageReader &source, std::function<bool()> isRunning)
        : m_copy(source, std::move(isRunning))
    {
    }

    /// Read what the workbook part, its relationships and the content types say.
    Result<void, opc::Error> readParts();
    // Names of parts: of a new sheet, and of the relationships of the written sheet.
    QByteArray freeSheetPart() const;
    QByteArray addRelationship(const char *kind, const QByteArray &part);
    QByteArray sheetRelationshipPart() const;
    const opc::Relationship *relationshipOf(const SheetEntry &sheet) const;
    Result<void, opc::Error> readSheetRelationships();
    /// Errors: NoMember, Damaged, Unexpected, and those of the text.
    Result<Table, opc::Error> readTableOf(const opc::Relationship &one);
    /// Read the tables of the changed sheet, which new rows may cut or hide.
    void readTables();
    CellFormats changeStyles(const QByteArray &part, int dateFormat, const MoreFormats &more);
    void addMoreFormats(const MoreFormats &more, QByteArray *text);
    /// The formats for the columns of `sheet`; dates have only formats that show dates.
    std::vector<std::optional<quint64>> stylesFor(const sheet::SheetWriter &sheet) const;
    void removeCalculationChain();
    Result<void, opc::Error> writeSheetRelationships(const sheet::SheetWriter &sheet);

    opc::PackageCopy m_copy;
    opc::ContentTypes *m_types = nullptr; // of m_copy
    QByteArray m_workbookPart;
    QByteArray m_workbookText;
    Workbook m_workbook;
    opc::Relationships m_relationships; // of the workbook

    QByteArray m_stylesPart;                 // empty: there are no styles that can be read
    QByteArray m_styles;                     // with the formats of addCellFormats()
    QByteArray m_sheetPart;                  // as stored, for a changed sheet
    std::vector<SheetEntry> m_addedSheets;   // the new sheets
    std::optional<SheetSplitter> m_splitter; // of a changed sheet
    std::optional<RowStyles> m_rowStyles;    // if appended rows get them
    std::vector<sheet::NumberForm> m_forms;  // of the cell formats, for m_rowStyles
    opc::Relationships m_sheetRelationships;
    std::vector<Table> m_tables; // of a changed sheet
    quint64 m_takenLinkIds = 0;  // ids up to "rId" + this are not used for links
    quint64 m_dateStyle = 1;
    quint64 m_dateTimeStyle = 1;
    std::optional<quint64> m_dateTimeDayStyle;
    quint64 m_timeStyle = 1;
    quint64 m_linkStyle = 2;
};

} // namespace corvanta::xlsx
