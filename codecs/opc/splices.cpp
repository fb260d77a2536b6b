// Changes are intervals of the old text with the bytes that replace them; an insertion is an empty
// interval:
//
//   old text   ....[begin  end)........|..............
//   new text   .... added      ........ added ........
#include "codecs/opc/splices.h"

#include <algorithm>

namespace corvanta::opc {

void Splices::replace(qsizetype begin, qsizetype end, const QByteArray &added)
{
    m_changes.push_back({begin, end, added});
}

void Splices::append(const Element &element, const QByteArray &added)
{
    if (element.isEmptyTag()) {
        // "/>" becomes a tag end, the added bytes and a closing tag.
        replace(element.closeBegin, element.end,
                '>' + added + "</" + element.tag.name.toByteArray() + '>');
    } else {
        insert(element.closeBegin, added);
    }
}

void Splices::setAttribute(const Tag &tag, QByteArrayView name, const QByteArray &value)
{
    // The views of a tag point into the text, so their offsets follow from their addresses.
    const auto old = tag.attribute(name);
    if (old) {
        const qsizetype begin = old->data() - m_text.data();
        replace(begin, begin + old->size(), value);
        return;
    }
    const qsizetype afterName = tag.name.data() + tag.name.size() - m_text.data();
    insert(afterName, ' ' + name.toByteArray() + "=\"" + value + '"');
}

QByteArray Splices::apply()
{
    // Stable: insertions at one offset keep the order of the calls.
    std::stable_sort(m_changes.begin(), m_changes.end(),
                     [](const Change &a, const Change &b) { return a.begin < b.begin; });
    QByteArray out;
    qsizetype at = 0;
    for (const Change &change : m_changes) {
        out += m_text.sliced(at, change.begin - at);
        out += change.added;
        at = change.end;
    }
    return out += m_text.sliced(at);
}

} // namespace corvanta::opc
