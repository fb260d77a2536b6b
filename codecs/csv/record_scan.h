// Finds the kinds of the columns of a text with separators, without making rows.
#pragma once
#include "codecs/csv/record_reader.h"
#include "codecs/values/column_scan.h"

#include <QByteArray>

#include <functional>
#include <span>

namespace corvanta::csv {

/// Which fields are values. Threads: one at a time per object.
class RecordScan
{
public:
    /// Gives the value for the text of a field, such as a date in another format, valid until its
    /// next call.
    using Value = std::function<std::string_view(std::string_view)>;

    struct Rules
    {
        char decimalPoint = '.';
        /// Fields without quotes that are missing, in addition to empty ones. Must outlive the
        /// scan.
        std::span<const QByteArray> nullValues = {};
        /// A record may have fewer fields than columns, or more, which are not read.
        bool fillsRagged = false;
        /// For each column; null: the text is the value. Empty: all are null.
        std::span<const Value> values = {};
    };

    /// One element of `scans` per column, which must outlive this object.
    RecordScan(std::span<values::ColumnScan> scans, const Rules &rules)
        : m_scans(scans)
        , m_rules(rules)
    {
    }

    /// Scan the current record of `reader`. Returns false for a record with another number of
    /// fields than columns, which is not read; an empty line is not a row.
    bool add(const RecordReader &reader);
    /// Scan the records that follow, until there have been `rows` rows in all. Stops at the end and
    /// at the first record that is not read: the reader of the rows reports it. Returns whether it
    /// stopped at the end.
    bool addAll(RecordReader &reader, qint64 rows);
    /// Count rows that another scan has examined.
    void skip(qint64 rows) { m_rows += rows; }
    /// Rows scanned so far, of all texts.
    qint64 rows() const { return m_rows; }

private:
    bool isNull(const Field &field) const;
    std::string_view valueOf(size_t column, const Field &field) const;

    std::span<values::ColumnScan> m_scans;
    Rules m_rules;
    qint64 m_rows = 0;
};

} // namespace corvanta::csv
