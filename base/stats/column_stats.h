// Counts and ranges of the values of a column, added one by one, in a memory that does not grow
// with the rows: the extreme values are kept, and hashes of the distinct values up to a limit.
//
// Threads: one at a time per object.
#pragma once
#include "base/text/number_value.h"
#include "base/text/text_order.h"

#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// Counts different values by their 64-bit hashes, two of which are practically never equal.
class DistinctCounter
{
public:
    explicit DistinctCounter(size_t limit)
        : m_limit(limit)
    {
    }
    /// The value that was added last is not looked up again: equal values are often adjacent.
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
    size_t slotOf(quint64 hash) const;
    /// Add a hash that is not kFree. Frees the memory when there are too many.
    void insert(quint64 hash);
    void grow();

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
    void add(double value, std::u16string_view text = {});
    bool isEmpty() const { return m_count == 0; }
    // Only of a range that is not empty.
    const StatsNumber &smallest() const { return m_smallest; }
    const StatsNumber &largest() const { return m_largest; }
    double mean() const { return static_cast<double>(m_sum / static_cast<long double>(m_count)); }

private:
    StatsNumber m_smallest;
    StatsNumber m_largest;
    long double m_sum = 0;
    qint64 m_count = 0;
};

/// The first and the last text, and the length of the longest one in characters.
class TextRange
{
public:
    TextRange() = default;
    explicit TextRange(TextOrder order)
        : m_compare(order == TextOrder::Words ? compareWords : compareTexts)
    {
    }
    void add(std::u16string_view text);
    bool isEmpty() const { return m_isEmpty; }
    QString smallest() const { return QString::fromStdU16String(m_smallest); }
    QString largest() const { return QString::fromStdU16String(m_largest); }
    /// Code points, not UTF-16 units.
    size_t longest() const { return m_longest; }

private:
    std::weak_ordering (*m_compare)(std::u16string_view, std::u16string_view) = compareTexts;
    bool m_isEmpty = true;
    std::u16string m_smallest;
    std::u16string m_largest;
    size_t m_longest = 0;
};

/// The number of hashes that a DistinctCounter of each of `columns` columns may keep, so that all
/// of them take at most 128 MB.
size_t maxDistinctOf(size_t columns);

} // namespace corvanta
