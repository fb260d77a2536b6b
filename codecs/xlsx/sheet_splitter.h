// Splits the text of a worksheet at the place of new rows, while the text streams through.
//
// The bytes before that place, the head, are copied with two changes: an empty sheetData element is
// opened, and the dimension element, which would become wrong, is left out (it is optional). Rows
// from the place on are dropped, and everything after sheetData is kept as the tail. Rows in the
// head are not parsed beyond their tags, and their bytes do not change. Memory: one piece and the
// tail.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/opc/markup_scan.h"
#include "codecs/xlsx/namespaces.h"
#include "codecs/xlsx/sheet_tail.h"

#include <utility>
#include <vector>

namespace corvanta::xlsx {

/// A row without a number follows the one before it. In a sheet whose elements have a prefix the
/// main namespace becomes the default in sheetData, so that new rows need no prefix. Threads: one
/// at a time.
class SheetSplitter
{
public:
    /// New rows start at row `startRow1` (1-based), or after the last row for kAppend.
    static constexpr quint64 kAppend = 0;
    explicit SheetSplitter(quint64 startRow1)
        : m_startRow(startRow1)
    {
    }

    /// Take the next bytes of the sheet; a piece may end anywhere, also inside a character. After a
    /// fault no other call is allowed. Errors: Encoding, Malformed, Unexpected (no worksheet, or
    /// an invalid row number), TooLarge.
    Result<void, opc::Error> push(QByteArrayView piece);
    /// End the sheet, and check that the tail is well-formed. Errors: as push(); Malformed also for
    /// a sheet that is truncated.
    Result<void, opc::Error> finish();

    /// The bytes before the new rows that are known after push() and finish(). Each byte is
    /// returned once.
    QByteArray takeHead() { return std::exchange(m_head, {}); }

    // After finish():
    /// The number that the first new row gets.
    quint64 firstRow1() const { return m_startRow == kAppend ? m_lastRow + 1 : m_startRow; }
    /// The last row that has a cell with content; for kAppend only.
    quint64 lastRowWithCells() const { return m_lastRowWithCells; }
    /// From the closing tag of sheetData to the end, unchanged.
    const QByteArray &tail() const { return m_tail; }
    /// What the tail contains.
    const TailFacts &tailFacts() const { return m_tailFacts; }
    /// Whether rows starting at the first new one are dropped; otherwise none is.
    bool dropsRows() const { return m_startRow != kAppend; }
    /// Whether a dropped row contained a formula; the workbook's calculation chain is then wrong.
    bool hasDroppedFormula() const { return m_hasDroppedFormula; }
    /// How rows begin: "<row" with the prefix of the sheet, and also without it where an earlier
    /// update has written such rows. Empty before sheetData.
    const std::vector<QByteArray> &rowStarts() const { return m_rowStarts; }
    /// The worksheet's root tag, for the names of its namespaces.
    const QByteArray &rootTag() const { return m_rootTag; }
    /// The family of the worksheet's namespace.
    Family family() const { return m_family; }

private:
    /// Where the scan is: before sheetData, in its rows before and after the place, or after it.
    enum class Place : quint8 { Front, Rows, DroppedRows, Tail };

    Result<void, opc::Error> scan();
    /// False when the text ends before or inside the next markup.
    Result<bool, opc::Error> takeNext();
    // In the front: depth 1 is the root, depth 2 its children.
    Result<void, opc::Error> takeFrontTag(const opc::Tag &tag);
    Result<void, opc::Error> closeFrontTag(const opc::Tag &tag);
    Result<void, opc::Error> takeRoot(const opc::Tag &tag);
    void openSheetData(const opc::Tag &tag);
    // In the rows, nearly all of the sheet.
    qsizetype findRowsMarkup() const;
    Result<void, opc::Error> takeRowsTag(const opc::Tag &tag);
    Result<void, opc::Error> takeRow(const opc::Tag &tag);
    /// Whether a tag in sheetData has this local name, with the prefix of the sheet or with none
    /// where the main namespace is the default.
    bool isOwn(const opc::Tag &tag, QByteArrayView local) const;
    /// Note whether the current row has a cell with content before `offset`.
    void noteCells(qsizetype offset);
    /// The same at the end of a row.
    void endRow(qsizetype offset);
    /// Move the text before `offset` to the head, unless it is dropped.
    void keepUpTo(qsizetype offset);

    quint64 m_startRow;
    quint64 m_lastRow = 0;
    quint64 m_row = 0; // the current one
    quint64 m_lastRowWithCells = 0;
    Place m_place = Place::Front;
    QByteArray m_text;     // not yet consumed
    qsizetype m_kept = 0;  // of m_text: up to here in m_head or dropped
    qsizetype m_at = 0;    // of m_text: scanned up to here
    qsizetype m_cells = 0; // of m_text: searched for cells up to here
    int m_depth = 0;       // in the front
    bool m_isInDimension = false;
    QByteArray m_prefix;
    QByteArray m_rowsEnd; // "/sheetData" with the prefix
    QByteArray m_rowName;
    QByteArray m_formulaName;
    QByteArray m_cellEnd; // "</c>" with the prefix; an empty cell has none
    std::vector<QByteArray> m_rowStarts;
    bool m_isMainDefault = false; // the root makes the main namespace the default
    bool m_hasPlainRows = false;  // sheetData of a sheet with a prefix does
    QByteArray m_head;
    QByteArray m_tail;
    TailFacts m_tailFacts;
    QByteArray m_rootTag;
    Family m_family;
    bool m_isEncodingKnown = false;
    bool m_hasDroppedFormula = false;
    bool m_hasCells = false; // the current row
};

} // namespace corvanta::xlsx
