// Finds the kinds of the columns of JSON Lines on several threads.
#pragma once
#include "codecs/markup/levels/level_extractor.h"
#include "codecs/values/piece_scan.h"

#include <functional>
#include <memory>
#include <vector>

namespace corvanta::markup {

/// Scan the next rows of a document, at most `rows`, as LevelExtractor::scanValues() says. After an
/// error it continues at the next line where it can. Returns how many of `rows` are left; the
/// document has ended if there are any.
qint64 scanRows(LevelExtractor &extractor, qint64 rows);

/// Cuts a text before lines that begin with an object. All other texts are scanned in order.
/// Threads: see PieceScan::Format.
class LinePieces final : public values::PieceScan::Format
{
public:
    /// Makes a tokenizer of JSON, on any thread.
    using MakeTokenizer = std::function<std::unique_ptr<MarkupTokenizer>(ByteSource &)>;

    /// `levels` and `options` are those of `extractor`, which scans values. All must outlive this
    /// object.
    LinePieces(const std::vector<Level> &levels, const ExtractOptions &options,
               LevelExtractor &extractor, MakeTokenizer makeTokenizer);

    /// Scan all documents of `file` after a call of beginFile(), as scanRows() does. `scans` are
    /// those of the extractor.
    void run(ByteSource &file, std::span<values::ColumnScan> scans,
             int workers = values::PieceScan::defaultWorkers(),
             qsizetype pieceBytes = values::PieceScan::kPieceBytes);

    size_t cut(std::string_view text) const override;
    void scan(values::Piece *piece) const override;
    void scanInOrder(ByteSource &text) override;
    void skip(qint64 rows, qint64 lines) override;

private:
    bool hasRecords(QByteArrayView beginning) const;
    bool scanPiece(LevelExtractor &extractor, values::Piece *piece) const;

    const std::vector<Level> &m_levels;
    const ExtractOptions &m_options;
    LevelExtractor &m_extractor;
    MakeTokenizer m_makeTokenizer;
};

} // namespace corvanta::markup
