// codecs/parquet/value_index.h
// Numbers the distinct values of a column chunk: the writer's dictionary.
#pragma once
#include <QtGlobal>

#include <string_view>
#include <vector>

namespace corvanta::parquet {

/// Threads: one at a time.
class ValueIndex
{
public:
    /// The number of a value's PLAIN form, which is added when it is new.
    quint32 add(std::string_view plain);
    /// The distinct values one after the other, in the order of their numbers.
    const std::vector<char> &bytes() const { return m_bytes; }
    qint32 size() const { return static_cast<qint32>(m_ends.size()); }
    void clear();

private:
    std::string_view value(quint32 number) const;
    void grow();

    static constexpr quint32 kFree = ~quint32(0);
    std::vector<char> m_bytes;
    std::vector<size_t> m_ends;   // of the values in m_bytes
    std::vector<quint32> m_slots; // open addressing; a power of two of them
};

} // namespace corvanta::parquet
