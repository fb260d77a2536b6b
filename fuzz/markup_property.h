// Checks what must be true for any bytes that are read as JSON or XML: tokens, levels and rows do
// not depend on the sizes of buffer and reads.
#pragma once
#include "base/cell.h"
#include "codecs/markup/levels/level_extractor.h"
#include "codecs/markup/sample/sample_levels.h"
#include "codecs/markup/tokens/trace.h"

#include <cstdlib>

namespace corvanta::markup {

/// Abort when a result depends on a size. make(source, bufferChars) creates the tokenizer;
/// `pieceBytes` limits each read.
template <class Make>
void checkMarkup(const Make &make, QByteArrayView bytes, qint64 pieceBytes, bool balanced,
                 const ExtractOptions &options)
{
    const auto traceWith = [&](qint64 buffer, qint64 piece, bool leaves) {
        MemorySource source(bytes, piece);
        const auto tokenizer = make(source, buffer);
        tokenizer->setBalanced(balanced);
        std::u16string tokens = trace(*tokenizer, leaves);
        const std::string place =
            std::to_string(tokenizer->line()) + ':' + std::to_string(tokenizer->column());
        return tokens.append(place.begin(), place.end());
    };
    const std::u16string whole = traceWith(1 << 16, -1, false);
    if (traceWith(1024, pieceBytes, false) != whole || traceWith(1024, pieceBytes, true) != whole) {
        std::abort();
    }
    const auto levelsWith = [&](qint64 buffer, qint64 piece) {
        MemorySource sample(bytes, piece);
        const auto tokenizer = make(sample, buffer);
        return sampleDocument(*tokenizer, {3, options.text, options.zeroBased})
            .tables.front()
            .levels;
    };
    const std::vector<Level> levels = levelsWith(1024, pieceBytes);
    if (levels != levelsWith(1 << 16, -1)) {
        std::abort();
    }
    const auto rowsWith = [&](qint64 buffer, qint64 piece) {
        MemorySource source(bytes, piece);
        const auto tokenizer = make(source, buffer);
        LevelExtractor extractor(levels, options);
        extractor.setBlockSize(1024);
        extractor.beginDocument(*tokenizer);
        BlockArena arena;
        std::u16string rows;
        auto row = extractor.next(arena);
        for (; row && *row; row = extractor.next(arena)) {
            for (const uchar *cell : extractor.cells()) {
                const cell::Text text = cell::readText(cell);
                rows += text.isMissing() ? u"-" : std::u16string(text.view()) + u',';
            }
            arena.reset();
        }
        const MarkupError error = row ? MarkupError::None : row.fault().code.error;
        return rows + static_cast<char16_t>(error);
    };
    if (rowsWith(1024, pieceBytes) != rowsWith(1 << 16, -1)) {
        std::abort();
    }
}

} // namespace corvanta::markup
