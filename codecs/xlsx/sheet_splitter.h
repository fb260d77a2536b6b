// codecs/xlsx/sheet_splitter.h
// Split the text of a worksheet at the place where new rows go, while it streams through.
//
// The bytes in front of that place come out as they go in; only two things change there: an empty
// sheetData element is opened, and the dimension element, which would no longer be true, is left
// out (it is optional). Rows from the place on are dropped, and what follows sheetData is kept as
// the tail. Memory: one piece and the tail.
#pragma once
#include "codecs/opc/markup_scan.h"
#include "codecs/opc/namespaces.h"

namespace corvanta::xlsx {

/// Threads: one at a time.
class SheetSplitter
{
public:
    /// New rows begin at row `startRow1` (1-based), or behind the last row for kAppend.
    static constexpr quint64 kAppend = 0;
    explicit SheetSplitter(quint64 startRow1)
        : m_startRow(startRow1)
    {
    }

    /// Take the next bytes of the sheet. Errors: Encoding, Malformed, Unexpected (no worksheet, or
    /// a row number that is none), TooLarge.
    Result<void, Error> push(QByteArrayView piece);
    /// Say that this was all. Errors: as push().
    Result<void, Error> finish();

    /// What goes in front of the new rows, as far as it is known after push() and finish(); each
    /// byte is given once.
    QByteArray takeHead() { return std::exchange(m_head, {}); }

    // After finish():
    /// The number that the first new row gets.
    quint64 firstRow1() const { return m_startRow == kAppend ? m_lastRow + 1 : m_startRow; }
    /// From the closing tag of sheetData to the end.
    const QByteArray &tail() const { return m_tail; }
    /// Whether a row that was dropped held a formula.
    bool hasDroppedFormula() const { return m_hasDroppedFormula; }
    /// The worksheet's root tag, for the names of its namespaces.
    const QByteArray &rootTag() const { return m_rootTag; }
    Family family() const { return m_family; }

private:
    enum class Place : quint8 { Front, Rows, DroppedRows, Tail };

    Result<void, Error> scan();
    Result<bool, Error> takeNext();
    Result<void, Error> takeFrontTag(const Tag &tag);
    Result<void, Error> takeRoot(const Tag &tag);
    void openSheetData(const Tag &tag);
    qsizetype findRowsMarkup() const;
    Result<void, Error> takeRowsTag(const Tag &tag);
    Result<void, Error> takeRow(const Tag &tag);
    void keepUpTo(qsizetype offset);

    quint64 m_startRow;
    quint64 m_lastRow = 0;
    Place m_place = Place::Front;
    QByteArray m_text;    // not yet consumed
    qsizetype m_kept = 0; // of m_text: what is already in m_head or dropped
    qsizetype m_at = 0;   // of m_text: scanned up to here
    int m_depth = 0;      // in the front
    bool m_isInDimension = false;
    QByteArray m_prefix;
    QByteArray m_rowsEnd; // "/sheetData" with the prefix
    QByteArray m_rowName;
    QByteArray m_formulaName;
    QByteArray m_head;
    QByteArray m_tail;
    QByteArray m_rootTag;
    Family m_family;
    bool m_isEncodingKnown = false;
    bool m_hasDroppedFormula = false;
};

struct HyperlinkUse
{
    QByteArray cell; ///< "B7"
    QByteArray relationshipId;
};

/// The tail with hyperlinks put into its list of them, which is made where the schema wants it
/// (ECMA-376 part 1, 18.3.1.99); older links of the same cells give way. `rootTag` and `family` as
/// the splitter gives them. Errors: Malformed.
Result<QByteArray, Error> withHyperlinks(const QByteArray &tail, const QByteArray &rootTag,
                                         const Family &family,
                                         const std::vector<HyperlinkUse> &uses);

/// The highest N of the relationship ids "rId" + N that the tail uses; 0 without any.
/// Errors: Malformed.
Result<quint64, Error> highestUsedId(QByteArrayView tail);

} // namespace corvanta::xlsx
