// The open elements of a page, and which of them a tag ends.
//
// This is the part of the tree construction of the HTML standard (section 13.2.6) that decides in
// which element text, cells and rows are. What it leaves out is in docs/formats/html.md.
#pragma once
#include "codecs/markup/tokens/html_kinds.h"
#include "codecs/markup/tokens/name_stack.h"

#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class OpenElements
{
public:
    /// What happens before or instead of the start of an element.
    struct Plan
    {
        enum class Do : quint8 {
            /// The element begins.
            Begin,
            /// The tag is ignored.
            Ignore,
            /// `count` elements end, then the tag is examined again.
            End,
            /// A "tr" begins that the page omits, then the tag is examined again.
            BeginRow,
        };
        Do action = Do::Begin;
        size_t count = 0;
    };

    /// Forget all elements.
    void clear()
    {
        m_elements.clear();
        m_groups.clear();
        m_foreign = 0;
    }
    /// Add an innermost element.
    void push(HtmlElement element);
    /// Remove the innermost element.
    void pop();
    /// The innermost element; without any, one of kind Other.
    HtmlElement top() const { return m_elements.empty() ? HtmlElement() : m_elements.back(); }
    /// True inside of "svg" and "math", where "/>" ends an element.
    bool isForeign() const { return m_foreign > 0; }

    /// What the start tag of `element` does.
    Plan beforeStart(HtmlElement element) const;
    /// Number of elements that the end tag of `element`, which is called `name`, ends; 0 when it is
    /// ignored. `names` are those of the open elements.
    size_t endedBy(HtmlElement element, std::string_view name, const NameStack &names) const;

    /// A tag of "tbody", which is not an element here, begins another group of rows.
    void beginGroup();
    /// Number of the group of rows (thead, tbody, tfoot) of the innermost table that is open. A
    /// number is never used again; 0 outside of tables.
    quint32 rowGroup() const { return m_groups.empty() ? 0 : m_groups.back(); }

private:
    /// How many open elements a search looks at, at most. The limit keeps the time linear.
    static constexpr size_t kSearchDepth = 512;
    /// The result of a search that finds nothing.
    static constexpr size_t kNone = ~size_t(0);

    /// Number of elements inside of the innermost one for which `isFound` is true, or kNone when
    /// there is none inside of the innermost one for which `isLimit` is true.
    template <class Found, class Limit> size_t find(Found isFound, Limit isLimit) const;
    size_t findTable() const;
    /// The innermost "p" that a tag may end; kNone without one.
    size_t findParagraph() const;
    size_t findListItem(HtmlKind kind) const;

    Plan beforePage(HtmlKind kind) const;
    Plan beforeTablePart(HtmlKind kind) const;
    Plan beforeCell() const;
    Plan beforeContent(HtmlElement element) const;
    size_t endedInside(HtmlElement element) const;
    size_t endOfTablePart(HtmlKind kind, std::string_view name, const NameStack &names) const;
    size_t endOfContent(HtmlElement element, std::string_view name, const NameStack &names) const;

    std::vector<HtmlElement> m_elements;
    /// By open table: the number of its group of rows.
    std::vector<quint32> m_groups;
    quint32 m_lastGroup = 0;
    size_t m_foreign = 0;
};

} // namespace corvanta::markup
