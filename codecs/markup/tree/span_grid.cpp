// <tr><td rowspan=2>a <td colspan=2>b         a b b      the second row has cells in columns 1 and
// 2; <tr><td>c <td>d                             a c d      column 0 is carried
#include "codecs/markup/tree/span_grid.h"

#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <limits>

namespace corvanta::markup {

namespace {

constexpr quint32 kToTheEnd = std::numeric_limits<quint32>::max();

/// The number at the start of an attribute, at most `limit`; `missing` without one (HTML standard,
/// section 2.3.4.2).
quint32 readNumber(const RawText &value, quint32 limit, quint32 missing)
{
    const std::u16string text = decoded(value);
    const auto isBlank = [](char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); };
    auto at = std::find_if_not(text.begin(), text.end(), isBlank);
    at += at != text.end() && *at == u'+' ? 1 : 0;
    const auto digits = at;
    quint32 number = 0;
    for (; at != text.end() && *at >= u'0' && *at <= u'9'; ++at) {
        number = std::min(number * 10 + static_cast<quint32>(*at - u'0'), limit);
    }
    return at == digits ? missing : number;
}

} // namespace

void CellSpan::readAttribute(const RawText &name, const RawText &value)
{
    constexpr size_t kNameSize = 7; // of both
    if (name.size != kNameSize) {
        return;
    }
    if (equalsIgnoringCase(name.view(), "colspan")) {
        columns = std::max(readNumber(value, kMaxColumns, 1), 1U);
    } else if (equalsIgnoringCase(name.view(), "rowspan")) {
        rows = readNumber(value, kMaxRows, 1);
    }
}

void SpanGrid::clear()
{
    m_slots.clear();
    m_row = m_next = 0;
    m_firstRow = 1;
}

void SpanGrid::beginRow()
{
    ++m_row;
    m_next = 0;
}

quint32 SpanGrid::place(CellSpan *span)
{
    while (isCarried(m_next)) {
        ++m_next;
    }
    const quint32 first = m_next;
    const quint32 most = kMaxSpannedColumns - std::min(first, kMaxSpannedColumns);
    span->columns = std::clamp(most, 1U, span->columns);
    m_next += span->columns;
    m_slots.resize(std::max<size_t>(m_slots.size(), m_next));
    const Slot slot{m_row, span->rows == 0 ? kToTheEnd : m_row + span->rows};
    std::fill(m_slots.begin() + first, m_slots.begin() + m_next, slot);
    return first;
}

} // namespace corvanta::markup
