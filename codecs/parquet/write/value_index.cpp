// Three arrays; the dictionary page is the first one as it is:
//
//   m_bytes   [ value 0 | value 1 | ... ]   PLAIN form, without gaps
//   m_ends    [ end of 0, end of 1, ... ]   offsets in m_bytes
//   m_slots   [ -, 1, -, 0, ... ]           hash table: number of a value, or kFree
#include "codecs/parquet/write/value_index.h"

#include "base/bytes.h"

#include <algorithm>
#include <functional>

namespace corvanta::parquet {

namespace {
/// Number of slots of a table that is not empty; a power of two.
constexpr size_t kFirstSlots = 1024;

/// Whether values of the same size are equal. Most are short, and a comparison of their first and
/// last bytes, which may overlap, is faster than a call of memcmp().
inline bool haveSameBytes(std::string_view a, std::string_view b)
{
    constexpr size_t kWord = sizeof(quint64);
    const auto isSame = [&](size_t at) {
        return loadNative<quint64>(a.data() + at) == loadNative<quint64>(b.data() + at);
    };
    if (a.size() < kWord || a.size() > 3 * kWord) {
        return a == b;
    }
    const size_t middle = a.size() > 2 * kWord ? kWord : 0;
    return isSame(0) && isSame(middle) && isSame(a.size() - kWord);
}
} // namespace

inline std::string_view ValueIndex::value(quint32 number) const
{
    const size_t begin = number == 0 ? 0 : m_ends[number - 1];
    return {m_bytes.data() + begin, m_ends[number] - begin};
}

/// The slot of a value, or the free slot where it belongs. Linear probing finds a free slot soon,
/// because at most half of the slots are in use. Inlined: a call per value costs 2 % of a write.
[[gnu::always_inline]] inline size_t ValueIndex::findSlot(std::string_view plain) const
{
    const size_t mask = m_slots.size() - 1;
    size_t slot = std::hash<std::string_view>()(plain) & mask;
    const auto isPlain = [&](std::string_view other) {
        return other.size() == plain.size() && haveSameBytes(other, plain);
    };
    while (m_slots[slot] != kFree && !isPlain(value(m_slots[slot]))) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

quint32 ValueIndex::add(std::string_view plain)
{
    if (m_ends.size() * 2 >= m_slots.size()) {
        grow();
    }
    const size_t slot = findSlot(plain);
    if (m_slots[slot] != kFree) {
        return m_slots[slot];
    }
    m_slots[slot] = static_cast<quint32>(m_ends.size());
    m_bytes.insert(m_bytes.end(), plain.begin(), plain.end());
    m_ends.push_back(m_bytes.size());
    return m_slots[slot];
}

void ValueIndex::grow()
{
    // Slots hold only numbers, so a larger table is filled again from the values.
    m_slots.assign(std::max(m_slots.size() * 2, kFirstSlots), kFree);
    for (quint32 number = 0; number < m_ends.size(); ++number) {
        m_slots[findSlot(value(number))] = number;
    }
}

void ValueIndex::clear()
{
    m_bytes.clear();
    m_ends.clear();
    std::fill(m_slots.begin(), m_slots.end(), kFree);
}

} // namespace corvanta::parquet
