// Ranges of cells that an update may damage: merged ranges and tables (ECMA-376 part 1, 18.3.1.55
// and 18.5.1.2). Threads: pure functions.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

namespace corvanta::xlsx {

/// A rectangle of cells; all bounds are inclusive.
struct CellRange
{
    qint64 firstRow = 1; ///< from 1
    qint64 lastRow = 1;
    int firstColumn = 0; ///< from 0
    int lastColumn = 0;
};

/// Parse a reference such as "B2:D9", "B2" or "$B$2:$D$9" (18.18.62); std::nullopt for any other
/// text.
std::optional<CellRange> parseRange(QByteArrayView reference);
/// The reference of a range: "B2:D9".
QString rangeText(const CellRange &range);

/// The cells that an update writes.
struct WrittenCells
{
    CellRange range;    ///< lastRow is below firstRow if no row was written
    QStringList header; ///< names in the first row; empty if it is not a header row
    /// Older rows starting at the first one are removed, not only those that are written.
    bool removesOlderRows = false;
};

/// Whether a merged range shows only one of the written cells in it, or none.
bool hidesCells(const CellRange &merged, const WrittenCells &written);

/// A table of a worksheet, as far as its cells must agree with it.
struct Table
{
    QString name;    ///< as programs show it
    CellRange range; ///< with its header row
    bool hasHeader = true;
    QStringList columns; ///< the names that the cells of the header row must have
    int totalsRows = 0;  ///< at the end of the range
};

/// Read a table part. Errors: Encoding, Malformed, TooLarge, Unexpected (no table, or no valid
/// range).
Result<Table, opc::Error> readTable(QByteArrayView text);
/// Whether the header row of the table no longer has the names of its columns.
bool losesHeader(const Table &table, const WrittenCells &written);
/// The number of written rows that continue the table below its last row, and so are not part of
/// it.
qint64 rowsBelow(const Table &table, const WrittenCells &written);

} // namespace corvanta::xlsx
