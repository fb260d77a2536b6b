// The shared strings of a workbook (ECMA-376 part 1, 18.4.9), read as far as they are needed.
//
// The first rows of a workbook with millions of strings are available immediately, because writers
// number the strings in the order of their first use.
#pragma once
#include "codecs/xlsx/read/part_text.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace corvanta::xlsx {

/// The texts are in blocks that never move. Threads: one at a time, except stop().
class SharedStrings
{
public:
    /// No strings.
    SharedStrings() = default;
    /// The strings of the part; the texts take at most `maxBytes`.
    SharedStrings(std::unique_ptr<PartText> part, qint64 maxBytes);

    /// The text of string `index`, from 0; valid as long as this object. Nothing for a number
    /// beyond the last string. Errors: those of the part; TooLarge.
    sheet::WorkbookResult<std::optional<std::u16string_view>> at(quint64 index)
    {
        if (index >= m_count) {
            if (const auto loaded = load(index); !loaded) {
                return loaded.fault();
            }
            if (index >= m_count) {
                return std::optional<std::u16string_view>();
            }
        }
        return std::optional(text(index));
    }
    /// The text of a string that is loaded, or nothing: as at(), for the inner loop.
    const std::u16string_view *loaded(quint64 index)
    {
        if (index >= m_count) {
            return nullptr;
        }
        m_last = text(index);
        return &m_last;
    }

    /// Memory that the strings take.
    qint64 bytes() const { return m_bytes; }
    /// Whether bytes of a loaded string are not UTF-8; its text has replacements for them.
    bool isReplaced(quint64 index) const
    {
        return !m_replaced.empty() &&
               std::binary_search(m_replaced.begin(), m_replaced.end(), index);
    }
    /// Any thread: ends a running at() with Stopped.
    void stop();

private:
    /// Units of a block of texts; a longer text has a block of its own size.
    static constexpr size_t kBlockUnits = size_t(1) << 20;
    /// Strings per block of the index.
    static constexpr size_t kIndexStrings = size_t(1) << 16;

    /// Where a text is. The number of its units is here and not before the text: most readers
    /// of a text only ask whether it is empty, and the memory of the texts is slow to reach.
    struct Place
    {
        quint64 block : 20;
        quint64 unit : 20; ///< the first one
        quint64 units : 24;
    };

    /// The text of a string that is loaded.
    std::u16string_view text(quint64 index) const
    {
        const Place place = m_index[index / kIndexStrings][index % kIndexStrings];
        return {m_blocks[place.block].get() + place.unit, static_cast<size_t>(place.units)};
    }
    /// Read strings until `index` is loaded or the part ends.
    sheet::WorkbookResult<void> load(quint64 index);
    /// Read one string. Returns false at the end of the part.
    sheet::WorkbookResult<bool> takeNext();
    /// Remember that the next string has invalid bytes.
    void noteReplaced();
    /// Take a string without formats and references, which most are. False for any other one.
    bool takePlain();
    /// Copy a text to the blocks as the next string.
    sheet::WorkbookResult<void> add(std::u16string_view text);
    /// Later texts go to this block; the rest of the one before stays unused.
    void addBlock(size_t units);
    /// The place for the units of the next text, in the last block or in a new one.
    char16_t *room(size_t units);

    std::unique_ptr<PartText> m_part;                        // null without strings
    bool m_isEnd = false;                                    // all strings are loaded
    std::optional<Fault<sheet::WorkbookError>> m_fault = {}; // of the part, once it has one
    qint64 m_maxBytes = 0;
    qint64 m_bytes = 0;
    std::vector<std::unique_ptr<char16_t[]>> m_blocks;
    size_t m_used = kBlockUnits; // units of the last block
    std::vector<std::vector<Place>> m_index;
    quint64 m_count = 0;
    std::vector<quint64> m_replaced; // indexes for isReplaced(), ascending
    std::vector<char16_t> m_text;    // of the string that is read
    std::u16string_view m_last;
};

} // namespace corvanta::xlsx
