// The texts of one column as the data of a chart axis needs them: compact, in order, as UTF-8.
//
// A chart can have a million points, so a text takes four bytes more than its characters. The texts
// have no separate objects: they follow each other in one buffer, and a cursor finds each one from
// the end of the one before it.
#pragma once
#include <QStringView>

#include <optional>
#include <string_view>
#include <vector>

namespace corvanta::charts {

/// Texts are added one by one and then read. Threads: one at a time while texts are added.
class ValueList
{
public:
    /// Add a text without the spaces around it; a missing cell is an empty text. Lone surrogates
    /// become U+FFFD. Throws std::bad_alloc.
    void append(QStringView text);

    /// The number of texts, empty ones included.
    qint64 size() const { return static_cast<qint64>(m_lengths.size()); }
    /// Whether there is no text with this index, from 0, or an empty one.
    bool isEmptyAt(qint64 index) const
    {
        return index >= size() || m_lengths[static_cast<size_t>(index)] == 0;
    }
    /// The index of the first text with a character that XML cannot hold (XML 1.0, section 2.2).
    std::optional<qint64> firstForbidden() const { return m_firstForbidden; }

    /// Reads the texts from the first one to the last. The list must not change while it is used.
    class Cursor
    {
    public:
        /// Starts before the first text. `list` must outlive the cursor.
        explicit Cursor(const ValueList &list)
            : m_list(list)
        {
        }
        /// The next text; valid as long as the list. Call it at most size() times.
        std::string_view next()
        {
            const size_t length = m_list.m_lengths[m_index++];
            const std::string_view text(m_list.m_bytes.data() + m_offset, length);
            m_offset += length;
            return text;
        }

    private:
        const ValueList &m_list;
        size_t m_index = 0;  // of the next text
        size_t m_offset = 0; // of its first byte in m_bytes
    };

private:
    std::vector<char> m_bytes;      // all texts, one after the other
    std::vector<quint32> m_lengths; // in bytes: a text cell has less than 2^30
    std::optional<qint64> m_firstForbidden;
};

} // namespace corvanta::charts
