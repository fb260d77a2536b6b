// Splits text with separators (CSV, RFC 4180) into records and fields.
//
// Line ends are LF or CR LF; a lone CR belongs to its field, unless the dialect says that it ends
// lines too. A byte-order mark at the beginning is
// skipped. Bytes are not decoded: fields are UTF-8 if the text is. Records may have different
// numbers of fields; the caller decides whether that is an error.
// Threads: one at a time per object.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/csv/dialect.h"

#include <span>
#include <string_view>
#include <vector>

namespace corvanta::csv {

enum class Error : quint8 {
    /// The source failed.
    Unreadable = 1,
    /// A record is longer than Limits::recordBytes, for example because a quote is never closed.
    RecordTooLong,
    /// A quoted field is not followed by a separator, a line end or the end of the text, or the
    /// text
    /// ends inside it.
    BadQuotes,
    /// The source begins with the byte-order mark of UTF-16.
    Utf16,
    /// The source begins like a file of another kind, which is the detail of the fault: "a Parquet
    /// file".
    NotText,
};

/// One field of a record: a view of the reader's memory, without a final NUL. See
/// RecordReader::fields() for its lifetime.
struct Field
{
    const char *text;
    /// Number of bytes.
    qsizetype size;
    /// Whether the field was in quotes. Distinguishes "" from an empty field.
    bool isQuoted;

    std::string_view view() const { return {text, static_cast<size_t>(size)}; }
};

/// Reads blocks of bytes and scans records in place. Only fields with doubled quotes are copied.
class RecordReader
{
public:
    /// Memory that the reader may use. A test sets small blocks to check every split of the text.
    struct Limits
    {
        /// Number of bytes read in one call, at least 1. The block doubles when a record does not
        /// fit it.
        size_t blockBytes = size_t(1) << 20;
        /// Maximum number of bytes of a record. The block never grows beyond this.
        size_t recordBytes = size_t(1) << 30;
    };

    /// Read from the current position of `source`, which must outlive the reader.
    RecordReader(ByteSource &source, Dialect dialect, Limits limits);
    RecordReader(ByteSource &source, Dialect dialect)
        : RecordReader(source, std::move(dialect), Limits())
    {
    }
    /// Continue a text at line `line`, 1-based, where a record begins.
    RecordReader(ByteSource &source, Dialect dialect, Limits limits, qint64 line);
    /// Read the rest of a text from its line 1. The bytes must outlive the reader, which does not
    /// copy them.
    RecordReader(std::string_view rest, Dialect dialect);

    /// Read the next record. Returns false at the end of the text. The offset of a fault is that of
    /// the record's first byte. Do not call it again after a fault.
    /// Errors: Unreadable, RecordTooLong, BadQuotes; for the first record also Utf16 and NotText.
    Result<bool, Error> next();

    /// The fields of the record, at least one; valid until the next call of next(). An empty line
    /// is a record of one empty field. Quotes are removed and doubled quotes are single.
    std::span<const Field> fields() const { return {m_fields.data(), m_fieldCount}; }

    /// The bytes of the record as they are in the source, with its line end; valid like fields().
    std::string_view record() const { return {m_bytes + m_recordAt, m_at - m_recordAt}; }

    const Dialect &dialect() const { return m_dialect; }
    /// Line on which the record begins, 1-based, also after a fault. Each LF begins a line, also
    /// one inside quotes; if a CR ends lines, each CR does instead.
    qint64 line() const { return m_line; }
    /// Line on which the next record begins.
    qint64 nextLine() const { return m_nextLine; }

    /// Read the bytes after the current record instead of further records. Returns what
    /// ByteSource::read() does.
    qint64 readRest(void *buffer, qint64 n);

private:
    // What scanRecord() found. NeedMore: the block ends before the end of the record is certain.
    // Skipped: a line that is not a record.
    enum class Scan { Record, NeedMore, Skipped, End, BadQuotes };

    Scan scanRecord();
    bool isSkippedLine(const char *at, const char *end, bool *isCertain) const;
    Scan skipLine(const char *at, const char *end);
    Scan endRecord(const char *at, const char *end);
    const char *scanQuoted(const char *at, const char *end);
    const char *scanPlain(const char *at, const char *end);
    void addField(const char *text, qsizetype size, bool isQuoted);
    void placeCopiedFields();
    Result<void, Error> refill();
    Result<void, Error> readMore();
    Result<void, Error> growBlock();
    Result<void, Error> begin();
    Fault<Error> faultOf(Error code) const;

    ByteSource *m_source; // null: m_bytes is the whole text
    Dialect m_dialect;
    char m_separator;  // of m_dialect
    char m_lineEnd;    // the last byte of a line end: LF, or CR if that ends lines
    bool m_skipsLines; // m_dialect has lines to skip
    size_t m_recordBytes;
    size_t m_firstBlockBytes = 0; // a longer record doubles between scans
    std::vector<char> m_block;
    const char *m_bytes = nullptr; // m_block, or memory of the caller
    size_t m_at = 0;               // next byte of the block
    size_t m_recordAt = 0;         // first byte of the current record
    size_t m_fill = 0;             // bytes in the block
    qint64 m_blockOffset = 0;      // of the block's first byte in the source
    bool m_hasBegun = false;       // the first bytes have been examined
    bool m_isEnded = false;        // the source has no more bytes
    std::vector<Field> m_fields;   // those after m_fieldCount are of earlier records
    size_t m_fieldCount = 0;
    std::vector<char> m_scratch; // texts of the fields with doubled quotes
    qint64 m_line = 1;           // of the current record
    qint64 m_nextLine = 1;       // of the record after it
};

} // namespace corvanta::csv
