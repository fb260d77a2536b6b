// fuzz/markup_property.h
// What must hold for any bytes that are read as JSON or XML.
#pragma once
#include "codecs/markup/level_extractor.h"
#include "codecs/markup/sample_levels.h"
#include "codecs/markup/trace.h"

#include <cstdlib>

namespace corvanta::markup {

/// `make(source, bufferChars)` makes the tokenizer.
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
    MemorySource sample(bytes, pieceBytes);
    const std::vector<Level> levels = deriveLevels(*make(sample, 1024), 3);
    MemorySource source(bytes, pieceBytes);
    const auto tokenizer = make(source, 1024);
    LevelExtractor extractor(levels, options);
    extractor.setBlockSize(1024);
    extractor.beginDocument(*tokenizer);
    BlockArena arena;
    while (extractor.next(arena) == LevelExtractor::Outcome::Row) {
        arena.reset();
    }
}

} // namespace corvanta::markup
