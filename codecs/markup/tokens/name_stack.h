// codecs/markup/tokens/name_stack.h
// The names of the open elements, one after the other in memory that is used again.
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

    void push(std::string_view name)
    {
        if (m_bytes.size() - m_used < name.size()) {
            m_bytes.resize((m_used + name.size()) * 2);
        }
        // Not memcpy: a name may be empty, and then the memory too.
        std::copy(name.begin(), name.end(), m_bytes.begin() + static_cast<ptrdiff_t>(m_used));
        m_starts.push_back(m_used);
        m_used += name.size();
    }
    /// The bytes of the popped name stay where they are until the next push().
    void pop()
    {
        m_used = m_starts.back();
        m_starts.pop_back();
    }
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
    std::vector<size_t> m_starts;
    size_t m_used = 0;
};

} // namespace corvanta::markup
