// Remembers, for each name that occurred, which numbers (of path steps) match it.
//
// Records repeat the same names in much the same order. Each name has a link to the name that
// followed it last, so that most lookups cost one comparison of bytes.
#pragma once
#include "codecs/markup/text/raw_text.h"
#include "codecs/markup/text/scan.h"

#include <algorithm>
#include <array>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace corvanta::markup {

/// One per place where names occur, for example per node of a trie: the links are useful only if
/// the names come in a similar order. Threads: one at a time.
class NameMemory
{
public:
    /// The numbers that match a name, in the order in which collectMatches() added them.
    using Matches = std::vector<quint32>;

    NameMemory() = default;
    NameMemory(const NameMemory &) = delete;
    NameMemory &operator=(const NameMemory &) = delete;

    /// Begin another element: its first name comes next.
    void begin() { m_last = &m_beforeFirst; }

    /// The numbers that match the next name; valid until the next call. collectMatches(Matches *)
    /// fills the list of a new name, and must give the same result for the same name each time.
    template <typename CollectMatches>
    const Matches &matchesOf(const RawText &name, CollectMatches collectMatches)
    {
        if (m_last->next == nullptr || !m_last->next->isCalled(name)) {
            bool isNew = false;
            m_last->next = find(name, &isNew);
            if (isNew) {
                m_last->next->matches.clear();
                collectMatches(&m_last->next->matches);
            }
        }
        m_last = m_last->next;
        return m_last->matches;
    }

private:
    /// A name that occurred, and the numbers that match it.
    struct Name
    {
        explicit Name(std::string_view nameToRemember)
            : name(nameToRemember)
        {
            std::copy_n(name.data(), std::min(name.size(), begin.size()), begin.data());
        }
        /// Names in the buffer of a tokenizer may be read beyond their end.
        bool isCalled(const RawText &other) const
        {
            if (other.form != TextForm::Plain || other.size > begin.size()) {
                return name == other.view();
            }
            return name.size() == other.size && equalBytes(begin.data(), other.data, other.size);
        }

        std::string name;
        /// The first bytes of `name`, then NULs, for a comparison without a loop.
        std::array<char, 16> begin{};
        Matches matches = {};
        /// The name that followed it last.
        Name *next = nullptr;
    };

    /// Limits of the names that are remembered, for documents whose names are data. Other names are
    /// new each time.
    static constexpr size_t kMaxNames = 4096;
    static constexpr quint32 kMaxNameBytes = 256;

    /// The entry of `name`, new or known. All names that cannot be remembered share one entry:
    /// names with entities or escapes, whose bytes are not the name, are among them.
    Name *find(const RawText &name, bool *isNew)
    {
        const bool isPlain = name.form == TextForm::Plain || name.form == TextForm::Detached;
        const auto known = isPlain ? m_byName.find(name.view()) : m_byName.end();
        *isNew = known == m_byName.end();
        if (!*isNew) {
            return known->second;
        }
        if (!isPlain || name.size > kMaxNameBytes || m_names.size() >= kMaxNames) {
            return &m_notRemembered;
        }
        Name *const added = &m_names.emplace_back(name.view());
        m_byName.emplace(added->name, added);
        return added;
    }

    /// A deque, because the entries are linked by address.
    std::deque<Name> m_names;
    /// The keys refer to the names in m_names.
    std::unordered_map<std::string_view, Name *> m_byName;
    /// Its link leads to the name that came first in the last element.
    Name m_beforeFirst{""};
    /// The last name that is not in m_names. Its name is not valid UTF-8, so it never matches.
    Name m_notRemembered{"\xFF"};
    /// The entry of the name that was looked up last.
    Name *m_last = &m_beforeFirst;
};

} // namespace corvanta::markup
