// codecs/markup/tree/name_memory.h
// Which wants ask for a name, remembered for the names that were met.
//
// Records repeat the same names in much the same order: each name leads to the one that followed it
// last, so that an answer mostly costs one comparison of bytes.
#pragma once
#include "codecs/markup/text/raw_text.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class NameMemory
{
public:
    using Wants = std::vector<quint32>;

    NameMemory() = default;
    NameMemory(const NameMemory &) = delete;
    NameMemory &operator=(const NameMemory &) = delete;

    /// The names of another element come next.
    void begin() { m_last = &m_beforeFirst; }

    /// The wants that ask for the next name. `tell` puts them into the list for a name that is new.
    template <typename Tell> const Wants &askingFor(const RawText &name, Tell tell)
    {
        if (m_last->next == nullptr || m_last->next->name != name.view()) {
            bool isNew = false;
            m_last->next = find(name, &isNew);
            if (isNew) {
                m_last->next->wants.clear();
                tell(&m_last->next->wants);
            }
        }
        m_last = m_last->next;
        return m_last->wants;
    }

private:
    struct Name
    {
        std::string name;
        Wants wants;
        Name *next = nullptr;
    };

    /// Names that are remembered, and their longest; others are new each time.
    static constexpr size_t kNames = 4096;
    static constexpr quint32 kNameBytes = 256;

    Name *find(const RawText &name, bool *isNew)
    {
        const bool isPlain = name.form == TextForm::Plain || name.form == TextForm::Detached;
        const auto known = isPlain ? m_byName.find(name.view()) : m_byName.end();
        *isNew = known == m_byName.end();
        if (!*isNew) {
            return known->second;
        }
        if (!isPlain || name.size > kNameBytes || m_names.size() >= kNames) {
            return &m_notRemembered;
        }
        Name *const met = &m_names.emplace_back();
        met->name = name.view();
        m_byName.emplace(met->name, met);
        return met;
    }

    std::deque<Name> m_names;
    std::unordered_map<std::string_view, Name *> m_byName;
    Name m_beforeFirst;
    /// The last one that is not in m_names; called like no text that is UTF-8.
    Name m_notRemembered{.name = "\xFF", .wants = {}, .next = nullptr};
    Name *m_last = &m_beforeFirst;
};

} // namespace corvanta::markup
