// Keeps the names of the open elements, one after the other, in memory that is reused.
//
// A vector of strings would allocate for names that are longer than a string's own buffer. Names
// are bytes of the tokenizer's buffer, not decoded; they are copied, because the buffer moves on.
#pragma once
#include <QtGlobal>

#include <algorithm>
#include <string_view>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class NameStack
{
public:
    /// True when no element is open.
    bool isEmpty() const { return m_starts.empty(); }
    /// Number of open elements.
    size_t size() const { return m_starts.size(); }
    /// Remove all names; keeps the memory.
    void clear()
    {
        m_starts.clear();
        m_used = 0;
    }

    /// Add the name of a new innermost element. `name` may not be a view of the stack itself, whose
    /// memory may move. Names may be empty.
    void push(std::string_view name)
    {
        if (m_bytes.size() - m_used < name.size()) {
            m_bytes.resize((m_used + name.size()) * 2);
        }
        // Not memcpy: for an empty name, m_bytes may have no memory.
        std::copy(name.begin(), name.end(), m_bytes.begin() + static_cast<ptrdiff_t>(m_used));
        m_starts.push_back(m_used);
        m_used += name.size();
    }
    /// Remove the name of the innermost element; one must be open. Views of it stay valid until the
    /// next push().
    void pop()
    {
        m_used = m_starts.back();
        m_starts.pop_back();
    }
    /// Name of the innermost element; one must be open. Valid until the next push().
    std::string_view top() const
    {
        return {m_bytes.data() + m_starts.back(), m_used - m_starts.back()};
    }
    /// The name `up` elements above the innermost, less than size(); 0 is the innermost itself.
    /// Valid until the next push().
    std::string_view above(size_t up) const
    {
        const size_t i = m_starts.size() - 1 - up;
        const size_t stop = up > 0 ? m_starts[i + 1] : m_used;
        return {m_bytes.data() + m_starts[i], stop - m_starts[i]};
    }

private:
    /// The names without separators. Never shrinks.
    std::vector<char> m_bytes;
    /// Offsets in m_bytes, outermost element first.
    std::vector<size_t> m_starts;
    /// Bytes of m_bytes in use.
    size_t m_used = 0;
};

} // namespace corvanta::markup
