// The window over a part:
//
//   piece n      [headroom | ............ bytes ........<c r="B]
//   piece n + 1  [  <c r="B| 7"><v>1</v></c> ... bytes ........]
//                   \_ the rest of piece n, copied before the new bytes
//
// A rest that is longer than the headroom moves to a buffer of its own until it is consumed.
#include "codecs/xlsx/read/part_text.h"

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

using sheet::WorkbookError;

Fault<WorkbookError> memberFault(const Fault<zip::Error> &fault, const QString &member)
{
    switch (fault.code) {
    case zip::Error::ReadFailed:
        return {WorkbookError::ReadFailed, u"'%1' cannot be read"_s.arg(member), fault.offset};
    case zip::Error::Encrypted:
        return {WorkbookError::Encrypted, u"'%1' needs a password"_s.arg(member), fault.offset};
    case zip::Error::UnknownMethod:
        return {WorkbookError::Unsupported,
                u"'%1' is packed by method %2, only stored and deflated members are read"_s.arg(
                    member, fault.detail),
                fault.offset};
    case zip::Error::TooLarge:
        return {WorkbookError::TooLarge, u"'%1' is too large"_s.arg(member), fault.offset};
    case zip::Error::NoMember:
        return {WorkbookError::Damaged, u"'%1' is missing"_s.arg(member), fault.offset};
    default:
        return {WorkbookError::Damaged, u"'%1' is damaged"_s.arg(member), fault.offset};
    }
}

PartText::PartText(QString name, std::unique_ptr<zip::MemberStream> stream, qint64 size)
    : m_name(std::move(name))
    , m_size(size)
    , m_source(std::move(stream), size)
{
}

double PartText::fractionDone() const
{
    return m_size <= 0
               ? 1.0
               : std::min(1.0, static_cast<double>(m_read.load()) / static_cast<double>(m_size));
}

Fault<WorkbookError> PartText::fault(WorkbookError code, const QString &cause) const
{
    return {code, u"'%1': %2"_s.arg(m_name, cause), m_read.load() - (m_end - m_begin)};
}

Fault<WorkbookError> PartText::truncated() const
{
    return fault(WorkbookError::Damaged, u"the text ends too early"_s);
}

Fault<WorkbookError> PartText::sourceFault() const
{
    const auto &stream = static_cast<const zip::MemberStream &>(m_source.source());
    return memberFault(stream.fault().value_or(Fault{zip::Error::BadData}), m_name);
}

void PartText::take(const Piece &piece)
{
    m_read.fetch_add(static_cast<qint64>(piece.size));
    const auto rest = static_cast<size_t>(m_end - m_begin);
    if (rest <= Piece::kHeadroom) {
        char *const begin = piece.begin() - rest;
        // The rest may be in m_long; never in this piece. Without a rest, m_begin may be null.
        std::copy_n(m_begin, rest, begin);
        m_begin = begin;
        m_end = piece.end();
        return;
    }
    std::vector<char> joined(rest + piece.size + Piece::kPadding);
    std::memcpy(joined.data(), m_begin, rest);
    std::memcpy(joined.data() + rest, piece.begin(), piece.size);
    m_long.swap(joined);
    m_begin = m_long.data();
    m_end = m_begin + rest + piece.size;
}

sheet::WorkbookResult<bool> PartText::extend()
{
    if (m_end - m_begin >= kMaxItemBytes) {
        return fault(WorkbookError::TooLarge,
                     u"an element has more than %1 bytes"_s.arg(QString::number(kMaxItemBytes)));
    }
    // The rest is in the piece that next() takes back. No other thread has it before it is filled
    // again, but that can be soon: keep the rest first.
    const std::vector<char> rest(m_begin, m_end);
    const Piece *const piece = m_source.next();
    if (m_source.isStopped()) {
        return Fault{WorkbookError::Stopped};
    }
    if (piece == nullptr) {
        if (m_source.hasFailed()) {
            return sourceFault();
        }
        m_long.assign(rest.size() + Piece::kPadding, '\0');
        std::copy(rest.begin(), rest.end(), m_long.begin());
        m_begin = m_long.data();
        m_end = m_begin + rest.size();
        return false;
    }
    m_begin = rest.data();
    m_end = rest.data() + rest.size();
    take(*piece);
    return true;
}

sheet::WorkbookResult<bool> PartText::ensureText()
{
    if (m_begin != m_end) {
        return true;
    }
    auto more = extend();
    if (!more || !*more || !m_isStart) {
        return more;
    }
    m_isStart = false;
    if (!opc::isUtf8Text({m_begin, std::min<qsizetype>(m_end - m_begin, 256)})) {
        return fault(WorkbookError::Unsupported, u"the text is not UTF-8"_s);
    }
    constexpr QByteArrayView kMark("\xEF\xBB\xBF");
    m_begin += QByteArrayView(m_begin, m_end).startsWith(kMark) ? kMark.size() : 0;
    return true;
}

/// Take the item at the beginning of the window. Returns false when the window ends inside it.
sheet::WorkbookResult<bool> PartText::scanItem(MarkupItem *item)
{
    const QByteArrayView text(m_begin, m_end - m_begin);
    if (*m_begin != '<') {
        const auto *const stop =
            static_cast<const char *>(std::memchr(m_begin, '<', static_cast<size_t>(text.size())));
        if (stop == nullptr) {
            return false;
        }
        *item = {MarkupItem::Kind::Text, {m_begin, stop - m_begin}, {}};
        m_begin = stop;
        return true;
    }
    constexpr QByteArrayView kCData("<![CDATA[");
    qsizetype end = 0;
    switch (opc::scanMarkup(text, 0, &item->tag, &end)) {
    case opc::Scan::Tag:
        item->kind = MarkupItem::Kind::Tag;
        break;
    case opc::Scan::Skipped:
        item->kind = MarkupItem::Kind::CData;
        item->text = text.startsWith(kCData) ? text.sliced(kCData.size(), end - kCData.size() - 3)
                                             : QByteArrayView();
        break;
    case opc::Scan::Incomplete:
        return false;
    case opc::Scan::Broken:
        return fault(WorkbookError::Damaged, u"the markup is broken"_s);
    }
    m_begin += end;
    return true;
}

sheet::WorkbookResult<MarkupItem> PartText::nextItem()
{
    MarkupItem item;
    for (;;) {
        const auto has = ensureText();
        if (!has) {
            return has.fault();
        }
        if (!*has) {
            return MarkupItem();
        }
        const auto scanned = scanItem(&item);
        if (!scanned) {
            return scanned.fault();
        }
        if (*scanned) {
            // An empty section and a skipped instruction are the same: nothing.
            if (item.kind != MarkupItem::Kind::CData || !item.text.isEmpty()) {
                return item;
            }
            continue;
        }
        const auto more = extend();
        if (!more) {
            return more.fault();
        }
        if (!*more) {
            // Text after the root element may end with the part.
            const bool isText = m_begin != m_end && *m_begin != '<';
            m_begin = isText ? m_end : m_begin;
            if (!isText) {
                return truncated();
            }
        }
    }
}

sheet::WorkbookResult<void> PartText::skipElement(const opc::Tag &opening)
{
    using Kind = opc::Tag::Kind;
    int depth = opening.kind == Kind::Open ? 1 : 0;
    while (depth > 0) {
        const auto item = nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == MarkupItem::Kind::End) {
            return truncated();
        }
        if (item->kind == MarkupItem::Kind::Tag) {
            depth += item->tag.kind == Kind::Open ? 1 : item->tag.kind == Kind::Close ? -1 : 0;
        }
    }
    return {};
}

} // namespace corvanta::xlsx
