// The kinds of the columns of a text, found in one piece or in several, for tests and fuzz targets.
#pragma once
#include "codecs/csv/record_pieces.h"
#include "codecs/markup/levels/line_pieces.h"
#include "codecs/markup/tokens/json_tokenizer.h"

#include <limits>
#include <string>
#include <vector>

namespace corvanta::test {

using Scans = std::vector<values::ColumnScan>;

/// All that a scan finds, for comparisons.
inline std::string describe(const Scans &scans, qint64 rows)
{
    std::string text = std::to_string(rows) + " rows";
    for (const values::ColumnScan &scan : scans) {
        const values::ColumnResult found = scan.result();
        text += " | " + std::to_string(static_cast<int>(found.kind)) + found.letter + ' ' +
                found.exception.toStdString() + " in " + found.exceptionPlace.toStdString() +
                " after " + std::to_string(static_cast<int>(found.before));
    }
    return text;
}

/// Kinds of the columns of a text with separators, whose first record has names; pieces of 0 bytes:
/// in one piece.
inline std::string csvKinds(ByteSource &source, bool fillsRagged, qsizetype pieceBytes, int workers)
{
    const csv::Dialect dialect{.comment = "#"};
    csv::RecordReader reader(source, dialect, {64, 1 << 20});
    const auto header = reader.next();
    if (!header || !*header) {
        return "empty";
    }
    Scans scans(reader.fields().size());
    const std::vector<QByteArray> nulls{"NA"};
    const csv::RecordScan::Rules rules{'.', nulls, fillsRagged, {}};
    csv::RecordScan scan(scans, rules);
    if (pieceBytes == 0) {
        scan.addAll(reader, std::numeric_limits<qint64>::max());
    } else {
        csv::RecordPieces(scan, reader, rules, [] {
            return std::vector<csv::RecordScan::Value>();
        }).run(scans, workers, pieceBytes);
    }
    return describe(scans, scan.rows());
}

inline std::unique_ptr<markup::MarkupTokenizer> jsonTokenizer(ByteSource &text)
{
    auto tokenizer = std::make_unique<markup::JSONTokenizer>(text, 4096, u"");
    tokenizer->setPermissiveNumbers(true);
    return tokenizer;
}

/// The same for the values that `levels` read from JSON.
inline std::string jsonKinds(ByteSource &source, const std::vector<markup::Level> &levels,
                             qsizetype pieceBytes, int workers)
{
    using namespace markup;
    ExtractOptions options;
    options.nullIsMissing = true;
    LevelExtractor extractor(levels, options);
    Scans scans(static_cast<size_t>(extractor.columnCount()));
    extractor.scanValues(scans);
    extractor.beginFile();
    if (pieceBytes == 0) {
        const auto tokenizer = jsonTokenizer(source);
        extractor.beginDocument(*tokenizer);
        scanRows(extractor, std::numeric_limits<qint64>::max());
    } else {
        LinePieces(levels, options, extractor, jsonTokenizer)
            .run(source, scans, workers, pieceBytes);
    }
    return describe(scans, extractor.rows());
}

} // namespace corvanta::test
