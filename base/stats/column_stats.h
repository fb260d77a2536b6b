// Counts and ranges of the values of a column, added one by one, in a memory that does not grow
// with the rows: the extreme values are kept, and hashes of the distinct values up to a limit.
//
// Threads: one at a time per object.
#pragma once
#include "base/text/number_value.h"

#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvanta {

/// Counts different values by their hashes of 64 bits, of which two are practically never equal.
class DistinctCounter
{
public:
    explicit DistinctCounter(size_t limit)
        : m_limit(limit)
    {
    }
    void add(quint64 hash)
    {
        const quint64 used = hash == kFree ? 1 : hash;
        if (used != m_last && !isOver()) {
            m_last = used;
            insert(used);
        }
    }
    /// More than the limit were added.
    bool isOver() const { return m_count > m_limit; }
    /// Up to the limit.
    size_t count() const { return std::min(m_count, m_limit); }

private:
    static constexpr quint64 kFree = 0;

    /// The slot of a hash, or a free one for it.
    size_t slotOf(quint64 hash) const
    {
        size_t slot = hash & (m_slots.size() - 1);
        while (m_slots[slot] != kFree && m_slots[slot] != hash) {
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        return slot;
    }
    // Half of the slots stay free, so that a search ends after a few.
    void insert(quint64 hash)
    {
        quint64 &slot = m_slots[slotOf(hash)];
        if (slot == hash) {
            return;
        }
        slot = hash;
        ++m_count;
        if (isOver()) {
            m_slots.clear();
            m_slots.shrink_to_fit();
        } else if (m_count * 2 > m_slots.size()) {
            grow();
        }
    }
    void grow()
    {
        std::vector<quint64> old(m_slots.size() * 2);
        old.swap(m_slots);
        for (const quint64 hash : old) {
            if (hash != kFree) {
                m_slots[slotOf(hash)] = hash;
            }
        }
    }

    size_t m_limit;
    size_t m_count = 0;
    quint64 m_last = kFree;
    std::vector<quint64> m_slots = std::vector<quint64>(64); ///< a power of two, at most half full
};

/// A number, and the text that it was read from, which may have more digits; empty: none.
struct StatsNumber
{
    double value = 0;
    qint64 rest = 0; ///< see integerRest()
    std::u16string text = {};
};

/// The smallest and largest number, and the mean. NaN has no place in an order and is left out.
class NumberRange
{
public:
    /// `text`: as in StatsNumber.
    void add(double value, std::u16string_view text = {})
    {
        if (std::isnan(value)) {
            return;
        }
        const qint64 rest = integerRest(text, value);
        const auto order = std::pair(value, rest);
        if (m_count == 0 || order < std::pair(m_smallest.value, m_smallest.rest)) {
            m_smallest = {value, rest, std::u16string(text)};
        }
        if (m_count == 0 || order > std::pair(m_largest.value, m_largest.rest)) {
            m_largest = {value, rest, std::u16string(text)};
        }
        // The sum of millions of doubles needs more digits than a double has.
        m_sum += static_cast<long double>(value) + static_cast<long double>(rest);
        ++m_count;
    }
    bool isEmpty() const { return m_count == 0; }
    const StatsNumber &smallest() const { return m_smallest; }
    const StatsNumber &largest() const { return m_largest; }
    double mean() const { return static_cast<double>(m_sum / static_cast<long double>(m_count)); }

private:
    StatsNumber m_smallest;
    StatsNumber m_largest;
    long double m_sum = 0;
    qint64 m_count = 0;
};

/// Orders UTF-16 texts by code point: surrogates come after all other units.
inline bool isBeforeByCodePoint(std::u16string_view a, std::u16string_view b)
{
    const auto rank = [](char16_t unit) {
        const bool isHigh = unit >= 0xD800;
        return !isHigh ? int(unit) : unit < 0xE000 ? unit + 0x10000 : int(unit);
    };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char16_t x, char16_t y) { return rank(x) < rank(y); });
}

/// The first and the last text in that order, and the length of the longest one in characters.
class TextRange
{
public:
    void add(std::u16string_view text)
    {
        if (m_isEmpty || isBeforeByCodePoint(text, m_smallest)) {
            m_smallest = text;
        }
        if (m_isEmpty || isBeforeByCodePoint(m_largest, text)) {
            m_largest = text;
        }
        m_isEmpty = false;
        // A text has at most as many characters as units.
        if (text.size() > m_longest) {
            m_longest = std::max(m_longest, charactersOf(text));
        }
    }
    bool isEmpty() const { return m_isEmpty; }
    QString smallest() const { return QString::fromStdU16String(m_smallest); }
    QString largest() const { return QString::fromStdU16String(m_largest); }
    size_t longest() const { return m_longest; }

private:
    static size_t charactersOf(std::u16string_view text)
    {
        return static_cast<size_t>(std::ranges::count_if(
            text, [](char16_t unit) { return unit < 0xDC00 || unit > 0xDFFF; }));
    }

    bool m_isEmpty = true;
    std::u16string m_smallest;
    std::u16string m_largest;
    size_t m_longest = 0;
};

/// The number of hashes that a DistinctCounter of each of `columns` columns may keep, so that all
/// of them take at most 128 MB.
inline size_t maxDistinctOf(size_t columns)
{
    constexpr size_t kMaxHashes = 4'000'000; // 16 to 32 bytes each
    constexpr size_t kMaxDistinct = 100'000;
    return std::min(kMaxDistinct, kMaxHashes / std::max<size_t>(columns, 1));
}

} // namespace corvanta
