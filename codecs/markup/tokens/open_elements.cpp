// What ends before a start tag ("<" is: directly inside):
//
//     td th                 everything up to its tr; without one a tr begins
//     tr                    everything up to its thead, tfoot or table
//     thead tfoot tbody     everything up to its table; also caption, colgroup and col
//     table < table, tr     the outer table: tables are nested only in cells and captions
//     others < table, tr    the tag is ignored: browsers show its content before the table
//     li dd dt              the item before, unless a list or another block is between
//     blocks                an open p
#include "codecs/markup/tokens/open_elements.h"

#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>

namespace corvanta::markup {

using Kind = HtmlKind;

namespace {

bool isScope(HtmlElement element)
{
    return element.is(html::kScope);
}

bool isTable(HtmlElement element)
{
    return element.kind == Kind::Table;
}

/// True for an element that may end without an end tag.
bool isImplied(HtmlElement element)
{
    return (element.kind >= Kind::Paragraph && element.kind <= Kind::Definition) ||
           element.kind == Kind::Option || element.kind == Kind::OptGroup;
}

/// True when the end tag of `element` inside of `open` does not end elements outside of `open`. A
/// block ends together with everything inside; another element, such as "b", does not end a block
/// that is inside of it.
bool keepsOpen(HtmlElement open, HtmlElement element)
{
    if (element.kind == Kind::Form) {
        return !isImplied(open);
    }
    const bool isItem = element.kind == Kind::ListItem && open.kind == Kind::List;
    const bool endsBlocks = element.is(html::kSpecial) || element.kind == Kind::Foreign;
    return isItem || (endsBlocks ? isScope(open) : open.is(html::kSpecial));
}

bool isInTableOnly(Kind kind)
{
    return kind >= Kind::Section && kind <= Kind::Col;
}

} // namespace

void OpenElements::push(HtmlElement element)
{
    m_elements.push_back(element);
    if (element.kind == Kind::Table) {
        m_groups.push_back(++m_lastGroup);
    } else if (element.kind == Kind::Section) {
        beginGroup();
    }
    m_foreign += element.kind == Kind::Foreign ? 1 : 0;
}

void OpenElements::pop()
{
    const Kind kind = m_elements.back().kind;
    m_elements.pop_back();
    if (kind == Kind::Table) {
        m_groups.pop_back();
    } else if (kind == Kind::Section) {
        beginGroup();
    }
    m_foreign -= kind == Kind::Foreign ? 1 : 0;
}

void OpenElements::beginGroup()
{
    if (!m_groups.empty()) {
        m_groups.back() = ++m_lastGroup;
    }
}

template <class Found, class Limit> size_t OpenElements::find(Found isFound, Limit isLimit) const
{
    const size_t most = std::min(m_elements.size(), kSearchDepth);
    for (size_t up = 0; up < most; ++up) {
        const HtmlElement element = m_elements[m_elements.size() - 1 - up];
        if (isFound(element)) {
            return up;
        }
        if (isLimit(element)) {
            break;
        }
    }
    return kNone;
}

/// The innermost one.
size_t OpenElements::findTable() const
{
    return find(isTable, isTable);
}

size_t OpenElements::findParagraph() const
{
    return find([](HtmlElement e) { return e.kind == Kind::Paragraph; },
                [](HtmlElement e) { return isScope(e) || e.kind == Kind::Button; });
}

/// A block between two items, for example a list, begins items of its own.
size_t OpenElements::findListItem(HtmlKind kind) const
{
    return find([kind](HtmlElement e) { return e.kind == kind; },
                [](HtmlElement e) {
                    return e.is(html::kSpecial) && e.kind != Kind::Division &&
                           e.kind != Kind::Paragraph;
                });
}

OpenElements::Plan OpenElements::beforeStart(HtmlElement element) const
{
    if (element.kind >= Kind::Html && element.kind <= Kind::Body) {
        return beforePage(element.kind);
    }
    if (element.kind == Kind::Cell) {
        return beforeCell();
    }
    return isInTableOnly(element.kind) ? beforeTablePart(element.kind) : beforeContent(element);
}

/// "html", "head" and "body" begin only once, in this order.
OpenElements::Plan OpenElements::beforePage(HtmlKind kind) const
{
    const bool hasHtml = !m_elements.empty() && m_elements.front().kind == Kind::Html;
    const size_t inside = m_elements.size() - (hasHtml ? 1 : 0);
    if (inside == 0 && !(hasHtml && kind == Kind::Html)) {
        return {};
    }
    const bool isHeadOpen = inside > 0 && m_elements[hasHtml ? 1 : 0].kind == Kind::Head;
    return isHeadOpen && kind == Kind::Body ? Plan{Plan::Do::End, inside} : Plan{Plan::Do::Ignore};
}

OpenElements::Plan OpenElements::beforeCell() const
{
    const size_t row = find([](HtmlElement e) { return e.isTablePart(); }, isTable);
    if (row == kNone) {
        return {Plan::Do::Ignore};
    }
    if (row > 0) {
        return {Plan::Do::End, row};
    }
    return {top().kind == Kind::Row ? Plan::Do::Begin : Plan::Do::BeginRow};
}

OpenElements::Plan OpenElements::beforeTablePart(HtmlKind kind) const
{
    const size_t outer = find(
        [kind](HtmlElement e) {
            return isTable(e) || (kind == Kind::Row && e.kind == Kind::Section) ||
                   (kind == Kind::Col && e.kind == Kind::ColGroup);
        },
        isTable);
    if (outer == kNone) {
        return {Plan::Do::Ignore};
    }
    return outer > 0 ? Plan{Plan::Do::End, outer} : Plan{};
}

OpenElements::Plan OpenElements::beforeContent(HtmlElement element) const
{
    const HtmlElement inner = top();
    if (inner.isTablePart()) {
        return isTable(element) ? Plan{Plan::Do::End, findTable() + 1} : Plan{Plan::Do::Ignore};
    }
    if (inner.kind == Kind::ColGroup || (inner.kind == Kind::Head && !element.is(html::kInHead))) {
        return {Plan::Do::End, 1};
    }
    if (const size_t ended = endedInside(element); ended != kNone) {
        return {Plan::Do::End, ended + 1};
    }
    const bool isNestedForm =
        element.kind == Kind::Form &&
        find([](HtmlElement e) { return e.kind == Kind::Form; }, isTable) != kNone;
    return {isNestedForm ? Plan::Do::Ignore : Plan::Do::Begin};
}

/// Number of elements inside of the one that ends before `element` begins, or kNone.
size_t OpenElements::endedInside(HtmlElement element) const
{
    const Kind inner = top().kind;
    if (element.kind == Kind::ListItem || element.kind == Kind::Definition) {
        const size_t item = findListItem(element.kind);
        return item != kNone ? item : findParagraph();
    }
    if (const size_t paragraph = element.is(html::kEndsParagraph) ? findParagraph() : size_t(kNone);
        paragraph != kNone) {
        return paragraph;
    }
    if (element.kind == Kind::Anchor || element.kind == Kind::Button) {
        return find([element](HtmlElement e) { return e.kind == element.kind; },
                    [](HtmlElement e) { return e.is(html::kSpecial); });
    }
    const bool endsInner = (element.kind == Kind::Heading && inner == Kind::Heading) ||
                           ((element.kind == Kind::Option || element.kind == Kind::OptGroup) &&
                            inner == Kind::Option) ||
                           (element.kind == Kind::OptGroup && inner == Kind::OptGroup);
    return endsInner ? 0 : kNone;
}

size_t OpenElements::endedBy(HtmlElement element, std::string_view name,
                             const NameStack &names) const
{
    if (element.kind == Kind::Html || element.kind == Kind::Body || element.is(html::kVoid)) {
        return 0; // what follows "</body>" belongs to it
    }
    const bool isTablePart = element.kind >= Kind::Table && element.kind <= Kind::Caption;
    const size_t found = isTablePart ? endOfTablePart(element.kind, name, names)
                                     : endOfContent(element, name, names);
    return found == kNone ? 0 : found + 1;
}

/// Number of elements inside of the one that ends. "tbody" is not open: its tag ends what is inside
/// of it.
size_t OpenElements::endOfTablePart(HtmlKind kind, std::string_view name,
                                    const NameStack &names) const
{
    const auto hasSameName = [&](size_t up) { return equalsIgnoringCase(names.above(up), name); };
    if (kind == Kind::Tbody) {
        const size_t outer =
            find([](HtmlElement e) { return isTable(e) || e.kind == Kind::Section; }, isTable);
        const bool isOpen =
            outer != kNone && outer > 0 && isTable(m_elements[m_elements.size() - 1 - outer]);
        return isOpen ? outer - 1 : kNone;
    }
    const size_t found = find([kind](HtmlElement e) { return e.kind == kind; }, isTable);
    return found != kNone && hasSameName(found) ? found : kNone;
}

/// The same for elements outside of tables.
size_t OpenElements::endOfContent(HtmlElement element, std::string_view name,
                                  const NameStack &names) const
{
    size_t up = 0;
    const auto isFound = [&](HtmlElement e) {
        const bool isSame = e.kind == element.kind &&
                            (e.kind == Kind::Heading || equalsIgnoringCase(names.above(up), name));
        up += isSame ? 0 : 1;
        return isSame;
    };
    return find(isFound, [&](HtmlElement e) { return keepsOpen(e, element); });
}

} // namespace corvanta::markup
