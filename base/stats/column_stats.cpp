// The table of a DistinctCounter: hashes in open addressing, 0 for a free slot.
//
//   slot = hash & (size - 1), then the next ones, until the hash or a free slot
//
// Half of the slots stay free, so that a search ends after a few.
#include "base/stats/column_stats.h"

#include <cmath>
#include <utility>

namespace corvanta {

size_t DistinctCounter::slotOf(quint64 hash) const
{
    size_t slot = hash & (m_slots.size() - 1);
    while (m_slots[slot] != kFree && m_slots[slot] != hash) {
        slot = (slot + 1) & (m_slots.size() - 1);
    }
    return slot;
}

void DistinctCounter::insert(quint64 hash)
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

void DistinctCounter::grow()
{
    std::vector<quint64> old(m_slots.size() * 2);
    old.swap(m_slots);
    for (const quint64 hash : old) {
        if (hash != kFree) {
            m_slots[slotOf(hash)] = hash;
        }
    }
}

/// An integer beyond the digits of a double has a rest, so that neighbours differ.
void NumberRange::add(double value, std::u16string_view text)
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

void TextRange::add(std::u16string_view text)
{
    if (m_isEmpty || std::is_lt(m_compare(text, m_smallest))) {
        m_smallest = text;
    }
    if (m_isEmpty || std::is_lt(m_compare(m_largest, text))) {
        m_largest = text;
    }
    m_isEmpty = false;
    // A text has at most as many characters as units.
    if (text.size() > m_longest) {
        const auto startsCharacter = [](char16_t unit) { return unit < 0xDC00 || unit > 0xDFFF; };
        const auto characters = std::ranges::count_if(text, startsCharacter);
        m_longest = std::max(m_longest, static_cast<size_t>(characters));
    }
}

size_t maxDistinctOf(size_t columns)
{
    constexpr size_t kMaxHashes = 4'000'000; // 16 to 32 bytes each
    constexpr size_t kMaxDistinct = 100'000;
    return std::min(kMaxDistinct, kMaxHashes / std::max<size_t>(columns, 1));
}

} // namespace corvanta
