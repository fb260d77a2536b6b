#include "codecs/parquet/write/value_index.h"

#include <algorithm>
#include <functional>

namespace corvanta::parquet {

namespace {
constexpr size_t kFirstSlots = 1024;
} // namespace

std::string_view ValueIndex::value(quint32 number) const
{
    const size_t begin = number == 0 ? 0 : m_ends[number - 1];
    return {m_bytes.data() + begin, m_ends[number] - begin};
}

quint32 ValueIndex::add(std::string_view plain)
{
    if (m_ends.size() * 2 >= m_slots.size()) {
        grow();
    }
    const size_t mask = m_slots.size() - 1;
    size_t slot = std::hash<std::string_view>()(plain) & mask;
    while (m_slots[slot] != kFree) {
        if (value(m_slots[slot]) == plain) {
            return m_slots[slot];
        }
        slot = (slot + 1) & mask;
    }
    m_slots[slot] = static_cast<quint32>(m_ends.size());
    m_bytes.insert(m_bytes.end(), plain.begin(), plain.end());
    m_ends.push_back(m_bytes.size());
    return m_slots[slot];
}

void ValueIndex::grow()
{
    m_slots.assign(std::max(m_slots.size() * 2, kFirstSlots), kFree);
    const size_t mask = m_slots.size() - 1;
    for (quint32 number = 0; number < m_ends.size(); ++number) {
        size_t slot = std::hash<std::string_view>()(value(number)) & mask;
        while (m_slots[slot] != kFree) {
            slot = (slot + 1) & mask;
        }
        m_slots[slot] = number;
    }
}

void ValueIndex::clear()
{
    m_bytes.clear();
    m_ends.clear();
    std::fill(m_slots.begin(), m_slots.end(), kFree);
}

} // namespace corvanta::parquet
