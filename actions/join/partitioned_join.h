// Joins two tables of which the second does not fit into memory (Grace hash join).
//
// Rows of both tables are distributed to temporary files by the hash of their keys, so that
// partners are in files of the same number. Each pair of files is then joined in memory; a second
// one that still exceeds the limit is taken in parts, for each of which the first one is read
// again. The joined rows are sorted into the order of the first table.
#pragma once
#include "actions/join/join_params.h"
#include "io/rows/row_sorter.h"
#include "io/rows/row_table.h"

#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// Packed rows are only copied: the caller knows their columns. Call putSecond() and putFirst() for
/// each row, then joinNextPart() until it returns false, then next(). Threads: one at a time.
class PartitionedJoin
{
public:
    struct Options
    {
        JoinType type = JoinType::Inner;
        qint64 tableBytes = 0;                ///< of rows of the second table in memory
        BlockSpool::Options spool = {};       ///< of the files
        rows::RowSorter::Options sorter = {}; ///< of the joined rows
    };
    /// A row of the output.
    struct JoinedRow
    {
        bool hasFirst;
        bool hasSecond;
        const char *packed; ///< the row of the first table, then that of the second
    };

    explicit PartitionedJoin(Options options);

    // All of these have the errors CannotWrite and CannotRead.

    /// Add the next row of the second table; all of them come before the first one of the first.
    Result<void, SpoolError> putSecond(std::string_view key, std::string_view row);
    /// Add the next row of the first table; a key with a missing cell is empty.
    Result<void, SpoolError> putFirst(std::string_view key, std::string_view row);
    /// Returns false when all parts are joined; the rows can then be read.
    Result<bool, SpoolError> joinNextPart();
    /// The next row, valid until the next call; nothing at the end.
    Result<std::optional<JoinedRow>, SpoolError> next();

    /// Why the last call that failed did so.
    const SystemError &error() const { return m_error; }

private:
    /// The rows of both tables whose keys have the same hash, modulo the number of parts.
    struct Part
    {
        std::unique_ptr<rows::RecordSpool> first;
        std::unique_ptr<rows::RecordSpool> second;
    };
    std::unique_ptr<rows::RecordSpool> makeSpool() const
    {
        return std::make_unique<rows::RecordSpool>(m_options.spool);
    }
    /// Keep the reason of a failure.
    template <class T> T checked(T result, const SystemError &error)
    {
        m_error = result ? m_error : error;
        return result;
    }
    /// Store a row with its key and its number in its table.
    Result<void, SpoolError> put(rows::RecordSpool &spool, std::string_view key, qint64 number,
                                 std::string_view row);
    /// Add a row of the output. Its place is that of the row `number` of the first table, or, after
    /// all of those, of the second table if `isAlone`. A table without its row has a null view.
    Result<void, SpoolError> addResult(bool isAlone, std::string_view number,
                                       std::string_view first, std::string_view second);
    /// Returns true if there are further rows, because the table is full.
    Result<bool, SpoolError> fillTable(rows::RecordSpool &second);
    /// Join all rows of the first table of a part with m_table. `isLast`: the second table of the
    /// part has no further rows, so that rows without a partner are known.
    Result<void, SpoolError> joinTable(Part &part, bool isLast);
    Result<void, SpoolError> joinRow(const rows::Record &row, size_t index, bool isLast);
    /// Add the rows of m_table that have found no partner.
    Result<void, SpoolError> addSecondAlone();

    Options m_options;
    std::vector<Part> m_parts;
    size_t m_nextPart = 0;
    qint64 m_firstRows = 0;
    qint64 m_secondRows = 0;
    rows::RecordArena m_record;           // of the row that is put
    rows::RowTable m_table;               // of the part that is joined
    std::vector<bool> m_firstHasPartner;  // by row of the part
    std::vector<bool> m_secondHasPartner; // by row of the table
    rows::RowSorter m_joined;
    SystemError m_error;
};

} // namespace corvanta
