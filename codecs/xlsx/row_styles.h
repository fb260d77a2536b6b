// The cell formats of the last row of a sheet, for rows that are appended to it.
#pragma once
#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <vector>

namespace corvanta::xlsx {

/// Threads: one at a time.
class RowStyles
{
public:
    /// Take the next bytes of a sheet, up to the end of its last row; a piece may end anywhere.
    /// `rowStarts` as in SheetSplitter; empty while no row can have begun.
    void push(QByteArrayView piece, const std::vector<QByteArray> &rowStarts);
    /// The s attribute of the cells of the last row, by column; columns without it have none. Empty
    /// if the sheet has fewer than two rows, because the only one is usually a header.
    std::vector<std::optional<quint64>> styles() const;

private:
    QByteArray m_row; // from the beginning of the last row on
    bool m_hasRowBefore = false;
};

} // namespace corvanta::xlsx
