// The part is a flat list; its counts are not trusted:
//
//   <sst count="9" uniqueCount="2"><si><t>first</t></si><si>...</si></sst>
#include "codecs/xlsx/read/shared_strings.h"

#include "codecs/xlsx/read/string_text.h"

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

namespace {

/// Where the text begins in an item of the usual form; -1 for one of another form.
qsizetype plainTextBegin(QByteArrayView window)
{
    constexpr QByteArrayView kOpening("<si><t>");
    constexpr QByteArrayView kPreserve("<si><t xml:space=\"preserve\">");
    return window.startsWith(kOpening)    ? kOpening.size()
           : window.startsWith(kPreserve) ? kPreserve.size()
                                          : -1;
}

} // namespace

SharedStrings::SharedStrings(std::unique_ptr<PartText> part, qint64 maxBytes)
    : m_part(std::move(part))
    , m_maxBytes(maxBytes)
{
}

void SharedStrings::stop()
{
    if (m_part) {
        m_part->stop();
    }
}

/// Read strings until number `index` is known or the part ends.
sheet::WorkbookResult<void> SharedStrings::load(quint64 index)
{
    // The strings after a fault are not known: a later call must not report them as missing.
    if (m_fault) {
        return *m_fault;
    }
    while (m_part && !m_isEnd && index >= m_count) {
        const auto more = takeNext();
        if (!more) {
            m_fault = more.fault();
            return *m_fault;
        }
        m_isEnd = !*more;
    }
    return {};
}

/// Read the next item of the list. Returns false at the end of the part.
sheet::WorkbookResult<bool> SharedStrings::takeNext()
{
    m_text.clear();
    if (takePlain()) {
        if (const auto added = add({m_text.data(), m_text.size()}); !added) {
            return added.fault();
        }
        return true;
    }
    const auto item = m_part->nextItem();
    if (!item) {
        return item.fault();
    }
    if (item->kind == MarkupItem::Kind::End) {
        return false;
    }
    if (!item->isOpening("si")) {
        return true;
    }
    bool isBad = false;
    if (const auto read = appendStringItem(*m_part, item->tag, &m_text, &isBad); !read) {
        return read.fault();
    }
    // A string with bad bytes keeps its place: cells count on the numbers of those after it.
    if (isBad) {
        noteReplaced();
    }
    if (const auto added = add({m_text.data(), m_text.size()}); !added) {
        return added.fault();
    }
    return true;
}

/// Read an item of the usual form into m_text, if it is completely in the window.
bool SharedStrings::takePlain()
{
    constexpr QByteArrayView kClosing("</t></si>");
    const QByteArrayView window(m_part->begin(), m_part->end() - m_part->begin());
    const qsizetype from = plainTextBegin(window);
    if (from < 0) {
        return false;
    }
    const qsizetype to = window.indexOf('<', from);
    if (to < 0 || !window.sliced(to).startsWith(kClosing)) {
        return false;
    }
    if (!appendText(window.sliced(from, to - from), false, &m_text)) {
        noteReplaced();
    }
    m_part->consumeTo(window.data() + to + kClosing.size());
    return true;
}

void SharedStrings::noteReplaced()
{
    m_replaced.push_back(m_count);
    m_bytes += static_cast<qint64>(sizeof m_count);
}

/// Begin a block that has room for `units`.
void SharedStrings::addBlock(size_t units)
{
    const size_t blockUnits = std::max(units, kBlockUnits);
    m_blocks.push_back(std::make_unique_for_overwrite<char16_t[]>(blockUnits));
    m_bytes += static_cast<qint64>(blockUnits * sizeof(char16_t));
    m_used = 0;
}

/// Memory for `units` in the last block or a new one.
char16_t *SharedStrings::room(size_t units)
{
    if (kBlockUnits - m_used < units || m_blocks.empty()) {
        addBlock(units);
    }
    char16_t *const at = m_blocks.back().get() + m_used;
    m_used = std::min(m_used + units, kBlockUnits);
    return at;
}

/// Errors: TooLarge.
sheet::WorkbookResult<void> SharedStrings::add(std::u16string_view text)
{
    static_assert(kMaxTextUnits < size_t(1) << 24); // see Place
    if (text.size() > kMaxTextUnits) {
        return longText(*m_part);
    }
    if (m_count % kIndexStrings == 0) {
        m_index.emplace_back().reserve(kIndexStrings);
        m_bytes += static_cast<qint64>(kIndexStrings * sizeof(Place));
    }
    char16_t *const at = room(text.size());
    if (m_bytes > m_maxBytes) {
        return m_part->fault(sheet::WorkbookError::TooLarge,
                             u"the texts need more than %1 MiB"_s.arg(m_maxBytes >> 20));
    }
    text.copy(at, text.size());
    m_index.back().push_back(
        {m_blocks.size() - 1, static_cast<quint64>(at - m_blocks.back().get()), text.size()});
    ++m_count;
    return {};
}

} // namespace corvanta::xlsx
