// Where a text is cut (RFC 4180, section 2); "|" is the end of a piece:
//
//   1;"a<LF>b";x<LF>|2;c<LF>3;"d       a line feed after an even number of quotes ends a record
#include "codecs/csv/record_pieces.h"

#include "codecs/csv/find_first_of.h"

#include <limits>

namespace corvanta::csv {

namespace {

constexpr qint64 kAllRows = std::numeric_limits<qint64>::max();

/// The bytes that a reader has not read as records.
class RestOfReader final : public ByteSource
{
public:
    explicit RestOfReader(RecordReader &reader)
        : m_reader(reader)
    {
    }
    qint64 read(void *buffer, qint64 n) override { return m_reader.readRest(buffer, n); }
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    RecordReader &m_reader;
};

} // namespace

RecordPieces::RecordPieces(RecordScan &scan, RecordReader &reader, const RecordScan::Rules &rules,
                           MakeValues makeValues)
    : m_scan(scan)
    , m_reader(reader)
    , m_rules(rules)
    , m_makeValues(std::move(makeValues))
    , m_dialect(reader.dialect())
    , m_line(reader.nextLine())
{
    m_dialect.skippedLines = 0;
}

void RecordPieces::run(std::span<values::ColumnScan> scans, int workers, qsizetype pieceBytes)
{
    RestOfReader rest(m_reader);
    values::PieceScan(*this, scans, workers, pieceBytes).run(rest);
}

/// After the last line feed with an even number of quotes before it. Quotes that are literal may
/// leave none; then any line feed may be right.
size_t RecordPieces::cut(std::string_view text) const
{
    const int quote = m_dialect.quote;
    bool isQuoted =
        quote >= 0 && hasOddNumberOf(text.data(), text.size(), static_cast<char>(quote));
    for (size_t at = text.size(); at > 0; --at) {
        const char c = text[at - 1];
        if (c == '\n' && !isQuoted) {
            return at;
        }
        isQuoted = isQuoted != (c == quote);
    }
    return text.rfind('\n') + 1; // npos + 1 is 0
}

void RecordPieces::scan(values::Piece *piece) const
{
    const std::string_view text(piece->text.constData(), static_cast<size_t>(piece->text.size()));
    RecordReader reader(text, m_dialect);
    const std::vector<RecordScan::Value> values = m_makeValues();
    RecordScan::Rules rules = m_rules;
    rules.values = values;
    RecordScan scan(piece->scans, rules);
    piece->isComplete = scan.addAll(reader, kAllRows);
    piece->rows = scan.rows();
    piece->lines = reader.nextLine() - 1;
}

void RecordPieces::scanInOrder(ByteSource &text)
{
    RecordReader reader(text, m_dialect, {}, m_line);
    m_scan.addAll(reader, kAllRows);
    m_line = reader.nextLine();
}

void RecordPieces::skip(qint64 rows, qint64 lines)
{
    m_scan.skip(rows);
    m_line += lines;
}

} // namespace corvanta::csv
