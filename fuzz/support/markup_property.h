// Checks what must be true for any bytes that are read as JSON or XML: tokens, levels and rows do
// not depend on the sizes of buffer and reads.
#pragma once
#include "base/cell.h"
#include "codecs/markup/levels/level_extractor.h"
#include "codecs/markup/sample/sample_levels.h"
#include "codecs/markup/tokens/trace.h"
#include "fuzz/support/require.h"

namespace corvanta::markup {

/// What decides how checkMarkup() reads; all from one byte of the input.
struct MarkupVariant
{
    explicit MarkupVariant(uint8_t byte)
        : pieceBytes(1 + byte % 70)
        , presence(byte / 70 == 1)
        , tagNames(byte / 70 == 2)
        , records(byte / 70 == 3 ? 100 : 3)
    {
    }
    qint64 pieceBytes; ///< of each read
    bool presence;     ///< see ExtractOptions
    bool tagNames; ///< the first item of each level reads names, and the first record is skipped
    int records;   ///< of the sample
};

/// A property for each result; make(source, bufferChars) creates the tokenizer.
template <class Make> class MarkupProperty
{
public:
    MarkupProperty(const Make &make, QByteArrayView bytes, const MarkupVariant &variant,
                   const ExtractOptions &options)
        : m_make(make)
        , m_bytes(bytes)
        , m_variant(variant)
        , m_options(options)
    {
        m_options.presence = variant.presence;
        m_options.skip = variant.tagNames ? 1 : 0;
    }

    void check(bool balanced) const
    {
        const std::u16string whole = tokens(1 << 16, -1, balanced, false);
        require(tokens(1024, m_variant.pieceBytes, balanced, false) == whole);
        require(tokens(1024, m_variant.pieceBytes, balanced, true) == whole);
        std::vector<Level> found = sample(1024, m_variant.pieceBytes).tables.front().levels;
        const SampledDocument document = sample(1 << 16, -1);
        require(found == document.tables.front().levels);
        for (Level &level : found) {
            if (!level.items.empty()) {
                level.items.front().tagName = m_variant.tagNames;
            }
        }
        checkLevels(found);
        checkRelated(document.related);
    }

    void checkLevels(const std::vector<Level> &levels) const
    {
        require(rows(levels, 1024, m_variant.pieceBytes) == rows(levels, 1 << 16, -1));
        require(kinds(levels, 1024, m_variant.pieceBytes) == kinds(levels, 1 << 16, -1));
    }

    /// The same document without repeated values, joined by keys where there are any.
    void checkRelated(const std::vector<RelatedTable> &related) const
    {
        constexpr size_t kMostTables = 3;
        std::vector<bool> areKeys;
        for (const RelatedTable &table : related) {
            areKeys.push_back(!table.key.name.isEmpty() && m_variant.presence);
        }
        for (size_t i = 0; i < std::min(kMostTables, related.size()); ++i) {
            checkLevels(joinedLevels(related, i, areKeys));
        }
    }

    /// A tokenizer that starts again reads what a new one reads. Not for one with an encoding,
    /// which it loses.
    void checkRestart() const
    {
        MemorySource first(m_bytes.first(m_bytes.size() / 2));
        const auto tokenizer = m_make(first, 1024);
        trace(*tokenizer);
        MemorySource second(m_bytes, m_variant.pieceBytes);
        tokenizer->restart(second);
        std::u16string again = trace(*tokenizer);
        again += placeOf(*tokenizer);
        require(again == tokens(1024, -1, false, false));
    }

private:
    static std::u16string placeOf(const MarkupTokenizer &tokenizer)
    {
        const std::string place =
            std::to_string(tokenizer.line()) + ':' + std::to_string(tokenizer.column());
        return {place.begin(), place.end()};
    }

    std::u16string tokens(qint64 buffer, qint64 piece, bool balanced, bool leaves) const
    {
        MemorySource source(m_bytes, piece);
        const auto tokenizer = m_make(source, buffer);
        tokenizer->setBalanced(balanced);
        const std::u16string tokens = trace(*tokenizer, leaves);
        return tokens + placeOf(*tokenizer);
    }

    SampledDocument sample(qint64 buffer, qint64 piece) const
    {
        MemorySource source(m_bytes, piece);
        const auto tokenizer = m_make(source, buffer);
        return sampleDocument(*tokenizer, {m_variant.records, m_options.text, m_options.zeroBased});
    }

    /// All rows, the columns without values, the repeats, and the error.
    std::u16string rows(const std::vector<Level> &levels, qint64 buffer, qint64 piece) const
    {
        MemorySource source(m_bytes, piece);
        const auto tokenizer = m_make(source, buffer);
        LevelExtractor extractor(levels, m_options);
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
            require(extractor.cells().size() ==
                    static_cast<size_t>(extractor.columnNames().size()));
            arena.reset();
        }
        QString unread = extractor.missingPaths().join(u'\n');
        for (const RepeatedPath &repeated : extractor.unread().repeatedPaths) {
            unread += repeated.path + QString::number(repeated.count) + repeated.first;
        }
        rows += unread.toStdU16String();
        const MarkupError error = row ? MarkupError::None : row.fault().code.error;
        require(errorText(error) != nullptr);
        return rows + static_cast<char16_t>(error);
    }

    /// What a scan finds: the kind, the letter and the deciding value of each column.
    QString kinds(const std::vector<Level> &levels, qint64 buffer, qint64 piece) const
    {
        MemorySource source(m_bytes, piece);
        const auto tokenizer = m_make(source, buffer);
        LevelExtractor extractor(levels, m_options);
        std::vector<values::ColumnScan> scans(static_cast<size_t>(extractor.columnCount()));
        extractor.scanValues(scans);
        extractor.beginDocument(*tokenizer);
        BlockArena arena;
        auto row = extractor.next(arena);
        for (; row && *row; row = extractor.next(arena)) {
            arena.reset();
        }
        QString kinds;
        for (const values::ColumnScan &scan : scans) {
            const values::ColumnResult found = scan.result();
            kinds += QChar(static_cast<int>(found.kind)) + QString(QLatin1Char(found.letter)) +
                     found.exception + found.exceptionPlace;
        }
        return kinds;
    }

    const Make &m_make;
    QByteArrayView m_bytes;
    MarkupVariant m_variant;
    ExtractOptions m_options;
};

} // namespace corvanta::markup
