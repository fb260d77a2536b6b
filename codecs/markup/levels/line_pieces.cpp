// Where a text is cut (JSON Lines: a value on each line, in UTF-8); "|" is the end of a piece:
//
//     {"id":1}<LF>|{"id":2}<LF>      before a line that begins with "{"
#include "codecs/markup/levels/line_pieces.h"

#include "codecs/values/chained_source.h"

#include <limits>

namespace corvanta::markup {

namespace {

/// Bytes in which objects at the top show that they are records.
constexpr qsizetype kBeginningBytes = qsizetype(64) << 10;

} // namespace

qint64 scanRows(LevelExtractor &extractor, qint64 rows)
{
    BlockArena arena;
    for (; rows > 0; --rows) {
        arena.reset();
        const auto row = extractor.next(arena);
        const bool isEnd = row ? !*row : !extractor.resume();
        if (isEnd) {
            break;
        }
    }
    return rows;
}

LinePieces::LinePieces(const std::vector<Level> &levels, const ExtractOptions &options,
                       LevelExtractor &extractor, MakeTokenizer makeTokenizer)
    : m_levels(levels)
    , m_options(options)
    , m_extractor(extractor)
    , m_makeTokenizer(std::move(makeTokenizer))
{
}

/// Only text in UTF-8 can be cut at a byte.
void LinePieces::run(ByteSource &file, std::span<values::ColumnScan> scans, int workers,
                     qsizetype pieceBytes)
{
    QByteArray beginning(kBeginningBytes, Qt::Uninitialized);
    bool hasFailed = false;
    beginning.truncate(values::readUpTo(file, beginning.data(), beginning.size(), &hasFailed));
    values::ChainedSource text({beginning}, file, hasFailed);
    if (guessJSONEncoding(beginning) == CharMode::Utf8 && hasRecords(beginning)) {
        values::PieceScan(*this, scans, workers, pieceBytes).run(text);
    } else {
        scanInOrder(text);
    }
}

/// Whether the objects at the top are records, whatever follows.
bool LinePieces::hasRecords(QByteArrayView beginning) const
{
    const size_t size = cut({beginning.data(), static_cast<size_t>(beginning.size())});
    values::Piece piece{beginning.first(static_cast<qsizetype>(size)).toByteArray()};
    LevelExtractor extractor(m_levels, m_options);
    piece.scans.resize(static_cast<size_t>(extractor.columnCount()));
    return size > 0 && scanPiece(extractor, &piece) && extractor.readsRecords();
}

/// Returns whether the text ends between two values at the top.
bool LinePieces::scanPiece(LevelExtractor &extractor, values::Piece *piece) const
{
    MemorySource source(piece->text);
    const auto tokenizer = m_makeTokenizer(source);
    extractor.scanValues(piece->scans);
    extractor.beginDocument(*tokenizer);
    BlockArena arena;
    auto row = extractor.next(arena);
    for (; row && *row; row = extractor.next(arena)) {
        arena.reset();
    }
    piece->rows = extractor.rows();
    piece->lines = tokenizer->line() - 1;
    return row && !tokenizer->isEndedByNul();
}

size_t LinePieces::cut(std::string_view text) const
{
    return text.rfind("\n{") + 1; // npos + 1 is 0
}

void LinePieces::scan(values::Piece *piece) const
{
    LevelExtractor extractor(m_levels, m_options);
    extractor.expectRecords();
    piece->isComplete = scanPiece(extractor, piece);
}

void LinePieces::skip(qint64 rows, qint64 lines)
{
    m_extractor.expectRecords();
    m_extractor.skip(rows, lines);
}

void LinePieces::scanInOrder(ByteSource &text)
{
    const auto tokenizer = m_makeTokenizer(text);
    m_extractor.beginDocument(*tokenizer);
    scanRows(m_extractor, std::numeric_limits<qint64>::max());
    m_extractor.skip(0, tokenizer->line() - 1);
}

} // namespace corvanta::markup
