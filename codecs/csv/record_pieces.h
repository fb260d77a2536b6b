// Finds the kinds of the columns of a text with separators on several threads.
#pragma once
#include "codecs/csv/record_scan.h"
#include "codecs/values/piece_scan.h"

#include <functional>
#include <vector>

namespace corvanta::csv {

/// Cuts a text after line feeds that seem to be outside of quotes, and scans the pieces. Continues
/// the scan of a text by one thread, and gives the same result. Threads: see PieceScan::Format.
class RecordPieces final : public values::PieceScan::Format
{
public:
    /// Makes the rules of a scan on another thread, which may have objects of their own.
    using MakeValues = std::function<std::vector<RecordScan::Value>()>;

    /// Whether lines of the dialect can be cut: after a lone CR it is not safe, because LF may
    /// follow.
    static bool canCut(const Dialect &dialect) { return !dialect.endsLinesWithCr; }

    /// Continue `scan`, to which the current record of `reader` and those before it were added or
    /// do not belong. `rules` are those of `scan`, whose values `makeValues` makes for each piece.
    /// All must outlive this object.
    RecordPieces(RecordScan &scan, RecordReader &reader, const RecordScan::Rules &rules,
                 MakeValues makeValues);

    /// Scan the records after the current one, as RecordScan::addAll() does.
    void run(std::span<values::ColumnScan> scans, int workers = values::PieceScan::defaultWorkers(),
             qsizetype pieceBytes = values::PieceScan::kPieceBytes);

    size_t cut(std::string_view text) const override;
    void scan(values::Piece *piece) const override;
    void scanInOrder(ByteSource &text) override;
    void skip(qint64 rows, qint64 lines) override;

private:
    RecordScan &m_scan;
    RecordReader &m_reader;
    RecordScan::Rules m_rules;
    MakeValues m_makeValues;
    Dialect m_dialect; // of the text after its first lines
    qint64 m_line;     // on which the text begins that is next
};

} // namespace corvanta::csv
