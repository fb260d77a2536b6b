// Keeps the names of the open elements, one after the other, in memory that is reused.
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
    bool isEmpty() const { return m_starts.empty(); }
    size_t size() const { return m_starts.size(); }
    void clear()
    {
        m_starts.clear();
        m_used = 0;
    }

    /// Add the name of a new innermost element.
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
    /// Remove the name of the innermost element. Views of it stay valid until the next push().
    void pop()
    {
        m_used = m_starts.back();
        m_starts.pop_back();
    }
    /// Name of the innermost element. Valid until the next push().
    std::string_view top() const
    {
        return {m_bytes.data() + m_starts.back(), m_used - m_starts.back()};
    }
    /// The name `up` elements above the innermost.
    std::string_view above(size_t up) const
    {
        const size_t i = m_starts.size() - 1 - up;
        const size_t stop = up > 0 ? m_starts[i + 1] : m_used;
        return {m_bytes.data() + m_starts[i], stop - m_starts[i]};
    }

private:
    std::vector<char> m_bytes;
    std::vector<size_t> m_starts; ///< offsets in m_bytes, outermost element first
    size_t m_used = 0;            ///< bytes of m_bytes in use
};

} // namespace corvanta::markup
