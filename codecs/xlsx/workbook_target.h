// A workbook that is being written: a new one, or a copy of an existing one with changes.
#pragma once
#include "codecs/opc/member_writer.h"
#include "codecs/opc/relationships.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/cell_range.h"
#include "codecs/xlsx/fixed_parts.h"
#include "codecs/xlsx/namespaces.h"
#include "codecs/xlsx/sheet_look.h"
#include "codecs/xlsx/workbook_part.h"

#include <QStringList>

#include <vector>

namespace corvanta::xlsx {

/// What is written after the sheet, in the part of the workbook itself.
struct WorkbookEnd
{
    std::optional<NamedRange> range = {}; ///< a name for cells of the sheet
    bool recalculate = false;             ///< programs calculate all formulas when they open it
};

/// What of a changed sheet no longer agrees with the written cells.
struct SheetConflicts
{
    QStringList tables;                  ///< names of tables that lost their header row
    std::vector<CellRange> mergedRanges; ///< hide written cells
    /// Rows directly below a table, which does not include them.
    struct RowsBelow
    {
        QString table;       ///< its name
        qint64 firstRow = 1; ///< from 1
        qint64 count = 0;
    };
    std::vector<RowsBelow> rowsBelow;
    /// Rows without a value directly above appended rows. Many programs store formatted rows.
    qint64 emptyRows = 0;
};

/// Rows are written with the SheetWriter that the caller creates after begin() in the open member.
/// After a fault no other call is allowed, and the caller discards the package. Order of the calls:
/// setLook(), begin(), setCellFormats(), openSheet(), the rows, finishSheet(), finish(). Between
/// the last two, nextSheet(), openSheet(), the rows and finishSheet() may be repeated. Errors are
/// those of opc::PackageCopy and of the texts of the parts. Threads: one at a time.
class WorkbookTarget
{
public:
    virtual ~WorkbookTarget() = default;

    /// The name of the sheet to which rows are written.
    const QString &sheetName() const { return m_sheetName; }
    /// The names of all sheets, the added ones included.
    virtual QStringList sheetNames() const = 0;
    /// Whether the sheet is one that the target adds. Only such a sheet gets the look.
    virtual bool isNewSheet() const = 0;
    /// Set the cell formats and day 0 of the workbook in the options of its sheet. Valid after
    /// begin().
    virtual void setCellFormats(sheet::SheetOptions *options) const = 0;
    /// How new sheets look. Column widths may change until openSheet(), everything else until
    /// begin().
    void setLook(SheetLook look) { m_look = std::move(look); }
    void setColumnWidths(std::vector<double> widths) { m_look.widths = std::move(widths); }

    /// Write the members before the sheet and start the sheet's member. `output` must outlive the
    /// target. The look is left out if the workbook has no styles that can be read.
    virtual Result<void, opc::Error> begin(opc::MemberWriter &output) = 0;
    /// Write the sheet up to its new rows, and set the number of the first one.
    virtual Result<void, opc::Error> openSheet(sheet::SheetWriter &sheet) = 0;
    /// Valid after openSheet(). A new sheet has none.
    virtual SheetConflicts conflicts(const WrittenCells &) const { return {}; }
    /// Whether older rows starting at the first new one are removed. Valid after openSheet().
    virtual bool removesOlderRows() const { return false; }
    /// Write the rest of the sheet.
    virtual Result<void, opc::Error> finishSheet(sheet::SheetWriter &sheet) = 0;
    /// Write what belongs to the finished sheet, and start the member of a new one after all
    /// others. `name` must be free and short enough. Needs SheetLook::mayContinue.
    virtual Result<void, opc::Error> nextSheet(const sheet::SheetWriter &sheet,
                                               const QString &name) = 0;
    /// Write the other members and the directory of the package, which is then complete.
    virtual Result<void, opc::Error> finish(const sheet::SheetWriter &sheet,
                                            const WorkbookEnd &end) = 0;

    /// Hyperlinks of the sheet, older ones included; 0 if none is new. Valid after finishSheet().
    qint64 linkCount() const { return m_linkCount; }

protected:
    WorkbookTarget() = default;

    /// Add the cell formats of the look to a styles part. Returns false, and changes nothing, if
    /// they cannot be added.
    bool addLookTo(QByteArray *styles);
    void setLookStyles(sheet::SheetOptions *options) const;
    /// The tail of a new sheet. Keeps the name of its filter.
    QByteArray tailOf(const sheet::SheetWriter &sheet);
    /// The names for the workbook part.
    std::vector<DefinedName> definedNames(const WorkbookEnd &end) const;
    /// Write XML into the sheet.
    static Result<void, opc::Error> put(sheet::SheetWriter &sheet, QByteArrayView xml);
    /// Write the tail with the links of the sheet, and end the sheet's member. The relationship of
    /// address N gets the id "rId" + (`takenIds` + N).
    Result<void, opc::Error> putTail(sheet::SheetWriter &sheet, const QByteArray &tail,
                                     const QByteArray &rootTag, const Family &family,
                                     quint64 takenIds);
    /// Add the addresses of the sheet's links, in the same order.
    static void addAddresses(opc::Relationships *relationships, const sheet::SheetWriter &sheet,
                             const Family &family, quint64 takenIds);

    // Set by the derived class before begin().
    QString m_sheetName;
    opc::MemberWriter *m_output = nullptr; // set by begin()
    SheetLook m_look;

private:
    LookStyles m_lookStyles;
    std::vector<DefinedName> m_filterNames;
    qint64 m_linkCount = 0;
};

} // namespace corvanta::xlsx
