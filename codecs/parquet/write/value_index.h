// Assigns numbers to the distinct values of a column chunk: the dictionary of the writer.
#pragma once
#include <QtGlobal>

#include <string_view>
#include <vector>

namespace corvanta::parquet {

/// A hash table with open addressing over one array of bytes. Values are compared as bytes, so that
/// 0.0 and -0.0 are different. Does not limit its size: the caller checks bytes() before it adds a
/// value. Threads: one thread at a time per object.
class ValueIndex
{
public:
    /// The number of a value, given in PLAIN form. A new value is added and gets the next number,
    /// starting at 0.
    quint32 add(std::string_view plain);
    /// All values in PLAIN form, adjacent, in the order of their numbers.
    const std::vector<char> &bytes() const { return m_bytes; }
    /// Number of values.
    qint32 size() const { return static_cast<qint32>(m_ends.size()); }
    /// Remove all values. Keeps the memory.
    void clear();

private:
    // A view of m_bytes, valid until the next add().
    std::string_view value(quint32 number) const;
    size_t findSlot(std::string_view plain) const;
    void grow();

    static constexpr quint32 kFree = ~quint32(0);
    std::vector<char> m_bytes;
    std::vector<size_t> m_ends;   // by number: end offset of the value in m_bytes
    std::vector<quint32> m_slots; // number of a value or kFree; the size is a power of two
};

} // namespace corvanta::parquet
